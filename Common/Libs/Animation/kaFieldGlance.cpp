#include "kaFieldGlance.h"

#include <limits>

/// @return whether the record's binding stands and is to numbers of a plain container.
bool kaFieldGlance::adopt(const kaAnimationField& field) {
    const kaFieldBinding* binding = kaFieldBinding::standing(field);
    if (!binding || binding->target != kaFieldBinding::Target::Floats || binding->isCamera ||
        binding->name.size() > std::numeric_limits<std::uint16_t>::max())
        return false;
    _floats = binding->floats;
    _name = binding->name.data();
    _nameLength = static_cast<std::uint16_t>(binding->name.size());
    _count = static_cast<std::uint8_t>(binding->componentCount);
    _fcID = binding->fcID;
    return true;
}
