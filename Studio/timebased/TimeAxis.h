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

    void show(double begin, double end, double pixels);
    void pan(double pixels);
    void zoom(double pixel, double factor);

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

  private:
    AxisMap _map;
    bool _inSeconds = false, _snapsFrames = true, _snapsValues = false;
};

} // namespace ka::studio
