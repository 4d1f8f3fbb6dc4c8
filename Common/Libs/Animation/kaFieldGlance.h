#pragma once

#include "kaAnimationField.h"
#include "kaFieldBinding.h"

#include <OpenSG/OSGFieldContainerPtr.h>
#include <cstdint>
#include <string_view>

/// Tells whether the scene holds a record's value already without touching the record's binding: what takes
/// of that is copied here, to lie beside what else a caller reads.
///
/// The copy needs no upkeep. A container id and the name of a field stand for the same numbers as long as the
/// container lives, and ids are never reused: the copy is good for every record that names both.
class kaFieldGlance {
  public:
    /// False also when it takes more than a glance: resolving the record anew, or a value that is not
    /// compared as a number. Calls nobody.
    bool sceneHolds(const kaAnimationField& field) {
        return (standsFor(field) || adopt(field)) && osg::FieldContainerStore::the().isAlive(_fcID) &&
               !differs(field);
    }

    /// Starts fetching the scene's number from memory.
    void fetch() const { __builtin_prefetch(_floats); }

  private:
    bool adopt(const kaAnimationField& field);

    bool standsFor(const kaAnimationField& field) const {
        return _fcID != 0 && _fcID == static_cast<osg::UInt32>(field.fcID) &&
               kaFieldBinding::sameText(std::string_view(_name, _nameLength), field.name);
    }

    bool differs(const kaAnimationField& field) const {
        const unsigned int component = _count == 1 ? 0 : field.valuePos;
        return component < _count && _floats[component] != field.value;
    }

    const osg::Real32* _floats = nullptr;
    const char* _name = nullptr; ///< the scene type's
    osg::UInt32 _fcID = 0;       ///< 0 = nothing copied
    std::uint16_t _nameLength = 0;
    std::uint8_t _count = 0; ///< of `_floats`
};
