#include "project/ModuleCalls.h"

#include <cstdio>
#include <fcntl.h>
#include <kaAnimationManager.h>
#include <unistd.h>

namespace ka::motion {

namespace {

/// The callback takes no context.
const ModuleProgress* current = nullptr;

} // namespace

HushedModule::HushedModule() {
    std::fflush(stdout);
    _standardOutput = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (_standardOutput >= 0 && nowhere >= 0)
        dup2(nowhere, STDOUT_FILENO);
    if (nowhere >= 0)
        close(nowhere);
}

HushedModule::~HushedModule() {
    std::fflush(stdout);
    if (_standardOutput >= 0) {
        dup2(_standardOutput, STDOUT_FILENO);
        close(_standardOutput);
    }
}

ModuleProgress::ModuleProgress(std::string what, Listener& listener)
    : _what(std::move(what)), _listener(listener) {
    current = this;
    kaAnimationManager::setFileIOProgressCB(pass);
}

ModuleProgress::~ModuleProgress() {
    kaAnimationManager::setFileIOProgressCB(nullptr);
    current = nullptr;
}

void ModuleProgress::pass(unsigned int percent) {
    if (current != nullptr)
        current->_listener.progress(current->_what, percent, 100);
}

} // namespace ka::motion
