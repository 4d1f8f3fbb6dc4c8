#include "MainWindow.h"
#include "TransportIcons.h"
#include "WelcomePage.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"
#include "views/KeyFields.h"
#include "views/Outliner.h"
#include "views/Properties.h"
#include "views/SceneView.h"

#include <QAction>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QUndoView>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <limits>

namespace ka::studio {

namespace {

QDockWidget* addDock(QMainWindow& window, const char* name, const QString& title, QWidget* view,
                     Qt::DockWidgetArea area) {
    auto* dock = new QDockWidget(title, &window);
    dock->setObjectName(QString::fromLatin1(name));
    dock->setWidget(view);
    window.addDockWidget(area, dock);
    return dock;
}

QDoubleSpinBox* addNumber(QToolBar& bar, const char* name, const QString& label, const QString& tip,
                          double low, double high) {
    bar.addWidget(new QLabel(QStringLiteral(" ") + label + QStringLiteral(" "), &bar));
    auto* box = new QDoubleSpinBox(&bar);
    box->setObjectName(QString::fromLatin1(name));
    box->setRange(low, high);
    box->setDecimals(2);
    box->setToolTip(tip);
    box->setKeyboardTracking(false);
    bar.addWidget(box);
    return box;
}

} // namespace

void MainWindow::buildViews() {
    _curves = new CurveEditor(_session.document(), _axis, _head, _keys, this);
    _middle = new QStackedWidget(this);
    _welcome = new WelcomePage(_middle);
    _middle->addWidget(_welcome);
    _middle->addWidget(_curves);
    setCentralWidget(_middle);
    connect(_welcome, &WelcomePage::sampleWanted, this, &MainWindow::openSample);
    connect(_welcome, &WelcomePage::openWanted, this, [this] { action(QStringLiteral("open"))->trigger(); });
    connect(_welcome, &WelcomePage::fileWanted, this, &MainWindow::openPath);
    _scene = new SceneView(_session, _transport, _head, this);
    addDock(*this, "sceneDock", tr("Scene"), _scene, Qt::TopDockWidgetArea);
    _timeline = new ClipTimeline(_session.document(), _axis, _head, _bars, this);
    QDockWidget* clips = addDock(*this, "clipsDock", tr("Clips"), _timeline, Qt::BottomDockWidgetArea);
    _dopes = new DopeSheet(_session.document(), _axis, _head, _keys, this);
    QDockWidget* dopes = addDock(*this, "dopesDock", tr("Dope sheet"), _dopes, Qt::BottomDockWidgetArea);
    tabifyDockWidget(dopes, clips);
    setCorner(Qt::TopLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    setCorner(Qt::TopRightCorner, Qt::RightDockWidgetArea);
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    _channels = new ChannelTree(_session.document(), this);
    addDock(*this, "channelsDock", tr("Channels"), _channels, Qt::LeftDockWidgetArea);
    _outliner = new Outliner(_session, _bars, this);
    addDock(*this, "outlinerDock", tr("Outliner"), _outliner, Qt::LeftDockWidgetArea);
    _keyFields = new KeyFields(_session.document(), _keys, this);
    addDock(*this, "keysDock", tr("Keys"), _keyFields, Qt::RightDockWidgetArea);
    _properties = new Properties(_session, _bars, this);
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(_properties);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    addDock(*this, "propertiesDock", tr("Properties"), scroll, Qt::RightDockWidgetArea);
    auto* history = new QUndoView(&_session.document().history(), this);
    history->setEmptyLabel(tr("As it was opened"));
    addDock(*this, "historyDock", tr("History"), history, Qt::RightDockWidgetArea);
    _hint = new QLabel(tr("Open a scene, a document or a model: File, Open, or drop it here"), this);
    _rate = new QLabel(this);
    _rate->setToolTip(tr("Ticks a second that playing reaches"));
    _progress = new QProgressBar(this);
    _progress->setMaximumWidth(260);
    _giveUp = new QToolButton(this);
    _giveUp->setObjectName(QStringLiteral("giveUp"));
    _giveUp->setText(tr("Give up"));
    _giveUp->setToolTip(tr("Give up what goes on; what is open stays"));
    statusBar()->addWidget(_hint, 1);
    statusBar()->addPermanentWidget(_progress);
    statusBar()->addPermanentWidget(_giveUp);
    statusBar()->addPermanentWidget(_rate);
    _progress->hide();
    _giveUp->hide();
    const auto giveUp = [this] {
        _importer.cancel();
        _session.work().giveUp();
    };
    _guard = new BusyGuard(*_giveUp, this);
    connect(_giveUp, &QToolButton::clicked, this, giveUp);
    connect(_guard, &BusyGuard::endWanted, this, giveUp);
    connect(_channels, &ChannelTree::shownChanged, this, &MainWindow::showCurves);
    connect(_keyFields, &KeyFields::refused, this, &MainWindow::say);
    connect(_properties, &Properties::refused, this, &MainWindow::say);
    connect(_outliner, &Outliner::played, this, &MainWindow::playOnly);
    connect(_outliner, &Outliner::nodeChosen, this, [this](unsigned int node) {
        _scene->pick(node);
        onPicked(node);
    });
    const auto sayHint = [this](const QString& text) {
        if (!text.isEmpty())
            say(text);
    };
    for (TimeView* view :
         {static_cast<TimeView*>(_curves), static_cast<TimeView*>(_timeline), static_cast<TimeView*>(_dopes)})
        connect(view, &TimeView::hint, this, sayHint);
    connect(_scene, &SceneView::hint, this, sayHint);
    connect(_scene, &SceneView::picked, this, &MainWindow::onPicked);
    connect(_timeline, &ClipTimeline::chosen, this, &MainWindow::playOnly);
}

void MainWindow::buildTransport() {
    QMenu* menu = menuBar()->addMenu(tr("&Play"));
    auto* bar = new QToolBar(tr("Transport"), this);
    bar->setObjectName(QStringLiteral("transport"));
    addToolBar(Qt::BottomToolBarArea, bar);
    const auto add = [&](const char* name, const QString& text, const QKeySequence& keys, const QString& tip,
                         TransportSign sign, const std::function<void()>& run) {
        QAction* action = addAction(menu, name, text, keys, tip, run);
        _signs.emplace_back(action, sign);
        bar->addAction(action);
    };
    add("first", tr("&First frame"), QKeySequence(Qt::CTRL | Qt::Key_Home),
        tr("Go to the begin of the range"), TransportSign::First,
        [this] { _head.scrub(_transport.begin()); });
    add("previousKey", tr("Pre&vious key"), QKeySequence(Qt::Key_Comma),
        tr("Go to the key before the playhead"), TransportSign::PreviousKey, [this] { goToKey(false); });
    add("reverse", tr("Play &backwards"), QKeySequence(Qt::SHIFT | Qt::Key_Space), tr("Play backwards"),
        TransportSign::Reverse, [this] { _transport.play(true); });
    add("stop", tr("&Stop"), QKeySequence(Qt::CTRL | Qt::Key_Space), tr("Stop and go to the begin"),
        TransportSign::Stop, [this] { _transport.stop(); });
    add("play", tr("&Play or pause"), QKeySequence(Qt::Key_Space), tr("Play, or pause where it is"),
        TransportSign::Play, [this] {
            if (_transport.isPlaying())
                _transport.pause();
            else
                _transport.play();
        });
    add("nextKey", tr("&Next key"), QKeySequence(Qt::Key_Period), tr("Go to the key after the playhead"),
        TransportSign::NextKey, [this] { goToKey(true); });
    add("last", tr("&Last frame"), QKeySequence(Qt::CTRL | Qt::Key_End), tr("Go to the end of the range"),
        TransportSign::Last, [this] { _head.scrub(_transport.end()); });
    addAction(menu, "rangeIn", tr("Range &in here"), QKeySequence(Qt::Key_BracketLeft),
              tr("Playing begins at the playhead"),
              [this] { _transport.setRange(_head.frame(), _transport.end()); });
    addAction(menu, "rangeOut", tr("Range &out here"), QKeySequence(Qt::Key_BracketRight),
              tr("Playing ends at the playhead"),
              [this] { _transport.setRange(_transport.begin(), _head.frame()); });
    addAction(menu, "rangeWhole", tr("&Whole range"), QKeySequence(Qt::Key_Backslash),
              tr("Playing goes from the first frame to the last"),
              [this] { _transport.setObjects(std::vector<kaUID>(_transport.objects())); });
    QAction* loop =
        addAction(menu, "loop", tr("&Loop"), QKeySequence(Qt::Key_L), tr("Begin again at the end"), [] {});
    loop->setCheckable(true);
    loop->setChecked(true);
    _signs.emplace_back(loop, TransportSign::Loop);
    bar->addAction(loop);
    connect(loop, &QAction::toggled, this, [this](bool on) { _transport.setLooping(on); });
    QAction* every = addAction(menu, "everyFrame", tr("&Every frame"), {},
                               tr("Show each frame, however long it takes"), [] {});
    every->setCheckable(true);
    connect(every, &QAction::toggled, this, [this](bool on) { _transport.setEveryFrame(on); });
    constexpr double Far = 1e7;
    QDoubleSpinBox* frame =
        addNumber(*bar, "frameField", tr("Frame"), tr("The frame that is shown"), -Far, Far);
    QDoubleSpinBox* in = addNumber(*bar, "inField", tr("In"), tr("Where playing begins"), -Far, Far);
    QDoubleSpinBox* out = addNumber(*bar, "outField", tr("Out"), tr("Where playing ends"), -Far, Far);
    QDoubleSpinBox* rate =
        addNumber(*bar, "rateField", tr("Frames/s"), tr("Frames a second of the timeline"), 0.1, 1000);
    QDoubleSpinBox* speed =
        addNumber(*bar, "speedField", tr("Speed"), tr("How many times as fast as the clock"), 0.01, 100);
    rate->setValue(static_cast<double>(_head.framesPerSecond()));
    speed->setValue(1.0);
    const auto changed = QOverload<double>::of(&QDoubleSpinBox::valueChanged);
    connect(frame, changed, this, [this](double value) { _head.scrub(static_cast<float>(value)); });
    connect(in, changed, this, [this, out](double value) {
        _transport.setRange(static_cast<float>(value), static_cast<float>(out->value()));
    });
    connect(out, changed, this, [this, in](double value) {
        _transport.setRange(static_cast<float>(in->value()), static_cast<float>(value));
    });
    connect(rate, changed, this,
            [this](double value) { _head.setFramesPerSecond(static_cast<float>(value)); });
    connect(speed, changed, &_transport, &Transport::setSpeed);
    connect(&_head, &PlayHead::moved, this, [frame](float value) {
        const QSignalBlocker quiet(frame);
        frame->setValue(static_cast<double>(value));
    });
    connect(&_axis, &TimeAxis::rangeWanted, this, [this](double begin, double end) {
        _transport.setRange(static_cast<float>(begin), static_cast<float>(end));
    });
    connect(&_transport, &Transport::stateChanged, this, [this, in, out] {
        _axis.setRange(static_cast<double>(_transport.begin()), static_cast<double>(_transport.end()));
        const QSignalBlocker quietIn(in), quietOut(out);
        in->setValue(static_cast<double>(_transport.begin()));
        out->setValue(static_cast<double>(_transport.end()));
        drawSigns();
        if (!_transport.isPlaying())
            _rate->clear();
    });
    connect(&_transport, &Transport::rateMeasured, this,
            [this](double ticks) { _rate->setText(tr("%1 ticks/s").arg(ticks, 0, 'f', 1)); });
    drawSigns();
}

/// In the palette's colour, which may change while the window is open.
void MainWindow::drawSigns() {
    const QColor color = palette().color(QPalette::ButtonText);
    for (const auto& [action, sign] : _signs) {
        const bool isPause = sign == TransportSign::Play && _transport.isPlaying();
        action->setIcon(transportIcon(isPause ? TransportSign::Pause : sign, color));
    }
}

void MainWindow::goToKey(bool next) {
    constexpr float Infinite = std::numeric_limits<float>::infinity();
    const float here = _head.frame();
    float best = next ? Infinite : -Infinite;
    for (const kaUID id : _curves->scene().curves()) {
        const std::vector<float>& frames = _curves->scene().trace(id).frames();
        const auto after = next ? std::upper_bound(frames.begin(), frames.end(), here)
                                : std::lower_bound(frames.begin(), frames.end(), here);
        if (next && after != frames.end())
            best = std::min(best, *after);
        if (!next && after != frames.begin())
            best = std::max(best, *std::prev(after));
    }
    if (best != Infinite && best != -Infinite)
        _head.scrub(best);
}

} // namespace ka::studio
