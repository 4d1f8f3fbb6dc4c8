#pragma once

#include <kaMotion/Listener.h>
#include <string>

namespace ka::motion {

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

/// Passes the module's file progress on to a listener. One at a time.
class ModuleProgress {
  public:
    ModuleProgress(std::string what, Listener& listener);
    ~ModuleProgress();
    ModuleProgress(const ModuleProgress&) = delete;
    ModuleProgress& operator=(const ModuleProgress&) = delete;

  private:
    static void pass(unsigned int percent);

    std::string _what;
    Listener& _listener;
};

} // namespace ka::motion
