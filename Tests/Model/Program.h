#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace ka_model {

/// One edit: which operation, and raw numbers from which it takes its operands when it runs. An operand names
/// the n-th of whatever is there then, so that a program with steps left out is a program still.
struct Step {
    unsigned int operation = 0;
    unsigned int a = 0;
    unsigned int b = 0;
    unsigned int c = 0;
    float x = 0.0F;
    float y = 0.0F;
};

struct Program {
    std::vector<Step> steps;
    bool tame = false; ///< leaves out what bends the tree
};

/// The same program for the same seed everywhere; every fourth one is tame.
Program makeProgram(std::uint64_t seed, std::size_t steps);

/// How a program went.
struct Outcome {
    bool failed = false;
    std::string text; ///< what differs, or how the process died
};

/// Runs a program on the module and on the model, comparing everything after each step, in a process of its
/// own, so that a crash is an outcome too. With `tell` every step is printed as it runs.
Outcome attempt(const Program& program, bool tell);

/// Runs the programs of `count` seeds, each in turn. @return the first seed that fails, or `first + count`.
std::uint64_t firstFailure(std::uint64_t first, std::uint64_t count, std::size_t steps);

/// Leaves out steps for as long as the program still fails.
Program shrink(Program program);

} // namespace ka_model
