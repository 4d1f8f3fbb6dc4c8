#pragma once

#include "kaAnimationObject.h"

class kaAnimationSequence;
class kaAnimationStrip;
class kaAnimationUnit;

/// A track: blocks, clips and sequences laid out in time. `insertObject` keeps them from overlapping;
/// `addObject` checks neither type nor overlap. Trimming does nothing.
class KA_ANIMATION_API kaAnimationStreak final : public kaAnimationObject {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_STREAK;

    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationStreak(const std::string& name, kaUID id);
    /// A deep copy with a fresh id: every child is duplicated through the registry. Selection, lock, minimum
    /// and maximum are not copied; the parent id is taken if that parent is registered.
    kaAnimationStreak(kaAnimationStreak& source);
    ~kaAnimationStreak() = default;

    void setActive(bool active) override;         ///< Every child, then the base rule.
    void setRepeating(bool repeating) override;   ///< Every child, then the own flag.
    void setMotionBlur(bool motionBlur) override; ///< Every child, then the own flag.
    unsigned int getTypeID() const override { return _typeID; }

    /// Adds any object, unchecked. @return the object, or null when it is null or may not be a child.
    kaAnimationObject* addObject(kaAnimationObject* object) override;
    /// Removes a child of any type. @return the object, or null when it was destroyed or is no child.
    kaAnimationObject* subObject(kaAnimationObject* object, bool destroy) override;

    // Editing in time; none does anything without children. Children are told with tellParent false.

    void move(float offset, bool tellParent) override;
    void moveBegin(float begin, bool tellParent) override;
    void moveEnd(float end, bool tellParent) override;
    void trimBegin(float begin, bool tellParent) override;
    void trimEnd(float end, bool tellParent) override;
    /// Flips every child and then moves it to its mirror place; ancestors are not told.
    void flip() override;
    void triggerLoop(float frame) override;

    /// Adds a block, clip or sequence where it overlaps no child; touching ends are allowed.
    /// @return false, with nothing changed, for null, any other type or an overlap.
    bool insertObject(kaAnimationObject* object);

    std::vector<kaAnimationUnit*> getUnits() const;
    std::vector<kaAnimationStrip*> getStrips() const;
    std::vector<kaAnimationSequence*> getSequences() const;

    /// The track's number within its clip.
    unsigned int getIndex() const { return _index; }
    void setIndex(unsigned int index) { _index = index; }

  private:
    unsigned int _index = 0;
};
