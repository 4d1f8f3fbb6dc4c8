#pragma once

#include "kaAnimationTypes.h"

class kaAnimationObject;

/// What sets one class of the object family apart from the others, for all code that is the same for every
/// class but for that. A class that is added describes itself here once (kaObjectClasses.cpp does not compile
/// before), and nothing else compares type ids.
struct kaObjectClass {
    /// How an object of this class is looked at by the walks from the root to the keys.
    enum class Level : unsigned char {
        None,      ///< of the base itself: holds nothing
        Key,       ///< control points, handles included
        Curve,     ///< holds keys
        Block,     ///< holds the curves of one node
        Container, ///< holds blocks, containers and sequences: tracks and clips
        Event      ///< a sequence
    };

    Level level;
    bool isLaidOut; ///< stands on a track beside others without overlap: blocks, clips, sequences
    /// A registered copy with all that is below it; null for an object that cannot be copied.
    kaAnimationObject* (*duplicate)(kaAnimationObject& object);
    /// A copy of a track or clip without its children, which the registry does not know; null for any other.
    kaAnimationObject* (*copyAlone)(kaAnimationObject& object);
    /// Frees the object, which the registry does not know any more, as what it is: the family has no virtual
    /// destructor.
    void (*free)(kaAnimationObject& object);
    /// The id of the field that an object drives; null for classes whose objects drive none.
    kaUID (*field)(const kaAnimationObject& object) = nullptr;
    /// What an object's end begins with, before that of its children; null for nothing.
    void (*beginEnd)(kaAnimationObject& object) = nullptr;

    /// The class of an object.
    static const kaObjectClass& of(const kaAnimationObject& object);
};

/// The object as one of class `Object`; null for null and for an object of another class.
template <class Object, class Base>
auto kaObjectCast(Base* object) -> decltype(static_cast<Object*>(object)) {
    return object && object->getTypeID() == Object::_typeID ? static_cast<Object*>(object) : nullptr;
}
