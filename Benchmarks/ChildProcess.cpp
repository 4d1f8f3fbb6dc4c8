#include "ChildProcess.h"

#include <cstdio>
#include <ctime>
#include <fstream>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A line of the process status in megabytes ("VmRSS:", "VmHWM:").
double statusMegabytes(const std::string& key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0.0;
    while (status >> word)
        if (word == key && status >> kilobytes)
            return kilobytes / 1024.0;
    return 0.0;
}

/// Lets the peak start from what is in use now.
void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

Measured measure(const std::function<void()>& work) {
    malloc_trim(0); // or the work would find memory that earlier benchmarks have left
    resetPeak();
    const double before = statusMegabytes("VmRSS:");
    const double start = processorSeconds();
    work();
    return {processorSeconds() - start, statusMegabytes("VmHWM:") - before};
}

} // namespace

Measured measureInChild(const std::function<void()>& prepare, const std::function<void()>& work) {
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        if (!std::freopen("/dev/null", "w", stdout))
            _exit(1);
        prepare();
        const Measured result = measure(work);
        const bool written = write(ends[1], &result, sizeof(result)) == static_cast<ssize_t>(sizeof(result));
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    Measured result;
    const bool complete =
        child > 0 && read(ends[0], &result, sizeof(result)) == static_cast<ssize_t>(sizeof(result));
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return complete ? result : Measured{};
}
