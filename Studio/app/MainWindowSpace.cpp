#include "MainWindow.h"
#include "views/SceneView.h"

#include <QActionGroup>
#include <QMenu>
#include <QSettings>

namespace ka::studio {

namespace {

const char DrawingKey[] = "sceneDrawing";

} // namespace

/// The cameras of the scene, as they are when the menu opens.
void MainWindow::addCameras(QMenu* menu) {
    QMenu* through = menu->addMenu(tr("Look &through"));
    through->setObjectName(QStringLiteral("cameras"));
    connect(through, &QMenu::aboutToShow, this, [this, through] {
        through->clear();
        const auto add = [this, through](const QString& name, unsigned int setting) {
            QAction* action =
                through->addAction(name, this, [this, setting] { _scene->lookThrough(setting); });
            action->setCheckable(true);
            action->setChecked(_scene->seenThrough() == setting);
        };
        add(tr("No camera: turn about freely"), 0);
        for (const SceneCamera& camera : _scene->sceneCameras())
            add(camera.name.isEmpty() ? tr("Camera without name") : camera.name, camera.setting);
    });
    addAction(menu, "nextCamera", tr("Next &camera"), QKeySequence(Qt::Key_0),
              tr("Look through the next camera of the scene, after the last one freely again"), [this] {
                  const std::vector<SceneCamera>& cameras = _scene->sceneCameras();
                  std::size_t next = 0;
                  for (std::size_t i = 0; i < cameras.size(); ++i)
                      if (cameras[i].setting == _scene->seenThrough())
                          next = i + 1;
                  _scene->lookThrough(next < cameras.size() ? cameras[next].setting : 0);
                  if (cameras.empty())
                      say(tr("The scene has no camera"));
              });
}

/// What draws the scene. The environment's wish goes before the one that is kept, and is not kept itself.
void MainWindow::addDrawings(QMenu* menu) {
    QMenu* drawings = menu->addMenu(tr("&Scene drawn"));
    auto* group = new QActionGroup(this);
    const QString kept = QSettings().value(DrawingKey, QStringLiteral("automatic")).toString();
    const QString wanted = QString::fromLocal8Bit(qgetenv("KA_STUDIO_DRAWING"));
    const auto way =
        SceneView::drawingNamed(wanted.isEmpty() ? kept : wanted).value_or(SceneView::Drawing::Automatic);
    const auto add = [&](const char* name, const QString& kind, const QString& text, const QString& tip) {
        const SceneView::Drawing drawing = *SceneView::drawingNamed(kind);
        QAction* action = addAction(drawings, name, text, {}, tip, [this, kind, drawing] {
            QSettings().setValue(DrawingKey, kind);
            _scene->setDrawing(drawing);
        });
        action->setCheckable(true);
        action->setChecked(drawing == way);
        group->addAction(action);
    };
    add("drawAutomatic", QStringLiteral("automatic"), tr("&As it can be"),
        tr("With OpenGL where there is any"));
    add("drawOpenGL", QStringLiteral("opengl"), tr("With &OpenGL"),
        tr("Meshes, bones and lights; tries again where it failed"));
    add("drawPlain", QStringLiteral("plain"), tr("&Without OpenGL"),
        tr("Joints and bones alone, on every display"));
    _scene->setDrawing(way);
}

} // namespace ka::studio
