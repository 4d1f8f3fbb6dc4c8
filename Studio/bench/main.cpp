#include "SpaceBench.h"
#include "app/MainWindow.h"
#include "space/DrawingClient.h"
#include "views/ChannelTree.h"
#include "views/ClipTimeline.h"
#include "views/DopeSheet.h"
#include "views/SceneView.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QMessageBox>
#include <QMouseEvent>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QTreeView>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>

// Measures what a user waits for, on a window of 1 600 by 1 000 pixels, and prints it as a table. Drawing goes into an
// image: the time of a display's driver is not in it.
namespace {

using namespace ka::studio;

class Stopwatch {
  public:
    Stopwatch() { _timer.start(); }
    double milliseconds() const { return static_cast<double>(_timer.nsecsElapsed()) * 1e-6; }

  private:
    QElapsedTimer _timer;
};

double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2),
                     times.end());
    return times[times.size() / 2];
}

void row(const char* what, double measured, const char* unit, const char* wanted) {
    std::printf("| %-58s | %10.2f %-2s | %-14s |\n", what, measured, unit, wanted);
    std::fflush(stdout);
}

void draw(QWidget& view) {
    static QImage image;
    if (image.size() != view.size())
        image = QImage(view.size(), QImage::Format_ARGB32_Premultiplied);
    view.render(&image);
}

void send(QWidget& view, QEvent::Type type, const QPoint& at) {
    const bool isMove = type == QEvent::MouseMove;
    QMouseEvent event(type, at, view.mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

/// Tells how long a window heard of nothing: a timer that ought to come every few milliseconds.
class Heartbeat {
  public:
    Heartbeat() {
        _timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&_timer, &QTimer::timeout, [this] { beat(); });
        _timer.start(5);
    }
    double longest() {
        beat();
        return _longest;
    }

  private:
    void beat() {
        _longest = std::max(_longest, _watch.milliseconds());
        _watch = Stopwatch();
    }

    QTimer _timer;
    Stopwatch _watch;
    double _longest = 0.0;
};

/// Waits for a file to be open and drawn, handling events. @return the milliseconds that took.
double waitUntilOpen(MainWindow& window) {
    const Stopwatch watch;
    while ((!window.session().isOpen() || window.session().work().isRunning()) &&
           watch.milliseconds() < 600000) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    QCoreApplication::processEvents(); // what it looks like
    return watch.milliseconds();
}

void measureReopening(MainWindow& window) {
    QTemporaryDir folder;
    const SessionFiles files = Session::filesFor(folder.filePath(QStringLiteral("copy.osg")));
    Heartbeat saving;
    Stopwatch watch;
    window.session().saveTo(files);
    row("saving it", watch.milliseconds() / 1000, "s", "-");
    row("the longest that the window stood still meanwhile", saving.longest(), "ms", "100 ms");
    Heartbeat opening;
    watch = Stopwatch();
    window.openPath(files.scene);
    QCoreApplication::processEvents();
    row("opening the saved scene and document", watch.milliseconds() / 1000, "s", "-");
    row("the longest that the window stood still meanwhile", opening.longest(), "ms", "100 ms");
}

void measureOpening(MainWindow& window, const QString& model) {
    const Stopwatch import;
    QProcess program;
    program.setStandardOutputFile(QProcess::nullDevice());
    program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/ka-anim"),
                  {QStringLiteral("import"), model});
    program.waitForFinished(600000);
    const double importTime = import.milliseconds();
    row("the import alone", importTime / 1000, "s", "-");
    Heartbeat heartbeat;
    window.openPath(model);
    const double whole = waitUntilOpen(window);
    row("opening it, import included", whole / 1000, "s", "import + 1 s");
    row("the same, beyond the import", (whole - importTime) / 1000, "s", "1 s");
    row("the longest that the window stood still meanwhile", heartbeat.longest(), "ms", "100 ms");
}

