#pragma once

/// Limits reentrancy: stands on the stack in a function that calls the host, which may call that function again.
/// Beyond the limits it is false, and the function is to do nothing, so that neither the stack nor the time of a
/// call grows without bound whatever a host's callbacks do.
class kaReentryGuard {
  public:
    /// Levels that are followed.
    static constexpr unsigned int MaxLevels = 100;
    /// Where each call makes several, levels multiply. So many levels are followed whatever that gives; all
    /// calls deeper than that share `MaxDeepCalls` for each outermost call.
    static constexpr unsigned int FreeLevels = 4;
    static constexpr unsigned int MaxDeepCalls = 65536;

    /// What is under way of one kind of call.
    struct Calls {
        unsigned int levels = 0;
        unsigned int deepCalls = 0;
    };

    explicit kaReentryGuard(Calls& calls, unsigned int limit = MaxLevels)
        : _calls(calls),
          _allowed(calls.levels < limit && (calls.levels < FreeLevels || calls.deepCalls < MaxDeepCalls)) {
        _calls.deepCalls += _calls.levels >= FreeLevels && _allowed ? 1 : 0;
        ++_calls.levels;
    }
    kaReentryGuard(const kaReentryGuard&) = delete;
    kaReentryGuard& operator=(const kaReentryGuard&) = delete;
    ~kaReentryGuard() {
        if (--_calls.levels == 0)
            _calls.deepCalls = 0;
    }

    explicit operator bool() const { return _allowed; }

  private:
    Calls& _calls;
    bool _allowed;
};
