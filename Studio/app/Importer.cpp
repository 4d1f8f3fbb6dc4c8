#include "Importer.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <kaFileWriter.h>
#include <kaMotion/Failure.h>
#include <kaMotion/MotionStream.h>

namespace ka::studio {

namespace {

QString& program() {
    static QString path;
    return path;
}

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
    _process.start(path, {QStringLiteral("--read-into"), resultFile(), _model});
}

void Importer::cancel() {
    if (!isRunning())
        return;
    _isGivenUp = true;
    _process.kill();
    _process.waitForFinished();
}

QString Importer::resultFile() const {
    return _folder->filePath(QStringLiteral("motion"));
}

void Importer::onFinished(int code, QProcess::ExitStatus status) {
    if (_isGivenUp) {
        emit failed(_model, QString());
    } else if (status != QProcess::NormalExit || code != 0) {
        const QString why = QString::fromUtf8(_process.readAllStandardError()).trimmed();
        emit failed(_model, why.isEmpty() ? tr("The import of %1 ended without a result.").arg(_model) : why);
    } else {
        emit finished(_model);
    }
}

std::optional<ka::motion::ReadModel> Importer::takeModel() {
    if (_folder == nullptr || isRunning())
        return std::nullopt;
    QFile file(resultFile());
    const uchar* bytes = file.open(QIODevice::ReadOnly) ? file.map(0, file.size()) : nullptr;
    std::optional<ka::motion::Motion> motion;
    constexpr qint64 HeaderSize = 1; // the confinement of the reader
    if (bytes != nullptr && file.size() > HeaderSize)
        motion = ka::motion::unpackMotion({reinterpret_cast<const char*>(bytes) + HeaderSize,
                                           static_cast<std::size_t>(file.size() - HeaderSize)});
    std::optional<ka::motion::ReadModel> model;
    if (motion.has_value())
        model = ka::motion::ReadModel{std::move(*motion), 0, static_cast<ka::motion::Confinement>(bytes[0])};
    file.close();
    _folder.reset();
    return model;
}

int Importer::run(const QString& model, const QString& file) {
    try {
        const ka::motion::ReadModel read =
            ka::motion::readModel(model.toUtf8().toStdString(), ka::motion::ReaderLimits());
        kaFileWriter writer(file.toUtf8().toStdString());
        writer.write(std::string(1, static_cast<char>(read.confinement)));
        writer.write(ka::motion::packMotion(read.motion));
        if (!writer.commit()) {
            std::fprintf(stderr, "%s\n", writer.getError().c_str());
            return static_cast<int>(ka::motion::ExitCode::OutputFailed);
        }
    } catch (const ka::motion::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return static_cast<int>(failure.code());
    }
    return 0;
}

} // namespace ka::studio
