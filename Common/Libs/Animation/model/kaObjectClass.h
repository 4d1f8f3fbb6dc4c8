#pragma once

#include "kaAnimationObject.h"
#include "kaAnimationTypes.h"

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
    /// Whether a document may name an object of that level as a child of one of this class. Whether it
    /// becomes one is up to `addObject`.
    bool (*links)(Level child);
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
    static const kaObjectClass& of(const kaAnimationObject& object) { return byTypeID[object.getTypeID()]; }

    bool isKey() const { return level == Level::Key; }
    /// Whether its objects are `kaAnimationContainer`s: blocks, tracks and clips.
    bool isContainer() const { return level == Level::Block || level == Level::Container; }
    /// Whether an object of this class has an extent of its own, which counts in that of its parent though it
    /// has no children.
    bool hasOwnExtent() const { return level == Level::Event; }
    /// Whether evaluation takes an object of this class as one: all curves below it at one frame.
    bool isPlayedAsOne() const;
    /// Levels that an object of this class takes, itself included; 0 where that depends on its children.
    unsigned int height() const;

    static const kaObjectClass byTypeID[KA_TYPE_COUNT];
};

inline bool kaObjectClass::isPlayedAsOne() const {
    switch (level) {
    case Level::None:
    case Level::Key:
    case Level::Curve:
    case Level::Block:
        return true;
    case Level::Container:
    case Level::Event:
        return false;
    }
    return false;
}

inline unsigned int kaObjectClass::height() const {
    switch (level) {
    case Level::None: // a host may give it any children
    case Level::Container:
        return 0;
    case Level::Key:
    case Level::Event:
        return 1;
    case Level::Curve:
        return 2;
    case Level::Block:
        return 3;
    }
    return 0;
}

/// The object as one of class `Object`; null for null and for an object of another class.
template <class Object, class Base>
auto kaObjectCast(Base* object) -> decltype(static_cast<Object*>(object)) {
    return object && object->getTypeID() == Object::_typeID ? static_cast<Object*>(object) : nullptr;
}
