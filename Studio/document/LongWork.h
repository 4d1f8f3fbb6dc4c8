#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>
#include <kaMotion/Listener.h>

namespace ka::studio {

/// Work on the window's own thread that may take longer than a blink: it tells how far it has come and handles
/// the window's events meanwhile, so that the window is drawn and its user can give the work up. Whoever shows
/// it keeps all other input back from `started` to `ended`.
///
/// There is one, because there is one registry to work on.
class LongWork : public QObject, public ka::motion::Listener {
    Q_OBJECT

  public:
    explicit LongWork(QObject* parent = nullptr) : QObject(parent) {}

    /// Thrown from the middle of work that its user gave up, where the work itself has no way to end early.
    struct GivenUp {};

    /// What `progress` does when the user gives up.
    enum class Ending {
        Throw,  ///< throws GivenUp
        Answer, ///< gives false, by which operations know
        Never   ///< the work cannot be given up
    };

    /// One piece of work, from its making to its end. Not within another.
    class Run {
      public:
        Run(LongWork& work, Ending ending);
        ~Run();
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;

      private:
        LongWork& _work;
    };

    bool isRunning() const { return _isRunning; }
    bool isGivenUp() const { return _isGivenUp; } ///< The last one.
    void giveUp();                                ///< No effect on work that cannot be given up.
    /// Milliseconds from one look at the window's events to the next; 30 unless set.
    void setInterval(int milliseconds) { _interval = milliseconds; }
    /// From now on the work must run to its end.
    void holdOn();
    void forget() { _isGivenUp = false; } ///< What became of the last one.

    bool progress(const std::string& what, std::size_t done, std::size_t total) override;
    void note(const std::string& line) override { _notes.append(QString::fromStdString(line)); }
    const QStringList& notes() const { return _notes; } ///< What the work had to say.

  signals:
    void started(bool canBeGivenUp);
    void progressed(const QString& what, int percent);
    void ended();

  private:
    Ending _ending = Ending::Never;
    qint64 _interval = 30;
    bool _isRunning = false, _isGivenUp = false;
    QElapsedTimer _sinceEvents;
    QStringList _notes;
};

} // namespace ka::studio
