#include "MainWindow.h"

#include "WelcomePage.h"
#include "views/ChannelTree.h"
#include "views/DopeSheet.h"
#include "views/KeyFields.h"
#include "views/SceneView.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSettings>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <kaAnimationObject.h>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

const char RecentKey[] = "recentFiles";
constexpr int RecentCount = 10;
constexpr int LayoutVersion = 2; ///< Raised when docks are added, so that an older layout does not hide them.

} // namespace

MainWindow::MainWindow() : _transport(_head), _recovery(_session) {
    setObjectName(QStringLiteral("mainWindow"));
    setAcceptDrops(true);
    setDockNestingEnabled(true);
    resize(1400, 900);
    buildViews();
    buildFileMenu();
    buildEditMenu();
    buildCurveMenu();
    buildClipMenu();
    buildSceneMenu();
    buildViewMenu();
    buildTransport();
    buildConsole();
    buildHelpMenu();
    connect(&_session, &Session::opened, this, &MainWindow::onOpened);
    connect(&_session, &Session::saved, this, &MainWindow::refreshTitle);
    connect(&_session, &Session::cameBack, this, &MainWindow::showEverything);
    LongWork& work = _session.work();
    connect(&work, &LongWork::started, this, &MainWindow::onWorkStarted);
    connect(&work, &LongWork::ended, this, &MainWindow::onWorkEnded);
    connect(&work, &LongWork::progressed, this, [this](const QString& what, int percent) {
        _progress->setFormat(what + QStringLiteral(" %p%"));
        _progress->setRange(0, 100);
        _progress->setValue(percent);
        _progress->show();
    });
    connect(&_session.document().history(), &QUndoStack::cleanChanged, this, &MainWindow::refreshTitle);
    connect(&_session.document(), &Document::changed, this, [this] { _transport.evaluate(); });
    connect(&_importer, &Importer::finished, this, &MainWindow::openRead);
    connect(&_importer, &Importer::failed, this, [this](const QString& model, const QString& why) {
        _progress->hide();
        _giveUp->hide();
        if (why.isEmpty())
            say(tr("The import of %1 was given up; what was open stays").arg(QFileInfo(model).fileName()));
        else
            tell(tr("%1\n\nWhat was open stays.").arg(why));
    });
    restoreLayout();
    refreshTitle();
    showMiddle();
    constexpr double Start = 100.0; // frames that an empty window shows
    _axis.frame(0.0, Start, width());
}

MainWindow::~MainWindow() {
    _transport.setObjects({});
}

void MainWindow::say(const QString& text) {
    _hint->setText(text);
}

void MainWindow::tell(const QString& text) {
    if (_answers.message)
        _answers.message(text);
    else
        QMessageBox::warning(this, tr("ka-studio"), text);
}

void MainWindow::refreshTitle() {
    const QString name = _session.files().shownName();
    setWindowTitle(name.isEmpty() ? tr("ka-studio") : tr("%1[*] - ka-studio").arg(name));
    setWindowModified(_session.isOpen() && _session.isModified());
}

void MainWindow::openPath(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile()) {
        tell(tr("%1 is not there, or no file. Choose another one.\n\nWhat was open stays.").arg(path));
        return;
    }
    if (!mayClose())
        return;
    const QString suffix = file.suffix().toLower();
    if (suffix == QLatin1String("osg") || suffix == QLatin1String("xml")) {
        openFiles(Session::filesOf(path), false, {});
        return;
    }
    _progress->setRange(0, 0); // how long is not known
    _progress->setFormat(tr("Importing %1").arg(file.fileName()));
    _progress->show();
    _giveUp->show();
    say(tr("Importing %1 in the background").arg(file.fileName()));
    _importer.start(path);
}

/// What goes on as long work leaves the window drawn and everything else alone.
void MainWindow::onWorkStarted(bool canBeGivenUp) {
    _transport.pause();
    _giveUp->setVisible(canBeGivenUp);
    _guard->begin();
}

void MainWindow::onWorkEnded() {
    _guard->end();
    _progress->hide();
    _giveUp->hide();
}

