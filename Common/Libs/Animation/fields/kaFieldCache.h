#pragma once

#include "kaAnimationField.h"
#include "kaFieldBinding.h"
#include "kaSceneAccess.h"

#include <OpenSG/OSGFieldContainerPtr.h>
#include <OpenSG/OSGFieldDescription.h>
#include <cstdint>
#include <string_view>

/// A copy of the part of a field's binding that reading and writing its number takes, small enough to stand in
/// the caller's own cache line, so that a frame does not touch the binding itself.
///
/// Never stale: a container id and a field name mean the same number as long as the container exists, so the copy
/// is valid for every record that has both. Whether the container exists is asked of the container store by id,
/// since a handle that is kept from frame to frame could not tell. Covers float components of containers other
/// than camera settings; everything else, and a record's first write, goes through `kaFieldAccess`.
class kaFieldCache {
  public:
    /// Whether the copy serves the record, made anew if need be. Calls nobody.
    bool serves(const kaAnimationField& field, const osg::FieldContainerStore& store) {
        return (standsFor(field) || adopt(field)) && kaSceneAccess::isThere(_containerID, store);
    }

    /// Whether the scene holds another number than the record, which the copy serves
    /// (`kaFieldBinding::differs`).
    bool differs(const kaAnimationField& field) const {
        return kaFieldBinding::differs(_floats, _count, field);
    }

    /// Writes the number of a record, which the copy serves, where it differs from the scene's and announces
    /// the change. The host may do anything then: nothing of this is touched afterwards.
    void write(const kaAnimationField& field, const osg::FieldContainerStore& store) const;

    /// Starts fetching from memory what `differs` touches.
    void fetchNumber() const { __builtin_prefetch(_floats); }
    /// The same of `write`.
    void fetch() const {
        __builtin_prefetch(_floats, 1);
        __builtin_prefetch(_address);
    }

  private:
    bool adopt(const kaAnimationField& field);

    bool standsFor(const kaAnimationField& field) const {
        return _description && _containerID == static_cast<osg::UInt32>(field.fcID) && isNamed(field.name);
    }

    /// Of most names the first and the last eight characters are all.
    bool isNamed(const std::string& name) const {
        const std::size_t size = name.size();
        if (size != _nameLength)
            return false;
        if (size < kaFieldBinding::Word || size > 2 * kaFieldBinding::Word)
            return kaFieldBinding::sameText(std::string_view(_description->getCName(), _nameLength), name);
        return kaFieldBinding::wordAt(name.data()) == _firstWord &&
               kaFieldBinding::wordAt(name.data() + size - kaFieldBinding::Word) == _lastWord;
    }

    osg::Real32* _floats = nullptr;
    const osg::FieldDescription* _description = nullptr; ///< null = nothing copied
    const osg::FieldContainer* _address = nullptr; ///< of the container when it was looked up: not to be read
    std::uint64_t _firstWord = 0;                  ///< of the name, where it has as many characters
    std::uint64_t _lastWord = 0;
    osg::UInt32 _containerID = 0;
    std::uint8_t _nameLength = 0;
    std::uint8_t _count = 0; ///< of `_floats`
    bool _isAngle = false;
};
