#pragma once

#include <csignal>

/// Keeps signals from this thread for as long as it lives.
class kaSignalBlock {
  public:
    /// All that can be kept: those that come meanwhile are delivered at its end.
    kaSignalBlock() {
        sigset_t all{};
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &_before);
    }
    ~kaSignalBlock() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    kaSignalBlock(const kaSignalBlock&) = delete;
    kaSignalBlock& operator=(const kaSignalBlock&) = delete;

  private:
    sigset_t _before{};
};