void MainWindow::opening(const std::function<QString()>& open) {
    _transport.setObjects({});
    _session.work().forget();
    const QString fault = open();
    if (_session.work().isGivenUp())
        say(tr("%1; what was open stays").arg(fault));
    else if (!fault.isEmpty())
        tell(tr("%1\n\nWhat was open stays. Check the file, or choose another one.").arg(fault));
}

void MainWindow::openRead(const QString& model) {
    onWorkEnded();
    opening([this, &model] {
        std::optional<ka::motion::ReadModel> read = _importer.takeModel();
        return read.has_value() ? _session.openModel(std::move(*read), model)
                                : tr("The import of %1 ended without a result.").arg(model);
    });
}

void MainWindow::openFiles(const SessionFiles& files, bool isForeign, const QStringList& report) {
    opening([&] { return _session.open(files, isForeign, report); });
}

/// Of what was opened, for the next time.
void MainWindow::rememberOpened() {
    const SessionFiles& files = _session.files();
    rememberRecent(files.source.isEmpty() ? (files.scene.isEmpty() ? files.animation : files.scene)
                                          : files.source);
}

/// What is new is shown at once: all of it played, the first block's curves in the editor.
void MainWindow::onOpened() {
    showEverything();
    rememberOpened();
    const int lines = _session.report().size();
    say(lines == 0 ? tr("Opened %1").arg(_session.files().shownName())
                   : tr("Opened %1; %n line(s) in the report (File, Report)", nullptr, lines)
                         .arg(_session.files().shownName()));
}

/// The page that comes to the front is laid out at once: what follows asks it for its size.
void MainWindow::showMiddle() {
    _welcome->showRecent(QSettings().value(RecentKey).toStringList());
    QWidget* page = _session.isOpen() ? static_cast<QWidget*>(_curves) : _welcome;
    _middle->setCurrentWidget(page);
    page->setGeometry(_middle->rect());
}

void MainWindow::showEverything() {
    showMiddle();
    _keys.clear();
    _bars.clear();
    std::vector<kaUID> played;
    if (_session.isOpen())
        for (const kaAnimationObject* object : _session.project().playable(""))
            played.push_back(object->getId());
    _transport.setObjects(played);
    _head.scrub(_transport.begin());
    if (_channels->model().rowCount() > 0)
        _channels->choose({_channels->model().index(0, 0).data(ChannelModel::IdRole).toULongLong()});
    showCurves();
    _curves->frameAll();
    _scene->frameAll();
    refreshTitle();
}

void MainWindow::showCurves() {
    _curves->setLocked(_channels->lockedCurves());
    _curves->setCurves(_channels->shownCurves());
    _dopes->setLocked(_channels->lockedCurves());
    _dopes->setCurves(_channels->shownCurves());
}

bool MainWindow::save() {
    if (!_session.hasOwnFiles())
        return saveAs();
    const auto ask = [this] {
        return QMessageBox::question(this, tr("Changed meanwhile"),
                                     tr("Another program has changed %1 since it was opened. Write over it?")
                                         .arg(_session.files().shownName())) == QMessageBox::Yes;
    };
    if (_session.isChangedOnDisk() && !(_answers.overwrite ? _answers.overwrite() : ask()))
        return false;
    _session.work().forget();
    const QString fault = _session.saveTo(_session.files());
    if (_session.work().isGivenUp())
        say(tr("Saving was given up; the file is as it was"));
    else if (!fault.isEmpty())
        tell(tr("%1\n\nNothing was written over. Save under another name, or make room.").arg(fault));
    else
        say(tr("Saved %1").arg(_session.files().shownName()));
    return fault.isEmpty();
}

