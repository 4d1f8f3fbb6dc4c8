#include "MainWindow.h"
#include "document/ContainerEdits.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"
#include "views/Outliner.h"
#include "views/Properties.h"
#include "views/SceneView.h"

#include <QActionGroup>
#include <QInputDialog>
#include <QMenuBar>
#include <kaAnimationUnit.h>
#include <kaMotion/Project.h>

namespace ka::studio {

/// A picked joint shows its curves: those of its blocks.
void MainWindow::onPicked(unsigned int node) {
    const std::vector<kaUID> blocks = blocksOfNode(node);
    _outliner->showNode(node);
    _properties->showNode(node);
    if (!blocks.empty())
        _channels->choose(blocks);
    say(node == 0        ? tr("Nothing is picked")
        : blocks.empty() ? tr("Nothing moves this joint")
                         : tr("Its curves are shown"));
}

void MainWindow::playOnly(kaUID object) {
    _transport.setObjects({object});
    _head.scrub(_transport.begin());
    say(tr("This alone is played; Scene, Play everything plays the rest as well"));
}

void MainWindow::forBars(const std::function<void(kaUID)>& run, const QString& name) {
    const std::vector<kaUID> ids = _bars.ids();
    if (ids.empty()) {
        say(tr("Select a clip, a block or a marker in the timeline first"));
        return;
    }
    QUndoStack& history = _session.document().history();
    if (ids.size() > 1)
        history.beginMacro(name);
    for (const kaUID id : ids)
        run(id);
    if (ids.size() > 1)
        history.endMacro();
}

void MainWindow::addFlag(QMenu* menu, const char* name, const QString& text, const QString& tip, int flag) {
    const auto which = static_cast<ObjectFlag>(flag);
    addAction(menu, name, text, {}, tip, [this, which, text] {
        forBars(
            [this, which](kaUID id) {
                if (const kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
                    setFlag(_session.document(), id, which, !isFlagged(*object, which));
            },
            text);
    });
}

void MainWindow::buildClipMenu() {
    QMenu* menu = menuBar()->addMenu(tr("C&lips"));
    Document& document = _session.document();
    const auto focusedTrack = [this] {
        const kaUID chosen = _bars.isEmpty() ? 0 : _bars.ids().front();
        const kaAnimationObject* object = kaAnimationManager::the()->getObject(chosen);
        return object != nullptr ? object->getParent() : 0;
    };
    addAction(menu, "newClip", tr("&New clip"), {}, tr("An empty clip with one track"), [&document] {
        document.history().beginMacro(tr("New clip"));
        addTrack(document, addClip(document, "Clip"));
        document.history().endMacro();
    });
    addAction(menu, "newTrack", tr("New &track"), {}, tr("A further track on the clip of what is selected"),
              [this, &document, focusedTrack] {
                  const kaAnimationObject* track = kaAnimationManager::the()->getObject(focusedTrack());
                  const kaUID selected = _bars.isEmpty() ? 0 : _bars.ids().front();
                  if (addTrack(document, track != nullptr ? track->getParent() : selected) == 0)
                      say(tr("Select a clip, or something on one of its tracks, first"));
              });
    addAction(
        menu, "newMarker", tr("New &marker"), QKeySequence(Qt::Key_M),
        tr("A named event at the playhead, on the track of what is selected"),
        [this, &document, focusedTrack] {
            constexpr float Length = 1.0F; // a frame
            if (addSequence(document, focusedTrack(), "Marker", _head.frame(), _head.frame() + Length) == 0)
                say(tr("Select something on a track that has room at the playhead first"));
        });
    addAction(
        menu, "placeBlock", tr("&Place chosen blocks"), {},
        tr("Copies of the blocks chosen among the channels, at the playhead on a track of their own"),
        [this, &document, focusedTrack] {
            for (const kaUID block : _channels->chosenBlocks())
                if (placeOnTrack(document, block, focusedTrack(), _head.frame()) == 0)
                    say(tr("It does not fit there: select something on a track with room at the playhead"));
        });
    menu->addSeparator();
    addAction(menu, "flip", tr("&Flip"), {}, tr("Mirror it in time"),
              [this, &document] { forBars([&](kaUID id) { flip(document, id); }, tr("Flip")); });
    addAction(menu, "duplicateBar", tr("&Duplicate"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_D),
              tr("A copy right behind it"), [this, &document] {
                  forBars(
                      [&](kaUID id) {
                          if (duplicate(document, id) == 0)
                              say(tr("There is no room behind it"));
                      },
                      tr("Duplicate"));
              });
    addAction(
        menu, "rename", tr("&Rename..."), QKeySequence(Qt::Key_F2), tr("Another name"), [this, &document] {
            forBars(
                [&](kaUID id) {
                    const kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
                    const QString former =
                        object != nullptr ? QString::fromLatin1(object->getName().c_str()) : QString();
                    const QString name = _answers.name ? _answers.name(former)
                                                       : QInputDialog::getText(this, tr("Rename"), tr("Name"),
                                                                               QLineEdit::Normal, former);
                    if (!name.isEmpty())
                        rename(document, id, name.toLatin1().toStdString());
                },
                tr("Rename"));
        });
    addAction(menu, "deleteBar", tr("De&lete"), QKeySequence(Qt::SHIFT | Qt::Key_Delete),
              tr("Delete it with everything in it"),
              [this, &document] { forBars([&](kaUID id) { remove(document, id); }, tr("Delete")); });
    menu->addSeparator();
    addFlag(menu, "flagActive", tr("&Active"), tr("Whether it moves the scene"),
            static_cast<int>(ObjectFlag::Active));
    addFlag(menu, "flagRepeating", tr("Re&peating"), tr("Whether it begins again at its end"),
            static_cast<int>(ObjectFlag::Repeating));
    addFlag(menu, "flagBlur", tr("Motion &blur"), tr("Whether it is sampled between frames for motion blur"),
            static_cast<int>(ObjectFlag::MotionBlur));
    addFlag(menu, "flagRange", tr("&Custom range"), tr("Whether it plays its custom range"),
            static_cast<int>(ObjectFlag::CustomRange));
    addAction(menu, "setRange", tr("Custom range from &In and Out"), {},
              tr("Take the playing range as its custom range"), [this, &document] {
                  forBars(
                      [&](kaUID id) { setCustomRange(document, id, _transport.begin(), _transport.end()); },
                      tr("Custom range"));
              });
    connect(_timeline, &ClipTimeline::menuWanted, this,
            [this, menu](const QPoint& at) { menu->popup(_timeline->mapToGlobal(at)); });
}

void MainWindow::buildSceneMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Scene"));
    auto* tools = new QActionGroup(this);
    const auto addTool = [&](const char* name, const QString& text, int key, const QString& tip,
                             SceneView::Tool tool) {
        QAction* action =
            addAction(menu, name, text, QKeySequence(key), tip, [this, tool] { _scene->setTool(tool); });
        action->setCheckable(true);
        action->setChecked(tool == SceneView::Tool::Select);
        tools->addAction(action);
    };
    addTool("toolSelect", tr("&Select"), Qt::Key_Q, tr("A click picks a joint"), SceneView::Tool::Select);
    addTool("toolMove", tr("&Move"), Qt::Key_W, tr("Arrows that move the picked joint"),
            SceneView::Tool::Move);
    addTool("toolRotate", tr("&Rotate"), Qt::Key_E, tr("Rings that turn the picked joint"),
            SceneView::Tool::Rotate);
    menu->addSeparator();
    const auto addSwitch = [&](const char* name, const QString& text, int key, const QString& tip, bool on,
                               const std::function<void(bool)>& set) {
        QAction* action = addAction(menu, name, text, QKeySequence(key), tip, [] {});
        action->setCheckable(true);
        action->setChecked(on);
        connect(action, &QAction::toggled, this, set);
    };
    addSwitch("autoKey", tr("&Auto-key"), Qt::Key_K, tr("Posing sets keys where there are none"), true,
              [this](bool on) { _scene->setAutoKey(on); });
    addSwitch("trail", tr("Motion &trail"), 0, tr("The way of the picked joint, with its keys"), true,
              [this](bool on) { _scene->setTrail(on); });
    addSwitch("ghosts", tr("&Ghosts"), Qt::Key_G, tr("The figure some frames before and after"), false,
              [this](bool on) { _scene->setGhosts(on); });
    addSwitch("bones", tr("&Bones"), Qt::Key_B, tr("Joints and bones"), true,
              [this](bool on) { _scene->setBones(on); });
    addSwitch("zUp", tr("&Z is up"), 0, tr("Which direction of the world is up"), false,
              [this](bool on) { _scene->setZUp(on); });
    menu->addSeparator();
    addAction(menu, "sceneAll", tr("Frame a&ll"), QKeySequence(Qt::SHIFT | Qt::Key_A),
              tr("Show the whole figure"), [this] { _scene->frameAll(); });
    addAction(menu, "sceneSelection", tr("Frame &picked"), QKeySequence(Qt::CTRL | Qt::Key_F),
              tr("Show the picked joint"), [this] { _scene->frameSelection(); });
    using Side = OrbitCamera::Side;
    const auto addView = [&](const char* name, const QString& text, Side side) {
        addAction(menu, name, text, {}, tr("Look from there"), [this, side] { _scene->look(side); });
    };
    addView("viewFront", tr("From the fr&ont"), Side::Front);
    addView("viewBack", tr("From &behind"), Side::Back);
    addView("viewLeft", tr("From the l&eft"), Side::Left);
    addView("viewRight", tr("From the r&ight"), Side::Right);
    addView("viewTop", tr("From abo&ve"), Side::Top);
    addView("viewBottom", tr("From belo&w"), Side::Bottom);
    addView("viewCorner", tr("From a &corner"), Side::Corner);
    addCameras(menu);
    addAction(menu, "playAll", tr("Play e&verything"), {},
              tr("All blocks that stand by themselves, and the first clip"), [this] {
                  std::vector<kaUID> played;
                  if (_session.isOpen())
                      for (const kaAnimationObject* object : _session.project().playable(""))
                          played.push_back(object->getId());
                  _transport.setObjects(played);
              });
}

} // namespace ka::studio
