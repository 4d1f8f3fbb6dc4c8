#include "Workload.h"

#include <OpenSG/OSGThread.h>
#include <benchmark/benchmark.h>
#include <functional>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>

// What a frame costs when something is edited before it that the frame does not show, against a frame before
// which nothing is edited; and many blocks played side by side while a key of one of them is dragged.

namespace {

constexpr std::size_t Curves = 5000;
constexpr std::size_t Keys = 16;

/// Frames run through a clip, each after `edit` of a block that is not in it.
void evaluateAfter(benchmark::State& state,
                   const std::function<void(kaAnimationUnit& block, bool odd)>& edit) {
    const workload::BoundClip bound = workload::boundClip(Curves, Keys);
    kaAnimationUnit* unrelated = kaAnimationManager::the()->createUnit("unrelated", 0);
    unrelated->addObject(workload::curve(Keys));
    float frame = 0.5F;
    kaAnimationController::the()->evaluateObject(bound.clip, frame, false);
    bool odd = false;
    for (auto _ : state) {
        odd = !odd;
        edit(*unrelated, odd);
        kaAnimationController::the()->evaluateObject(bound.clip, frame, false);
        osg::PThreadBase::getCurrentChangeList()->clearAll();
        frame += 1.0F;
        if (frame >= bound.end)
            frame = 0.5F;
    }
    workload::clearAll();
}

void unedited(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit&, bool) {});
}

void unrelatedSelected(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit& block, bool odd) { block.setSelected(odd); });
}

void unrelatedSwitched(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit& block, bool odd) { block.setActive(odd); });
}

void unrelatedRenamed(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit& block, bool odd) { block.setName(odd ? "one" : "other"); });
}

void unrelatedMoved(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit& block, bool odd) { block.move(odd ? 1.0F : -1.0F, true); });
}

void unrelatedMade(benchmark::State& state) {
    evaluateAfter(state, [](kaAnimationUnit&, bool) {
        kaAnimationManager::the()->destroyUnit(kaAnimationManager::the()->createUnit("another", 0));
    });
}

/// Every block is evaluated by itself at every frame; `drag` moves a key of the first before each frame.
void manyBlocks(benchmark::State& state, bool drag) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const workload::BoundClip bound = workload::boundClip(3 * count, Keys);
    std::vector<kaAnimationObject*> blocks;
    for (const kaAnimationObject* track : bound.clip->getObjects())
        for (kaAnimationObject* block : track->getObjects())
            blocks.push_back(block);
    kaAnimationCurve2D* curve = blocks.front()->getCurves().front();
    curve->findPoint(bound.end / 3.0F)->setSelected(true);
    float frame = 0.5F;
    float step = 0.25F;
    for (auto _ : state) {
        if (drag)
            curve->moveSelectedPoints(osg::Vec2f(step, 0.1F), false, false, true, false);
        step = -step;
        for (kaAnimationObject* block : blocks)
            kaAnimationController::the()->evaluateObject(block, frame, false);
        osg::PThreadBase::getCurrentChangeList()->clearAll();
        frame += 1.0F;
        if (frame >= bound.end)
            frame = 0.5F;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(blocks.size()));
    workload::clearAll();
}

void blocksPlayed(benchmark::State& state) {
    manyBlocks(state, false);
}

void blocksPlayedOneDragged(benchmark::State& state) {
    manyBlocks(state, true);
}

BENCHMARK(unedited)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(unrelatedSelected)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(unrelatedSwitched)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(unrelatedRenamed)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(unrelatedMoved)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(unrelatedMade)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(blocksPlayed)->Arg(60)->Arg(128)->Unit(benchmark::kMicrosecond)->Apply(workload::compared);
BENCHMARK(blocksPlayedOneDragged)
    ->Arg(60)
    ->Arg(128)
    ->Unit(benchmark::kMicrosecond)
    ->Apply(workload::compared);

} // namespace
