#include "Workload.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <kaAnimationManager.h>
#include <random>

namespace {

void findAmongAMillion(benchmark::State& state) {
    kaAnimationManager* manager = kaAnimationManager::the();
    std::vector<kaUID> ids;
    for (int i = 0; i < 1000000; ++i)
        ids.push_back(manager->createPoint2D(0ULL)->getId());
    std::shuffle(ids.begin(), ids.end(), std::mt19937(3));
    ids.resize(1 << 16);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(manager->getObject(ids[i++ % ids.size()]));
    workload::clearAll();
}

BENCHMARK(findAmongAMillion)->Iterations(2000000);

} // namespace
