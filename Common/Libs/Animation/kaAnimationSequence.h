#pragma once

#include "kaAnimationObject.h"

/// A named event placed in time: when playback reaches its begin, its name goes to the host's sequence
/// callback. It has no children; flipping it does nothing.
class KA_ANIMATION_API kaAnimationSequence final : public kaAnimationObject {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_SEQUENCE; ///< What `getTypeID` answers.

    /// Id 0 draws a fresh id.
    kaAnimationSequence(const std::string& name, kaUID id);
    /// Copies begin, end, name, armed, active, playing and repeating; the parent id if that parent is
    /// registered.
    kaAnimationSequence(kaAnimationSequence& source);
    ~kaAnimationSequence() = default;

    unsigned int getTypeID() const override { return _typeID; }

    /// Prints one line to standard output, with `tellParent` a second one with the parent's address.
    void move(float offset, bool tellParent) override;
    /// Refused within the tolerance of the end or beyond.
    void moveBegin(float begin, bool tellParent) override;
    /// Refused within the tolerance of the begin or before.
    void moveEnd(float end, bool tellParent) override;
    void trimBegin(float begin,
                   bool tellParent) override;          ///< As `moveBegin`, and marks the sequence trimmed.
    void trimEnd(float end, bool tellParent) override; ///< As `moveEnd`, and marks the sequence trimmed.
    /// Fires the sequence's own triggers.
    void triggerLoop(float frame) override;

    /// Whether the sequence may still fire in this run.
    bool isArmed() const { return _armed; }
    /// Stored as given.
    void setArmed(bool armed) { _armed = armed; }

  private:
    bool changeBegin(float begin, bool tellParent);
    bool changeEnd(float end, bool tellParent);

    bool _armed = true;
};
