#include "kaAnimationCurve2D.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaControlPoint2D.h"
#include "kaObjectClass.h"
#include "kaObjectStore.h"

#include <array>
#include <type_traits>

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

bool linksNothing(Level /*child*/) {
    return false;
}

bool linksAnything(Level /*child*/) {
    return true;
}

template <Level Only>
bool links(Level child) {
    return child == Only;
}

bool linksToClips(Level child) {
    return child != Level::Key && child != Level::Curve;
}

/// By type id.
constexpr std::array classes{
    kaObjectClass{Level::None, false, linksNothing, noCopy, noCopy, freeNothing},
    kaObjectClass{Level::Key, false, linksNothing, copy<kaControlPoint2D>, noCopy, free<kaControlPoint2D>,
                  nullptr, leaveHandles},
    kaObjectClass{Level::Curve, false, links<Level::Key>, copy<kaAnimationCurve2D>, noCopy,
                  free<kaAnimationCurve2D>, fieldOfCurve},
    kaObjectClass{Level::Block, true, links<Level::Curve>, copy<kaAnimationUnit>, noCopy,
                  free<kaAnimationUnit>},
    kaObjectClass{Level::Container, false, linksAnything, copy<kaAnimationStreak>,
                  copyAlone<kaAnimationStreak>, free<kaAnimationStreak>},
    kaObjectClass{Level::Container, true, linksToClips, copy<kaAnimationStrip>, copyAlone<kaAnimationStrip>,
                  free<kaAnimationStrip>},
    kaObjectClass{Level::Event, true, linksNothing, noCopy, noCopy, free<kaAnimationSequence>}};

/// Whether a class stands in its place in the table, and is a container where the table says so.
template <class Object>
constexpr bool isDescribed(unsigned int place) {
    const Level level = classes[place].level;
    return Object::_typeID == place && std::is_base_of_v<kaAnimationContainer, Object> ==
                                           (level == Level::Block || level == Level::Container);
}

static_assert(classes.size() == KA_TYPE_COUNT, "every class describes itself here");
static_assert(isDescribed<kaAnimationObject>(0) && isDescribed<kaControlPoint2D>(1) &&
                  isDescribed<kaAnimationCurve2D>(2) && isDescribed<kaAnimationUnit>(3) &&
                  isDescribed<kaAnimationStreak>(4) && isDescribed<kaAnimationStrip>(5) &&
                  isDescribed<kaAnimationSequence>(6),
              "in the order of the type ids, and as what they are");
static_assert(classes[kaObjectRegistry::UnlistedType].level == Level::Key,
              "of keys there are too many to list");

} // namespace

const kaObjectClass kaObjectClass::byTypeID[KA_TYPE_COUNT]{classes[0], classes[1], classes[2], classes[3],
                                                           classes[4], classes[5], classes[6]};
