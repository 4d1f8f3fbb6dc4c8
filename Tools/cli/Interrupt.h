#pragma once

#include <array>
#include <csignal>

namespace ka::tools {

/// While one exists, Ctrl-C (and a plain request to end) is noted instead of ending the program, so that
/// what runs can be brought to an orderly end. There is one at a time.
class Interrupt {
  public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    static bool came();

    /// Sleeps until `seconds` after the interrupt was set up, or until it comes. A time that has passed
    /// already is none to wait for.
    void sleepUntil(double seconds) const;
    /// Seconds since it was set up.
    double seconds() const;

  private:
    timespec _start{};
    std::array<struct sigaction, 2> _previous{};
};

} // namespace ka::tools
