#include "check/Deviation.h"

#include "check/SegmentCheck.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/Text.h>

namespace ka::motion {

namespace {

/// What a float can be off, as a part of its value: its own rounding and that of what it was computed from.
constexpr double floatError = 0x1p-22;

/// What a segment may be off, as a part of what its four points span.
constexpr double promisedPart = 1e-4;

/// Whole frames of one segment that are sampled.
constexpr int mostFrames = 16;

class Judge {
  public:
    Judge(const std::vector<PlainKey>& written, const MeantValue& meant) : _written(written), _meant(meant) {}

    CurveJudgement run() {
        for (std::size_t i = 0; i + 1 < _written.size(); ++i)
            sampleSegment(segmentBetween(_written[i], _written[i + 1]));
        if (_written.size() > 1)
            compare(_written.back().x, _written.back().y, 0.0);
        else if (!_written.empty())
            compare(_written.back().x, std::nullopt, 0.0);
        return _judgement;
    }

  private:
    void sampleSegment(const kaSegmentPoints& points) {
        const auto [low, high] = std::minmax({points.y0, points.y1, points.y2, points.y3});
        const double span = static_cast<double>(high) - static_cast<double>(low);
        const auto sample = [&](float frame) {
            float value = 0.0F;
            const bool isThere = kaSampleSegment(points, frame, value) && std::isfinite(value);
            compare(frame, isThere ? std::optional<float>(value) : std::nullopt, span);
        };
        const double length = static_cast<double>(points.x3) - static_cast<double>(points.x0);
        sample(points.x0);
        // Straight segments have both handles at one place on the line; of those one sample tells all.
        const bool isStraight = points.x1 == points.x2 && points.y1 == points.y2;
        for (const double part : {0.5, 0.12, 0.3, 0.7, 0.88}) {
            sample(static_cast<float>(static_cast<double>(points.x0) + part * length));
            if (isStraight)
                break;
        }
        const double firstWhole = std::floor(static_cast<double>(points.x0)) + 1.0;
        const double stride = std::max(1.0, std::ceil(length / mostFrames));
        for (double whole = firstWhole; whole < static_cast<double>(points.x3); whole += stride)
            sample(static_cast<float>(whole));
        if (const std::optional<float> frame = frameWithoutValue(points))
            compare(*frame, std::nullopt, span);
    }

    void compare(float frame, std::optional<float> value, double span) {
        const std::optional<double> meant = _meant(static_cast<double>(frame));
        if (!meant)
            return;
        if (!value)
            return blame({frame, *meant, std::nullopt}, HUGE_VAL);
        const double given = static_cast<double>(*value);
        const double digits = 2.0 * documentStep + floatError * std::max(std::abs(given), std::abs(*meant));
        if (std::abs(given - *meant) <= digits)
            return;
        const double beyond = distance(static_cast<double>(frame), given, *meant) - digits;
        if (beyond > _judgement.worst) {
            _judgement.worst = beyond;
            _judgement.worstFrame = frame;
        }
        if (!(beyond <= promisedPart * span))
            blame({frame, *meant, value}, beyond);
    }

    /// How far `given` is from what is meant, less what that changes in a step as short as digits can tell:
    /// where a curve turns or jumps on one side, the other side says how steep it is.
    double distance(double frame, double given, double meant) const {
        const double around = documentStep + floatError * std::abs(frame);
        double change = 0.0;
        for (const double other : {frame - around, frame + around})
            if (const std::optional<double> near = _meant(other))
                change = std::max(change, std::abs(*near - meant));
        return std::max(std::abs(given - meant) - change, 0.0);
    }

    void blame(const Deviation& deviation, double by) {
        if (_judgement.fault && !(by > _blamed))
            return;
        _blamed = by;
        _judgement.fault = deviation;
    }

    const std::vector<PlainKey>& _written;
    const MeantValue& _meant;
    CurveJudgement _judgement;
    double _blamed = 0.0;
};

} // namespace

std::string Deviation::text() const {
    const std::string place = " at frame " + formatNumber(static_cast<double>(frame));
    return written ? formatNumber(static_cast<double>(*written), 6) + " instead of " +
                         formatNumber(meant, 6) + place
                   : "no value" + place;
}

CurveJudgement judge(const std::vector<PlainKey>& written, const MeantValue& meant) {
    return Judge(written, meant).run();
}

} // namespace ka::motion
