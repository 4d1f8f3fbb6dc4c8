#pragma once

#include <QLockFile>
#include <QTimer>
#include <memory>
#include <sys/types.h>
#include <vector>

namespace ka::studio {

class Session;

/// Keeps what is open and not saved in a folder of this run, every few seconds, so that a crash loses no more.
///
/// The files are written by a child of this process, which has the whole registry as it was at that moment: the
/// window goes on at once, however much there is. The user's own files are never touched.
class Recovery : public QObject {
    Q_OBJECT

  public:
    /// What another run left behind.
    struct Kept {
        QString folder;
        QString source; ///< what it was of
        QString scene, animation;
    };

    explicit Recovery(Session& session, QObject* parent = nullptr);
    ~Recovery() override; ///< The run ends as it should: nothing is kept.

    /// Milliseconds between looks at whether there is something to keep; 4000 unless set.
    void setInterval(int milliseconds) { _timer.setInterval(milliseconds); }
    void forget(); ///< There is nothing to keep any more: it was saved, or its user gave it up.

    /// Of runs that have ended without giving their folders up; complete ones only.
    static std::vector<Kept> leftBehind();
    static void remove(const Kept& kept);

  private:
    void look();
    bool isWriting();
    static QString root();

    Session& _session;
    QTimer _timer;
    QString _folder;
    std::unique_ptr<QLockFile> _lock;
    pid_t _writer = 0;
    int _keptIndex = -1;   ///< place in the history that was kept last
    bool _hasKept = false; ///< whether the folder has anything in it
};

} // namespace ka::studio
