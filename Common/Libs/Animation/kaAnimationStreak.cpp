#include "kaAnimationStreak.h"

#include "kaChildList.h"
#include "kaObjectStore.h"

#include <algorithm>

namespace {

bool isInside(float frame, const kaExtent& extent) {
    return extent.begin < frame && frame < extent.end;
}

bool covers(const kaExtent& whole, const kaExtent& part) {
    return whole.begin <= part.begin && part.end <= whole.end;
}

bool overlap(const kaExtent& a, const kaExtent& b) {
    return isInside(a.begin, b) || isInside(a.end, b) || covers(b, a) || covers(a, b);
}

kaExtent spanOf(const kaAnimationObject& object) {
    kaExtent span;
    span.begin = object.getBegin();
    span.end = object.getEnd();
    return span;
}

} // namespace

kaAnimationStreak::kaAnimationStreak(const std::string& name, kaUID id) : kaAnimationContainer(name, id) {}

kaAnimationStreak::kaAnimationStreak(kaAnimationStreak& source)
    : kaAnimationContainer(source), _index(source._index) {
    addCopies(source);
}

kaAnimationStreak::kaAnimationStreak(const kaAnimationStreak& source, WithoutChildren /*unused*/)
    : kaAnimationContainer(source), _index(source._index) {}

bool kaAnimationStreak::copiesBelow(const kaAnimationObject& child) const {
    return kaObjectClass::of(child).level == kaObjectClass::Level::Container;
}

kaAnimationObject* kaAnimationStreak::copyOf(kaAnimationObject& child) const {
    return kaObjectStore::duplicateAny(&child);
}

kaAnimationObject* kaAnimationStreak::addObject(kaAnimationObject* object) {
    return object ? adopt(*object) : nullptr;
}

kaAnimationObject* kaAnimationStreak::subObject(kaAnimationObject* object, bool destroy) {
    return object ? release(*object, destroy) : nullptr;
}

bool kaAnimationStreak::insertObject(kaAnimationObject* object) {
    return object && isLaidOut(*object) && hasRoomFor(*object) && addObject(object);
}

/// No child that ends before the object begins, or begins after it ends, is in its way.
bool kaAnimationStreak::hasRoomFor(const kaAnimationObject& object) {
    if (!hasChildren())
        return true;
    const kaExtent span = spanOf(object);
    return !children().anyNear(
        std::min(span.begin, span.end), std::max(span.begin, span.end),
        [&span](const kaAnimationObject& child) { return overlap(span, spanOf(child)); });
}
