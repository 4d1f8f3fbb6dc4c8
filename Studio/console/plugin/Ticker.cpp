#include "Ticker.h"

#include <chrono>

namespace ka::studio {

Ticker::Ticker(std::function<void()> tick) : _tick(std::move(tick)), _thread([this] { run(); }) {}

Ticker::~Ticker() {
    {
        const std::lock_guard lock(_mutex);
        _isEnding = true;
    }
    _ends.notify_all();
    _thread.join();
}

void Ticker::run() {
    constexpr std::chrono::milliseconds Interval(50);
    std::unique_lock lock(_mutex);
    while (!_ends.wait_for(lock, Interval, [this] { return _isEnding; }))
        _tick();
}

} // namespace ka::studio
