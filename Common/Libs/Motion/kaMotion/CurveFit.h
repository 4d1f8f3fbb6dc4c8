#pragma once

#include <array>
#include <kaMotion/CurveKey.h>
#include <kaMotion/RotationSource.h>
#include <limits>

#pragma GCC visibility push(default)
namespace ka::motion {

/// The three scalar curves of a channel.
using CurveTriple = std::array<std::vector<CurveKey>, 3>;

/// A vector channel as three curves: a key for every key, nothing to fit.
CurveTriple curvesOf(const MotionChannel<3>& channel);

/// How closely a rotation is followed, and with how many keys at most.
struct FitOptions {
    double tolerance = 0.01;     ///< degrees that the rotation may be off between keys
    double shortest = 1.0 / 500; ///< seconds; no piece of a split segment is shorter
    /// Keys that a curve may have before its segments are no longer split.
    std::size_t mostKeys = std::numeric_limits<std::size_t>::max();
};

/// The scene's three angles over time for a rotation.
struct RotationFit {
    CurveTriple curves;        ///< the three have keys at the same times
    std::size_t addedKeys = 0; ///< beyond those of the source
    double worst = 0.0;        ///< degrees, the largest difference found between keys
    double worstTime = 0.0;    ///< where, in seconds: the begin of the segment
    std::size_t unreached =
        0; ///< segments that stay beyond the tolerance because they cannot be split further
};

/// Turns a rotation of any form into the scene's angles.
///
/// At every key of the source the angles give its rotation exactly (in double), each next to the ones before,
/// so that no curve jumps. Between keys, angles that are straight or smooth do not turn quite as the source
/// does: a segment is made straight where that stays within the tolerance, else smooth, else it is split in
/// the middle; a source that spins without end is cut short at twenty added keys for each of its own. Angles
/// in the scene's own order are taken as they are.
RotationFit fitRotation(const RotationSource& source, const FitOptions& options);

} // namespace ka::motion
#pragma GCC visibility pop
