#include "kaAnimationXmlBuilder.h"

#include "kaAnimationCurve2D.h"
#include "kaAnimationField.h"
#include "kaAnimationSequence.h"
#include "kaAnimationStreak.h"
#include "kaAnimationStrip.h"
#include "kaAnimationUnit.h"
#include "kaAnimationUtils.h"
#include "kaAnimationXmlNumber.h"
#include "kaAnimationXmlRecord.h"
#include "kaControlPoint2D.h"
#include "kaFieldStore.h"
#include "kaHierarchy.h"
#include "kaLoadReport.h"
#include "kaObjectStore.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace {

using kaAnimationXmlNumber::parse;
using kaAnimationXmlNumber::take;
using Key = kaXmlAttribute;

constexpr int FieldTypeID = -1;
constexpr unsigned int DefaultTangentType = kaControlPoint2D::TANGENT_FLAT;
constexpr unsigned int DefaultTangentLengthMode = kaControlPoint2D::LENGTH_HALF;

int typeOf(const kaAnimationXmlElement& element) {
    return parse(element[Key::TypeID], FieldTypeID);
}

template <class Object>
bool isA(const kaAnimationXmlElement& element) {
    return typeOf(element) == static_cast<int>(Object::_typeID);
}

kaUID idOf(const kaAnimationXmlElement& element) {
    return parse(element[Key::Id], kaUID{0});
}

bool flag(std::string_view text, bool otherwise) {
    return parse(text, otherwise ? 1U : 0U) != 0;
}

std::string text(std::string_view text, const char* otherwise = "") {
    return text.empty() ? otherwise : std::string(text);
}

/// Two coordinates; 0 for the second when it does not parse, for both when the first does not.
osg::Pnt2f place(const kaAnimationXmlElement& element, kaXmlTag tag) {
    osg::Pnt2f place(0.0F, 0.0F);
    for (const kaAnimationXmlElement::Child& child : element.children) {
        if (child.tag != tag)
            continue;
        std::string_view text = child.text;
        float x = 0.0F;
        float y = 0.0F;
        if (take(text, x))
            take(text, y);
        place = osg::Pnt2f(x, y);
    }
    return place;
}

/// Whether the child may stand below the container. In a clip anything but a track gets a track of its own,
/// one level more.
bool hasRoom(const kaAnimationObject& container, const kaAnimationObject& child) {
    if (kaObjectClass::of(container).level != kaObjectClass::Level::Container)
        return true;
    const bool getsTrack =
        kaObjectCast<const kaAnimationStrip>(&container) && !kaObjectCast<const kaAnimationStreak>(&child);
    return container.mayAdopt(child, getsTrack ? 1 : 0);
}

kaLoadReport::Reason whyNot(const kaAnimationObject& container, const kaAnimationObject& child) {
    return kaHierarchy::isAtOrAbove(child, container) ? kaLoadReport::Reason::WithinItself
                                                      : kaLoadReport::Reason::TooDeep;
}

} // namespace

void kaAnimationXmlBuilder::create(const kaAnimationXmlElement& element) {
    const int type = typeOf(element);
    if (element[Key::TypeID].empty())
        return;
    if (type == FieldTypeID)
        field(element);
    if (type < 0 || type >= static_cast<int>(KA_TYPE_COUNT))
        return;
    switch (static_cast<kaAnimationTypeID>(type)) { // without default: a class that is added is missed here
    case KA_TYPE_OBJECT:
        break;
    case KA_TYPE_POINT:
        point(element);
        break;
    case KA_TYPE_CURVE:
        curve(element);
        break;
    case KA_TYPE_UNIT:
        block(element);
        break;
    case KA_TYPE_STREAK:
        track(element);
        break;
    case KA_TYPE_STRIP:
        clip(element);
        break;
    case KA_TYPE_SEQUENCE:
        sequence(element);
        break;
    }
}

/// The id wanted where it is free, else a fresh one.
kaUID kaAnimationXmlBuilder::freeID(kaUID wanted) const {
    const kaObjectRegistry& registry = kaObjectRegistry::the();
    if (registry.isIDUnique(wanted))
        return wanted;
    const kaUID fresh = registry.createUID();
    if (_idTaken)
        _idTaken(wanted, fresh);
    return fresh;
}

kaAnimationField* kaAnimationXmlBuilder::field(const kaAnimationXmlElement& element) {
    if (typeOf(element) != FieldTypeID)
        return nullptr;
    kaAnimationField* field = kaFieldStore::make(freeID(idOf(element)));
    field->fcID = parse(element[Key::FcID], 0U);
    field->name = text(element[Key::Name], "unnamed");
    field->attribute = text(element[Key::Attribute], "undefined");
    field->value = parse(element[Key::Value], 0.0F);
    field->valuePos = parse(element[Key::ValuePos], 0U);
    field->dirty = flag(element[Key::Dirty], false);
    return field;
}

kaControlPoint2D* kaAnimationXmlBuilder::point(const kaAnimationXmlElement& element) {
    if (!isA<kaControlPoint2D>(element))
        return nullptr;
    const osg::Pnt2f position = place(element, kaXmlTag::Position);
    kaControlPoint2D* point = kaObjectStore::make<kaControlPoint2D>(position[0], position[1], "Point",
                                                                    freeID(idOf(element)), false);
    if (kaControlPoint2D* handle = point->getInTangent())
        handle->setPosition(place(element, kaXmlTag::InTangent));
    if (kaControlPoint2D* handle = point->getOutTangent())
        handle->setPosition(place(element, kaXmlTag::OutTangent));
    point->setTangentType(parse(element[Key::TangentType], DefaultTangentType));
    point->setTangentLengthMode(parse(element[Key::TangentLengthMode], DefaultTangentLengthMode));
    return point;
}

