#include "cli/Ending.h"
#include "commands/Program.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Whoever starts the program may have closed its standard streams. A file opened later would take their
/// numbers, and what is printed would go into it: they stay taken, by something that can be neither read nor
/// written.
void occupyStandardDescriptors() {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(standard, F_GETFD) < 0)
            static_cast<void>(open("/dev/null", standard == STDIN_FILENO ? O_WRONLY : O_RDONLY));
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardDescriptors();
    // A reader that goes away shows as a failed write, which is reported like any other.
    std::signal(SIGPIPE, SIG_IGN);
    ka::tools::endCleanlyOnSignals();
    return ka::tools::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
// Fontconfig keeps what it has read for good; a checked program is not to tell of that, whoever starts it.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_options() {
    return "print_suppressions=0";
}
#endif
#endif
