#pragma once

#include <kaMotion/CurveChoice.h>
#include <kaMotion/Listener.h>
#include <kaMotion/OperationReport.h>
#include <optional>
#include <utility>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

// Operations on the time of curves. All of them: `curves` of the registry, nulls among them, are changed in
// place, with the extents of all that they stand in; a curve of fewer than two keys, which has no value,
// stays as it is. The listener may cancel, which changes nothing.

/// Cuts curves to the frames from `from` to `to`, with keys at both, exactly: what is left is the same
/// motion. A curve that lies wholly outside keeps the value that it holds there, unless another of the curves
/// drives the same field inside: then it is left out, destroyed with its keys.
/// @param curves  of the registry.
/// @param from  less than `to`. @param to  the last frame that stays.
/// @param toStart  whether what is left is moved, so that `from` becomes frame 0.
/// @param listener  may cancel.
/// @throws Failure (Usage) when `from` is not less than `to`.
OperationReport trim(const CurveList& curves, double from, double to, bool toStart,
                     Listener& listener = Listener::none());

/// How frames become other frames.
struct Retiming {
    double scale = 1.0; ///< above 0: what took 1 frame takes this many
    double shift = 0.0; ///< frames that all is moved by, after scaling
    /// Frames before and after, both ascending, at least two; in between times run evenly, and outside on at
    /// the pace of the first or last two. Applied first.
    std::vector<std::pair<double, double>> map;
    /// Pairs of a frame and the speed there, 2 for twice as fast; in between speeds change evenly, outside
    /// they stay. All speeds are above 0. Applied after `map`, at every half frame. The first frame of all
    /// curves stays where it is.
    std::vector<std::pair<double, double>> speed;
};

/// Moves motion in time. Scaling and shifting keep the keys and the shape of curves; where paces change,
/// curves get keys, so that in between every frame is where it is meant to be.
/// @throws Failure (Usage) for a retiming that is not as stated.
OperationReport retime(const CurveList& curves, const Retiming& retiming,
                       Listener& listener = Listener::none());

/// Plays motion backwards between the first and the last frame of all the curves. What a step holds until its
/// end is held from there on.
OperationReport reverse(const CurveList& curves, Listener& listener = Listener::none());

/// Where `resample` puts keys, and how curves run between them.
struct Resampling {
    /// How a curve runs from one of its keys to the next.
    enum class Shape : unsigned char {
        Straight, ///< from key to key
        Smooth,   ///< with the slopes of the motion
        Step      ///< holding each value
    };

    double every = 1.0;          ///< frames from key to key, above 0; counted from frame 0
    std::vector<double> frames;  ///< the frames themselves, ascending; empty: those that `every` gives
    Shape shape = Shape::Smooth; ///< between keys
    bool keepsEnds = true;       ///< keys also at the first and last frame of each curve
};

/// Gives curves keys at chosen frames, with the values that they have there, and no others. The report says
/// how far the new curves are from the old ones in between, at quarter frames.
/// @throws Failure (Usage) for frames that do not ascend, a distance that is not above 0 and more than ten
/// million
///         keys.
OperationReport resample(const CurveList& curves, const Resampling& resampling,
                         Listener& listener = Listener::none());

} // namespace ka::motion
#pragma GCC visibility pop
