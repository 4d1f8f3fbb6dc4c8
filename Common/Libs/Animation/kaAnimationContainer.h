#pragma once

#include "kaAnimationObject.h"

/// What blocks, tracks and clips have in common: flags that reach every child, and editing in time.
///
/// None of the editing operations does anything without children. Children are told with tellParent false;
/// the container tells its own parent once at the end.
class KA_ANIMATION_API kaAnimationContainer : public kaAnimationObject {
  public:
    void setActive(bool active) override;         ///< Every child, then the base rule.
    void setRepeating(bool repeating) override;   ///< Every child, then the own flag.
    void setMotionBlur(bool motionBlur) override; ///< Every child, then the own flag.

    void move(float offset, bool tellParent) override; ///< Every child, by `offset` frames.
    /// Sets the begin, whatever it is, and stretches the children about the end. A span of zero is not
    /// stretched.
    /// Edges: ignored by containers nested more than twelve deep, because each level doubles the work.
    void moveBegin(float begin, bool tellParent) override;
    /// Sets the end, whatever it is, and stretches the children about the begin. A span of zero is not
    /// stretched.
    /// Edges: ignored by containers nested more than twelve deep, because each level doubles the work.
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

    /// Adds copies of the source's children, each made by `copy`, which may give null.
    void addCopies(const kaAnimationContainer& source, kaAnimationObject* (*copy)(kaAnimationObject& child));

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

    bool isTooDeepToStretch() const;

    template <class Edit>
    void editChildren(Edit&& edit);
    template <class Set>
    void setBelow(Set&& set);
};
