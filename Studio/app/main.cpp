#include "Importer.h"
#include "MainWindow.h"
#ifdef KA_WITH_OPENGL
#include "drawing/DrawingProcess.h"
#endif
#include "console/ConsolePanel.h"
#include "views/SceneView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <optional>

namespace {

void nameApplication() {
    QCoreApplication::setOrganizationName(QStringLiteral("kaAnimation"));
    QCoreApplication::setApplicationName(QStringLiteral("ka-studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KA_VERSION));
}

/// What the command line may say; made once there is an application, whose language the texts are in.
struct Options {
    Options() {
        parser.setApplicationDescription(
            QCoreApplication::translate("main", "A window in which people animate."));
        parser.addHelpOption();
        parser.addVersionOption();
        parser.addPositionalArgument(
            QStringLiteral("file"),
            QCoreApplication::translate("main", "A scene (.osg), a document (.xml) or a model."));
        parser.addOption(quit);
        parser.addOption(drawing);
        parser.addOption(script);
    }

    QCommandLineOption quit{QStringLiteral("quit-after"),
                            QCoreApplication::translate("main", "End after so many seconds of being open."),
                            QStringLiteral("seconds")};
    QCommandLineOption drawing{
        QStringLiteral("drawing"),
        QCoreApplication::translate("main", "How the scene is drawn: automatic, opengl or plain."),
        QStringLiteral("way")};
    QCommandLineOption script{
        QStringLiteral("script"),
        QCoreApplication::translate("main", "Run a Python file on what was opened; may be given again."),
        QStringLiteral("path")};
    QCommandLineParser parser;
};

/// Answers what needs no display: help and version, and the import that the window runs in a process of its own.
/// @return the exit status; none where a window is wanted.
std::optional<int> runWithoutDisplay(int argc, char** argv) {
    QCoreApplication core(argc, argv);
    const QStringList arguments = core.arguments();
    const int import = arguments.indexOf(QStringLiteral("--read-into"));
    if (import > 0 && import + 2 < arguments.size())
        return ka::studio::Importer::run(arguments.at(import + 2), arguments.at(import + 1));
    nameApplication();
    Options options;
    options.parser.parse(arguments); // an option of the window system is none of ours
    if (options.parser.isSet(QStringLiteral("version")) || options.parser.isSet(QStringLiteral("help")))
        options.parser.process(arguments); // ends here
    return std::nullopt;
}

/// Qt ends a program that finds no display by `abort`.
bool hasDisplay(int argc, char** argv) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name))
            return true;
    return std::any_of(argv, argv + argc, [](const char* argument) {
        return qstrncmp(argument, "-platform", 9) == 0 || qstrncmp(argument, "--platform", 10) == 0;
    });
}

/// The process that draws the scene for a window.
int drawInto(int argc, char** argv) {
#ifdef KA_WITH_OPENGL
    QGuiApplication gui(argc, argv);
    return ka::studio::runDrawing(QString::fromLocal8Bit(argv[2]).toInt());
#else
    static_cast<void>(argc), static_cast<void>(argv);
    std::puts("without");
    return 1;
#endif
}

/// Runs Python files, once what is being imported is there.
void runScripts(ka::studio::MainWindow& window, const QStringList& paths) {
    using namespace ka::studio;
    if (paths.isEmpty())
        return;
    const auto run = [&window, paths] {
        for (const QString& path : paths)
            window.console().runScript(path);
    };
    if (!window.importer().isRunning()) {
        run();
        return;
    }
    auto* once = new QObject(&window);
    QObject::connect(&window.session(), &Session::opened, once, [once, run] {
        once->deleteLater();
        run();
    });
}

} // namespace

/// The studio: opens what the command line names.
int main(int argc, char** argv) {
    using namespace ka::studio;
    if (argc == 3 && qstrcmp(argv[1], "--draw-into") == 0)
        return drawInto(argc, argv);
    if (const std::optional<int> status = runWithoutDisplay(argc, argv))
        return *status;
    if (!hasDisplay(argc, argv)) {
        std::fputs("ka-studio: there is no display: DISPLAY and WAYLAND_DISPLAY are not set\n", stderr);
        return 1;
    }
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    nameApplication();
    Options options;
    QCommandLineParser& parser = options.parser;
    parser.process(application);
    const auto way = SceneView::drawingNamed(parser.value(options.drawing));
    if (parser.isSet(options.drawing) && !way) {
        std::fprintf(stderr, "ka-studio: --drawing is automatic, opengl or plain, not \"%s\"\n",
                     qUtf8Printable(parser.value(options.drawing)));
        return 1;
    }
    MainWindow window;
    if (way)
        window.sceneView().setDrawing(*way);
    window.show();
    const bool isRecovered = !parser.isSet(options.quit) && window.offerRecovery();
    if (!isRecovered && !parser.positionalArguments().isEmpty())
        window.openPath(parser.positionalArguments().constFirst());
    runScripts(window, parser.values(options.script));
    if (parser.isSet(options.quit))
        QTimer::singleShot(static_cast<int>(parser.value(options.quit).toDouble() * 1000), &application,
                           [] { QCoreApplication::exit(0); });
    return QApplication::exec();
}
