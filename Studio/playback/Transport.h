#pragma once

#include "timebased/PlayHead.h"

#include <QObject>
#include <QTimer>
#include <kaAnimationTypes.h>
#include <kaMessageListener.h>
#include <vector>

namespace ka::studio {

/// Plays through the module's controller, with a timer as the host's clock. There is one at a time, because
/// the controller is one.
class Transport : public QObject {
    Q_OBJECT

  public:
    explicit Transport(PlayHead& head, QObject* parent = nullptr);
    ~Transport() override;

    /// What is played, by id, and the frames from the earliest begin to the latest end of it, which become
    /// the range. Playing stops.
    void setObjects(const std::vector<kaUID>& objects);
    const std::vector<kaUID>& objects() const { return _objects; }

    /// The range in and out, in frames; refused where it would be empty.
    void setRange(float begin, float end);
    float begin() const { return _begin; }
    float end() const { return _end; }

    void play(bool reverse = false);
    void pause(); ///< Stays where it is.
    void stop();  ///< Goes to the begin of the range.
    bool isPlaying() const { return _isPlaying; }
    bool isReverse() const { return _isReverse; }

    void setLooping(bool looping);
    bool isLooping() const { return _isLooping; }
    /// How many times as fast as the clock; positive.
    void setSpeed(double speed);
    double speed() const { return _speed; }
    /// Each tick shows the next frame, however long it takes; else frames are left out to keep time.
    void setEveryFrame(bool everyFrame);
    bool isEveryFrame() const { return _everyFrame; }
    /// Ticks a second, over the last second of playing; 0 while nothing plays.
    double reachedRate() const { return _reachedRate; }

    /// Puts the scene into the state of the playhead's frame; after edits.
    void evaluate();

  signals:
    void stateChanged(); ///< Playing began or ended, or a setting is another.
    void evaluated();    ///< The scene has another state.
    void rateMeasured(double ticks);

  private:
    void start();
    void tick();
    void onFrame(float frame);
    static double clock();

    PlayHead& _head;
    QTimer _timer;
    kaMessageListener _frames, _finished;
    std::vector<kaUID> _objects;
    float _begin = 0.0F, _end = 0.0F;
    bool _isPlaying = false, _isReverse = false, _isLooping = true, _everyFrame = false;
    double _speed = 1.0, _reachedRate = 0.0;
    int _ticks = 0;
    qint64 _measuredFrom = 0;
};

} // namespace ka::studio
