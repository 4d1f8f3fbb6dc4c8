#include "WindowFixture.h"

#include "space/DrawingClient.h"

#include <QAction>
#include <QApplication>
#include <QMessageBox>
#include <QPalette>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>
#include <sstream>

namespace ka::studio::testing {

namespace {

/// One for the whole run; it stays until the process ends.
void startApplication() {
    static int count = 1;
    static char name[] = "ka-test-studio-window";
    static char* arguments[] = {name, nullptr};
    static QApplication* application = new QApplication(count, arguments);
    static_cast<void>(application);
    if (qEnvironmentVariableIsSet("KA_STUDIO_DARK")) {
        QApplication::setStyle(QStringLiteral("Fusion"));
        QPalette dark(QColor(53, 53, 57), QColor(40, 40, 44));
        dark.setColor(QPalette::Base, QColor(30, 30, 33));
        dark.setColor(QPalette::AlternateBase, QColor(38, 38, 42));
        QApplication::setPalette(dark);
    }
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("kaAnimation-test"));
    QCoreApplication::setApplicationName(QStringLiteral("ka-studio-test"));
}

/// A hip that moves along X by 0, 1, 2, 0, 1, 2... and an arm that turns, eleven frames 0.4 seconds apart.
std::string figure() {
    std::ostringstream text;
    text << "HIERARCHY\nROOT hip\n{\n OFFSET 0 0 0\n CHANNELS 6 Xposition Yposition Zposition Zrotation "
            "Yrotation "
            "Xrotation\n JOINT arm\n {\n  OFFSET 0 10 0\n  CHANNELS 3 Zrotation Yrotation Xrotation\n  End "
            "Site\n  "
            "{\n   OFFSET 0 10 0\n  }\n }\n}\nMOTION\nFrames: 11\nFrame Time: 0.4\n";
    for (int i = 0; i < 11; ++i)
        text << i % 3 << " 20 0 0 0 0 " << 10 * (i % 4) << " 0 0\n";
    return text.str();
}

struct SceneFiles {
    std::string scene, document;
};

/// The figure as a scene and its document, made before the first window is: there is one registry.
const SceneFiles& figureFiles() {
    static const SceneFiles files = [] {
        const ka_test::TemporaryFolder folder;
        ka::motion::ProjectFiles model;
        model.file = folder.put("figure.bvh", figure());
        const ka::motion::Project project(model);
        const std::vector<std::string> faults =
            ka::motion::save(project.root(), {folder.at("scene.osg"), folder.at("scene.xml")});
        EXPECT_TRUE(faults.empty());
        return SceneFiles{ka_test::contentOf(folder.at("scene.osg")),
                          ka_test::contentOf(folder.at("scene.xml"))};
    }();
    return files;
}

} // namespace

void WindowFixture::SetUp() {
    startApplication();
    figureFiles();
    QSettings().clear();
    Importer::setProgram(QStringLiteral(KA_STUDIO_PROGRAM));
    DrawingClient::setProgram(QStringLiteral(KA_STUDIO_PROGRAM));
    qputenv("KA_STUDIO_DRAWING", "plain"); // tests of the other drawing ask for it
    _window = std::make_unique<MainWindow>();
    _answers.message = [this](const QString& text) { _messages.append(text); };
    _answers.unsavedChanges = [this] { return _unsaved; };
    _answers.saveName = [this] { return _saveName; };
    _answers.overwrite = [this] { return _overwrite; };
    setAnswers();
    _unsaved = QMessageBox::Discard;
    _window->resize(1400, 880);
    _window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(_window.get()));
    QApplication::setActiveWindow(_window.get()); // a bare display has nobody who would
}

void WindowFixture::TearDown() {
    _window.reset();
}

QString WindowFixture::figureScene() {
    if (!std::filesystem::exists(_folder.at("figure"))) {
        std::filesystem::create_directory(_folder.at("figure"));
        _folder.put("figure.bvh", figure());
        _folder.put("figure/scene.osg", figureFiles().scene);
        _folder.put("figure/scene.xml", figureFiles().document);
    }
    return QString::fromStdString(_folder.at("figure/scene.osg"));
}

void WindowFixture::openFigure() {
    _window->openPath(figureScene());
    ASSERT_TRUE(_window->session().isOpen());
    ASSERT_TRUE(_messages.isEmpty()) << _messages.join('\n').toStdString();
}

kaUID WindowFixture::curve(const char* block, const char* attribute) {
    for (const kaAnimationObject* object : kaAnimationManager::the()->getObjects(KA_TYPE_UNIT))
        if (object->getName().find(block) != std::string::npos)
            for (const kaAnimationCurve2D* found : object->getCurves())
                if (kaAnimationManager::the()->getField(found->getField())->attribute == attribute)
                    return found->getId();
    ADD_FAILURE() << "no curve " << attribute << " in a block " << block;
    return 0;
}

kaControlPoint2D* WindowFixture::key(kaUID curve, float frame) {
    kaAnimationCurve2D* on = kaAnimationManager::the()->getCurve2D(curve);
    return on != nullptr ? on->findPoint(frame) : nullptr;
}

void WindowFixture::drag(QWidget& view, const QPoint& from, const QPoint& to, Qt::MouseButton button,
                         Qt::KeyboardModifiers modifiers) {
    QTest::mousePress(&view, button, modifiers, from);
    constexpr int Steps = 8;
    for (int i = 1; i <= Steps; ++i) {
        const QPoint at = from + (to - from) * i / Steps;
        QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, button, modifiers);
        QApplication::sendEvent(&view, &move);
        QTest::qWait(1);
    }
    QTest::mouseRelease(&view, button, modifiers, to);
}

void WindowFixture::trigger(const char* action) {
    QAction* found = _window->action(QString::fromLatin1(action));
    ASSERT_NE(found, nullptr) << action;
    found->trigger();
}

void WindowFixture::picture(QWidget& widget, const QString& name) {
    const QByteArray folder = qgetenv("KA_STUDIO_PICTURES");
    if (folder.isEmpty())
        return;
    QTest::qWait(50);
    widget.grab().save(QString::fromLocal8Bit(folder) + QLatin1Char('/') + name + QStringLiteral(".png"));
}

} // namespace ka::studio::testing
