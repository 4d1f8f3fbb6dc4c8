#pragma once

#include <cstddef>
#include <kaMotion/PlainCurve.h>
#include <optional>
#include <vector>

namespace ka::motion {

/// How a stretch of a curve's segments is taken over when its keys are thinned.
enum class RunKind : unsigned char {
    Moving,   ///< fitted anew
    Held,     ///< one value all along: two keys
    Stepped,  ///< jumps at its keys: those that jump stay
    Untouched ///< time that runs backwards, numbers that are none: as it stands
};

/// Segments `first` to `last` - 1 of a curve, which lie between its keys of these numbers.
struct SourceRun {
    RunKind kind = RunKind::Moving;
    std::size_t first = 0, last = 0;
};

/// The stretches of a curve. Flat segments are one that is held where they last `shortestHold` frames in a
/// row.
/// @param keys  in ascending order, no two at one frame.
std::vector<SourceRun> sourceRuns(const std::vector<PlainKey>& keys, double shortestHold);

/// In value per frame, what a segment leaves its first key with, and what it arrives at its second with.
/// Nothing where the curve stands upright.
std::optional<double> slopeAfter(const PlainKey& left, const PlainKey& right);
std::optional<double> slopeBefore(const PlainKey& left, const PlainKey& right);

/// Whether the curve turns at key `at`, one between its first and last, so sharply that nothing round passes
/// within `tolerance` of it between the keys next to it.
bool isSharp(const std::vector<PlainKey>& keys, std::size_t at, double tolerance);

/// The curve itself at chosen frames, which is what a new one is measured against.
struct SourceSamples {
    static constexpr std::size_t noKey = static_cast<std::size_t>(-1);

    std::vector<float> frames; ///< ascending
    std::vector<double> values;
    std::vector<std::size_t> keys; ///< the number of the curve's key at that frame, or noKey
};

/// Samples of a run: at each of its keys and at every multiple of `step` frames between its first and last,
/// at most `most` of those between two keys, evenly spread where there would be more.
SourceSamples sampleRun(const std::vector<PlainKey>& keys, const SourceRun& run, double step,
                        std::size_t most);

} // namespace ka::motion
