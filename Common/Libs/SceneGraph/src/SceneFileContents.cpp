#include "SceneFileContents.h"

namespace osg {

SceneFileContents::~SceneFileContents() {
    for (const Item& item : items)
        releaseRefCP(item.container);
}

UInt32 SceneFileContents::addItem(const FieldContainerPtr& container, UInt32 line) {
    items.push_back({container, line});
    addRefCP(container);
    return static_cast<UInt32>(items.size() - 1);
}

UInt32 SceneFileContents::addSlot(UInt32 owner, const FieldDescription* field) {
    slots.push_back({owner, field});
    return static_cast<UInt32>(slots.size() - 1);
}

void SceneFileContents::addReference(UInt32 slot, const Reference& reference) {
    const auto index = static_cast<UInt32>(references.size());
    references.push_back(reference);
    Slot& target = slots[slot];
    if (target.first == NONE)
        target.first = index;
    else
        references[target.last].next = index;
    target.last = index;
}

} // namespace osg
