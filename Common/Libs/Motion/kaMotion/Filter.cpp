#include "operations/Butterworth.h"
#include "operations/EachCurve.h"
#include "operations/FlipFilter.h"
#include "operations/Parallel.h"
#include "operations/Skeleton.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaMotion/DocumentNumber.h>
#include <kaMotion/Failure.h>
#include <kaMotion/Filter.h>
#include <kaMotion/Text.h>
#include <map>
#include <optional>

namespace ka::motion {

namespace {

void check(bool isRight, const char* otherwise) {
    if (!isRight)
        throw Failure(ExitCode::Usage, otherwise);
}

/// The numbers of the three rotation curves of nodes, block by block, because blocks are takes of one node.
std::vector<std::array<std::size_t, 3>> rotationTriples(const CurveList& curves) {
    using Key = std::pair<kaUID, kaUID>;
    std::map<Key, std::array<std::size_t, 3>> found;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const std::size_t channel = channelOf(curves[i]);
        const kaAnimationField* field = kaAnimationManager::the()->getField(curves[i]->getField());
        if (channel == Skeleton::none || channel < 3 || channel > 5 || field == nullptr)
            continue;
        const kaAnimationObject* parent = curves[i]->getParentObject();
        const Key key{parent == nullptr ? 0 : parent->getId(), field->nodeID};
        found.try_emplace(key, std::array{Skeleton::none, Skeleton::none, Skeleton::none})
            .first->second[channel - 3] = i;
    }
    std::vector<std::array<std::size_t, 3>> whole;
    for (const auto& [key, triple] : found)
        if (std::find(triple.begin(), triple.end(), Skeleton::none) == triple.end())
            whole.push_back(triple);
    return whole;
}

/// Frames from key to key where they are even; nothing otherwise.
std::optional<double> evenStep(const Keys& keys) {
    const double first = static_cast<double>(keys.front().x), last = static_cast<double>(keys.back().x);
    const double step = (last - first) / static_cast<double>(keys.size() - 1);
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (std::abs(static_cast<double>(keys[i].x) - (first + static_cast<double>(i) * step)) > 0.01 * step)
            return std::nullopt;
    return step;
}

bool isStepping(const Keys& keys) {
    for (std::size_t i = 0; i + 1 < keys.size(); ++i)
        if (!segmentBetween(keys[i], keys[i + 1]).isStep())
            return false;
    return true;
}

Keys smoothed(const Keys& keys, const LowPass& filter) {
    if (keys.size() < 3 || isStepping(keys))
        return keys;
    std::vector<double> frames, values;
    const double first = static_cast<double>(keys.front().x), last = static_cast<double>(keys.back().x);
    std::optional<double> step = evenStep(keys);
    // Keys further apart than half a period say nothing of what swings that fast.
    if (step && *step * filter.cutOff >= 0.5 * filter.framesPerSecond)
        step.reset();
    if (step) {
        for (const PlainKey& key : keys)
            frames.push_back(static_cast<double>(key.x));
    } else {
        const double widest = std::min(1.0, filter.framesPerSecond / filter.cutOff / 8);
        const double count = std::max(2.0, std::ceil((last - first) / widest));
        check(count < 1e7, "a curve this long takes more than ten million keys to be smoothed");
        step = (last - first) / count;
        for (double i = 0; i <= count; ++i)
            frames.push_back(first + i * *step);
    }
    for (const double frame : frames)
        values.push_back(heldValue(keys, frame));
    values = lowPassed(values, filter.cutOff * *step / filter.framesPerSecond);
    std::vector<double> slopes(values.size(), 0.0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t a = i == 0 ? 0 : i - 1, b = std::min(i + 1, values.size() - 1);
        slopes[i] = (values[b] - values[a]) / (frames[b] - frames[a]);
    }
    return keysThrough(frames, values, slopes, KeyShape::Smooth);
}

double medianOf(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    if (values.size() % 2 == 1)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2;
}

struct Peaks {
    Keys keys;
    std::size_t count = 0;
    double largest = 0.0, frame = 0.0;
};

Peaks withoutPeaks(const Keys& keys, const PeakOptions& options) {
    Peaks peaks;
    peaks.keys = keys;
    std::vector<double> around, distances;
    for (std::size_t i = 1; i + 1 < keys.size(); ++i) {
        const std::size_t from = i > options.reach ? i - options.reach : 0;
        const std::size_t to = std::min(i + options.reach, keys.size() - 1);
        around.clear();
        for (std::size_t k = from; k <= to; ++k)
            if (k != i)
                around.push_back(static_cast<double>(keys[k].y));
        const double median = medianOf(around);
        distances.clear();
        for (const double value : around)
            distances.push_back(std::abs(value - median));
        constexpr double toDeviation = 1.4826; // of a normal distribution
        const double usual = toDeviation * medianOf(distances);
        const auto value = static_cast<double>(keys[i].y);
        const double apart = std::abs(value - median);
        if (!(apart > std::max(options.sensitivity * usual, options.least)))
            continue;
        const PlainKey &left = peaks.keys[i - 1], &right = keys[i + 1];
        const double part = (static_cast<double>(keys[i].x) - static_cast<double>(left.x)) /
                            (static_cast<double>(right.x) - static_cast<double>(left.x));
        const double line =
            static_cast<double>(left.y) + (static_cast<double>(right.y) - static_cast<double>(left.y)) * part;
        PlainKey& key = peaks.keys[i];
        const bool stepsOut = segmentBetween(keys[i], keys[i + 1]).isStep();
        const bool stepsIn = segmentBetween(keys[i - 1], keys[i]).isStep();
        key.y = key.inY = key.outY = documentFloat(line);
        if (!stepsIn)
            makeStraight(peaks.keys[i - 1], key);
        if (!stepsOut)
            makeStraight(key, peaks.keys[i + 1]);
        ++peaks.count;
        if (apart > peaks.largest) {
            peaks.largest = apart;
            peaks.frame = static_cast<double>(key.x);
        }
    }
    return peaks;
}

} // namespace

