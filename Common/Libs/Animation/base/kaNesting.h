#pragma once

/// One level of a call that leads out to the host and from there back into itself; lives on the stack. Beyond
/// the limits it is false, and the call is to do nothing: whatever a host calls from its callbacks, the stack
/// holds and the call comes to an end.
class kaNesting {
  public:
    /// Levels that are followed.
    static constexpr unsigned int MaxLevels = 100;
    /// Where each call makes several, levels multiply. So many levels are followed whatever that gives; all
    /// calls deeper than that share `MaxDeepCalls` for each outermost call.
    static constexpr unsigned int FreeLevels = 4;
    static constexpr unsigned int MaxDeepCalls = 65536;

    /// What is under way of one kind of call.
    struct Depth {
        unsigned int levels = 0;
        unsigned int deepCalls = 0;
    };

    explicit kaNesting(Depth& depth, unsigned int limit = MaxLevels)
        : _depth(depth),
          _allowed(depth.levels < limit && (depth.levels < FreeLevels || depth.deepCalls < MaxDeepCalls)) {
        _depth.deepCalls += _depth.levels >= FreeLevels && _allowed ? 1 : 0;
        ++_depth.levels;
    }
    kaNesting(const kaNesting&) = delete;
    kaNesting& operator=(const kaNesting&) = delete;
    ~kaNesting() {
        if (--_depth.levels == 0)
            _depth.deepCalls = 0;
    }

    explicit operator bool() const { return _allowed; }

  private:
    Depth& _depth;
    bool _allowed;
};
