#include "MainWindow.h"
#include "ShortcutDialog.h"
#include "views/ChannelTree.h"

#include <QFileDialog>
#include <QMenuBar>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

/// Of the actions that are not given a shortcut where they are made.
QKeySequence furtherKeys(const char* name) {
    static const std::map<std::string, const char*> keys{
        {"report", "Ctrl+Alt+R"},      {"sample", "Ctrl+Alt+O"},     {"seconds", "Ctrl+Alt+S"},
        {"newClip", "Ctrl+Alt+N"},     {"newTrack", "Ctrl+Alt+T"},   {"placeBlock", "Ctrl+Alt+V"},
        {"flip", "Ctrl+Alt+F"},        {"flagActive", "Ctrl+Alt+A"}, {"flagRepeating", "Ctrl+Alt+P"},
        {"flagBlur", "Ctrl+Alt+B"},    {"flagRange", "Ctrl+Alt+C"},  {"setRange", "Ctrl+Alt+I"},
        {"playAll", "Ctrl+Alt+Space"}, {"everyFrame", "Ctrl+Alt+E"}, {"zUp", "Ctrl+Alt+Z"},
        {"trail", "Ctrl+Alt+W"},       {"viewFront", "Ctrl+Alt+1"},  {"viewBack", "Ctrl+Alt+2"},
        {"viewLeft", "Ctrl+Alt+3"},    {"viewRight", "Ctrl+Alt+4"},  {"viewTop", "Ctrl+Alt+5"},
        {"viewBottom", "Ctrl+Alt+6"},  {"viewCorner", "Ctrl+Alt+7"}, {"drawAutomatic", "Ctrl+Alt+8"},
        {"drawOpenGL", "Ctrl+Alt+9"},  {"drawPlain", "Ctrl+Alt+0"}};
    const auto found = keys.find(name);
    return found != keys.end() ? QKeySequence(QString::fromLatin1(found->second)) : QKeySequence();
}

} // namespace

/// Every action has a name, by which its shortcut is kept when users change it.
QAction* MainWindow::addAction(QMenu* menu, const char* name, const QString& text, const QKeySequence& wanted,
                               const QString& tip, const std::function<void()>& run) {
    const QKeySequence keys = wanted.isEmpty() ? furtherKeys(name) : wanted;
    QAction* action = menu->addAction(text);
    action->setObjectName(QString::fromLatin1(name));
    action->setProperty(ShortcutDialog::OwnKeys, keys);
    action->setShortcut(ShortcutDialog::keysOf(action->objectName(), keys));
    action->setToolTip(tip);
    action->setStatusTip(tip);
    connect(action, &QAction::triggered, this, run);
    return action;
}

QAction* MainWindow::action(const QString& name) const {
    return findChild<QAction*>(name);
}

void MainWindow::buildFileMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    addAction(menu, "open", tr("&Open..."), QKeySequence::Open, tr("Open a scene, a document or a model"),
              [this] {
                  const QString path =
                      QFileDialog::getOpenFileName(this, tr("Open"), QString(),
                                                   tr("Scenes, documents and models (*.osg *.xml *.bvh *.glb "
                                                      "*.gltf *.fbx *.dae);;All files (*)"));
                  if (!path.isEmpty())
                      openPath(path);
              });
    QMenu* recent = menu->addMenu(tr("Open &recent"));
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { fillRecent(recent); });
    menu->addSeparator();
    addAction(menu, "save", tr("&Save"), QKeySequence::Save,
              tr("Write the scene and its animation to their files"), [this] { save(); });
    addAction(menu, "saveAs", tr("Save &as..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S),
              tr("Write them to other files"), [this] { saveAs(); });
    menu->addSeparator();
    addAction(menu, "export", tr("&Export..."), QKeySequence(Qt::CTRL | Qt::Key_E),
              tr("Write the motion as glTF, BVH, a table or arrays"), [this] { exportFile(); });
    addAction(menu, "report", tr("Re&port"), {}, tr("What was left out or found when this was opened"),
              [this] { showReport(); });
    menu->addSeparator();
    addAction(menu, "quit", tr("&Quit"), QKeySequence::Quit, tr("Close the window"), [this] { close(); });
}

