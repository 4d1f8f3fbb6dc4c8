#pragma once

class kaAnimationObject;

/// Tells, after a call out to the host, whether an object is still there. Guards live on the stack.
///
/// Cost: a few instructions; freeing an object looks through the guards that stand at that moment, usually
/// none.
class kaAliveGuard {
  public:
    explicit kaAliveGuard(kaAnimationObject& object);
    kaAliveGuard(const kaAliveGuard&) = delete;
    kaAliveGuard& operator=(const kaAliveGuard&) = delete;
    ~kaAliveGuard();

    /// Whether the object has not been freed since the guard was made.
    explicit operator bool() const { return _object != nullptr; }

    /// An object is about to be freed.
    static void forget(const kaAnimationObject& object);

  private:
    static kaAliveGuard* _newest;

    kaAnimationObject* _object;
    kaAliveGuard* _older;
};
