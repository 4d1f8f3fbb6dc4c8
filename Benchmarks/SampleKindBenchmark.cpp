#include "PlainSegment.h"
#include "Workload.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <iterator>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaCurveSampling.h>
#include <random>

namespace {

constexpr float Spacing = 10.0F;

/// How far the handles of a segment reach, as parts of its length: `out` from its first key, `in` back from
/// its second.
struct Reach {
    double out;
    double in;
};

using Kind = Reach (*)(std::mt19937& random);

double between(std::mt19937& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

Reach ease(std::mt19937&) {
    return {0.5, 0.5};
}
Reach thirds(std::mt19937&) {
    return {1.0 / 3.0, 1.0 / 3.0};
}
Reach shortOnes(std::mt19937& random) {
    return {between(random, 0.1, 0.3), between(random, 0.1, 0.3)};
}
Reach anyInside(std::mt19937& random) {
    return {between(random, 0.0, 1.0), between(random, 0.0, 1.0)};
}
/// The time's coefficient of t^3 is up to 1e-4; how small, single precision decides.
Reach nearDegenerate(std::mt19937& random) {
    const double out = between(random, 0.0, 2.0 / 3.0);
    return {out, 2.0 / 3.0 - out};
}
Reach step(std::mt19937&) {
    return {0.0, 0.0};
}
/// As importers leave them: thirds of splines, computed smooth handles, some shaped by hand, some held.
Reach mixed(std::mt19937& random) {
    const double which = between(random, 0.0, 1.0);
    if (which < 0.4)
        return thirds(random);
    if (which < 0.7)
        return {between(random, 0.3, 0.5), between(random, 0.3, 0.5)};
    return which < 0.9 ? shortOnes(random) : step(random);
}

std::vector<PlainSegment> segmentsOf(Kind kind, std::size_t count) {
    std::mt19937 random(5);
    std::vector<PlainSegment> segments;
    const auto value = [&] { return static_cast<float>(between(random, -5.0, 5.0)); };
    float y = value();
    for (std::size_t i = 0; i < count; ++i) {
        const Reach reach = kind(random);
        const double x = static_cast<double>(i) * static_cast<double>(Spacing);
        const double end = x + static_cast<double>(Spacing);
        const float next = value();
        const bool held = reach.out == 0.0 && reach.in == 0.0;
        segments.push_back({static_cast<float>(x), y, static_cast<float>(x + reach.out * 10.0),
                            held ? y : value(), static_cast<float>(end - reach.in * 10.0),
                            held ? next : value(), static_cast<float>(end), next});
        y = next;
    }
    return segments;
}

kaAnimationCurve2D* curveOf(const std::vector<PlainSegment>& segments) {
    kaAnimationManager& manager = *kaAnimationManager::the();
    std::vector<kaControlPoint2D*> keys;
    for (std::size_t i = 0; i <= segments.size(); ++i) {
        const PlainSegment& before = segments[i > 0 ? i - 1 : 0];
        const PlainSegment& after = segments[std::min(i, segments.size() - 1)];
        const bool last = i == segments.size();
        kaControlPoint2D* key =
            manager.createPoint2D(last ? before.x3 : after.x0, last ? before.y3 : after.y0, 0);
        key->setTangentType(kaControlPoint2D::TANGENT_USER);
        key->getInTangent()->setPosition(before.x2, before.y2);
        key->getOutTangent()->setPosition(after.x1, after.y1);
        keys.push_back(key);
    }
    kaAnimationCurve2D* curve = manager.createCurve2D(nullptr, "Curve", 0, false);
    curve->setPoints(keys);
    return curve;
}

std::vector<float> framesOf(std::size_t segments, bool inOrder) {
    const float end = static_cast<float>(segments) * Spacing;
    if (!inOrder)
        return workload::randomFrames(1 << 13, end * 0.9999F);
    std::vector<float> frames;
    for (float frame = 0.5F; frame < end; frame += 1.0F)
        frames.push_back(frame);
    return frames;
}

/// The plain formula of the same segments, each of which is known.
void plain(benchmark::State& state, Kind kind, std::size_t keys, bool inOrder) {
    const std::vector<PlainSegment> segments = segmentsOf(kind, keys - 1);
    const std::vector<float> frames = framesOf(segments.size(), inOrder);
    std::size_t i = 0;
    float value = 0.0F;
    for (auto _ : state) {
        const float frame = frames[i];
        benchmark::DoNotOptimize(
            samplePlainly(segments[static_cast<std::size_t>(frame / Spacing)], frame, value));
        benchmark::DoNotOptimize(value);
        i = i + 1 < frames.size() ? i + 1 : 0;
    }
}

void one(benchmark::State& state, Kind kind, std::size_t keys, bool inOrder) {
    kaAnimationCurve2D* curve = curveOf(segmentsOf(kind, keys - 1));
    const std::vector<float> frames = framesOf(keys - 1, inOrder);
    kaAnimationController* controller = kaAnimationController::the();
    std::size_t i = 0;
    float value = 0.0F;
    controller->computeCurveValue(curve, 0.0F, value);
    for (auto _ : state) {
        benchmark::DoNotOptimize(controller->computeCurveValue(curve, frames[i], value));
        benchmark::DoNotOptimize(value);
        i = i + 1 < frames.size() ? i + 1 : 0;
    }
    workload::clearAll();
}

/// All frames in one call.
void many(benchmark::State& state, Kind kind, std::size_t keys, bool inOrder) {
    kaAnimationCurve2D* curve = curveOf(segmentsOf(kind, keys - 1));
    const std::vector<float> frames = framesOf(keys - 1, inOrder);
    std::vector<float> values(frames.size());
    for (auto _ : state) {
        benchmark::DoNotOptimize(kaCurveSampling::sample(curve, frames.data(), frames.size(), values.data()));
        benchmark::ClobberMemory();
    }
    state.counters["frames"] = static_cast<double>(frames.size()); // that one iteration takes
    workload::clearAll();
}

/// Many curves at one frame each time, frames in order.
void curvesAtOnce(benchmark::State& state, Kind kind, std::size_t keys, bool) {
    constexpr std::size_t Curves = 256;
    const std::vector<kaAnimationCurve2D*> curves = [&] {
        std::vector<kaAnimationCurve2D*> made;
        for (std::size_t i = 0; i < Curves; ++i)
            made.push_back(curveOf(segmentsOf(kind, keys - 1)));
        return made;
    }();
    const std::vector<float> frames = framesOf(keys - 1, true);
    std::vector<float> values(Curves);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(kaCurveSampling::sample(curves.data(), Curves, frames[i], values.data()));
        benchmark::ClobberMemory();
        i = i + 1 < frames.size() ? i + 1 : 0;
    }
    state.counters["frames"] = static_cast<double>(Curves);
    workload::clearAll();
}

struct Named {
    const char* name;
    Kind kind;
};
constexpr Named Kinds[] = {{"ease", ease},        {"thirds", thirds},       {"short", shortOnes},
                           {"random", anyInside}, {"near", nearDegenerate}, {"step", step},
                           {"mixed", mixed}};

const bool registered = [] {
    const auto add = [](const std::string& what, auto function, const Named& named, std::size_t keys,
                        bool inOrder) {
        const std::string name =
            what + (inOrder ? "InOrder/" : "Random/") + named.name + "/" + std::to_string(keys);
        benchmark::RegisterBenchmark(name.c_str(), [function, named, keys, inOrder](benchmark::State& state) {
            function(state, named.kind, keys, inOrder);
        });
    };
    for (const Named& named : Kinds)
        for (const bool inOrder : {true, false}) {
            add("plain", plain, named, 256, inOrder);
            for (const std::size_t keys : {std::size_t(16), std::size_t(256), std::size_t(1024)})
                add("sampleOne", one, named, keys, inOrder);
            add("sampleMany", many, named, 256, inOrder);
        }
    add("sampleCurves", curvesAtOnce, Kinds[std::size(Kinds) - 1], 16, true);
    return true;
}();

} // namespace
