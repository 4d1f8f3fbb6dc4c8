#pragma once

#include <OpenSG/OSGNode.h>
#include <benchmark/benchmark.h>
#include <cstddef>
#include <kaAnimationCurve2D.h>
#include <kaAnimationStrip.h>
#include <vector>

/// What the benchmarks work on. Every builder registers with the manager; `clearAll` empties it again.
namespace workload {

/// For what is compared with something else that takes long: the ratio holds only if both have met a quiet
/// moment of the machine, so both are repeated oftener. In milliseconds.
void compared(benchmark::internal::Benchmark* one);

/// One line of the picture of growth: the benchmark at a thousand, ten thousand, ... up to `most`. Registered only where
/// the environment has KA_BENCH_GROWTH, under growth/`name`.
/// @param each  whether one iteration does as many things, not one among as many.
void drawn(const char* name, void (*function)(benchmark::State& state), int most, bool each);

/// Frames in [0, last], the same ones in every run.
std::vector<float> randomFrames(std::size_t count, float last);

/// A curve with keys at 0, 10, 20, ... and sloped handles of unequal reach, so that every segment is a full
/// cubic.
kaAnimationCurve2D* curve(std::size_t keys);

/// Keys at 0, 10, 20, ... that are on no curve yet; in a fixed random order with `shuffled`.
std::vector<kaControlPoint2D*> looseKeys(std::size_t count, bool shuffled);

/// A clip with one track of blocks, three curves a block, bound to the translation of one scene node each.
struct BoundClip {
    osg::NodePtr root;
    kaAnimationStrip* clip;
    std::size_t curves;
    float end; ///< frame of the last keys
};
BoundClip boundClip(std::size_t curves, std::size_t keys);

/// A clip with one track with one block of that many curves.
kaAnimationStrip* wideClip(std::size_t curves, std::size_t keys);

void clearAll();

} // namespace workload
