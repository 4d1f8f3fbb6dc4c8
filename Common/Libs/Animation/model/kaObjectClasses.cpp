#include "kaAnimationCurve2D.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaControlPoint2D.h"
#include "kaObjectClass.h"
#include "kaObjectStore.h"

#include <array>

// The one table of what the classes are. Apart from the header that reads it, because it knows them all.

namespace {

using Level = kaObjectClass::Level;

kaAnimationObject* noCopy(kaAnimationObject& /*object*/) {
    return nullptr;
}

void freeNothing(kaAnimationObject& /*object*/) {}

template <class Object>
kaAnimationObject* copy(kaAnimationObject& object) {
    return kaObjectStore::duplicate(static_cast<Object*>(&object));
}

template <class Object>
kaAnimationObject* copyAlone(kaAnimationObject& object) {
    return new Object(static_cast<Object&>(object), kaAnimationContainer::WithoutChildren());
}

template <class Object>
void free(kaAnimationObject& object) {
    delete static_cast<Object*>(&object);
}

kaUID fieldOfCurve(const kaAnimationObject& object) {
    return static_cast<const kaAnimationCurve2D&>(object).getField();
}

void leaveHandles(kaAnimationObject& object) {
    static_cast<kaControlPoint2D&>(object).leaveHandles();
}

/// By type id.
constexpr std::array classes{
    kaObjectClass{Level::None, false, noCopy, noCopy, freeNothing},
    kaObjectClass{Level::Key, false, copy<kaControlPoint2D>, noCopy, free<kaControlPoint2D>, nullptr,
                  leaveHandles},
    kaObjectClass{Level::Curve, false, copy<kaAnimationCurve2D>, noCopy, free<kaAnimationCurve2D>,
                  fieldOfCurve},
    kaObjectClass{Level::Block, true, copy<kaAnimationUnit>, noCopy, free<kaAnimationUnit>},
    kaObjectClass{Level::Container, false, copy<kaAnimationStreak>, copyAlone<kaAnimationStreak>,
                  free<kaAnimationStreak>},
    kaObjectClass{Level::Container, true, copy<kaAnimationStrip>, copyAlone<kaAnimationStrip>,
                  free<kaAnimationStrip>},
    kaObjectClass{Level::Event, true, noCopy, noCopy, free<kaAnimationSequence>}};

static_assert(classes.size() == KA_TYPE_COUNT, "every class describes itself here");
static_assert(kaControlPoint2D::_typeID == 1 && kaAnimationCurve2D::_typeID == 2 &&
                  kaAnimationUnit::_typeID == 3 && kaAnimationStreak::_typeID == 4 &&
                  kaAnimationStrip::_typeID == 5 && kaAnimationSequence::_typeID == 6,
              "in the order of the type ids");

} // namespace

const kaObjectClass& kaObjectClass::of(const kaAnimationObject& object) {
    return classes[object.getTypeID()];
}
