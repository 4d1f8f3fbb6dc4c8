#include "Workload.h"

#include <OpenSG/OSGTransform3D.h>
#include <benchmark/benchmark.h>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>

// Edits of long curves and tracks: at n and 10 n, one edit among n or n of them.

namespace {

constexpr float Spacing = 10.0F;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

int countOf(const benchmark::State& state) {
    return static_cast<int>(state.range(0));
}

void sample(kaAnimationCurve2D* curve, float frame) {
    float value = 0.0F;
    benchmark::DoNotOptimize(kaAnimationController::the()->computeCurveValue(curve, frame, value));
}

kaAnimationCurve2D* sampledCurve(const benchmark::State& state) {
    kaAnimationCurve2D* curve = workload::curve(static_cast<std::size_t>(state.range(0)));
    sample(curve, 1.0F);
    return curve;
}

kaAnimationUnit* blockOver(float begin, float end) {
    kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "Curve", 0, false);
    curve->addObject(manager().createPoint2D(begin, 1.0F, 0));
    curve->addObject(manager().createPoint2D(end, 2.0F, 0));
    kaAnimationUnit* block = manager().createUnit(0ULL);
    block->addObject(curve);
    return block;
}

/// A key at the end of that many and a sample, again and again.
void record(benchmark::State& state) {
    kaAnimationCurve2D* curve = sampledCurve(state);
    float frame = curve->getEnd();
    for (auto _ : state) {
        frame += Spacing;
        curve->addObject(manager().createPoint2D(frame, 1.0F, 0));
        sample(curve, frame - 1.0F);
    }
    workload::clearAll();
}

/// A key set between others in the middle of the curve, and a sample.
void setKeyInside(benchmark::State& state) {
    kaAnimationCurve2D* curve = sampledCurve(state);
    float frame = static_cast<float>(countOf(state) / 2) * Spacing + Spacing / 2.0F;
    for (auto _ : state) {
        manager().createCurvePoint(curve, frame, false);
        sample(curve, frame + 1.0F);
        frame += Spacing;
    }
    workload::clearAll();
}

/// Twenty keys of a curve dragged to and fro, a sample after each move.
void dragTwenty(benchmark::State& state) {
    kaAnimationCurve2D* curve = sampledCurve(state);
    const float middle = static_cast<float>(countOf(state) / 2) * Spacing;
    for (int i = 0; i < 20; ++i)
        curve->findPoint(middle + static_cast<float>(3 * i) * Spacing)->setSelected(true);
    float step = 0.25F;
    for (auto _ : state) {
        curve->moveSelectedPoints(osg::Vec2f(step, 0.1F), false, false, true, false);
        sample(curve, middle);
        step = -step;
    }
    workload::clearAll();
}

/// Blocks side by side, put on a track in ascending order.
void insertBlocks(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<kaAnimationUnit*> blocks;
        for (int i = 0; i < countOf(state); ++i)
            blocks.push_back(
                blockOver(static_cast<float>(i) * Spacing, static_cast<float>(i) * Spacing + 9.0F));
        kaAnimationStreak* track = manager().createStreak(0ULL);
        state.ResumeTiming();
        for (kaAnimationUnit* block : blocks)
            track->insertObject(block);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

/// Keys of one value, as of a visibility, taken out one by one.
void removeConstantKeys(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "Curve", 0, false);
        std::vector<kaControlPoint2D*> keys;
        for (int i = 0; i < countOf(state); ++i)
            keys.push_back(manager().createPoint2D(static_cast<float>(i) * Spacing, 1.0F, 0));
        curve->setPoints(keys);
        state.ResumeTiming();
        for (kaControlPoint2D* key : keys)
            curve->subObject(key, false);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

void addDescendingKeys(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "Curve", 0, false);
        std::vector<kaControlPoint2D*> keys;
        for (int i = countOf(state); i > 0; --i)
            keys.push_back(manager().createPoint2D(static_cast<float>(i) * Spacing, 1.0F, 0));
        state.ResumeTiming();
        for (kaControlPoint2D* key : keys)
            curve->addObject(key);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

/// Curves that one node lists, destroyed in the order of its list.
void destroyListedCurves(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        osg::NodePtr node = osg::Node::create();
        osg::addRefCP(node);
        node->setCore(osg::Transform3D::create());
        std::vector<kaAnimationCurve2D*> curves;
        for (int i = 0; i < countOf(state); ++i) {
            curves.push_back(manager().createCurve2D(nullptr, "Curve", 0, false));
            kaAnimationUtils::addAnimationObject(node, curves.back());
        }
        state.ResumeTiming();
        for (kaAnimationCurve2D* curve : curves)
            manager().destroyCurve2D(curve);
        state.PauseTiming();
        osg::subRefCP(node);
        workload::clearAll();
        state.ResumeTiming();
    }
}

BENCHMARK(record)->Arg(10000)->Arg(100000)->Iterations(1000);
BENCHMARK(setKeyInside)->Arg(10000)->Arg(100000)->Iterations(1000);
BENCHMARK(dragTwenty)->Arg(10000)->Arg(100000)->Iterations(300);
BENCHMARK(insertBlocks)->Arg(2000)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(removeConstantKeys)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(addDescendingKeys)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(destroyListedCurves)->Arg(10000)->Arg(40000)->Iterations(1)->Unit(benchmark::kMillisecond);

const bool registered = [] {
    workload::drawn("key recorded and sampled", record, 1000000, false);
    workload::drawn("key set inside and sampled", setKeyInside, 1000000, false);
    workload::drawn("twenty keys dragged and sampled", dragTwenty, 1000000, false);
    workload::drawn("keys removed one by one", removeConstantKeys, 1000000, true);
    workload::drawn("blocks inserted on a track", insertBlocks, 100000, true);
    workload::drawn("listed curves destroyed", destroyListedCurves, 100000, true);
    return true;
}();

} // namespace
