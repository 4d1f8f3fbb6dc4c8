#pragma once

/// One level of a call that leads out to the host and from there back into itself; lives on the stack. Beyond
/// the limit it is false, and the call is to do nothing: whatever a host calls from its callbacks, the stack
/// holds.
class kaNesting {
  public:
    kaNesting(unsigned int& depth, unsigned int limit) : _depth(depth), _allowed(depth < limit) { ++_depth; }
    kaNesting(const kaNesting&) = delete;
    kaNesting& operator=(const kaNesting&) = delete;
    ~kaNesting() { --_depth; }

    explicit operator bool() const { return _allowed; }

  private:
    unsigned int& _depth;
    bool _allowed;
};
