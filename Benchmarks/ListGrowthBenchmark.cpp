#include "Workload.h"

#include <OpenSG/OSGTransform3D.h>
#include <benchmark/benchmark.h>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationStreak.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <limits>
#include <string>

// Lists of many: of keys that pass each other, of objects on a node, of names, of blocks that overlap, of nodes.
// At n and 10 n.

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

osg::NodePtr transformNode() {
    osg::NodePtr node = osg::Node::create();
    osg::addRefCP(node);
    node->setCore(osg::Transform3D::create());
    return node;
}

kaAnimationUnit* blockOver(float begin, float end) {
    kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "Curve", 0, false);
    curve->addObject(manager().createPoint2D(begin, 1.0F, 0));
    curve->addObject(manager().createPoint2D(end, 2.0F, 0));
    kaAnimationUnit* block = manager().createUnit(0ULL);
    block->addObject(curve);
    return block;
}

/// Times what `work` does to what `prepare` has made, anew for each round.
template <class Prepare, class Work>
void timed(benchmark::State& state, Prepare&& prepare, Work&& work) {
    for (auto _ : state) {
        state.PauseTiming();
        auto made = prepare();
        state.ResumeTiming();
        work(made);
        state.PauseTiming();
        workload::clearAll();
        state.ResumeTiming();
    }
}

/// All keys dragged to where others stood.
void dragAll(benchmark::State& state) {
    timed(
        state,
        [&state] {
            kaAnimationCurve2D* curve = workload::curve(static_cast<std::size_t>(countOf(state)));
            curve->setSelected(true);
            for (const auto& entry : curve->getPoints())
                entry.second->setSelected(true);
            return curve;
        },
        [](kaAnimationCurve2D* curve) {
            curve->moveSelectedPoints(osg::Vec2f(-1.5F * Spacing, 0.0F), false, false, true, false);
        });
}

/// One key dragged by whole frames, a sample after each move.
void dragByFrames(benchmark::State& state) {
    kaAnimationCurve2D* curve = workload::curve(static_cast<std::size_t>(countOf(state)));
    const float middle = static_cast<float>(countOf(state) / 2) * Spacing;
    kaControlPoint2D* key = curve->findPoint(middle);
    key->setSelected(true);
    sample(curve, middle);
    int i = 0;
    for (auto _ : state) {
        curve->moveSelectedPoints(osg::Vec2f(i % 8 < 4 ? 1.0F : -1.0F, 0.0F), true, false, true, false);
        sample(curve, middle);
        ++i;
    }
    workload::clearAll();
}

/// One edit and a sample of a curve among whose keys one stands at no frame.
void editBesideNaN(benchmark::State& state) {
    kaAnimationCurve2D* curve = workload::curve(static_cast<std::size_t>(countOf(state)));
    curve->findPoint(5.0F * Spacing)->setPosition(std::numeric_limits<float>::quiet_NaN(), 1.0F);
    kaControlPoint2D* key = curve->findPoint(static_cast<float>(countOf(state) / 2) * Spacing);
    sample(curve, 1.0F);
    float value = 0.0F;
    for (auto _ : state) {
        key->setPosition(key->getPosition()[0], value += 0.1F);
        sample(curve, key->getPosition()[0] + 1.0F);
    }
    workload::clearAll();
}

void listOnANode(benchmark::State& state) {
    osg::NodePtr node = transformNode();
    timed(
        state,
        [&state] {
            std::vector<kaAnimationUnit*> blocks;
            for (int i = 0; i < countOf(state); ++i)
                blocks.push_back(blockOver(0.0F, Spacing));
            return blocks;
        },
        [&node](const std::vector<kaAnimationUnit*>& blocks) {
            for (kaAnimationUnit* block : blocks)
                kaAnimationUtils::addAnimationObject(node, block);
        });
    osg::subRefCP(node);
}

/// As many blocks, copied from one node and pasted to another.
void pasteToANode(benchmark::State& state) {
    osg::NodePtr from = transformNode();
    osg::NodePtr to = transformNode();
    timed(
        state,
        [&] {
            for (int i = 0; i < countOf(state); ++i)
                kaAnimationUtils::addAnimationObject(from, blockOver(0.0F, Spacing));
            return 0;
        },
        [&](int) {
            manager().copy(from);
            manager().paste(to, true);
        });
    osg::subRefCP(from);
    osg::subRefCP(to);
}

/// Objects that are all asked to be called the same.
void nameUniquely(benchmark::State& state) {
    timed(
        state, [] { return 0; },
        [&state](int) {
            for (int i = 0; i < countOf(state); ++i) {
                const std::string name = "block" + std::to_string(i);
                if (manager().isObjectNameUnique(name))
                    manager().createUnit(name, 0);
            }
        });
}

