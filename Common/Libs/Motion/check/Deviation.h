#pragma once

#include <functional>
#include <kaMotion/PlainCurve.h>
#include <optional>
#include <string>
#include <vector>

namespace ka::motion {

/// What a curve is to give at a frame; nothing where it is to give no value. Asked in nearly ascending order.
using MeantValue = std::function<std::optional<double>(double frame)>;

/// Where a curve gives something else than it was meant to, or nothing at all.
struct Deviation {
    float frame = 0.0F;
    double meant = 0.0;
    std::optional<float> written;

    /// "no value at frame 12" or "3.1 instead of 2.9 at frame 12".
    std::string text() const;
};

/// What came of a curve that was written.
struct CurveJudgement {
    /// The worst difference beyond what is promised; a missing value is worse than any.
    std::optional<Deviation> fault;
    /// The largest difference that neither the digits of a document nor those of a float explain, and where.
    double worst = 0.0;
    float worstFrame = 0.0F;
};

/// Samples a curve against what it was meant to be, at its keys, on the way between them and at whole frames.
///
/// Promised is this: at every frame the value is one that was meant there, or as near to there as a
/// document's digits and a float can place a frame, up to those digits of the value and a ten-thousandth of
/// what the segment's four points span. Cost: a few samples for each key.
/// @param written  keys in ascending order, no two at one frame: what a document gives back.
CurveJudgement judge(const std::vector<PlainKey>& written, const MeantValue& meant);

} // namespace ka::motion
