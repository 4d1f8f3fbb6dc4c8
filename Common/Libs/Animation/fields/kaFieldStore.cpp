#include "kaFieldStore.h"

#include "kaAnimationField.h"
#include "kaObjectRegistry.h"

#include <memory>

namespace {

kaObjectRegistry& registry() {
    return kaObjectRegistry::the();
}

kaAnimationField* registered(std::unique_ptr<kaAnimationField> field) {
    registry().insertField(field->getId(), *field);
    return field.release();
}

} // namespace

kaAnimationField* kaFieldStore::find(kaUID id) {
    return registry().findField(id);
}

kaAnimationField* kaFieldStore::make(kaUID id) {
    return registered(std::make_unique<kaAnimationField>(id));
}

kaAnimationField* kaFieldStore::duplicate(kaAnimationField* field) {
    return field ? registered(std::make_unique<kaAnimationField>(*field)) : nullptr;
}

/// The entry of its id goes whatever record it holds, and its own, should a host have written its id.
void kaFieldStore::destroy(kaAnimationField* field) {
    if (!field)
        return;
    const kaUID entered = registry().keyOf(*field, field->getId());
    registry().eraseField(field->getId());
    if (entered != field->getId())
        registry().eraseField(entered);
    delete field;
}

void kaFieldStore::rename(kaAnimationField& field, kaUID to) {
    const kaUID from = field.getId();
    if (registry().findField(from)) {
        const kaUID former = registry().keyOf(field, from);
        registry().insertField(to, field);
        registry().eraseField(from);
        if (former != from)
            registry().eraseField(former);
    }
    field.setId(to);
}
