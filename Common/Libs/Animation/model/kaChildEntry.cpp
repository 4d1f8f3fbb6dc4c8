#include "kaChildEntry.h"

#include "kaAnimationObject.h"
#include "kaObjectClass.h"

kaChildEntry::kaChildEntry(kaAnimationObject& child)
    : _object(&child), _begin(child.getBegin()), _value(child.getMaximum()) {
    static_assert(alignof(kaAnimationObject) >= 8, "three flags stand in what its alignment leaves free");
    const kaObjectClass& itsClass = kaObjectClass::of(child);
    const std::size_t counts = child.hasChildren() || itsClass.hasOwnExtent() ? Counts : 0;
    const std::size_t selected = child.isSelected() ? Selected : 0;
    const std::size_t key = itsClass.isKey() ? Key : 0;
    Tagged::set_bits(_object, counts | selected | key);
}

kaExtent kaChildEntry::extentOfObject() const {
    const kaAnimationObject& child = *object();
    return {child.getBegin(), child.getEnd(), child.getMaximum(), child.getMinimum()};
}
