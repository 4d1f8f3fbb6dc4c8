#include "kaAnimationField.h"

#include "kaAnimationManager.h"
#include "kaFieldBinding.h"

namespace {

kaUID freshID() {
    return kaAnimationManager::the()->createUID();
}

} // namespace

kaAnimationField::kaAnimationField(kaUID id) : _id(id != 0 ? id : freshID()) {}

kaAnimationField::kaAnimationField(kaAnimationField& source)
    : fcID(source.fcID),
      nodeID(source.nodeID),
      name(source.name),
      attribute(source.attribute),
      value(source.value),
      valuePos(source.valuePos),
      dirty(source.dirty),
      _id(freshID()) {}

kaAnimationField::~kaAnimationField() = default;
