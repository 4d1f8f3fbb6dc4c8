#include "Importer.h"
#include "MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

/// The studio: opens what the command line names.
int main(int argc, char** argv) {
    using namespace ka::studio;
    for (int i = 1; i + 2 < argc; ++i) // the importing process needs no display
        if (QString::fromLocal8Bit(argv[i]) == QLatin1String("--import-into")) {
            QCoreApplication core(argc, argv);
            return Importer::run(core.arguments().at(i + 2), core.arguments().at(i + 1));
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
    parser.process(application);
    MainWindow window;
    window.show();
    const bool isRecovered = !parser.isSet(quit) && window.offerRecovery();
    if (!isRecovered && !parser.positionalArguments().isEmpty())
        window.openPath(parser.positionalArguments().constFirst());
    if (parser.isSet(quit))
        QTimer::singleShot(static_cast<int>(parser.value(quit).toDouble() * 1000), &application,
                           [] { QCoreApplication::exit(0); });
    return QApplication::exec();
}
