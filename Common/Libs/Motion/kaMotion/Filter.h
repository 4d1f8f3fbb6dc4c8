#pragma once

#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>

#pragma GCC visibility push(default)
namespace ka::motion {

// Operations on the values of curves. All of them: `curves` of the registry, nulls among them, are changed in
// place; a curve of fewer than two keys stays as it is. The listener may cancel, which changes nothing.

/// Takes the flips out of rotations: of all triples of angles that stand for the same rotation, each key gets
/// the one nearest to that of the key before it. That is more than whole turns: x + 180, 180 - y, z + 180 is
/// the same rotation as x, y, z, and where y is a right angle x and z turn about one axis, of which any share
/// will do. The first key stays.
///
/// Works on nodes of which all three rotation curves are among `curves`; where these have keys at different
/// frames, all three get keys at all of them, on the curves as they were. Handles go with their keys. A
/// segment across a flip, which ran through the flip before, runs straight. The report says how many flips
/// were found, and the largest step from key to key before and after.
OperationReport removeFlips(const CurveList& curves, Listener& listener = Listener::none());

/// What `smooth` lets through.
struct LowPass {
    double cutOff = 6.0;           ///< hertz, above 0: of what swings this fast 71 % of the height is left
    double framesPerSecond = 25.0; ///< above 0
};

/// Takes quick jitter off: a Butterworth low-pass of the second order, run forwards and then backwards, so
/// that nothing moves in time. What swings at half the cut-off keeps 97 % of its height, at twice the cut-off
/// 13 %.
///
/// Curves whose keys are evenly apart keep their keys' frames. Others get keys evenly apart, at an eighth of
/// the period of the cut-off or closer, a frame at most. Curves that only step are left alone. First and last
/// keys stay where they are. Flips of rotations are best removed before. Source: the filter is the bilinear
/// transform of the analogue one, with the cut-off raised so that both runs together take half the power
/// there.
/// @throws Failure (Usage) for a cut-off or rate that is not above 0, and a cut-off at or above half the rate
/// of a curve's keys.
OperationReport smooth(const CurveList& curves, const LowPass& filter, Listener& listener = Listener::none());

/// What `removePeaks` takes for one.
struct PeakOptions {
    std::size_t reach = 3;    ///< keys on each side that a key is compared with, at least 1
    double sensitivity = 4.0; ///< times the usual distance of those keys from their median, above 0
    double least = 0.5;       ///< in the curve's unit; no nearer to the median is a peak
};

/// Puts single keys that leap out of line back into it: a key further from the median of the keys around it
/// than `sensitivity` times their own usual distance gets the value that the line between its neighbours has
/// there. The first and the last key stay. The report says how many there were and which was the largest.
/// Source: the identifier of Hampel, with 1.4826 times the median of distances as the usual distance.
/// @throws Failure (Usage) for options that are not as stated.
OperationReport removePeaks(const CurveList& curves, const PeakOptions& options,
                            Listener& listener = Listener::none());

/// Every value v of the curves becomes factor * v + offset, handles included.
/// @throws Failure (Usage) for numbers that are not finite.
OperationReport changeValues(const CurveList& curves, double factor, double offset,
                             Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
