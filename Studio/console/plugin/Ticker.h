#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace ka::studio {

/// Calls a function now and then on a thread of its own, as long as it lives.
class Ticker {
  public:
    explicit Ticker(std::function<void()> tick);
    ~Ticker();
    Ticker(const Ticker&) = delete;
    Ticker& operator=(const Ticker&) = delete;

  private:
    void run();

    std::function<void()> _tick;
    std::mutex _mutex;
    std::condition_variable _ends;
    bool _isEnding = false;
    std::thread _thread;
};

} // namespace ka::studio