void MainWindow::buildEditMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Edit"));
    QUndoStack& history = _session.document().history();
    QAction* undo = history.createUndoAction(this, tr("&Undo"));
    undo->setObjectName(QStringLiteral("undo"));
    QAction* redo = history.createRedoAction(this, tr("&Redo"));
    redo->setObjectName(QStringLiteral("redo"));
    for (const auto& [action, keys, tip] :
         {std::tuple(undo, QKeySequence(QKeySequence::Undo), tr("Take the last step back")),
          std::tuple(redo, QKeySequence(QKeySequence::Redo), tr("Do it again"))}) {
        action->setProperty(ShortcutDialog::OwnKeys, keys);
        action->setShortcut(ShortcutDialog::keysOf(action->objectName(), keys));
        action->setToolTip(tip);
        action->setStatusTip(tip);
        menu->addAction(action);
    }
    menu->addSeparator();
    addAction(menu, "cut", tr("Cu&t keys"), QKeySequence::Cut, tr("Copy the selected keys and delete them"),
              [this] {
                  copyKeysOfSelection();
                  _curves->deleteSelected();
              });
    addAction(menu, "copy", tr("&Copy keys"), QKeySequence::Copy, tr("Copy the selected keys"),
              [this] { copyKeysOfSelection(); });
    addAction(menu, "paste", tr("&Paste keys"), QKeySequence::Paste, tr("Put copied keys at the playhead"),
              [this] { pasteKeysAtHead(tr("Paste keys")); });
    addAction(menu, "duplicate", tr("&Duplicate keys"), QKeySequence(Qt::CTRL | Qt::Key_D),
              tr("Put copies of the selected keys at the playhead"), [this] {
                  const CopiedKeys kept = _copied;
                  _copied = copyKeys(_keys.ids());
                  pasteKeysAtHead(tr("Duplicate keys"));
                  _copied = kept;
              });
    addAction(menu, "delete", tr("De&lete keys"), QKeySequence::Delete, tr("Delete the selected keys"),
              [this] { _curves->deleteSelected(); });
    menu->addSeparator();
    addAction(menu, "selectAll", tr("Select &all keys"), QKeySequence::SelectAll,
              tr("Select every key that is shown"), [this] { _curves->selectAll(); });
}

void MainWindow::copyKeysOfSelection() {
    _copied = copyKeys(_keys.ids());
    say(_copied.isEmpty() ? tr("No key is selected")
                          : tr("Copied %n key(s)", nullptr, static_cast<int>(_keys.size())));
}

void MainWindow::pasteKeysAtHead(const QString& name) {
    if (_copied.isEmpty())
        return;
    const std::vector<kaUID> shown = _curves->scene().curves();
    const bool isShown = std::find(shown.begin(), shown.end(), _copied.curves.front().curve) != shown.end();
    const Ids made = pasteKeys(_session.document(), _copied, _head.frame(), isShown ? Ids() : shown, name);
    _keys.select(made, SelectBy::Replacing);
}

void MainWindow::buildCurveMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Curve"));
    Document& document = _session.document();
    addAction(menu, "insertKey", tr("&Insert key"), QKeySequence(Qt::Key_I),
              tr("A key on each shown curve, at the playhead"), [this] { _curves->insertAtHead(); });
    menu->addSeparator();
    using Key = kaControlPoint2D;
    const auto addType = [&](const char* name, const QString& text, Key::TangentMode type, int key) {
        addAction(menu, name, text, QKeySequence(key), tr("Tangent type of the selected keys"),
                  [this, &document, type] { setTangentType(document, _keys.ids(), type); });
    };
    addType("typeCollapsed", tr("Tangents &collapsed"), Key::TANGENT_COLLAPSED, Qt::Key_1);
    addType("typeBroken", tr("Tangents &broken"), Key::TANGENT_BROKEN, Qt::Key_2);
    addType("typeFlat", tr("Tangents &flat"), Key::TANGENT_FLAT, Qt::Key_3);
    addType("typeSmooth", tr("Tangents &smooth"), Key::TANGENT_SMOOTH, Qt::Key_4);
    addType("typeForward", tr("Tangents for&ward"), Key::TANGENT_FORWARD, Qt::Key_5);
    addType("typeUser", tr("Tangents by &hand"), Key::TANGENT_USER, Qt::Key_6);
    menu->addSeparator();
    addAction(menu, "flatten", tr("F&latten handles"), QKeySequence(Qt::Key_7),
              tr("Horizontal handles of the length they have"),
              [this, &document] { flattenHandles(document, _keys.ids()); });
    addAction(menu, "unify", tr("&Unify handles"), QKeySequence(Qt::Key_8),
              tr("Both handles of a key on one line"),
              [this, &document] { unifyHandles(document, _keys.ids()); });
    buildOperationMenu(menu);
}

