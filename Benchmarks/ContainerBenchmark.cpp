#include "Workload.h"

#include <benchmark/benchmark.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationUnit.h>

namespace {

kaAnimationUnit* blockOf(const kaAnimationStrip& clip) {
    return clip.getStreaks().begin()->second->getUnits().front();
}

void addAndRemoveCurve(benchmark::State& state) {
    const kaAnimationStrip* clip = workload::wideClip(100000, 2);
    kaAnimationUnit* block = blockOf(*clip);
    kaAnimationCurve2D* curve = workload::curve(2);
    for (auto _ : state) {
        block->addObject(curve);
        block->subObject(curve, false);
    }
    workload::clearAll();
}

/// Per object: 100 000 curves of 10 keys make 1.1 million.
void destroyClip(benchmark::State& state) {
    const auto curves = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        kaAnimationStrip* clip = workload::wideClip(curves, 10);
        state.ResumeTiming();
        kaAnimationManager::the()->destroyStrip(clip);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

BENCHMARK(addAndRemoveCurve)->Iterations(2000)->Unit(benchmark::kMicrosecond);
// Both take equally long, so that neither is the likelier to meet a quiet moment of the machine.
BENCHMARK(destroyClip)->Arg(10000)->Iterations(10)->Apply(workload::compared);
BENCHMARK(destroyClip)->Arg(100000)->Iterations(1)->Apply(workload::compared);

} // namespace
