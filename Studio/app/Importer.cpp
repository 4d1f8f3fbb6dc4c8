#include "Importer.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>
#include <kaAnimationManager.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Project.h>
#include <kaMotion/Saving.h>

namespace ka::studio {

namespace {

QString& program() {
    static QString path;
    return path;
}

const char Mark[] = "report: "; ///< What the other process has to tell stands behind this.

} // namespace

void Importer::setProgram(const QString& path) {
    program() = path;
}

Importer::Importer(QObject* parent) : QObject(parent) {
    connect(&_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &Importer::onFinished);
    connect(&_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            emit failed(_model, tr("%1 cannot be started").arg(_process.program()));
    });
}

Importer::~Importer() {
    _process.disconnect(this);
    _process.kill();
    _process.waitForFinished();
}

void Importer::start(const QString& model) {
    cancel();
    _model = QFileInfo(model).absoluteFilePath();
    _isGivenUp = false;
    _folder = std::make_unique<QTemporaryDir>();
    const QString path = program().isEmpty() ? QCoreApplication::applicationFilePath() : program();
    _process.start(path, {QStringLiteral("--import-into"), _folder->path(), _model});
}

void Importer::cancel() {
    if (!isRunning())
        return;
    _isGivenUp = true;
    _process.kill();
    _process.waitForFinished();
}

bool Importer::hasFinished(const QString& scene) const {
    return _folder != nullptr && !isRunning() && scene == _folder->filePath(QStringLiteral("scene.osg"));
}

void Importer::onFinished(int code, QProcess::ExitStatus status) {
    QStringList report;
    for (const QString& line : QString::fromUtf8(_process.readAllStandardOutput()).split(QLatin1Char('\n')))
        if (line.startsWith(QLatin1String(Mark)))
            report.append(line.mid(static_cast<int>(sizeof Mark) - 1));
    if (_isGivenUp) {
        emit failed(_model, QString());
    } else if (status != QProcess::NormalExit || code != 0) {
        const QString why = QString::fromUtf8(_process.readAllStandardError()).trimmed();
        emit failed(_model, why.isEmpty() ? tr("The import of %1 ended without a result.").arg(_model) : why);
    } else {
        emit finished(_model, _folder->filePath(QStringLiteral("scene.osg")),
                      _folder->filePath(QStringLiteral("scene.xml")), report);
    }
}

int Importer::run(const QString& model, const QString& folder) {
    const auto tell = [](const std::string& line) { std::printf("%s%s\n", Mark, line.c_str()); };
    try {
        ka::motion::ProjectFiles files;
        files.file = model.toUtf8().toStdString();
        ka::motion::Project project(files);
        const std::string base = folder.toUtf8().toStdString() + "/scene";
        const std::vector<std::string> differences =
            ka::motion::save(project.root(), {base + ".osg", base + ".xml"});
        for (const auto* lines : {&project.report().notes, &project.report().faults, &differences})
            for (const std::string& line : *lines)
                tell(line);
    } catch (const ka::motion::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return static_cast<int>(failure.code());
    }
    return 0;
}

} // namespace ka::studio
