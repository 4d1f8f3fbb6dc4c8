#pragma once

#include <array>
#include <csignal>

namespace ka::tools {

/// While one exists, Ctrl-C, a request to end and a terminal that goes away are noted instead of ending the
/// program, so that what runs can be brought to an orderly end. A second one ends the program: the first may
/// have come while it waits for something that never comes. Those that the caller has had ignored stay so.
/// There is one at a time.
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
    std::array<struct sigaction, 3> _previous{};
};

} // namespace ka::tools
