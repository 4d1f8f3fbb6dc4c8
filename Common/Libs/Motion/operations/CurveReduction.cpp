#include "operations/CurveReduction.h"

#include "operations/RunReduction.h"
#include "operations/SourceRuns.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>

namespace ka::motion {

namespace {

/// Samples of one segment of the source, and of a whole short curve.
constexpr std::size_t mostSamples = 4096, leastSamples = 256;

/// What the digits of a document and of a float take away at most, as a difference of values.
double lostDigits(const std::vector<PlainKey>& keys) {
    double largest = 0.0;
    for (const PlainKey& key : keys)
        largest = std::max(largest, std::abs(static_cast<double>(key.y)));
    return documentStep + largest * 0x1p-23;
}

class CurveReducer {
  public:
    CurveReducer(const std::vector<PlainKey>& source, const CurveBound& bound, const KeepGoing& keepGoing)
        : _source(source), _bound(bound), _keepGoing(keepGoing), _step(bound.step) {
        const double span = static_cast<double>(source.back().x) - static_cast<double>(source.front().x);
        while (span > 0.0 && span / _step < leastSamples)
            _step /= 2;
    }

    ReducedCurve run() {
        _runs = sourceRuns(_source, _bound.shortestHold);
        const PlainKey& first = _source.front();
        _reduced.keys.push_back({first.x, first.y, first.inX, first.inY, first.x, first.y});
        for (std::size_t i = 0; i < _runs.size() && !_reduced.isCancelled; ++i)
            reduceRun(i);
        _reduced.keys.back().outX = _source.back().outX;
        _reduced.keys.back().outY = _source.back().outY;
        return std::move(_reduced);
    }

  private:
    void reduceRun(std::size_t number) {
        const SourceRun& run = _runs[number];
        switch (run.kind) {
        case RunKind::Held:
            return append(_source[run.first].y, _source[run.last]);
        case RunKind::Stepped:
            return keepSteps(run);
        case RunKind::Untouched:
            for (std::size_t i = run.first; i < run.last; ++i)
                copySegment(i);
            return;
        case RunKind::Moving:
            break;
        }
        RunEnds ends;
        ends.startSlope = heldSlope(number, run.first, -1);
        ends.endSlope = heldSlope(number, run.last, 1);
        RunReduction reduction(_source, run, sampleRun(_source, run, _step, mostSamples), _bound);
        _reduced.isCancelled = !reduction.run(ends, _keepGoing, _reduced);
    }

    /// Next to a value that is held, a curve that is no corner there runs into it level.
    std::optional<double> heldSlope(std::size_t number, std::size_t key, int side) const {
        const std::size_t other = number + static_cast<std::size_t>(side); // wraps below 0: beyond the end
        if (other >= _runs.size() || _runs[other].kind != RunKind::Held || _bound.allowsCorners ||
            isSharp(_source, key, _bound.tolerance))
            return std::nullopt;
        return 0.0;
    }

    /// A level segment up to a key of the source.
    void append(float value, const PlainKey& to) {
        PlainKey& from = _reduced.keys.back();
        const double length = static_cast<double>(to.x) - static_cast<double>(from.x);
        PlainKey key{to.x, value, to.x, value, to.x, value};
        // Not at the thirds, where the coefficient of t³ vanishes.
        from.outX = documentFloat(static_cast<double>(from.x) + 0.3 * length);
        from.outY = value;
        key.inX = documentFloat(static_cast<double>(to.x) - 0.3 * length);
        _reduced.keys.push_back(key);
    }

    /// Jumps that are within the tolerance of the value held before them go.
    void keepSteps(const SourceRun& run) {
        for (std::size_t i = run.first + 1; i <= run.last; ++i) {
            const PlainKey& key = _source[i];
            const double jump =
                std::abs(static_cast<double>(key.y) - static_cast<double>(_reduced.keys.back().y));
            if (i < run.last && jump <= _bound.tolerance) {
                note(jump, key.x);
                continue;
            }
            PlainKey& from = _reduced.keys.back();
            from.outX = from.x;
            from.outY = from.y;
            _reduced.keys.push_back({key.x, key.y, key.x, key.y, key.x, key.y});
        }
    }

    void copySegment(std::size_t segment) {
        const PlainKey &from = _source[segment], &to = _source[segment + 1];
        _reduced.keys.back().outX = from.outX;
        _reduced.keys.back().outY = from.outY;
        _reduced.keys.push_back({to.x, to.y, to.inX, to.inY, to.x, to.y});
    }

    void note(double difference, float frame) {
        if (difference > _reduced.worst) {
            _reduced.worst = difference;
            _reduced.worstFrame = frame;
        }
    }

    const std::vector<PlainKey>& _source;
    const CurveBound& _bound;
    const KeepGoing& _keepGoing;
    double _step;
    std::vector<SourceRun> _runs;
    ReducedCurve _reduced;
};

} // namespace

ReducedCurve reduceCurve(const std::vector<PlainKey>& source, const CurveBound& bound,
                         const KeepGoing& keepGoing) {
    if (source.size() < 3 || !(bound.tolerance > 4 * lostDigits(source))) {
        ReducedCurve same;
        same.keys = source;
        return same;
    }
    return CurveReducer(source, bound, keepGoing).run();
}

} // namespace ka::motion
