#pragma once

#include "kaAnimationContainer.h"

class kaAnimationStreak;

/// A clip: tracks numbered from 0. Blocks, clips and sequences given to it go each on a track of its own.
/// Trimming does nothing. Editing in time and triggers reach its tracks only.
class KA_ANIMATION_API kaAnimationStrip final : public kaAnimationContainer {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_STRIP; ///< What `getTypeID` answers.

    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationStrip(const std::string& name, kaUID id);
    /// A deep copy with a fresh id: every track is duplicated through the registry and numbered anew in child
    /// order. Selection, lock, minimum and maximum are not copied; the parent id is taken if that parent is
    /// registered.
    kaAnimationStrip(kaAnimationStrip& source);
    /// The same without the children.
    kaAnimationStrip(const kaAnimationStrip& source, WithoutChildren);
    ~kaAnimationStrip() = default;

    unsigned int getTypeID() const override { return _typeID; }

    /// Adds a track, numbered by how many children the clip had (numbers can repeat after a removal), or puts
    /// a block, clip or sequence on a new track. @return the track; null for anything else.
    kaAnimationObject* addObject(kaAnimationObject* object) override;
    /// Removes a track, or removes another object from the first track that holds it; that track stays, even
    /// empty.
    /// @return the track that was removed or that gave the object up; null when a track was destroyed or none
    /// holds the object.
    kaAnimationObject* subObject(kaAnimationObject* object, bool destroy) override;

    /// Puts a block, clip or sequence on the first track, by begin, that has room, else on a new one.
    /// @return the track that took it; null for null or any other type.
    /// Cost: O(n) in the children of the tracks that are tried.
    kaAnimationStreak* insertObject(kaAnimationObject* object);

    /// The tracks by number; of tracks with one number the first in child order.
    std::map<unsigned int, kaAnimationStreak*> getStreaks() const;

    /// Removes and destroys every track without children that `getStreaks` tells of; the others keep their
    /// numbers.
    void destroyEmptyStreaks();
    /// Removes and destroys the empty tracks with the highest numbers, from one less than the number of
    /// children down to the first that is not empty or whose number is missing.
    void destroyEmptyStreaksAtEnd();

  private:
    bool copiesBelow(const kaAnimationObject& child) const override;
    kaAnimationObject* copyOf(kaAnimationObject& child) const override;
    bool reaches(const kaAnimationObject& child) const override;
    std::vector<kaAnimationStreak*> tracks() const;
    kaAnimationStreak* trackOf(kaUID id) const;
    kaAnimationStreak* addTrackFor(kaAnimationObject& object);
};
