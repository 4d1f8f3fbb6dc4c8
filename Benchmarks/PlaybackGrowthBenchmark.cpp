#include "Workload.h"

#include <OpenSG/OSGPerspectiveCamera2.h>
#include <OpenSG/OSGThread.h>
#include <benchmark/benchmark.h>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <string>

// Playback of many objects, at n and 10 n; and what is evaluated curve by curve instead of as a clip.

namespace {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

kaAnimationController& controller() {
    return *kaAnimationController::the();
}

int countOf(const benchmark::State& state) {
    return static_cast<int>(state.range(0));
}

double clockSeconds = 0.0;

double readClock() {
    return clockSeconds;
}

/// The host's clock for as long as this lives.
class Clock {
  public:
    Clock() {
        clockSeconds = 0.0;
        kaAnimationController::setTimeCB(&readClock);
    }
    ~Clock() { kaAnimationController::setTimeCB(nullptr); }
};

std::vector<kaAnimationUnit*> repeatingBlocks(int count) {
    std::vector<kaAnimationUnit*> blocks;
    for (int i = 0; i < count; ++i) {
        blocks.push_back(manager().createUnit(0ULL));
        blocks.back()->addObject(workload::curve(4));
        blocks.back()->setRepeating(true);
    }
    return blocks;
}

std::vector<kaAnimationUnit*> runningBlocks(int count) {
    std::vector<kaAnimationUnit*> blocks = repeatingBlocks(count);
    for (kaAnimationUnit* block : blocks)
        controller().addWaitingObject(block);
    controller().loop();
    return blocks;
}

/// Per tick, with that many blocks playing.
void tickRunning(benchmark::State& state) {
    const Clock clock;
    runningBlocks(countOf(state));
    controller().loop();
    for (auto _ : state) {
        clockSeconds += 0.04;
        controller().loop();
    }
    workload::clearAll();
}

/// A tick with nothing to do, after as many objects as that have waited and been destroyed.
void tickAfterPeak(benchmark::State& state) {
    const Clock clock;
    std::vector<kaAnimationUnit*> blocks;
    for (int i = 0; i < countOf(state); ++i) {
        blocks.push_back(manager().createUnit(0ULL));
        controller().addWaitingObject(blocks.back());
    }
    controller().loop();
    for (kaAnimationUnit* block : blocks)
        manager().destroyUnit(block);
    controller().loop();
    for (auto _ : state) {
        clockSeconds += 0.04;
        controller().loop();
    }
    workload::clearAll();
}

/// Objects that run get other ids and are destroyed one by one.
void renameAndDestroyRunning(benchmark::State& state) {
    const Clock clock;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<kaAnimationUnit*> blocks;
        for (int i = 0; i < countOf(state); ++i) {
            blocks.push_back(manager().createUnit(0ULL));
            controller().addWaitingObject(blocks.back());
        }
        controller().loop();
        state.ResumeTiming();
        for (kaAnimationUnit* block : blocks)
            manager().setID(manager().createUID(), block);
        for (kaAnimationUnit* block : blocks)
            manager().destroyUnit(block);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

void destroyWaiting(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<kaAnimationUnit*> blocks;
        for (int i = 0; i < countOf(state); ++i) {
            blocks.push_back(manager().createUnit(0ULL));
            controller().addWaitingObject(blocks.back());
        }
        state.ResumeTiming();
        for (kaAnimationUnit* block : blocks)
            manager().destroyUnit(block);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

/// Frames run through the curves of a clip, `evaluate(clip, frame)` each.
template <class Prepare, class Evaluate>
void frames(benchmark::State& state, Prepare&& prepare, Evaluate&& evaluate) {
    const workload::BoundClip bound = workload::boundClip(static_cast<std::size_t>(countOf(state)), 16);
    kaAnimationManager::setSceneRootNode(bound.root);
    prepare(bound);
    float frame = 0.5F;
    evaluate(bound, frame);
    for (auto _ : state) {
        evaluate(bound, frame);
        osg::PThreadBase::getCurrentChangeList()->clearAll();
        frame += 1.0F;
        if (frame >= bound.end)
            frame = 0.5F;
    }
    kaAnimationManager::setSceneRootNode(osg::NullFC);
    workload::clearAll();
}

/// For what is compared with the next ones: all curves as one clip.
void curvesOfAClip(benchmark::State& state) {
    frames(
        state, [](const workload::BoundClip&) {},
        [](const workload::BoundClip& bound, float frame) {
            controller().evaluateObject(bound.clip, frame, false);
        });
}

void curvesInAList(benchmark::State& state) {
    std::vector<kaAnimationCurve2D*> curves;
    frames(
        state, [&curves](const workload::BoundClip& bound) { curves = bound.clip->getCurves(); },
        [&curves](const workload::BoundClip&, float frame) {
            controller().evaluateCurves(curves, frame, false);
        });
}

/// With a shutter open for a second, so that samples count seconds from the current frame.
void giveCamera(osg::PerspectiveCamera2Ptr& camera) {
    static const osg::PerspectiveCamera2Ptr kept = [] {
        osg::PerspectiveCamera2Ptr made = osg::PerspectiveCamera2::create();
        osg::addRefCP(made);
        made->setShutterSpeed(1.0F);
        return made;
    }();
    camera = kept;
}

/// Samples of the clip's curves around a frame, all of them blurred.
void curvesBlurred(benchmark::State& state) {
    frames(
        state,
        [](const workload::BoundClip& bound) {
            kaAnimationController::setCameraCB(&giveCamera);
            for (kaAnimationCurve2D* curve : bound.clip->getCurves())
                curve->setMotionBlur(true);
        },
        [](const workload::BoundClip& bound, float frame) {
            controller().executeMotionBlur(frame / 25.0F, bound.clip);
        });
    kaAnimationController::setCameraCB(nullptr);
}

/// The blocks that the nodes of the scene list, three curves each.
void curvesOfActiveBlocks(benchmark::State& state) {
    frames(
        state,
        [](const workload::BoundClip& bound) {
            // Blocks that stand for themselves, on no track.
            osg::UInt32 child = 0;
            for (kaAnimationObject* track : bound.clip->getObjects())
                for (kaAnimationObject* block : track->getObjects()) {
                    track->subObject(block, false);
                    kaAnimationUtils::addAnimationObject(bound.root->getChild(child++), block);
                }
        },
        [](const workload::BoundClip&, float frame) {
            controller().evaluate(frame, false, false, true, false);
        });
}

/// Events in a track, all of them behind the frame.
void passSequences(benchmark::State& state) {
    kaAnimationStreak* track = manager().createStreak(0ULL);
    for (int i = 0; i < countOf(state); ++i)
        track->addObject(manager().createSequence("event" + std::to_string(i), 0));
    float frame = 1.0F;
    controller().evaluateObject(track, frame, false);
    for (auto _ : state)
        controller().evaluateObject(track, frame += 1.0F, false);
    workload::clearAll();
}

BENCHMARK(tickRunning)->Arg(10000)->Arg(100000)->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(tickAfterPeak)->Arg(100000)->Arg(1000000)->Iterations(20000);
BENCHMARK(renameAndDestroyRunning)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(destroyWaiting)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(curvesOfAClip)->Arg(3000)->Arg(30000)->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(curvesInAList)->Arg(3000)->Arg(30000)->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(curvesBlurred)->Arg(3000)->Arg(30000)->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(curvesOfActiveBlocks)->Arg(3000)->Arg(30000)->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(passSequences)->Arg(1000)->Arg(10000)->Iterations(20)->Unit(benchmark::kMicrosecond);

const bool registered = [] {
    workload::drawn("objects ticked", tickRunning, 100000, true);
    workload::drawn("waiting objects destroyed", destroyWaiting, 100000, true);
    workload::drawn("running objects renamed, destroyed", renameAndDestroyRunning, 100000, true);
    workload::drawn("curves evaluated outside a clip", curvesInAList, 100000, true);
    workload::drawn("curves evaluated as a clip", curvesOfAClip, 100000, true);
    return true;
}();

} // namespace