void MainWindow::buildViewMenu() {
    _viewMenu = menuBar()->addMenu(tr("&View"));
    addAction(_viewMenu, "frameAll", tr("Frame &all"), QKeySequence(Qt::Key_A),
              tr("Show the whole of the curves"), [this] { _curves->frameAll(); });
    addAction(_viewMenu, "frameSelection", tr("&Frame selection"), QKeySequence(Qt::Key_F),
              tr("Show the selected keys"), [this] { _curves->frameSelection(); });
    addAction(_viewMenu, "home", tr("&Home"), QKeySequence(Qt::Key_Home), tr("Show the playing range"),
              [this] {
                  _axis.frame(static_cast<double>(_transport.begin()), static_cast<double>(_transport.end()),
                              _curves->width());
              });
    _viewMenu->addSeparator();
    const auto addSwitch = [this](const char* name, const QString& text, const QKeySequence& keys,
                                  const QString& tip, bool on, const std::function<void(bool)>& set) {
        QAction* action = addAction(_viewMenu, name, text, keys, tip, [] {});
        action->setCheckable(true);
        action->setChecked(on);
        connect(action, &QAction::toggled, this, set);
    };
    addSwitch("normalised", tr("&Normalised"), QKeySequence(Qt::Key_N),
              tr("Each curve over the whole height"), false, [this](bool on) { _curves->setNormalised(on); });
    addSwitch("scaling", tr("&Scaling frame"), QKeySequence(Qt::Key_T),
              tr("A frame around the selected keys to scale them by"), false,
              [this](bool on) { _curves->setScaling(on); });
    addSwitch("seconds", tr("Time in &seconds"), {}, tr("Label time in seconds rather than frames"), false,
              [this](bool on) { _axis.setInSeconds(on); });
    addSwitch("snapFrames", tr("Whole &frames"), QKeySequence(Qt::SHIFT | Qt::Key_F),
              tr("What is dragged goes to whole frames"), true,
              [this](bool on) { _axis.setSnapsFrames(on); });
    addSwitch("snapValues", tr("Whole &values"), QKeySequence(Qt::SHIFT | Qt::Key_V),
              tr("What is dragged goes to whole values"), false,
              [this](bool on) { _axis.setSnapsValues(on); });
    _viewMenu->addSeparator();
    addDrawings(_viewMenu);
    QMenu* panels = _viewMenu->addMenu(tr("&Panels"));
    connect(panels, &QMenu::aboutToShow, this, [this, panels] {
        panels->clear();
        QMenu* popup = createPopupMenu();
        panels->addActions(popup->actions());
        connect(panels, &QMenu::aboutToHide, popup, &QObject::deleteLater);
    });
}

void MainWindow::buildHelpMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Help"));
    addAction(menu, "sample", tr("Open the &sample motion"), {},
              tr("A figure that walks, to try things with"), [this] { openSample(); });
    addAction(menu, "shortcuts", tr("&Shortcuts..."), QKeySequence(Qt::Key_F1),
              tr("All actions with their shortcuts, to be changed"), [this] {
                  QList<QAction*> actions;
                  for (QAction* action : findChildren<QAction*>())
                      if (action->property(ShortcutDialog::OwnKeys).isValid())
                          actions.append(action);
                  auto* dialog = new ShortcutDialog(actions, this);
                  dialog->setAttribute(Qt::WA_DeleteOnClose);
                  dialog->show();
              });
}

} // namespace ka::studio
