#pragma once

#include "cli/Progress.h"

#include <string>

namespace ka::tools {

/// Sends what the module prints to standard output nowhere while it lives: a command says itself what its
/// user needs to know.
class HushedModule {
  public:
    HushedModule();
    ~HushedModule();
    HushedModule(const HushedModule&) = delete;
    HushedModule& operator=(const HushedModule&) = delete;

  private:
    int _standardOutput;
};

/// Shows the module's file progress as a bar. One at a time.
class ModuleProgress {
  public:
    explicit ModuleProgress(const std::string& what);
    ~ModuleProgress();
    ModuleProgress(const ModuleProgress&) = delete;
    ModuleProgress& operator=(const ModuleProgress&) = delete;

  private:
    Progress _bar;
};

} // namespace ka::tools
