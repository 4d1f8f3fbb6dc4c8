#pragma once

#include "kaAnimationObject.h"

class kaAnimationStreak;

/// A clip: tracks numbered from 0. Blocks, clips and sequences given to it go each on a track of its own.
/// Trimming does nothing.
class KA_ANIMATION_API kaAnimationStrip final : public kaAnimationObject {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_STRIP;

    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationStrip(const std::string& name, kaUID id);
    /// A deep copy with a fresh id: every child is duplicated through the registry. Selection, lock, minimum
    /// and maximum are not copied; the parent id is taken if that parent is registered.
    kaAnimationStrip(kaAnimationStrip& source);
    ~kaAnimationStrip() = default;

    void setActive(bool active) override;         ///< Every child, then the base rule.
    void setRepeating(bool repeating) override;   ///< Every child, then the own flag.
    void setMotionBlur(bool motionBlur) override; ///< Every child, then the own flag.
    unsigned int getTypeID() const override { return _typeID; }

    /// Adds a track, numbered by how many the clip had (numbers can repeat after a removal), or puts a block,
    /// clip or sequence on a new track. @return the track; null for anything else.
    kaAnimationObject* addObject(kaAnimationObject* object) override;
    /// Removes a track, or removes another object from the track that holds it.
    /// @return the track that was removed or that gave the object up; null when a track was destroyed or none
    /// holds
    ///         the object.
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

    /// Puts a block, clip or sequence on the first track, by begin, that has room, else on a new one.
    /// @return the track that took it; null for null or any other type.
    kaAnimationStreak* insertObject(kaAnimationObject* object);

    /// The tracks by number; of tracks with one number the first in child order.
    std::map<unsigned int, kaAnimationStreak*> getStreaks() const;

    /// Removes and destroys every track without children; the others keep their numbers.
    void destroyEmptyStreaks();
    /// Removes and destroys the empty tracks with the highest numbers, down to the first that is not empty or
    /// whose number is missing.
    void destroyEmptyStreaksAtEnd();
};
