#include "CapturedOutput.h"
#include "Program.h"
#include "Run.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef KA_WATCHED_MEMORY
#include <kaWatchedMemory.h>
#endif

namespace ka_model {

namespace {

constexpr int MISMATCH = 17;

/// Whether anything is allocated that nobody can reach, or a key or a field that nobody knows when none
/// should be left; known under the address sanitizer only.
bool leaks() {
#ifdef KA_WATCHED_MEMORY
    return kaWatchedMemory::inUse != 0 || __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

/// @return what differs, or nothing.
std::string runHere(const Program& program, bool tell) {
    std::unique_ptr<Run> run;
    {
        const ka_test::CapturedOutput quiet;
        run = std::make_unique<Run>(program.tame);
    }
    for (std::size_t i = 0; i < program.steps.size(); ++i) {
        std::string difference;
        {
            const ka_test::CapturedOutput quiet;
            difference = run->perform(program.steps[i]);
        }
        if (tell && run->story().find('(') == std::string::npos)
            std::fprintf(stderr, "%4zu  %s\n", i, run->story().c_str());
        if (!difference.empty())
            return "after step " + std::to_string(i) + " (" + run->story() + "): " + difference;
    }
    {
        const ka_test::CapturedOutput quiet;
        run.reset();
    }
    return leaks() ? "objects are left that nobody knows" : "";
}

/// A process that ends with what `work` answers; `_exit`, so that nothing of the parent is cleaned up twice.
template <class Work>
int inChild(Work&& work) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int answer = work();
        std::fflush(nullptr);
        _exit(answer);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
    }
    return status;
}

std::string describe(int status) {
    if (WIFSIGNALED(status))
        return "died of signal " + std::to_string(WTERMSIG(status));
    return "ended with " + std::to_string(WEXITSTATUS(status));
}

} // namespace

Outcome attempt(const Program& program, bool tell) {
    int channel[2];
    if (pipe(channel) != 0)
        return {true, "no pipe"};
    const int status = inChild([&] {
        if (!tell && !std::freopen("/dev/null", "w", stderr))
            return 1;
        const std::string difference = runHere(program, tell);
        const ssize_t written = write(channel[1], difference.data(), difference.size());
        return difference.empty() && written == 0 ? 0 : MISMATCH;
    });
    close(channel[1]);
    Outcome outcome;
    outcome.failed = status != 0;
    char buffer[4096];
    for (ssize_t count = 0; (count = read(channel[0], buffer, sizeof(buffer))) > 0;)
        outcome.text.append(buffer, static_cast<std::size_t>(count));
    close(channel[0]);
    if (outcome.failed && outcome.text.empty())
        outcome.text = describe(status) + ", the last step being " +
                       (program.steps.empty() ? "none" : operations()[program.steps.back().operation].name);
    return outcome;
}

std::uint64_t firstFailure(std::uint64_t first, std::uint64_t count, std::size_t steps) {
    void* shared =
        mmap(nullptr, sizeof(std::uint64_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto* seed = static_cast<std::uint64_t*>(shared);
    *seed = first;
    inChild([&] {
        for (; *seed < first + count; ++*seed)
            if (!runHere(makeProgram(*seed, steps), false).empty())
                return MISMATCH;
        return 0;
    });
    const std::uint64_t reached = *seed;
    munmap(shared, sizeof(std::uint64_t));
    return reached;
}

} // namespace ka_model
