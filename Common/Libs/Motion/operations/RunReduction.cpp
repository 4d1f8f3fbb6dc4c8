#include "operations/RunReduction.h"

#include "operations/BezierSplit.h"

#include <algorithm>
#include <cmath>
#include <kaMotion/DocumentNumber.h>

namespace ka::motion {

namespace {

/// What is left of the tolerance for the rounding of what is written.
constexpr double aimedPart = 0.998;

constexpr double sharpPart = 0.1;

/// Ends that are tried, as parts of the way to the furthest: a shorter segment may leave the curve better
/// placed for the next.
constexpr std::array<double, 5> endParts{1.0, 0.93, 0.86, 0.75, 0.6};

/// Ways to one end that are followed further, and values there from which a corner goes on.
constexpr std::size_t mostWays = 4, mostValues = 3;

/// Where the first sample after a corner is aimed at, in tolerances.
constexpr std::array<double, 5> cornerAims{-3.0, -1.0, 0.0, 1.0, 3.0};

/// How far a curve may stray from a line that is to be followed, in tolerances.
constexpr double lineTolerance = 1.5;
constexpr std::size_t mostFollowed = 256;

} // namespace

RunReduction::RunReduction(const std::vector<PlainKey>& source, const SourceRun& run, SourceSamples samples,
                           const CurveBound& bound)
    : _source(source),
      _run(run),
      _samples(std::move(samples)),
      _bound(bound),
      _tolerance(aimedPart * bound.tolerance),
      _search(_samples, _tolerance, _samples.frames.size() - 1),
      _turns(_samples.frames.size(), bound.allowsCorners) {
    for (std::size_t i = 0; i < _samples.keys.size(); ++i) {
        const std::size_t key = _samples.keys[i];
        if (key != SourceSamples::noKey && key > _run.first && key < _run.last)
            _turns[i] = _turns[i] || isSharp(_source, key, sharpPart * _bound.tolerance);
    }
    std::vector<bool> wide = _turns;
    for (std::size_t i = 1; i + 1 < wide.size(); ++i)
        if (_samples.keys[i] == SourceSamples::noKey)
            wide[i] = _turns[i - 1] || _turns[i + 1];
    _turns = wide;
}

bool RunReduction::mayTurn(std::size_t sample) const {
    return sample < lastSample() && _turns[sample];
}

/// Slopes that lead to the samples that follow.
void RunReduction::addSlopes(CurveState state, std::vector<CurveState>& states) const {
    const auto aimAt = [&](std::size_t sample, double offset) {
        const double length =
            static_cast<double>(_samples.frames[sample]) - static_cast<double>(_samples.frames[state.at]);
        state.slope = (_samples.values[sample] + offset * _tolerance - state.value) / length;
        states.push_back(state);
    };
    for (const double aim : cornerAims)
        aimAt(state.at + 1, aim);
}

CurveState RunReduction::bestStart(const CurveState& plain, bool isFixed) {
    if (isFixed)
        return plain;
    std::vector<CurveState> states;
    addSlopes(plain, states);
    for (std::size_t ahead = 2; ahead <= 64 && plain.at + ahead <= lastSample(); ahead *= 2) {
        CurveState state = plain;
        const std::size_t to = plain.at + ahead;
        state.slope = (_samples.values[to] - state.value) / (static_cast<double>(_samples.frames[to]) -
                                                             static_cast<double>(_samples.frames[plain.at]));
        states.push_back(state);
    }
    if (const std::optional<double> own = slopeAfter(_source[_run.first], _source[_run.first + 1])) {
        CurveState state = plain;
        state.slope = *own;
        states.push_back(state);
    }
    CurveState best = states.front();
    std::size_t furthest = _search.reach(best, plain.at + 8);
    for (const CurveState& state : states)
        if (const std::size_t reach = _search.reachBeyond(state, furthest); reach > furthest) {
            furthest = reach;
            best = state;
        }
    return best;
}

/// For how many frames the samples follow the tangent of a state.
double RunReduction::followedBy(const CurveState& state) const {
    const double start = static_cast<double>(_samples.frames[state.at]);
    std::size_t i = state.at + 1;
    for (const std::size_t end = std::min(i + mostFollowed, _samples.frames.size()); i < end; ++i) {
        const double line = state.value + state.slope * (static_cast<double>(_samples.frames[i]) - start);
        if (!(std::abs(line - _samples.values[i]) <= lineTolerance * _tolerance))
            break;
    }
    return static_cast<double>(_samples.frames[i - 1]) - start;
}

/// Of the ways to one end those that differ and look best.
void RunReduction::addSteps(const SegmentChoice& choice, bool isFirstThere,
                            std::vector<SegmentChoice>& steps) const {
    steps.push_back(choice);
    if (!isFirstThere || !mayTurn(choice.end.at))
        return;
    std::vector<CurveState> states;
    addSlopes(choice.end, states);
    for (const CurveState& state : states) {
        steps.push_back(choice);
        steps.back().end = state;
    }
}

std::vector<SegmentChoice> RunReduction::candidates(const CurveState& from, std::size_t reach) {
    std::vector<SegmentChoice> steps, found;
    std::vector<std::pair<double, std::size_t>> order;
    std::size_t before = from.at;
    for (const double part : endParts) {
        const auto length = static_cast<std::size_t>(part * static_cast<double>(reach - from.at) + 0.5);
        const std::size_t to = from.at + std::max<std::size_t>(length, 1);
        if (to == before)
            continue;
        before = to;
        found.clear();
        order.clear();
        _search.choices(from, to, found);
        for (std::size_t i = 0; i < found.size(); ++i)
            order.emplace_back(-followedBy(found[i].end), i);
        std::stable_sort(order.begin(), order.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        std::vector<CurveState> taken;
        std::vector<double> values;
        for (const auto& [followed, i] : order) {
            const CurveState& end = found[i].end;
            const bool isKnown = std::any_of(taken.begin(), taken.end(), [&](const CurveState& other) {
                return std::abs(other.value - end.value) < 0.3 * _tolerance &&
                       std::abs(other.slope - end.slope) < 0.15 * std::abs(other.slope) + 0.02 * _tolerance;
            });
            const bool isNewValue =
                values.size() < mostValues && std::none_of(values.begin(), values.end(), [&](double other) {
                    return std::abs(other - end.value) < 0.4 * _tolerance;
                });
            if ((isKnown || taken.size() >= mostWays) && !(isNewValue && mayTurn(to)))
                continue;
            taken.push_back(end);
            if (isNewValue)
                values.push_back(end.value);
            addSteps(found[i], isNewValue, steps);
        }
    }
    return steps;
}

/// Each one better than those before it.
std::vector<RunReduction::Step> RunReduction::bestSteps(const std::vector<SegmentChoice>& candidates) {
    std::vector<Step> steps;
    std::size_t furthest = 0;
    for (const SegmentChoice& choice : candidates) {
        std::size_t reach = choice.end.at;
        if (choice.end.at < lastSample())
            reach = steps.empty() ? _search.reach(choice.end, choice.end.at + 8)
                                  : _search.reachBeyond(choice.end, furthest);
        if (!steps.empty() && reach <= furthest)
            continue;
        furthest = reach;
        steps.push_back({choice, reach});
    }
    return steps;
}

/// With the digits of a document. Nothing where they do not keep it within the bound.
std::optional<RunReduction::Written> RunReduction::write(const PlainKey& from,
                                                         const SegmentChoice& choice) const {
    const double start = static_cast<double>(from.x),
                 end = static_cast<double>(_samples.frames[choice.end.at]);
    const double length = end - start;
    const bool isLast = choice.end.at == lastSample();
    Written written;
    written.from = from;
    PlainKey& to = written.to;
    to.x = to.outX = isLast ? _source[_run.last].x : documentFloat(end);
    to.y = to.outY = isLast ? _source[_run.last].y : documentFloat(choice.end.value);
    to.inX = documentFloat(end - choice.shape->in() * length);
    to.inY = documentFloat(choice.inValue);
    written.from.outX = documentFloat(start + choice.shape->out() * length);
    written.from.outY = documentFloat(choice.outValue);
    written.end = choice.end;
    written.end.value = static_cast<double>(to.y);
    // What follows takes the direction that the rounded handle has, unless it is to turn.
    const double handle = static_cast<double>(to.x) - static_cast<double>(to.inX);
    if (handle > 0.0 && !mayTurn(choice.end.at))
        written.end.slope = (static_cast<double>(to.y) - static_cast<double>(to.inY)) / handle;
    if (!(from.x < to.x))
        return std::nullopt;
    return written;
}

void RunReduction::measure(Written& written, std::size_t from) const {
    const kaSegmentPoints segment = segmentBetween(written.from, written.to);
    for (std::size_t i = from; i <= written.end.at; ++i) {
        float value = written.to.y;
        if (_samples.frames[i] < segment.x3 && !kaSampleSegment(segment, _samples.frames[i], value))
            value = HUGE_VALF;
        const double difference = std::abs(static_cast<double>(value) - _samples.values[i]);
        if (!(difference <= written.worst)) {
            written.worst = difference;
            written.worstFrame = _samples.frames[i];
        }
    }
}

std::size_t RunReduction::nextKey(std::size_t sample) const {
    ++sample;
    while (_samples.keys[sample] == SourceSamples::noKey)
        ++sample;
    return sample;
}

/// Whether the source's own segment may follow: at a key, in its direction unless the curve may turn there.
bool RunReduction::mayFollowSource(const CurveState& state) const {
    const std::size_t key = _samples.keys[state.at];
    if (key == SourceSamples::noKey || key == _run.last)
        return false;
    if (state.at == 0 || mayTurn(state.at))
        return true;
    const std::optional<double> slope = slopeAfter(_source[key], _source[key + 1]);
    return slope && std::abs(*slope - state.slope) <= 1e-4 * (std::abs(*slope) + _tolerance);
}

/// The source's own way from a sample to its next key.
RunReduction::Written RunReduction::ownSegment(const PlainKey& from, std::size_t at) const {
    const std::size_t end = nextKey(at);
    const std::size_t right = _samples.keys[end];
    kaSegmentPoints points = segmentBetween(_source[right - 1], _source[right]);
    if (_samples.keys[at] == SourceSamples::noKey)
        points = segmentFrom(points, _samples.frames[at]);
    Written written;
    written.from = from;
    written.from.outX = documentFloat(static_cast<double>(points.x1));
    written.from.outY = documentFloat(static_cast<double>(points.y1));
    const PlainKey& key = _source[right];
    written.to = {key.x, key.y, points.x2, points.y2, key.x, key.y};
    const PlainKey& next = right + 1 < _source.size() && right < _run.last ? _source[right + 1] : key;
    written.end = {end, static_cast<double>(key.y), slopeAfter(key, next).value_or(0.0)};
    return written;
}

RunReduction::Written RunReduction::next(const PlainKey& from, const CurveState& state, std::size_t& guess) {
    std::size_t reach = _search.reach(state, guess);
    if (const std::size_t own = nextKey(state.at); reach < own && mayFollowSource(state)) {
        Written written = ownSegment(from, state.at);
        measure(written, state.at);
        if (written.worst <= _bound.tolerance) {
            guess = written.end.at + 8;
            return written;
        }
    }
    while (reach > state.at) {
        const std::vector<Step> steps = bestSteps(candidates(state, reach));
        for (std::size_t i = steps.size(); i-- > 0;) {
            std::optional<Written> written = write(from, steps[i].choice);
            if (!written)
                continue;
            measure(*written, state.at);
            if (written->worst > _bound.tolerance)
                continue;
            guess = steps[i].reach;
            return *written;
        }
        reach = state.at + (reach - state.at) / 2;
    }
    Written written = ownSegment(from, state.at);
    measure(written, state.at);
    guess = written.end.at + 8;
    return written;
}

/// The run as it was, where nothing is won.
void RunReduction::keepSource(ReducedCurve& reduced) const {
    for (std::size_t i = _run.first; i < _run.last; ++i) {
        const PlainKey& to = _source[i + 1];
        reduced.keys.back().outX = _source[i].outX;
        reduced.keys.back().outY = _source[i].outY;
        reduced.keys.push_back({to.x, to.y, to.inX, to.inY, to.x, to.y});
    }
}

bool RunReduction::run(const RunEnds& ends, const KeepGoing& keepGoing, ReducedCurve& reduced) {
    if (ends.endSlope)
        _search.endWithSlope(*ends.endSlope);
    CurveState state{0, _samples.values.front(), ends.startSlope.value_or(0.0)};
    state = bestStart(state, ends.startSlope.has_value());
    std::size_t guess = 16;
    ReducedCurve run;
    run.keys.push_back(reduced.keys.back());
    while (state.at < lastSample()) {
        if (keepGoing && !keepGoing())
            return false;
        const Written written = next(run.keys.back(), state, guess);
        run.keys.back() = written.from;
        run.keys.push_back(written.to);
        state = written.end;
        if (written.worst > run.worst) {
            run.worst = written.worst;
            run.worstFrame = written.worstFrame;
        }
    }
    if (run.worst > _bound.tolerance || run.keys.size() > _run.last - _run.first) {
        keepSource(reduced);
        return true;
    }
    reduced.keys.pop_back();
    reduced.keys.insert(reduced.keys.end(), run.keys.begin(), run.keys.end());
    if (run.worst > reduced.worst) {
        reduced.worst = run.worst;
        reduced.worstFrame = run.worstFrame;
    }
    return true;
}

} // namespace ka::motion
