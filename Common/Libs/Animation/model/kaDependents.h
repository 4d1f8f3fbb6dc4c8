#pragma once

#include "kaChange.h"

#include <cstdint>
#include <vector>

class kaAnimationObject;

/// Observer of objects: caches something made from them (an evaluation plan) and is notified when one changes.
/// An object without observers pays one test of a flag; the cost does not depend on the number of objects.
class kaDependent {
  public:
    /// @param place  the number that the object was entered under. May not allocate or call the host.
    virtual void changed(std::uint32_t place, kaChange change) noexcept = 0;

  protected:
    ~kaDependent() = default;

  private:
    friend class kaDependents;
    std::vector<const kaAnimationObject*>
        _enteredFor; ///< what it is told of, so that leaving looks at no others
};

/// Who depends on which object.
class kaDependents {
  public:
    kaDependents() = delete;

    /// `dependent` is told of the object's changes under the number `place`, until it leaves or the object
    /// goes.
    /// @throws std::bad_alloc; it may be told of the object or not then.
    static void enter(const kaAnimationObject& object, kaDependent& dependent, std::uint32_t place);
    /// Takes `dependent` off every object that it has been entered for.
    static void leave(kaDependent& dependent) noexcept;

    /// The object has changed; it has dependents.
    static void tell(const kaAnimationObject& object, kaChange change) noexcept;
    /// The object, which has dependents, is about to be freed: they are told so, and it has none any more.
    static void forget(const kaAnimationObject& object) noexcept;
};
