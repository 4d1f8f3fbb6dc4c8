#include "Program.h"

#include "Run.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace ka_model {

namespace {

class Random {
  public:
    explicit Random(std::uint64_t seed) : _state(seed) {}

    std::uint32_t next() {
        _state = _state * 6364136223846793005ULL + 1442695040888963407ULL;
        const std::uint64_t mixed = (_state ^ (_state >> 33U)) * 0xFF51AFD7ED558CCDULL;
        return static_cast<std::uint32_t>(mixed >> 32U);
    }
    std::uint32_t below(std::uint32_t limit) { return next() % limit; }

  private:
    std::uint64_t _state;
};

/// Mostly halves in a small range, so that things meet; some thirds, some far away, a few no numbers.
float randomNumber(Random& random) {
    const std::uint32_t kind = random.below(200);
    const auto whole = static_cast<float>(static_cast<int>(random.below(121)) - 40);
    if (kind < 150)
        return whole * 0.5F;
    if (kind < 185)
        return whole / 3.0F;
    if (kind < 197)
        return whole * 1234.5F;
    return kind < 199 ? -0.0F : std::nanf("");
}

} // namespace

Program makeProgram(std::uint64_t seed, std::size_t steps) {
    Random random(seed * 0x9E3779B97F4A7C15ULL + 1);
    Program program;
    program.tame = seed % 4 == 0;
    for (std::size_t i = 0; i < steps; ++i) {
        Step step;
        step.operation = pickOperation(random.next());
        step.a = random.next();
        step.b = random.next();
        step.c = random.next();
        step.x = randomNumber(random);
        step.y = randomNumber(random);
        program.steps.push_back(step);
    }
    return program;
}

Program shrink(Program program) {
    for (std::size_t chunk = program.steps.size() / 2; chunk > 0; chunk /= 2) {
        for (std::size_t start = 0; start < program.steps.size();) {
            Program shorter = program;
            const std::size_t end = std::min(start + chunk, program.steps.size());
            shorter.steps.erase(shorter.steps.begin() + static_cast<std::ptrdiff_t>(start),
                                shorter.steps.begin() + static_cast<std::ptrdiff_t>(end));
            if (attempt(shorter, false).failed)
                program = std::move(shorter);
            else
                start += chunk;
        }
    }
    return program;
}

} // namespace ka_model
