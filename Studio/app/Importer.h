#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <kaMotion/ModelReader.h>
#include <memory>
#include <optional>

namespace ka::studio {

/// Reads a model in a process of its own, this program once more, so that the window stays alive and giving
/// up is safe at any moment.
class Importer : public QObject {
    Q_OBJECT

  public:
    explicit Importer(QObject* parent = nullptr);
    ~Importer() override; ///< Ends an import that still runs.

    /// The program that is started; this one unless set.
    static void setProgram(const QString& path);

    void start(const QString& model); ///< Gives up one that still runs.
    void cancel();
    bool isRunning() const { return _process.state() != QProcess::NotRunning; }

    /// What the import that has finished has read; nothing a second time, and nothing where it is damaged.
    std::optional<ka::motion::ReadModel> takeModel();

    /// What the process does: reads `model` and writes what it holds into `file`. @return the exit code.
    static int run(const QString& model, const QString& file);

  signals:
    void finished(const QString& model);                   ///< `takeModel` has it.
    void failed(const QString& model, const QString& why); ///< Also given up: with an empty text.

  private:
    void onFinished(int code, QProcess::ExitStatus status);
    QString resultFile() const;

    QProcess _process;
    std::unique_ptr<QTemporaryDir> _folder;
    QString _model;
    bool _isGivenUp = false;
};

} // namespace ka::studio
