#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <kaAnimationCurve2D.h>
#include <kaAnimationObject.h>
#include <kaAnimationSequence.h>
#include <kaMotion/Summary.h>
#include <kaMotion/Text.h>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const ObjectReference&;
using Objects = py::class_<ObjectReference>;

std::string nameOf(Self self) {
    return motion::utf8FromLatin1(self.object().getName());
}

std::string describe(Self self) {
    if (!self.isAlive())
        return "<destroyed object " + std::to_string(self.id) + ">";
    const kaAnimationObject& object = self.object();
    const std::string kind =
        object.getTypeID() == KA_TYPE_POINT ? "key" : motion::typeName(object.getTypeID());
    return "<" + kind + " '" + motion::oneLine(nameOf(self)) + "' " +
           motion::formatNumber(static_cast<double>(object.getBegin())) + " to " +
           motion::formatNumber(static_cast<double>(object.getEnd())) + ">";
}

/// A flag as a property that can be set.
void addFlag(Objects& objects, const char* name, bool (kaAnimationObject::*get)() const,
             void (kaAnimationObject::*set)(bool), const char* doc) {
    objects.def_property(name, checked([get](Self self) -> bool { return (self.object().*get)(); }),
                         checked([set](Self self, bool value) { (self.object().*set)(value); }), doc);
}

void addIdentity(Objects& objects) {
    objects.def_property_readonly(
        "id", [](Self self) { return self.id; },
        "The 64-bit number by which everything else names the object.");
    objects.def_property(
        "name", checked([](Self self) { return nameOf(self); }),
        checked([](Self self, const std::string& name) { self.object().setName(toLatin1(name)); }),
        "What editors show; any number of objects may share one. Latin-1 characters alone.");
    objects.def_property_readonly("is_alive", checked([](Self self) { return self.isAlive(); }),
                                  "Whether the object is still there: true until it or what holds it is "
                                  "destroyed, or the project is closed. The one property that never raises.");
    objects.def("__repr__", checked([](Self self) { return describe(self); }));
    objects.def(
        "__eq__", [](Self self, const ObjectReference& other) { return self == other; }, py::is_operator());
    objects.def("__hash__", [](Self self) { return py::hash(py::int_(self.id)); });
    objects.def(
        "destroy", checked([](Self self) { self.session->manager().destroyObject(&self.object()); }),
        "Destroys the object with everything below it. What stood for any of it raises GoneError from "
        "now on.");
    objects.def("duplicate", checked([](Self self) {
                    kaAnimationObject& object = self.object();
                    kaAnimationManager& manager = self.session->manager();
                    kaAnimationObject* copy =
                        object.getTypeID() == KA_TYPE_SEQUENCE
                            ? manager.duplicateSequence(static_cast<kaAnimationSequence*>(&object))
                            : manager.duplicateObject(&object);
                    if (copy == nullptr)
                        raise(ErrorKind::Refused, "an object of this kind has no copy");
                    return wrap(self.session, copy);
                }),
                "A copy with ids of its own and copies of everything below it, which no node lists. A copied "
                "track loses its sequences.");
}

void addExtent(Objects& objects) {
    objects.def_property_readonly("begin", checked([](Self self) { return self.object().getBegin(); }),
                                  "The first frame; 1e23 for a container without children.");
    objects.def_property_readonly("end", checked([](Self self) { return self.object().getEnd(); }),
                                  "The last frame; -1e23 for a container without children.");
    objects.def_property_readonly("minimum", checked([](Self self) { return self.object().getMinimum(); }),
                                  "The smallest value of the keys below.");
    objects.def_property_readonly("maximum", checked([](Self self) { return self.object().getMaximum(); }),
                                  "The largest value of the keys below.");
    objects.def_property(
        "custom_range", checked([](Self self) -> std::optional<std::pair<float, float>> {
            const kaAnimationObject& object = self.object();
            if (!object.isUseCustomRange())
                return std::nullopt;
            return std::pair(object.getCustomBegin(), object.getCustomEnd());
        }),
        checked([](Self self, std::optional<std::pair<double, double>> range) {
            kaAnimationObject& object = self.object();
            if (range) {
                const float begin = frameOf(range->first, "begin"), end = frameOf(range->second, "end");
                object.setCustomBegin(begin);
                object.setCustomEnd(end);
                object.setCustomStart(begin);
            }
            object.setUseCustomRange(range.has_value());
        }),
        "The frames (begin, end) that playing goes by in place of the extent; None for the extent.");
    objects.def_property_readonly(
        "play_range", checked([](Self self) {
            const kaAnimationObject& object = self.object();
            return std::pair(object.getPlayBegin(), object.getPlayEnd());
        }),
        "The frames (begin, end) that playing goes by: the custom range or the extent.");
    objects.def_property_readonly("last_frame",
                                  checked([](Self self) { return self.object().getLastFrame(); }),
                                  "The frame that it was evaluated at last.");
}

