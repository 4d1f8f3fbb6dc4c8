#include "Workload.h"

#include <OpenSG/OSGThread.h>
#include <benchmark/benchmark.h>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaControlPoint2D.h>

namespace {

constexpr std::size_t Curves = 10000;
constexpr std::size_t Keys = 16;

/// Frames run through the clip, so that every curve has a new value each time.
void evaluateChanging(benchmark::State& state) {
    const workload::BoundClip bound = workload::boundClip(Curves, Keys);
    float frame = 0.5F;
    kaAnimationController::the()->evaluateObject(bound.clip, frame, false); // what the first one prepares
    for (auto _ : state) {
        kaAnimationController::the()->evaluateObject(bound.clip, frame, false);
        osg::PThreadBase::getCurrentChangeList()->clearAll(); // as a host does after each frame
        frame += 1.0F;
        if (frame >= bound.end)
            frame = 0.5F;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Curves));
    workload::clearAll();
}

/// Frames run on behind the clip's end, where every curve is held.
void evaluateHeld(benchmark::State& state) {
    const workload::BoundClip bound = workload::boundClip(Curves, Keys);
    float frame = bound.end + 1.0F;
    kaAnimationController::the()->evaluateObject(bound.clip, frame, false);
    for (auto _ : state) {
        kaAnimationController::the()->evaluateObject(bound.clip, frame, false);
        osg::PThreadBase::getCurrentChangeList()->clearAll(); // as a host does after each frame
        frame += 1.0F;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Curves));
    workload::clearAll();
}

/// A key inside one of the curves, at a third of 15 steps, is dragged to and fro, a frame after each move.
void evaluateAfterEdit(benchmark::State& state) {
    const workload::BoundClip bound = workload::boundClip(Curves, Keys);
    kaAnimationCurve2D* curve = bound.clip->getCurves().front();
    curve->findPoint(bound.end / 3.0F)->setSelected(true);
    kaAnimationController::the()->evaluateObject(bound.clip, 0.5F, false);
    float step = 0.25F;
    for (auto _ : state) {
        curve->moveSelectedPoints(osg::Vec2f(step, 0.1F), false, false, true, false);
        kaAnimationController::the()->evaluateObject(bound.clip, 0.5F, false);
        osg::PThreadBase::getCurrentChangeList()->clearAll();
        step = -step;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Curves));
    workload::clearAll();
}

BENCHMARK(evaluateChanging)->Iterations(150)->Unit(benchmark::kMicrosecond);
BENCHMARK(evaluateHeld)->Iterations(150)->Unit(benchmark::kMicrosecond);
BENCHMARK(evaluateAfterEdit)->Iterations(150)->Unit(benchmark::kMicrosecond);

} // namespace
