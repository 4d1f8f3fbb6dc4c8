#pragma once

#include "Errors.h"
#include "Session.h"

#include <kaAnimationManager.h>
#include <kaAnimationObject.h>
#include <kaAnimationTypes.h>
#include <string>

class kaAnimationCurve2D;
class kaAnimationField;

namespace ka::python {

/// An object of the registry as Python holds it: an id, looked up at each access.
struct ObjectReference {
    SessionPtr session;
    kaUID id = 0;

    /// The object. @throws GoneError when it has been destroyed, ClosedError, ThreadError.
    kaAnimationObject& object() const;
    bool isAlive() const;

    friend bool operator==(const ObjectReference& a, const ObjectReference& b) {
        return a.session == b.session && a.id == b.id;
    }
};

/// One of them for each class of objects.
template <class Object>
struct ReferenceTo : ObjectReference {
    using ObjectReference::ObjectReference;
    ReferenceTo() = default;
    ReferenceTo(SessionPtr of, kaUID number) : ObjectReference{std::move(of), number} {}

    /// The object as its class. @throws as `object` does, also when the id has gone to another class.
    Object& get() const;
};

/// A field of the registry, likewise.
struct FieldReference {
    SessionPtr session;
    kaUID id = 0;

    kaAnimationField& get() const; ///< @throws GoneError, ClosedError, ThreadError.
    friend bool operator==(const FieldReference& a, const FieldReference& b) {
        return a.session == b.session && a.id == b.id;
    }
};

/// A node of the scene by the number of its container.
struct NodeReference {
    SessionPtr session;
    osg::UInt32 id = 0;

    osg::NodePtr get() const; ///< @throws GoneError, ClosedError, ThreadError.
    friend bool operator==(const NodeReference& a, const NodeReference& b) {
        return a.session == b.session && a.id == b.id;
    }
};

/// The nodes of a project.
struct Scene {
    SessionPtr session;
    osg::NodePtr root() const { return session->project().root(); }
};

/// The object as its Python class; None for null.
pybind11::object wrap(const SessionPtr& session, const kaAnimationObject* object);
/// The node; None for null.
pybind11::object wrap(const SessionPtr& session, const osg::NodePtr& node);

/// All of them, as a list.
template <class List>
pybind11::list wrapAll(const SessionPtr& session, const List& objects) {
    pybind11::list list;
    for (const auto& object : objects)
        list.append(wrap(session, object));
    return list;
}

/// @throws GoneError: what has that id is no `Object`.
[[noreturn]] void raiseGone(kaUID id, const char* what);

template <class Object>
Object& ReferenceTo<Object>::get() const {
    kaAnimationObject& found = object();
    if (found.getTypeID() != Object::_typeID)
        raiseGone(id, "object");
    return static_cast<Object&>(found);
}

/// Names are Latin-1 in the module. @throws ValueError for a name that has no such form.
std::string toLatin1(const std::string& text);

/// A frame from Python. @throws ValueError unless it is finite.
float frameOf(double frame, const char* what);

} // namespace ka::python
