#pragma once

#include "kaChange.h"

#include <cstdint>
#include <vector>

class kaAnimationObject;

/// Someone who keeps something made from objects (an evaluation plan), and is told when one of these changes.
/// What is told costs nothing where nobody depends on the object, and does not depend on how many objects
/// there are.
class kaDependent {
  public:
    /// @param place  the number that the object was entered under. Allocates nothing and calls nobody.
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
