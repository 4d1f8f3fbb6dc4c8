#include "Workload.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <kaAnimationManager.h>
#include <random>

namespace {

/// Ids that are asked for, in turn; a constant, or dividing by it would take longer than to find an object.
constexpr std::size_t Asked = 1 << 16;

void findAmongAMillion(benchmark::State& state) {
    kaAnimationManager* manager = kaAnimationManager::the();
    std::vector<kaUID> ids;
    for (int i = 0; i < 1000000; ++i)
        ids.push_back(manager->createPoint2D(0ULL)->getId());
    std::shuffle(ids.begin(), ids.end(), std::mt19937(3));
    ids.resize(Asked);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(manager->getObject(ids[i++ % Asked]));
    workload::clearAll();
}

BENCHMARK(findAmongAMillion)->Iterations(2000000);

} // namespace
