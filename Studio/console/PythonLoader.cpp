#include "PythonEngine.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibrary>

namespace ka::studio {

namespace {

const char Plugin[] = "ka-studio-python.so";

/// Beside the libraries, where the build or the installation has put it.
QString pluginPath() {
    const QString program = QCoreApplication::applicationDirPath();
    for (const char* folder : {"/../lib/ka-studio/", "/" KA_STUDIO_PLUGINS "/"}) {
        const QString path = program + QLatin1String(folder) + QLatin1String(Plugin);
        if (QFileInfo::exists(path))
            return path;
    }
    return {};
}

} // namespace

PythonEngine* PythonEngine::load(QString& fault) {
    static PythonEngine* engine = nullptr;
    if (engine != nullptr)
        return engine;
    const QString path = pluginPath();
    if (path.isEmpty()) {
        fault = QCoreApplication::translate("PythonEngine", "%1 is not installed").arg(QLatin1String(Plugin));
        return nullptr;
    }
    QLibrary library(path);
    // Python's own extension modules look for its symbols among those of the whole program.
    library.setLoadHints(QLibrary::ExportExternalSymbolsHint | QLibrary::PreventUnloadHint);
    const auto make = reinterpret_cast<KaStudioPythonEngine>(library.resolve("kaStudioPythonEngine"));
    if (make == nullptr) {
        fault = library.errorString();
        return nullptr;
    }
    engine = make();
    return engine;
}

} // namespace ka::studio
