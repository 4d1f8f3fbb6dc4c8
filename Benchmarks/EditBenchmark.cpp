#include "ChildProcess.h"
#include "Workload.h"

#include <benchmark/benchmark.h>
#include <kaAnimationManager.h>

namespace {

void buildCurve(benchmark::State& state, bool shuffled) {
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        const std::vector<kaControlPoint2D*> keys = workload::looseKeys(count, shuffled);
        kaAnimationCurve2D* curve = kaAnimationManager::the()->createCurve2D(nullptr, "Curve", 0, false);
        state.ResumeTiming();
        for (kaControlPoint2D* key : keys)
            curve->addObject(key);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

void buildAscending(benchmark::State& state) {
    buildCurve(state, false);
}

void buildShuffled(benchmark::State& state) {
    buildCurve(state, true);
}

void dragOneOf100000(benchmark::State& state) {
    kaAnimationCurve2D* curve = workload::curve(100000);
    curve->findPoint(500000.0F)->setSelected(true);
    float step = 0.01F;
    for (auto _ : state) {
        curve->moveSelectedPoints(osg::Vec2f(step, 0.1F), false, false, true, false);
        step = -step;
    }
    workload::clearAll();
}

/// The memory that a process has come to hold for a curve of 100 000 keys made one by one, per key.
void memoryPerKey(benchmark::State& state) {
    constexpr std::size_t Keys = 100000;
    const auto build = [] {
        kaAnimationCurve2D* curve = kaAnimationManager::the()->createCurve2D(nullptr, "Curve", 0, false);
        for (kaControlPoint2D* key : workload::looseKeys(Keys, false))
            curve->addObject(key);
    };
    for (auto _ : state) {
        const Measured measured = measureInChild([] {}, build);
        state.SetIterationTime(measured.seconds);
        state.counters["bytes"] = measured.peakMegabytes * 1024.0 * 1024.0 / static_cast<double>(Keys);
    }
}

// What is compared takes equally long, so that neither is the likelier to meet a quiet moment of the machine.
BENCHMARK(buildAscending)->Arg(10000)->Iterations(30)->Apply(workload::compared);
BENCHMARK(buildAscending)->Arg(100000)->Iterations(3)->Apply(workload::compared);
BENCHMARK(buildShuffled)->Arg(10000)->Iterations(30)->Apply(workload::compared);
BENCHMARK(buildShuffled)->Arg(100000)->Iterations(3)->Apply(workload::compared);
BENCHMARK(dragOneOf100000)->Iterations(20000)->Unit(benchmark::kMicrosecond);
BENCHMARK(memoryPerKey)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
