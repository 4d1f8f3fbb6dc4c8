#pragma once

#include <QObject>

namespace ka::studio {

/// The frame that is shown, and who asked for it.
class PlayHead : public QObject {
    Q_OBJECT

  public:
    explicit PlayHead(QObject* parent = nullptr) : QObject(parent) {}

    float frame() const { return _frame; }
    float framesPerSecond() const { return _rate; }
    void setFramesPerSecond(float rate);

    /// Goes to a frame, as a user does by dragging the playhead: playing stops.
    void scrub(float frame);
    /// Shows a frame, as the clock does.
    void show(float frame);

  signals:
    void moved(float frame);
    void scrubbed(float frame); ///< After `moved`, when it was a user's wish.

  private:
    float _frame = 0.0F;
    float _rate = 25.0F;
};

} // namespace ka::studio
