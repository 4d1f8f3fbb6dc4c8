#include "kaFieldCache.h"

#include <kaOpenSGUtils.h>
#include <limits>

bool kaFieldCache::adopt(const kaAnimationField& field) {
    const kaFieldBinding* binding = kaFieldBinding::standing(field);
    if (!binding || binding->target != kaFieldBinding::Target::Floats || binding->isCamera ||
        binding->name.size() > std::numeric_limits<std::uint8_t>::max())
        return false;
    _floats = binding->floats;
    _description = binding->description;
    _containerID = binding->fcID;
    _address = kaSceneAccess::findContainer(_containerID).getCPtr();
    _nameLength = static_cast<std::uint8_t>(binding->name.size());
    if (binding->name.size() >= kaFieldBinding::Word) {
        _firstWord = kaFieldBinding::wordAt(binding->name.data());
        _lastWord =
            kaFieldBinding::wordAt(binding->name.data() + binding->name.size() - kaFieldBinding::Word);
    }
    _count = static_cast<std::uint8_t>(binding->componentCount);
    _isAngle = binding->isAngle;
    return true;
}

void kaFieldCache::write(const kaAnimationField& field, const osg::FieldContainerStore& store) const {
    if (!differs(field))
        return;
    _floats[kaFieldBinding::componentAt(field.valuePos, _count)] =
        kaFieldBinding::storedForm(_isAngle, field.value);
    const osg::FieldContainerPtr container = store[_containerID]; // the store may grow meanwhile
    kaOpenSGUtils::announceChange(container, _description->getFieldMask());
}