bool MainWindow::saveAs() {
    if (!_session.isOpen())
        return false;
    const auto ask = [this] {
        const QString start =
            QFileInfo(_session.files().shownName()).completeBaseName() + QLatin1String(".osg");
        return QFileDialog::getSaveFileName(
            this, tr("Save as"), start, tr("Scene with its animation (*.osg);;Animation document (*.xml)"));
    };
    const QString chosen = _answers.saveName ? _answers.saveName() : ask();
    if (chosen.isEmpty())
        return false;
    const SessionFiles files = Session::filesFor(chosen);
    _session.work().forget();
    const QString fault = _session.saveTo(files);
    if (_session.work().isGivenUp())
        say(tr("Saving was given up; nothing was written"));
    else if (!fault.isEmpty())
        tell(tr("%1\n\nNothing was written over. Choose another place.").arg(fault));
    if (!fault.isEmpty())
        return false;
    rememberRecent(files.scene.isEmpty() ? files.animation : files.scene);
    say(tr("Saved %1").arg(_session.files().shownName()));
    return true;
}

bool MainWindow::mayClose() {
    if (!_session.isOpen() || !_session.isModified())
        return true;
    const auto ask = [this] {
        return static_cast<int>(QMessageBox::question(
            this, tr("Unsaved changes"), tr("Save the changes of %1?").arg(_session.files().shownName()),
            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel));
    };
    const int answer = _answers.unsavedChanges ? _answers.unsavedChanges() : ask();
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

bool MainWindow::offerRecovery() {
    for (const Recovery::Kept& kept : Recovery::leftBehind()) {
        const auto ask = [this, &kept] {
            return QMessageBox::question(
                       this, tr("Recovery"),
                       tr("The studio ended without saving changes of\n%1\n\nOpen what was kept of "
                          "them? The file itself is as it was saved last. No throws them away.")
                           .arg(kept.source)) == QMessageBox::Yes;
        };
        if (!(_answers.recover ? _answers.recover() : ask())) {
            Recovery::remove(kept);
            continue;
        }
        openFiles({kept.scene, kept.animation, kept.source}, true, {tr("Recovered; save it to keep it")});
        if (!_session.isOpen())
            continue;
        Recovery::remove(kept); // it is kept anew from here on
        return true;
    }
    return false;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!mayClose()) {
        event->ignore();
        return;
    }
    _transport.pause();
    _recovery.forget();
    keepLayout();
    event->accept();
}

/// Sizes of docks mean something only once the window is laid out.
void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (_hasLayout)
        return;
    _hasLayout = true;
    const auto dock = [this](const char* name) { return findChild<QDockWidget*>(QString::fromLatin1(name)); };
    resizeDocks({dock("sceneDock"), dock("clipsDock")}, {height() / 3, height() / 4}, Qt::Vertical);
    resizeDocks({dock("channelsDock"), dock("keysDock")}, {260, 300}, Qt::Horizontal);
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        drawSigns();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    for (const QUrl& url : event->mimeData()->urls())
        if (url.isLocalFile()) {
            openPath(url.toLocalFile());
            return;
        }
}

void MainWindow::rememberRecent(const QString& path) {
    QSettings settings;
    QStringList recent = settings.value(RecentKey).toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    settings.setValue(RecentKey, QStringList(recent.mid(0, RecentCount)));
}

void MainWindow::fillRecent(QMenu* menu) {
    menu->clear();
    for (const QString& path : QSettings().value(RecentKey).toStringList())
        connect(menu->addAction(path), &QAction::triggered, this, [this, path] { openPath(path); });
    if (menu->isEmpty())
        menu->addAction(tr("None yet"))->setEnabled(false);
}

void MainWindow::showReport() {
    auto* window = new QWidget(this, Qt::Window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(tr("What was left out or found"));
    auto* text = new QPlainTextEdit(_session.report().join(QLatin1Char('\n')), window);
    text->setReadOnly(true);
    text->setPlaceholderText(tr("Nothing: all of it is here."));
    (new QVBoxLayout(window))->addWidget(text);
    window->resize(700, 400);
    window->show();
}

void MainWindow::keepLayout() {
    QSettings settings;
    settings.setValue("geometry", saveGeometry());
    settings.setValue("layout", saveState(LayoutVersion));
}

void MainWindow::restoreLayout() {
    const QSettings settings;
    restoreGeometry(settings.value("geometry").toByteArray());
    _hasLayout = restoreState(settings.value("layout").toByteArray(), LayoutVersion);
}

} // namespace ka::studio
