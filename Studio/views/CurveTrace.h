#pragma once

#include "timebased/AxisMap.h"

#include <QPointF>
#include <QVector>
#include <kaAnimationTypes.h>
#include <vector>

namespace ka::studio {

/// How values of a curve come to the values of a view: as they are, or, normalised, its extent to [-1, 1].
struct ValueScale {
    double offset = 0.0, factor = 1.0;

    double toView(double value) const { return (value - offset) * factor; }
    double toCurve(double shown) const { return shown / factor + offset; }
};

/// A curve as a view needs it: its keys in order, and what a column of pixels shows of it.
class CurveTrace {
  public:
    /// Reads the curve anew. Cost: linear in its keys.
    void read(kaUID curve);

    kaUID curve() const { return _curve; }
    std::size_t size() const { return _keys.size(); }
    const std::vector<kaUID>& keys() const { return _keys; } ///< In the order of frames.
    const std::vector<float>& frames() const { return _frames; }
    const std::vector<float>& values() const { return _values; }
    /// Indices of the keys within [low, high]: the first, and one behind the last.
    std::pair<std::size_t, std::size_t> within(double low, double high) const;
    float minimum() const { return _minimum; } ///< Of the keys; 0 without any.
    float maximum() const { return _maximum; } ///< Of the keys; 0 without any.

    /// The curve over the columns [0, width) as a line in pixels. A column with several keys gets the span of
    /// their values, any other one sample, so that the cost follows the width and not the keys. Before the
    /// first key the line holds its value.
    QVector<QPointF> line(const AxisMap& time, const AxisMap& values, const ValueScale& scale,
                          int width) const;

  private:
    kaUID _curve = 0;
    std::vector<kaUID> _keys;
    std::vector<float> _frames, _values;
    float _minimum = 0.0F, _maximum = 0.0F;
};

} // namespace ka::studio
