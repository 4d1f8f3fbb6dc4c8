#include "cli/Interrupt.h"

#include "cli/Ending.h"

#include <cmath>
#include <ctime>

namespace ka::tools {

namespace {

constexpr std::array<int, 3> noted{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t interrupted = 0;

void note(int signal) {
    if (interrupted != 0)
        endBy(signal);
    interrupted = 1;
}

} // namespace

Interrupt::Interrupt() {
    interrupted = 0;
    clock_gettime(CLOCK_MONOTONIC, &_start);
    struct sigaction action {};
    action.sa_handler = &note; // without SA_RESTART: a sleep ends at once
    for (std::size_t i = 0; i < noted.size(); ++i) {
        sigaction(noted[i], nullptr, &_previous[i]);
        if (_previous[i].sa_handler != SIG_IGN)
            sigaction(noted[i], &action, nullptr);
    }
}

Interrupt::~Interrupt() {
    for (std::size_t i = 0; i < noted.size(); ++i)
        sigaction(noted[i], &_previous[i], nullptr);
}

bool Interrupt::came() {
    return interrupted != 0;
}

void Interrupt::sleepUntil(double seconds) const {
    constexpr long second = 1000000000;
    timespec until = _start;
    const double whole = std::floor(seconds);
    until.tv_sec += static_cast<std::time_t>(whole);
    until.tv_nsec += static_cast<long>((seconds - whole) * 1e9);
    if (until.tv_nsec >= second) {
        until.tv_nsec -= second;
        ++until.tv_sec;
    }
    if (!came())
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr);
}

double Interrupt::seconds() const {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec - _start.tv_sec) +
           static_cast<double>(now.tv_nsec - _start.tv_nsec) * 1e-9;
}

} // namespace ka::tools
