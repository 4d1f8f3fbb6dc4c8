#pragma once

#include "kaAnimationContainer.h"

class kaAnimationSequence;
class kaAnimationStrip;
class kaAnimationUnit;

/// A track: blocks, clips and sequences laid out in time. `insertObject` keeps them from overlapping;
/// `addObject` checks neither type nor overlap. Trimming does nothing.
class KA_ANIMATION_API kaAnimationStreak final : public kaAnimationContainer {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_STREAK; ///< What `getTypeID` answers.

    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationStreak(const std::string& name, kaUID id);
    /// A deep copy with a fresh id: every child is duplicated through the registry, which does not copy
    /// sequences this way. Selection, lock, minimum and maximum are not copied; the parent id is taken if
    /// that parent is registered.
    kaAnimationStreak(kaAnimationStreak& source);
    /// The same without the children.
    kaAnimationStreak(const kaAnimationStreak& source, WithoutChildren);
    ~kaAnimationStreak() = default;

    unsigned int getTypeID() const override { return _typeID; }

    /// Adds any object, unchecked. @return the object, or null when it is null or may not be a child.
    kaAnimationObject* addObject(kaAnimationObject* object) override;
    /// Removes a child of any type. @return the object, or null when it was destroyed or is no child.
    kaAnimationObject* subObject(kaAnimationObject* object, bool destroy) override;

    /// Adds a block, clip or sequence where it overlaps no child; touching ends are allowed. A child or an
    /// object whose extent is empty overlaps everything.
    /// @return false, with nothing changed, for null, any other type or an overlap.
    /// Cost: O(n) in the children.
    bool insertObject(kaAnimationObject* object);

    std::vector<kaAnimationUnit*> getUnits() const;         ///< The children that are blocks, in order.
    std::vector<kaAnimationStrip*> getStrips() const;       ///< The children that are clips, in order.
    std::vector<kaAnimationSequence*> getSequences() const; ///< The children that are sequences, in order.

    /// The track's number within its clip.
    unsigned int getIndex() const { return _index; }
    /// Stored as given; nobody is renumbered.
    void setIndex(unsigned int index) { _index = index; }

  private:
    bool copiesBelow(const kaAnimationObject& child) const override;
    kaAnimationObject* copyOf(kaAnimationObject& child) const override;
    bool hasRoomFor(const kaAnimationObject& object);
    template <class Object>
    std::vector<Object*> childrenOf() const;

    unsigned int _index = 0;
};
