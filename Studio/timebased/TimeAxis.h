#pragma once

#include "AxisMap.h"

#include <QObject>

namespace ka::studio {

/// The stretch of time that the time-based views show, one for all of them, so that they scroll and zoom
/// together.
class TimeAxis : public QObject {
    Q_OBJECT

  public:
    explicit TimeAxis(QObject* parent = nullptr) : QObject(parent) {}

    const AxisMap& map() const { return _map; } ///< Frames to pixels from a view's left edge.

    /// Pixels that `frame` leaves free at the left, in all views: some have the names of rows there.
    static constexpr int LeftMargin = 150;

    void show(double begin, double end, double pixels);
    /// Shows these frames with some room at the right, and more at the left.
    void frame(double begin, double end, double pixels);
    void pan(double pixels);
    void zoom(double pixel, double factor);

    /// The frames that are played, in and out: a band in every ruler, whose ends can be dragged. Empty when both
    /// are the same.
    double rangeBegin() const { return _rangeBegin; }
    double rangeEnd() const { return _rangeEnd; }
    void setRange(double begin, double end);
    /// A user's wish for another range, by dragging; whoever plays grants it by `setRange`.
    void askForRange(double begin, double end) { emit rangeWanted(begin, end); }

    /// Labels in seconds rather than frames.
    bool isInSeconds() const { return _inSeconds; }
    void setInSeconds(bool inSeconds);
    /// Whether what is dragged goes to whole frames, to whole values.
    bool snapsFrames() const { return _snapsFrames; }
    void setSnapsFrames(bool snaps) { _snapsFrames = snaps; }
    bool snapsValues() const { return _snapsValues; }
    void setSnapsValues(bool snaps) { _snapsValues = snaps; }

  signals:
    void changed();
    void rangeChanged();
    void rangeWanted(double begin, double end);

  private:
    AxisMap _map;
    double _rangeBegin = 0.0, _rangeEnd = 0.0;
    bool _inSeconds = false, _snapsFrames = true, _snapsValues = false;
};

} // namespace ka::studio
