#include "MainWindow.h"
#include "SampleMotion.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <kaFileWriter.h>
#include <kaMotion/Exporting.h>
#include <kaMotion/Failure.h>

namespace ka::studio {

bool MainWindow::exportFile() {
    if (!_session.isOpen())
        return false;
    const auto ask = [this] {
        const QString start =
            QFileInfo(_session.files().shownName()).completeBaseName() + QLatin1String(".glb");
        return QFileDialog::getSaveFileName(
            this, tr("Export"), start,
            tr("glTF (*.glb *.gltf);;Motion capture (*.bvh);;Table (*.csv);;Arrays (*.npz)"));
    };
    const QString chosen = _answers.saveName ? _answers.saveName() : ask();
    if (chosen.isEmpty())
        return false;
    const std::string path = QFileInfo(chosen).absoluteFilePath().toUtf8().toStdString();
    const std::optional<ka::motion::ExportKind> kind = ka::motion::exportKind(path);
    if (!kind.has_value()) {
        tell(tr("%1: what kind of file that is, its ending tells: .glb, .gltf, .bvh, .csv or .npz.")
                 .arg(chosen));
        return false;
    }
    _transport.pause();
    try {
        ka::motion::ExportOptions options;
        options.sampling.framesPerSecond = static_cast<double>(_head.framesPerSecond());
        const ka::motion::ExportedFile file =
            ka::motion::exportAs(*kind, _session.project(), ka::motion::exportedObjects(), options);
        kaFileWriter writer(path);
        writer.write(file.bytes);
        if (!writer.commit()) {
            tell(tr("%1\n\nNothing was written over.").arg(QString::fromStdString(writer.getError())));
            return false;
        }
        QStringList notes;
        for (const std::string& note : file.report.notes)
            notes.append(QString::fromStdString(note));
        _session.addToReport(notes);
        say(notes.isEmpty() ? tr("Exported %1").arg(chosen)
                            : tr("Exported %1; what it cannot hold is in the report").arg(chosen));
    } catch (const ka::motion::Failure& failure) {
        tell(QString::fromStdString(failure.what()));
    }
    _transport.evaluate();
    return QFileInfo::exists(chosen);
}

void MainWindow::openSample() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation) +
                           QStringLiteral("/ka-studio-%1").arg(QCoreApplication::applicationPid());
    QDir().mkpath(folder);
    const QString path = folder + QStringLiteral("/walk.bvh");
    kaFileWriter writer(path.toUtf8().toStdString());
    writer.write(sampleMotion());
    if (writer.commit())
        openPath(path);
    else
        tell(QString::fromStdString(writer.getError()));
}

} // namespace ka::studio
