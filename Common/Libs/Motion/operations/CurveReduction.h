#pragma once

#include <cstddef>
#include <functional>
#include <kaMotion/PlainCurve.h>
#include <vector>

namespace ka::motion {

/// What a thinned curve has to keep to.
struct CurveBound {
    double tolerance = 0.0;     ///< in the curve's unit
    bool allowsCorners = false; ///< anywhere; otherwise only where the curve itself turns sharply
    double shortestHold = 5.0;  ///< frames from which on a standing value stays exactly that value
    double step = 0.25;         ///< frames from sample to sample at which the bound holds
};

/// A thinned curve.
struct ReducedCurve {
    std::vector<PlainKey> keys;
    double worst = 0.0;       ///< the largest difference at any sample
    float worstFrame = 0.0F;  ///< and where it is
    bool isCancelled = false; ///< then the keys are of no use
};

/// Asked now and then; an answer of false cancels.
using KeepGoing = std::function<bool()>;

/// Finds few keys for a curve that stay within a bound of it.
///
/// From each key on, segments are looked for that reach as far as any does within the tolerance, over handles
/// of many lengths; of the many that reach nearly as far, that one is taken from whose end the next can reach
/// furthest. Keys may stand at any sample. What is written is what a document holds, and is measured there,
/// by the module's own sampler, at every sample and every key of the source. Where nothing reaches
/// further, the source's own segment is taken; so is a whole stretch of which fewer keys cannot be had.
///
/// The first and last keys stay at their frames and values. Between segments that hold, jump or turn sharply
/// the new curve has no corners unless they are allowed. A curve of fewer than three keys, and any curve when
/// the tolerance is not well above what the digits of a document and of a float can be off, stays as it is.
///
/// Pure: no registry, any thread. Cost: some 10 microseconds for each key of the source.
/// @param source  in ascending order, no two at one frame.
ReducedCurve reduceCurve(const std::vector<PlainKey>& source, const CurveBound& bound,
                         const KeepGoing& keepGoing);

} // namespace ka::motion
