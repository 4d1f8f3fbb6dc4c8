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
      name(source.name),
      value(source.value),
      valuePos(source.valuePos),
      _id(freshID()),
      nodeID(source.nodeID),
      attribute(source.attribute),
      dirty(source.dirty) {}

kaAnimationField::~kaAnimationField() = default;