void measureDrag(MainWindow& window) {
    CurveEditor& editor = window.curveEditor();
    window.channels().view().selectAll();
    editor.frameAll();
    draw(editor);
    std::size_t keys = 0;
    for (const kaUID curve : editor.scene().curves())
        keys += editor.scene().trace(curve).size();
    std::printf("(%zu curves with %zu keys are in view)\n", editor.scene().curves().size(), keys);
    std::vector<double> whole;
    for (int i = 0; i < 9; ++i) {
        window.axis().pan(1.0);
        const Stopwatch watch;
        draw(editor);
        whole.push_back(watch.milliseconds());
    }
    row("drawing all of them anew (scrolling)", median(whole), "ms", "-");
    const CurveTrace& trace = editor.scene().trace(editor.scene().curves().front());
    const kaUID key = trace.keys()[trace.size() / 2];
    window.keySelection().select({key}, SelectBy::Replacing);
    const QPoint from = editor.pixelOfKey(key).toPoint();
    send(editor, QEvent::MouseButtonPress, from);
    std::vector<double> times;
    for (int i = 1; i <= 120; ++i) {
        const Stopwatch watch;
        send(editor, QEvent::MouseMove, from + QPoint(static_cast<int>(4 * std::sin(i * 0.2)), -4 - i % 40));
        draw(editor);
        times.push_back(watch.milliseconds());
    }
    send(editor, QEvent::MouseButtonRelease, from);
    row("dragging one key: the move and the drawing, median", median(times), "ms", "8 ms");
    row("the slowest of them (the first takes the curve out)", *std::max_element(times.begin(), times.end()),
        "ms", "-");
}

void measurePlaying(MainWindow& window) {
    std::vector<double> evaluation, all;
    QWidget* const views[] = {&window.curveEditor(), &window.sceneView(), &window.timeline(),
                              &window.dopeSheet()};
    for (QWidget* view : views)
        draw(*view);
    for (int i = 1; i <= 200; ++i) {
        const float frame = window.transport().begin() + static_cast<float>(i);
        Stopwatch watch;
        for (const kaUID id : window.transport().objects())
            kaAnimationController::the()->evaluateObject(kaAnimationManager::the()->getObject(id), frame,
                                                         false);
        evaluation.push_back(watch.milliseconds());
        watch = Stopwatch();
        window.head().show(frame);
        emit window.transport().evaluated();
        for (QWidget* view : views)
            draw(*view);
        all.push_back(watch.milliseconds());
    }
    row("a frame while playing: evaluateObject", median(evaluation), "ms", "-");
    row("a frame while playing: all four views", median(all), "ms", "4 ms");
}

void measureTimeline(MainWindow& window) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationStrip* clip = manager->createStrip("Many", 0);
    constexpr int Tracks = 100, Blocks = 100;
    for (int t = 0; t < Tracks; ++t) {
        auto* track = static_cast<kaAnimationStreak*>(clip->addObject(manager->createStreak("Track", 0)));
        for (int b = 0; b < Blocks; ++b) {
            kaAnimationCurve2D* curve = manager->createCurve2D(nullptr, "Curve", 0, false);
            curve->addObject(manager->createPoint2D(static_cast<float>(b * 10), 0.0F, 0));
            curve->addObject(manager->createPoint2D(static_cast<float>(b * 10 + 9), 1.0F, 0));
            track->addObject(manager->createUnit({curve}, "Block", 0, false));
        }
    }
    window.session().document().announce({clip->getId()});
    ClipTimeline& view = window.timeline();
    view.resize(1400, 700);
    view.frameAll();
    std::vector<double> times;
    for (int i = 0; i < 120; ++i) {
        const Stopwatch watch;
        window.axis().pan(i % 2 == 0 ? 7.0 : -5.0);
        draw(view);
        times.push_back(watch.milliseconds());
    }
    row("scrolling a timeline of 10 000 blocks, a frame", median(times), "ms", "16.7 ms (60/s)");
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("kaAnimation-bench"));
    QSettings().clear();
    Importer::setProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/ka-studio"));
    DrawingClient::setProgram(QCoreApplication::applicationDirPath() + QStringLiteral("/ka-studio"));
    const QString model =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("/usr/share/assimp/models/BVH/01_03.bvh");
    MainWindow window;
    MainWindow::Answers answers;
    answers.message = [](const QString& text) { std::fprintf(stderr, "%s\n", text.toUtf8().constData()); };
    answers.unsavedChanges = [] { return static_cast<int>(QMessageBox::Discard); };
    window.setAnswers(answers);
    window.resize(1600, 1000);
    window.show();
    std::printf("| %-58s | %-13s | %-14s |\n|%s|%s|%s|\n", "what", "measured", "wanted",
                std::string(60, '-').c_str(), std::string(15, '-').c_str(), std::string(16, '-').c_str());
    measureOpening(window, model);
    if (!window.session().isOpen())
        return 1;
    measureReopening(window);
    measureDrag(window);
    measurePlaying(window);
    measureTimeline(window);
    measureSpace(window, row);
    return 0;
}
