#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"

#include <memory>
#include <string>

struct kaFieldBinding;

/// One animated scalar of the scene: component `valuePos` of field `name` of container `fcID`, which belongs
/// to node `nodeID`. A plain record, owned by the registry; curves refer to it by id.
class KA_ANIMATION_API kaAnimationField {
  public:
    /// Id 0 draws a fresh id from the registry.
    explicit kaAnimationField(kaUID id);
    /// Copies everything but the id, which is always fresh.
    kaAnimationField(kaAnimationField& source);
    kaAnimationField& operator=(const kaAnimationField&) = delete;
    ~kaAnimationField();

    kaUID getId() const { return _id; } ///< The id that curves and nodes name it by.
    /// Stored as given, without the registry: `kaAnimationManager::setID` keeps that in step.
    void setId(kaUID id) { _id = id; }

    kaUID fcID = 0;   ///< container id; only the low 32 bits are looked up
    kaUID nodeID = 0; ///< container id of the scene node
    std::string name; ///< the scene field, or a special attribute ("rotationX", "visible", a camera value)
    /// The animated attribute: the field's name with a component letter, or a special attribute.
    std::string attribute;
    float value = 0.0F;        ///< last evaluated value; degrees for angles
    unsigned int valuePos = 0; ///< component, 0 = first
    bool dirty = true;         ///< kept and saved for the host; evaluation neither reads nor changes it

  private:
    friend struct kaFieldBinding;

    kaUID _id;
    std::unique_ptr<kaFieldBinding> _binding; ///< what the last write resolved, checked before each use
};