OperationReport removeFlips(const CurveList& curves, Listener& listener) {
    CurveWork work("remove flips", curves);
    std::vector<std::array<std::size_t, 3>> triples = rotationTriples(work.curves());
    triples.erase(std::remove_if(triples.begin(), triples.end(),
                                 [&](const auto& triple) {
                                     return std::any_of(triple.begin(), triple.end(), [&](std::size_t i) {
                                         return work.sources()[i].size() < 2;
                                     });
                                 }),
                  triples.end());
    std::vector<Unflipped> results(triples.size());
    const bool isDone =
        doAll(triples.size(), listener, "removing flips", [&](std::size_t number, const GoesOn&) {
            const auto& triple = triples[number];
            results[number] =
                unflipped({work.sources()[triple[0]], work.sources()[triple[1]], work.sources()[triple[2]]});
        });
    if (!isDone)
        return work.cancel();
    std::size_t flips = 0;
    Measure before{"largest step before", 0.0, "degrees", "", std::nullopt, std::nullopt};
    Measure after{"largest step after", 0.0, "degrees", "", std::nullopt, std::nullopt};
    for (std::size_t i = 0; i < results.size(); ++i) {
        flips += results[i].flips;
        if (results[i].largestBefore > before.value) {
            before.value = results[i].largestBefore;
            before.frame = results[i].where;
            before.where = curveLabel(work.curves()[triples[i][0]]);
        }
        after.value = std::max(after.value, results[i].largestAfter);
        if (results[i].flips > 0)
            for (std::size_t axis = 0; axis < 3; ++axis)
                work.set(triples[i][axis], std::move(results[i].curves[axis]));
    }
    OperationReport& report = work.report();
    report.measures.push_back({"keys turned to another triple", static_cast<double>(flips), "", "", {}, {}});
    report.measures.push_back(before);
    report.measures.push_back(after);
    return work.finish();
}

OperationReport smooth(const CurveList& curves, const LowPass& filter, Listener& listener) {
    check(filter.cutOff > 0.0 && std::isfinite(filter.cutOff), "the cut-off is above 0");
    check(filter.framesPerSecond > 0.0, "the frame rate is above 0");
    CurveWork work("smooth", curves);
    const bool isDone = work.setEach(listener, "smoothing",
                                     [&](const Keys& keys, std::size_t) { return smoothed(keys, filter); });
    return isDone ? work.finish() : work.cancel();
}

OperationReport removePeaks(const CurveList& curves, const PeakOptions& options, Listener& listener) {
    check(options.reach >= 1 && options.reach <= 1000, "peaks are compared with 1 to 1000 keys on each side");
    check(options.sensitivity > 0.0 && options.least >= 0.0, "a peak stands out by more than 0");
    CurveWork work("remove peaks", curves);
    std::vector<Peaks> peaks(work.curves().size());
    const bool isDone = work.setEach(listener, "removing peaks", [&](const Keys& keys, std::size_t number) {
        peaks[number] = withoutPeaks(keys, options);
        return std::move(peaks[number].keys);
    });
    if (!isDone)
        return work.cancel();
    std::size_t count = 0, largest = 0;
    for (std::size_t i = 0; i < peaks.size(); ++i) {
        count += peaks[i].count;
        largest = peaks[i].largest > peaks[largest].largest ? i : largest;
    }
    OperationReport& report = work.report();
    report.measures.push_back({"peaks", static_cast<double>(count), "", "", {}, {}});
    if (count > 0)
        report.measures.push_back({"largest peak", peaks[largest].largest, curveUnit(work.curves()[largest]),
                                   curveLabel(work.curves()[largest]), peaks[largest].frame, std::nullopt});
    return work.finish();
}

OperationReport changeValues(const CurveList& curves, double factor, double offset, Listener& listener) {
    check(std::isfinite(factor) && std::isfinite(offset), "values are changed by finite numbers");
    CurveWork work("change values", curves);
    const bool isDone = work.setEach(listener, "changing values", [&](const Keys& keys, std::size_t) {
        return withValues(keys, factor, offset);
    });
    return isDone ? work.finish() : work.cancel();
}

} // namespace ka::motion
