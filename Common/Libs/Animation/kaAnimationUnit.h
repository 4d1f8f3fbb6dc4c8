#pragma once

#include "kaAnimationContainer.h"

/// A block: the curves that animate one scene node.
///
/// `moveBegin` and `moveEnd` set the block's own begin or end first and unconditionally, and only then test
/// the range: a refused request still moves the block's extent while its curves stay and nobody is told.
/// `trimBegin` and `trimEnd` change only the block's extent and mark it trimmed.
class KA_ANIMATION_API kaAnimationUnit final : public kaAnimationContainer {
  public:
    static constexpr unsigned int _typeID = KA_TYPE_UNIT; ///< What `getTypeID` answers.

    /// Id 0 draws a fresh id. Nothing is registered.
    kaAnimationUnit(const std::string& name, kaUID id);
    /// A deep copy with a fresh id: every curve is duplicated through the registry. Selection, lock, minimum
    /// and maximum are not copied; the parent id is taken if that parent is registered.
    kaAnimationUnit(kaAnimationUnit& source);
    ~kaAnimationUnit() = default;

    unsigned int getTypeID() const override { return _typeID; }

    /// Adds a curve (null for anything else). The first curve decides the node: with node id 0 the block
    /// takes the low 32 bits of the curve's field's `nodeID`.
    kaAnimationObject* addObject(kaAnimationObject* object) override;
    /// Removes a curve. @return the curve, or null when it was destroyed or is no child.
    kaAnimationObject* subObject(kaAnimationObject* object, bool destroy) override;

    void moveBegin(float begin, bool tellParent) override;
    void moveEnd(float end, bool tellParent) override;
    /// Refused within the tolerance of the end or beyond.
    void trimBegin(float begin, bool tellParent) override;
    /// Refused within the tolerance of the begin or before.
    void trimEnd(float end, bool tellParent) override;
    /// Fires the block's own triggers; its curves do not take part.
    void triggerLoop(float frame) override;

    /// Container id of the scene node that the block animates; 0 = none.
    unsigned int getNodeID() const { return _nodeID; }
    /// Stored as given; the curves keep their fields.
    void setNodeID(unsigned int nodeID) { _nodeID = nodeID; }

  private:
    kaAnimationObject* copyOf(kaAnimationObject& child) const override;

    unsigned int _nodeID = 0;
};
