#include "cli/Ending.h"
#include "commands/Program.h"

#include <csignal>

int main(int argc, char** argv) {
    // A reader that goes away shows as a failed write, which is reported like any other.
    std::signal(SIGPIPE, SIG_IGN);
    ka::tools::endCleanlyOnSignals();
    return ka::tools::runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
