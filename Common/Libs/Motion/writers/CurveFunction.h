#pragma once

#include "kaMotion/PlainCurve.h"

#include <vector>

namespace ka::motion {

/// On which side of a frame a curve is asked: at the end of a hold the two differ.
enum class Side { Before, After };

/// A curve of the animation as a function of the frame, with its slope: what playback gives for it, held at
/// its first and last value outside of its span.
///
/// Values are those of the sampler. A piece whose handles stand at the thirds of the time is a cubic
/// polynomial of the frame and one whose handles lie on the line between its keys is straight; a piece of any
/// other kind has no closed form in the frame.
class CurveFunction {
  public:
    /// A value that no curve moves.
    explicit CurveFunction(double constant) : _constant(constant) {}

    /// @param keys  in ascending order, no two at one frame. With fewer than two the curve is `rest`, as in
    ///              playback, which finds no value in it.
    CurveFunction(std::vector<PlainKey> keys, double rest);

    bool isConstant() const { return _keys.empty(); }

    /// Frames of the keys.
    const std::vector<PlainKey>& keys() const { return _keys; }

    double value(double frame, Side side) const;

    /// Change of the value per frame; 0 outside of the span and in a hold. Not finite where the curve stands
    /// upright.
    double slope(double frame, Side side) const;

    /// Whether the value stays the same over a span that has no key inside.
    bool holds(double from, double to) const;

    /// The least and the largest number that bound the values over a span that has no key inside.
    std::pair<double, double> bounds(double from, double to) const;

  private:
    /// The key that begins the segment which is asked; nothing outside of the span.
    const PlainKey* segmentAt(double frame, Side side) const;
    double sampled(const PlainKey& left, double frame) const;

    std::vector<PlainKey> _keys;
    double _constant = 0.0;
};

} // namespace ka::motion
