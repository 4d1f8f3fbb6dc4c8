#include "scene/ModuleCalls.h"

#include <cstdio>
#include <fcntl.h>
#include <kaAnimationManager.h>
#include <unistd.h>

namespace ka::tools {

namespace {

/// The callback takes no context.
Progress* shown = nullptr;

void show(unsigned int percent) {
    if (shown != nullptr)
        shown->setPercent(percent);
}

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

ModuleProgress::ModuleProgress(const std::string& what) : _bar(what) {
    shown = &_bar;
    kaAnimationManager::setFileIOProgressCB(show);
}

ModuleProgress::~ModuleProgress() {
    kaAnimationManager::setFileIOProgressCB(nullptr);
    shown = nullptr;
}

} // namespace ka::tools
