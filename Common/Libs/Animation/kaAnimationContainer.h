#pragma once

#include "kaAnimationObject.h"

#include <memory>

/// What blocks, tracks and clips have in common: flags that reach every child, and editing in time.
///
/// None of the editing operations does anything without children. Children are told with tellParent false;
/// the container tells its own parent once at the end.
///
/// Stretching asks each child for both of its ends, one after the other, down to the sixth level of
/// containers; what lies deeper goes from its old span to the new one in one step, so that each level costs
/// as much as the one above it.
class KA_ANIMATION_API kaAnimationContainer : public kaAnimationObject {
  public:
    /// For a copy that is given its children afterwards.
    struct WithoutChildren {};

    void setActive(bool active) override;         ///< Every child, then the base rule.
    void setRepeating(bool repeating) override;   ///< Every child, then the own flag.
    void setMotionBlur(bool motionBlur) override; ///< Every child, then the own flag.

    void move(float offset, bool tellParent) override; ///< Every child, by `offset` frames.
    /// Sets the begin, whatever it is, and stretches the children about the end. A span of zero is not
    /// stretched.
    void moveBegin(float begin, bool tellParent) override;
    /// Sets the end, whatever it is, and stretches the children about the begin. A span of zero is not
    /// stretched.
    void moveEnd(float end, bool tellParent) override;
    void trimBegin(float begin, bool tellParent) override; ///< Does nothing.
    void trimEnd(float end, bool tellParent) override;     ///< Does nothing.
    /// Flips every child and then moves it to its mirror place; ancestors are not told.
    void flip() override;
    /// Fires the container's own triggers, then has every child do the same. What fires may destroy any of
    /// them.
    void triggerLoop(float frame) override;

  protected:
    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationContainer(const std::string& name, kaUID id);
    /// Everything but the children, under a fresh id. Selection, lock, minimum and maximum are not copied;
    /// the parent id is taken if that parent is registered.
    explicit kaAnimationContainer(const kaAnimationContainer& source);
    ~kaAnimationContainer() = default;

    /// Adds copies of everything below the source, each finished before it is added.
    void addCopies(const kaAnimationContainer& source);

    /// Makes `child` the last child and tells the ancestors. @return the child; null when it may not be
    /// adopted.
    kaAnimationObject* adopt(kaAnimationObject& child);
    /// Takes `child` out and tells the ancestors; with `destroy` the registry frees it.
    /// @return the child, or null when it was destroyed or is no child.
    kaAnimationObject* release(kaAnimationObject& child, bool destroy);

    /// Whether the list names the object.
    bool isChild(const kaAnimationObject& object) const { return findObject(object.getId()).second; }

    /// Whether an object is one that tracks lay out in time: a block, a clip or a sequence.
    static bool isLaidOut(const kaAnimationObject& object);

  private:
    /// Whether editing in time and triggers reach this child.
    virtual bool reaches(const kaAnimationObject& child) const;
    std::vector<kaAnimationObject*> reachedChildren() const;

    /// Whether a copy of this object has a copy of that track or clip, made level by level.
    virtual bool copiesBelow(const kaAnimationObject& child) const;
    /// A registered copy of a child that is neither track nor clip; null where none is made.
    virtual kaAnimationObject* copyOf(kaAnimationObject& child) const = 0;
    /// Frees a copy that was never handed over, with what stands below it.
    struct Discard {
        void operator()(kaAnimationContainer* copy) const;
    };
    using UnfinishedCopy = std::unique_ptr<kaAnimationContainer, Discard>;
    /// An unregistered copy of a child that is a track or clip; null for any other and where none is made.
    UnfinishedCopy copyWithoutChildren(kaAnimationObject& child) const;
    static kaAnimationObject* registered(UnfinishedCopy copy);

    void stretch(float begin, float end);

    template <class Edit>
    void editChildren(Edit&& edit);
    template <class Set, class Store>
    void setBelow(Set&& set, Store&& store);
};
