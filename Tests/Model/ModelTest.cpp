#include "Program.h"
#include "Run.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

using namespace ka_model;

namespace {

// What a run of the suite does; the hardening programme asks for more of an optimised build.
#ifdef KA_WATCHED_MEMORY
constexpr std::uint64_t SEEDS = 80; // each is looked through for leaks, which takes most of the time
#else
constexpr std::uint64_t SEEDS = 250;
#endif
constexpr std::uint64_t STEPS = 500;

std::uint64_t fromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text ? std::strtoull(text, nullptr, 10) : otherwise;
}

/// KA_MODEL_SEEDS programs of KA_MODEL_STEPS steps, from seed KA_MODEL_FIRST on. A failure prints the
/// shortest program found that still fails.
TEST(RandomEdits, LeaveTheModuleAsTheModelSays) {
    const std::uint64_t first = fromEnvironment("KA_MODEL_FIRST", 1);
    const std::uint64_t count = fromEnvironment("KA_MODEL_SEEDS", SEEDS);
    const auto steps = static_cast<std::size_t>(fromEnvironment("KA_MODEL_STEPS", STEPS));
    const std::uint64_t failing = firstFailure(first, count, steps);
    if (failing == first + count)
        return;
    const Program shortest = shrink(makeProgram(failing, steps));
    const Outcome outcome = attempt(shortest, true);
    ADD_FAILURE() << "seed " << failing << ", shrunk to the " << shortest.steps.size()
                  << " steps above: " << outcome.text;
}

TEST(RandomEdits, CanFail) {
    // A program runs on both sides by itself; here the model is told a lie, which must be noticed.
    ka_model::Run run;
    for (const Step& step : makeProgram(5, 60).steps)
        ASSERT_EQ(run.perform(step), "");
    ASSERT_FALSE(run.world.objects.empty());
    Step harmless;
    harmless.operation = static_cast<unsigned int>(
        std::find_if(operations().begin(), operations().end(),
                     [](const Edit& edit) { return std::string(edit.name) == "bindField"; }) -
        operations().begin());
    Object* object = run.world.objects.begin()->second;
    object->curves.insert(4711);
    EXPECT_NE(run.perform(harmless), "");
    object->curves.erase(4711);
    EXPECT_EQ(run.perform(harmless), "");
}

TEST(RandomEdits, ReachEveryOperation) {
    std::vector<int> counts(operations().size(), 0);
    ka_model::Run run;
    for (const Step& step : makeProgram(11, 3000).steps) {
        ASSERT_EQ(run.perform(step), "");
        if (run.story().find('(') == std::string::npos)
            ++counts[step.operation];
    }
    for (std::size_t i = 0; i < counts.size(); ++i)
        EXPECT_GT(counts[i], 0) << operations()[i].name;
}

} // namespace
