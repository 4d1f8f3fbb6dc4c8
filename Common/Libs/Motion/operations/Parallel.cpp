#include "operations/Parallel.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace ka::motion {

namespace {

constexpr std::size_t mostThreads = 4;

class Pieces {
  public:
    Pieces(std::size_t count, const std::function<void(std::size_t, const GoesOn&)>& work)
        : _count(count), _work(work) {}

    /// Takes piece after piece until none is left.
    void workOff(const GoesOn& goesOn) {
        try {
            for (std::size_t i = _next++; i < _count && goesOn(); i = _next++) {
                _work(i, goesOn);
                ++_done;
            }
        } catch (...) {
            _isGivenUp = true;
            throw;
        }
    }

    void giveUp() { _isGivenUp = true; }
    bool isGivenUp() const { return _isGivenUp; }
    std::size_t done() const { return _done; }

  private:
    std::size_t _count;
    const std::function<void(std::size_t, const GoesOn&)>& _work;
    std::atomic<std::size_t> _next{0}, _done{0};
    std::atomic<bool> _isGivenUp{false};
};

} // namespace

bool doAll(std::size_t count, Listener& listener, const std::string& what,
           const std::function<void(std::size_t, const GoesOn&)>& work) {
    Pieces pieces(count, work);
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    const std::size_t helpers = std::min({processors, mostThreads, std::max<std::size_t>(count, 1)}) - 1;
    std::vector<std::future<void>> running;
    for (std::size_t i = 0; i < helpers; ++i)
        running.push_back(std::async(
            std::launch::async, [&pieces] { pieces.workOff([&pieces] { return !pieces.isGivenUp(); }); }));
    std::exception_ptr thrown;
    try {
        pieces.workOff([&] {
            if (!pieces.isGivenUp() && !listener.progress(what, pieces.done(), count))
                pieces.giveUp();
            return !pieces.isGivenUp();
        });
    } catch (...) {
        thrown = std::current_exception();
    }
    for (std::future<void>& helper : running) {
        try {
            helper.get();
        } catch (...) {
            thrown = std::current_exception();
        }
    }
    if (thrown)
        std::rethrow_exception(thrown);
    return !pieces.isGivenUp() && listener.progress(what, count, count);
}

} // namespace ka::motion
