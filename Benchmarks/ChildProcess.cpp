#include "ChildProcess.h"

#include <chrono>
#include <cstdio>
#include <fstream>
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

Measured measure(const std::function<void()>& work) {
    resetPeak();
    const double before = statusMegabytes("VmRSS:");
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    return {elapsed.count(), statusMegabytes("VmHWM:") - before};
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