void addTree(Objects& objects) {
    objects.def_property_readonly(
        "parent", checked([](Self self) { return wrap(self.session, self.object().getParentObject()); }),
        "What holds the object, None for what stands by itself.");
    objects.def_property_readonly("children", checked([](Self self) -> py::list {
                                      if (self.object().getTypeID() == KA_TYPE_POINT) // each is its own child
                                          return py::list();
                                      return wrapAll(self.session, self.object().getObjects());
                                  }),
                                  "What the object holds, by begin: a list as of now.");
    objects.def_property_readonly(
        "curves", checked([](Self self) { return wrapAll(self.session, self.object().getCurves()); }),
        "All curves at or below the object, by id: a list as of now.");
    objects.def_property_readonly("sequences", checked([](Self self) {
                                      return wrapAll(self.session, self.object().getSequencesRecursive());
                                  }),
                                  "All sequences at or below the object, by id: a list as of now.");
}

void addFlags(Objects& objects) {
    using Object = kaAnimationObject;
    addFlag(objects, "active", &Object::isActive, &Object::setActive,
            "Whether the object takes part in playing. Setting it sets everything below.");
    addFlag(objects, "playing", &Object::isPlaying, &Object::setPlaying,
            "Whether the player has started the object.");
    addFlag(objects, "reverse", &Object::isReversePlay, &Object::setReversePlay,
            "Whether it plays backwards.");
    addFlag(objects, "repeating", &Object::isRepeating, &Object::setRepeating,
            "Whether playing starts over at the end.");
    addFlag(objects, "pausing", &Object::isPausing, &Object::setPausing, "Whether it stands still.");
    addFlag(objects, "motion_blur", &Object::isMotionBlur, &Object::setMotionBlur,
            "Whether it takes part in motion blur.");
    addFlag(objects, "selected", &Object::isSelected, &Object::setSelected,
            "The editors' mark. A curve hands it to its keys, and ignores it without any.");
    addFlag(objects, "locked", &Object::isLocked, &Object::setLocked,
            "The editors' lock. Setting it on a curve locks the keys and marks the curve selected instead.");
    addFlag(objects, "internal", &Object::isInternal, &Object::setInternal,
            "Kept out of scene lists and of saved documents.");
    objects.def_property_readonly("flipped", checked([](Self self) { return self.object().isFlipped(); }),
                                  "Whether `flip` was called an odd number of times.");
    objects.def_property_readonly("trimmed", checked([](Self self) { return self.object().isTrimmed(); }),
                                  "Whether a trim has ever changed it.");
}

/// @throws RefusedError unless begin would lie before the end.
void requireBefore(float begin, float end) {
    if (!beginsBefore(begin, end))
        raise(ErrorKind::Refused, "the begin must lie before the end");
}

void addEditing(Objects& objects) {
    objects.def("move", checked([](Self self, double offset) {
                    self.object().move(frameOf(offset, "offset"), true);
                }),
                py::arg("offset"), "Moves everything by that many frames.");
    objects.def("move_begin", checked([](Self self, double frame) {
                    const float begin = frameOf(frame, "frame");
                    requireBefore(begin, self.object().getEnd());
                    self.object().moveBegin(begin, true);
                }),
                py::arg("frame"), "Stretches about the end until it begins at that frame.");
    objects.def("move_end", checked([](Self self, double frame) {
                    const float end = frameOf(frame, "frame");
                    requireBefore(self.object().getBegin(), end);
                    self.object().moveEnd(end, true);
                }),
                py::arg("frame"), "Stretches about the begin until it ends at that frame.");
    objects.def("trim_begin", checked([](Self self, double frame) {
                    const float begin = frameOf(frame, "frame");
                    requireBefore(begin, self.object().getEnd());
                    self.object().trimBegin(begin, true);
                }),
                py::arg("frame"), "Blocks and sequences begin there from now on; their keys stay.");
    objects.def("trim_end", checked([](Self self, double frame) {
                    const float end = frameOf(frame, "frame");
                    requireBefore(self.object().getBegin(), end);
                    self.object().trimEnd(end, true);
                }),
                py::arg("frame"), "Blocks and sequences end there from now on; their keys stay.");
    objects.def("flip", checked([](Self self) { self.object().flip(); }),
                "Mirrors in time, about the middle of the extent.");
}

} // namespace

void bindObject(py::module_& module) {
    Objects objects(
        module, "Object",
        "Anything of an animation: a span of frames with a place in a tree.\n\n"
        "What Python holds is an id. It is looked up whenever it is touched, and raises GoneError "
        "once\nwhat it stood for has been destroyed, by whomever.");
    addIdentity(objects);
    addExtent(objects);
    addTree(objects);
    addFlags(objects);
    addEditing(objects);

    using Sequence = ReferenceTo<kaAnimationSequence>;
    py::class_<Sequence, ObjectReference>(
        module, "Sequence",
        "A named event: when playing reaches its begin, its name goes to `Player.on_sequence`.")
        .def_property("armed", checked([](const Sequence& self) { return self.get().isArmed(); }),
                      checked([](const Sequence& self, bool armed) { self.get().setArmed(armed); }),
                      "Whether it may still fire in this run.");
}

} // namespace ka::python