/// Per look-up, among as many.
void findByName(benchmark::State& state) {
    for (int i = 0; i < countOf(state); ++i)
        manager().createUnit("block" + std::to_string(i), 0);
    const std::string name = "block" + std::to_string(countOf(state) / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(manager().getObject(name));
    workload::clearAll();
}

/// Blocks that all overlap: each needs a track of its own.
void insertOverlapping(benchmark::State& state) {
    timed(
        state,
        [&state] {
            std::vector<kaAnimationUnit*> blocks;
            for (int i = 0; i < countOf(state); ++i)
                blocks.push_back(blockOver(0.0F, Spacing));
            return blocks;
        },
        [](const std::vector<kaAnimationUnit*>& blocks) {
            kaAnimationStrip* clip = manager().createStrip(0ULL);
            for (kaAnimationUnit* block : blocks)
                clip->insertObject(block);
        });
}

/// Taken out of a clip of as many tracks again, one by one.
void takeOutOfTracks(benchmark::State& state) {
    timed(
        state,
        [&state] {
            kaAnimationStrip* clip = manager().createStrip(0ULL);
            std::vector<kaAnimationUnit*> blocks;
            for (int i = 0; i < countOf(state); ++i) {
                kaAnimationStreak* track = manager().createStreak(0ULL);
                blocks.push_back(blockOver(0.0F, Spacing));
                track->addObject(blocks.back());
                clip->addObject(track);
            }
            return std::pair(clip, blocks);
        },
        [](const std::pair<kaAnimationStrip*, std::vector<kaAnimationUnit*>>& made) {
            for (kaAnimationUnit* block : made.second)
                made.first->subObject(block, false);
        });
}

/// A clip in a clip in a clip, as many levels, made twice as long.
void stretchNested(benchmark::State& state) {
    kaAnimationStrip* outermost = nullptr;
    kaAnimationObject* inner = blockOver(0.0F, Spacing);
    for (int i = 0; i < countOf(state); ++i) {
        kaAnimationStreak* track = manager().createStreak(0ULL);
        track->addObject(inner);
        outermost = manager().createStrip(0ULL);
        outermost->addObject(track);
        inner = outermost;
    }
    float end = Spacing;
    for (auto _ : state) {
        end = end < 5.0F * Spacing ? 2.0F * end : Spacing;
        outermost->moveEnd(end, false);
    }
    workload::clearAll();
}

/// Children taken off a node by their handles, in the order of its list.
void takeOffChildren(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        osg::NodePtr root = transformNode();
        std::vector<osg::NodePtr> children;
        for (int i = 0; i < countOf(state); ++i) {
            children.push_back(osg::Node::create());
            root->addChild(children.back());
        }
        state.ResumeTiming();
        for (const osg::NodePtr& child : children)
            root->subChild(child);
        state.PauseTiming();
        osg::subRefCP(root);
        state.ResumeTiming();
    }
}

/// A chain of nodes, each put below the next.
void chainBottomUp(benchmark::State& state) {
    for (auto _ : state) {
        osg::NodePtr below = osg::Node::create();
        for (int i = 1; i < countOf(state); ++i) {
            osg::NodePtr node = osg::Node::create();
            node->addChild(below);
            below = node;
        }
        state.PauseTiming();
        osg::addRefCP(below);
        osg::subRefCP(below);
        state.ResumeTiming();
    }
}

BENCHMARK(dragAll)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(dragByFrames)->Arg(10000)->Arg(100000)->Iterations(1000);
BENCHMARK(editBesideNaN)->Arg(1000)->Arg(10000)->Iterations(50);
BENCHMARK(listOnANode)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(pasteToANode)->Arg(2000)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(nameUniquely)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(findByName)->Arg(10000)->Arg(100000)->Iterations(10000);
BENCHMARK(insertOverlapping)->Arg(500)->Arg(5000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(takeOutOfTracks)->Arg(500)->Arg(5000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(stretchNested)->Arg(10)->Arg(100)->Iterations(20)->Unit(benchmark::kMicrosecond);
BENCHMARK(takeOffChildren)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(chainBottomUp)->Arg(200)->Arg(2000)->Iterations(1)->Unit(benchmark::kMillisecond);

const bool registered = [] {
    workload::drawn("all keys dragged", dragAll, 1000000, true);
    workload::drawn("blocks listed on a node", listOnANode, 100000, true);
    workload::drawn("objects named uniquely", nameUniquely, 100000, true);
    workload::drawn("object found by name", findByName, 100000, false);
    workload::drawn("overlapping blocks inserted into a clip", insertOverlapping, 10000, true);
    workload::drawn("key edited beside one at NaN", editBesideNaN, 10000, false);
    workload::drawn("children taken off a node", takeOffChildren, 100000, true);
    return true;
}();

} // namespace
