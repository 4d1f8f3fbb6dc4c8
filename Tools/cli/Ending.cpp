#include "cli/Ending.h"

#include <csignal>
#include <kaFileWriter.h>
#include <unistd.h>

namespace ka::tools {

namespace {

/// Zero as long as nothing is to be removed.
volatile pid_t program = 0;

} // namespace

void endBy(int signal) {
    // A reader, which is a copy of this process, must not take its parent's files away.
    if (program == getpid())
        kaFileWriter::abandonAll();
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    raise(signal);
}

void endCleanlyOnSignals() {
    program = getpid();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        struct sigaction action {};
        if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        action.sa_handler = &endBy;
        action.sa_flags = 0;
        sigfillset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

} // namespace ka::tools
