#include "Importer.h"
#include "MainWindow.h"
#ifdef KA_WITH_OPENGL
#include "drawing/DrawingProcess.h"
#endif
#include "views/SceneView.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>
#include <cstdio>

/// The studio: opens what the command line names.
int main(int argc, char** argv) {
    using namespace ka::studio;
    for (int i = 1; i + 2 < argc; ++i) // the importing process needs no display
        if (QString::fromLocal8Bit(argv[i]) == QLatin1String("--import-into")) {
            QCoreApplication core(argc, argv);
            return Importer::run(core.arguments().at(i + 2), core.arguments().at(i + 1));
        }
    if (argc == 3 && QString::fromLocal8Bit(argv[1]) == QLatin1String("--draw-into")) {
#ifdef KA_WITH_OPENGL
        QGuiApplication gui(argc, argv);
        return runDrawing(QString::fromLocal8Bit(argv[2]).toInt());
#else
        std::puts("without");
        return 1;
#endif
    }
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("kaAnimation"));
    QCoreApplication::setApplicationName(QStringLiteral("ka-studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KA_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "A window in which people animate."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(
        QStringLiteral("file"),
        QCoreApplication::translate("main", "A scene (.osg), a document (.xml) or a model."));
    const QCommandLineOption quit(
        QStringLiteral("quit-after"),
        QCoreApplication::translate("main", "End after so many seconds of being open."),
        QStringLiteral("seconds"));
    parser.addOption(quit);
    const QCommandLineOption drawing(
        QStringLiteral("drawing"),
        QCoreApplication::translate("main", "How the scene is drawn: automatic, opengl or plain."),
        QStringLiteral("way"));
    parser.addOption(drawing);
    parser.process(application);
    MainWindow window;
    if (parser.isSet(drawing))
        if (const auto way = SceneView::drawingNamed(parser.value(drawing)))
            window.sceneView().setDrawing(*way);
    window.show();
    const bool isRecovered = !parser.isSet(quit) && window.offerRecovery();
    if (!isRecovered && !parser.positionalArguments().isEmpty())
        window.openPath(parser.positionalArguments().constFirst());
    if (parser.isSet(quit))
        QTimer::singleShot(static_cast<int>(parser.value(quit).toDouble() * 1000), &application,
                           [] { QCoreApplication::exit(0); });
    return QApplication::exec();
}
