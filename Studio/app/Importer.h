#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

namespace ka::studio {

/// Imports a model in a process of its own, this program once more, so that the window stays alive and giving
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

    /// Whether a scene is what the last import has made.
    bool hasFinished(const QString& scene) const;

    /// What the process does: imports `model` and writes a scene and its document into `folder`, with what
    /// there is to tell as lines on standard output. @return the exit code.
    static int run(const QString& model, const QString& folder);

  signals:
    /// The model as a scene and a document, which last until the next import.
    void finished(const QString& model, const QString& scene, const QString& animation,
                  const QStringList& report);
    void failed(const QString& model, const QString& why); ///< Also given up: with an empty text.

  private:
    void onFinished(int code, QProcess::ExitStatus status);

    QProcess _process;
    std::unique_ptr<QTemporaryDir> _folder;
    QString _model;
    bool _isGivenUp = false;
};

} // namespace ka::studio
