#include "PlainSegment.h"
#include "Workload.h"

#include <benchmark/benchmark.h>
#include <kaAnimationController.h>

namespace {

constexpr std::size_t FrameCount = 1 << 16;

/// The reference: one known segment of the very shape that the curves here are made of.
void referenceSegment(benchmark::State& state) {
    const PlainSegment segment{0.0F, 1.0F, 2.5F, 1.3F, 5.5F, 3.8F, 10.0F, 4.0F};
    const std::vector<float> frames = workload::randomFrames(FrameCount, 10.0F);
    std::size_t i = 0;
    float value = 0.0F;
    for (auto _ : state) {
        benchmark::DoNotOptimize(samplePlainly(segment, frames[i++ % FrameCount], value));
        benchmark::DoNotOptimize(value);
    }
}

void sampleRandom(benchmark::State& state) {
    const auto keys = static_cast<std::size_t>(state.range(0));
    kaAnimationCurve2D* curve = workload::curve(keys);
    const std::vector<float> frames = workload::randomFrames(FrameCount, curve->getEnd());
    kaAnimationController* controller = kaAnimationController::the();
    std::size_t i = 0;
    float value = 0.0F;
    // Packs the curve, which is sampleAfterEdit's to measure.
    controller->computeCurveValue(curve, 0.0F, value);
    for (auto _ : state) {
        benchmark::DoNotOptimize(controller->computeCurveValue(curve, frames[i++ % FrameCount], value));
        benchmark::DoNotOptimize(value);
    }
    workload::clearAll();
}

void sampleInOrder(benchmark::State& state) {
    const auto keys = static_cast<std::size_t>(state.range(0));
    kaAnimationCurve2D* curve = workload::curve(keys);
    kaAnimationController* controller = kaAnimationController::the();
    const float end = curve->getEnd();
    float frame = 0.0F;
    float value = 0.0F;
    controller->computeCurveValue(curve, frame, value);
    for (auto _ : state) {
        benchmark::DoNotOptimize(controller->computeCurveValue(curve, frame, value));
        benchmark::DoNotOptimize(value);
        frame += 1.0F;
        if (frame > end)
            frame = 0.0F;
    }
    workload::clearAll();
}

/// The first sample after a key has moved.
void sampleAfterEdit(benchmark::State& state) {
    kaAnimationCurve2D* curve = workload::curve(static_cast<std::size_t>(state.range(0)));
    kaControlPoint2D* key = curve->findPoint(curve->getEnd());
    kaAnimationController* controller = kaAnimationController::the();
    float value = 0.0F;
    for (auto _ : state) {
        key->setPosition(key->getPosition()[0], value);
        benchmark::DoNotOptimize(controller->computeCurveValue(curve, 5.0F, value));
    }
    workload::clearAll();
}

BENCHMARK(referenceSegment);
BENCHMARK(sampleRandom)->Arg(16)->Arg(128)->Arg(1024)->Arg(100000);
BENCHMARK(sampleInOrder)->Arg(16)->Arg(1024);
BENCHMARK(sampleAfterEdit)->Arg(16)->Arg(1024)->Arg(100000);

} // namespace
