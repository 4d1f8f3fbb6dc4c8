#pragma once

#include "kaAnimationExport.h"
#include "kaAnimationTypes.h"

#include <cstddef>
#include <cstdint>
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

    /// From a pool: every frame walks through the records, so that those made in a row are neighbours in memory.
    /// The memory of freed records is kept for later ones.
    static void* operator new(std::size_t size);
    static void operator delete(void* record, std::size_t size) noexcept; ///< Takes what `new` gave.

    kaUID getId() const { return _id; } ///< The id that curves and nodes name it by.
    /// Stored as given, without the registry: `kaAnimationManager::setID` keeps that in step.
    void setId(kaUID id) { _id = id; }

  private:
    friend struct kaFieldBinding;
    struct BindingDeleter {
        void operator()(kaFieldBinding* binding) const;
    };

    // What every evaluation reads comes first: it fills one cache line.

    alignas(64) kaUID _id;
    std::unique_ptr<kaFieldBinding, BindingDeleter>
        _binding; ///< what the last write resolved, checked before each use

  public:
    kaUID fcID = 0;     ///< container id; only the low 32 bits are looked up
    std::string name;   ///< the scene field, or a special attribute ("rotationX", "visible", a camera value)
    float value = 0.0F; ///< last evaluated value; degrees for angles
    unsigned int valuePos = 0; ///< component, 0 = first
    kaUID nodeID = 0;          ///< container id of the scene node
    /// The animated attribute: the field's name with a component letter, or a special attribute.
    std::string attribute;
    bool dirty = true; ///< kept and saved for the host; evaluation neither reads nor changes it

    /// @cond INTERNAL
    // For `kaWeak`.
    std::uint32_t weakSlot() const;
    static kaAnimationField* fromWeakSlot(void* field) { return static_cast<kaAnimationField*>(field); }
    /// @endcond

  private:
    mutable std::uint32_t _weakSlot = 0; ///< 0 while nobody has asked
};