/// The flags that curves, blocks, tracks and clips share.
template <class Container>
Container* kaAnimationXmlBuilder::withFlags(Container* container, const kaAnimationXmlElement& element) {
    container->setActive(flag(element[Key::Active], true));
    container->setRepeating(flag(element[Key::Repeating], true));
    container->setFlipped(flag(element[Key::Flipped], true));
    container->setMotionBlur(flag(element[Key::MotionBlur], true));
    return container;
}

kaAnimationCurve2D* kaAnimationXmlBuilder::curve(const kaAnimationXmlElement& element) {
    if (!isA<kaAnimationCurve2D>(element))
        return nullptr;
    const kaUID id = freeID(idOf(element));
    const std::string name = text(element[Key::Name]);
    kaAnimationField* field = kaFieldStore::find(parse(element[Key::Field], kaUID{0}));
    kaAnimationCurve2D* curve = field ? kaObjectStore::make<kaAnimationCurve2D>(field, name, id)
                                      : kaObjectStore::make<kaAnimationCurve2D>("Curve", id);
    if (!field)
        curve->setName(name);
    return withFlags(curve, element);
}

kaAnimationUnit* kaAnimationXmlBuilder::block(const kaAnimationXmlElement& element) {
    if (!isA<kaAnimationUnit>(element))
        return nullptr;
    const kaUID id = freeID(idOf(element));
    return withFlags(kaObjectStore::make<kaAnimationUnit>(text(element[Key::Name]), id), element);
}

kaAnimationStreak* kaAnimationXmlBuilder::track(const kaAnimationXmlElement& element) {
    if (!isA<kaAnimationStreak>(element))
        return nullptr;
    const kaUID id = freeID(idOf(element));
    return withFlags(kaObjectStore::make<kaAnimationStreak>(text(element[Key::Name]), id), element);
}

kaAnimationStrip* kaAnimationXmlBuilder::clip(const kaAnimationXmlElement& element) {
    if (!isA<kaAnimationStrip>(element))
        return nullptr;
    const kaUID id = freeID(idOf(element));
    return withFlags(kaObjectStore::make<kaAnimationStrip>(text(element[Key::Name]), id), element);
}

kaAnimationSequence* kaAnimationXmlBuilder::sequence(const kaAnimationXmlElement& element) {
    if (!isA<kaAnimationSequence>(element))
        return nullptr;
    const kaUID id = freeID(idOf(element));
    kaAnimationSequence* sequence = kaObjectStore::make<kaAnimationSequence>(text(element[Key::Name]), id);
    sequence->setActive(flag(element[Key::Active], true));
    sequence->setBegin(parse(element[Key::Begin], 0.0F));
    sequence->setEnd(parse(element[Key::End], 0.0F));
    return sequence;
}

// Connecting.

void kaAnimationXmlBuilder::connect(const kaAnimationXmlElement& element) {
    kaAnimationObject* object = kaObjectStore::find(idOf(element));
    if (!object || element[Key::TypeID].empty())
        return;
    if (isA<kaAnimationCurve2D>(element)) {
        if (kaAnimationCurve2D* curve = kaObjectStore::find<kaAnimationCurve2D>(object->getId()))
            connectCurve(*curve, element);
        return;
    }
    for (const kaAnimationXmlElement::Child& reference : element.children) {
        if (reference.id.empty())
            continue;
        kaAnimationObject* child = kaObjectStore::find(parse(reference.id, kaUID{0}));
        if (child)
            adopt(*object, *child);
    }
}

void kaAnimationXmlBuilder::connectCurve(kaAnimationCurve2D& curve, const kaAnimationXmlElement& element) {
    if (kaAnimationField* field = kaFieldStore::find(parse(element[Key::Field], kaUID{0})))
        curve.setAnimationField(field);
    std::vector<kaControlPoint2D*> points;
    std::unordered_set<kaUID> taken;
    for (const kaAnimationXmlElement::Child& reference : element.children) {
        kaControlPoint2D* point = kaObjectStore::find<kaControlPoint2D>(parse(reference.id, kaUID{0}));
        if (!point || !taken.insert(point->getId()).second)
            continue;
        kaAnimationObject* holder = point->getParentObject();
        if (holder && !kaObjectCast<kaAnimationCurve2D>(holder))
            holder->subObject(point, false);
        points.push_back(point);
    }
    curve.setPoints(points);
}

/// One that is refused stays where it is. The former container is left before the new one is joined: where
/// both have an ancestor in common it loses the ids below the child and then gets them back.
void kaAnimationXmlBuilder::adopt(kaAnimationObject& container, kaAnimationObject& child) {
    if (!kaObjectClass::of(container).links(kaObjectClass::of(child).level) ||
        container.hasChild(child.getId()))
        return;
    if (!hasRoom(container, child)) {
        kaLoadReport::leaveOut({container.getId(), child.getId(), whyNot(container, child)});
        return;
    }
    if (kaAnimationObject* former = child.getParentObject())
        former->subObject(&child, false);
    container.addObject(&child);
}
