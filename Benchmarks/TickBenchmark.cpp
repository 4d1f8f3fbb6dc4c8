#include "Workload.h"

#include <benchmark/benchmark.h>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaAnimationUnit.h>

namespace {

double clockSeconds = 0.0;

double readClock() {
    return clockSeconds;
}

/// One tick of object playback with ten blocks playing among `range(0)` registered objects.
void loopTenPlaying(benchmark::State& state) {
    constexpr int Playing = 10;
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();
    kaAnimationController::setTimeCB(&readClock);
    clockSeconds = 0.0;
    for (int i = 0; i < Playing; ++i) {
        kaAnimationUnit* unit = manager->createUnit(0ULL);
        unit->addObject(workload::curve(4));
        unit->setRepeating(true);
        controller->addWaitingObject(unit);
    }
    const auto total = static_cast<std::size_t>(state.range(0));
    for (std::size_t registered = manager->getObjects().size(); registered < total; ++registered)
        manager->createUnit(0ULL);
    controller->loop();
    for (auto _ : state) {
        clockSeconds += 0.04;
        controller->loop();
    }
    kaAnimationController::setTimeCB(nullptr);
    workload::clearAll();
}

BENCHMARK(loopTenPlaying)
    ->Arg(100)
    ->Arg(100000)
    ->Iterations(50000)
    ->Apply(workload::compared)
    ->Unit(benchmark::kNanosecond);

} // namespace
