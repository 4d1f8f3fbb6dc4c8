#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Block = ReferenceTo<kaAnimationUnit>;
using Track = ReferenceTo<kaAnimationStreak>;
using Clip = ReferenceTo<kaAnimationStrip>;

/// What every container has.
template <class Container>
void addChildren(py::class_<ReferenceTo<Container>, ObjectReference>& containers) {
    using Self = const ReferenceTo<Container>&;
    containers.def("__len__", checked([](Self self) { return self.get().getChildCount(); }));
    containers.def(
        "__bool__", [](Self) { return true; }, "An empty container is there all the same.");
    containers.def("__iter__", checked([](Self self) -> py::iterator {
                       return py::iter(wrapAll(self.session, self.get().getObjects()));
                   }),
                   "Goes through the children as they were when it began.");
    containers.def("__getitem__", checked([](Self self, const py::object& index) -> py::object {
                       return wrapAll(self.session, self.get().getObjects()).attr("__getitem__")(index);
                   }),
                   "A child by its place, or several by a slice.");
    containers.def("__contains__", checked([](Self self, const ObjectReference& child) {
                       return self.get().hasChild(child.id);
                   }));
    containers.def(
        "add", checked([](Self self, const ObjectReference& child) {
            kaAnimationObject* held = self.get().addObject(&child.object());
            if (held == nullptr)
                raise(ErrorKind::Refused, "a container of this kind does not take that object");
            return wrap(self.session, held);
        }),
        py::arg("child"),
        "Adds a child without looking for overlaps. A block takes curves, a track anything; a clip takes "
        "tracks, and\nputs anything else on a new one. Returns what now stands in the container.");
    containers.def("remove", checked([](Self self, const ObjectReference& child) {
                       kaAnimationObject& object = child.object();
                       if (self.get().subObject(&object, false) == nullptr)
                           raise(ErrorKind::Refused, "that object is not in this container");
                   }),
                   py::arg("child"), "Takes a child out without destroying it.");
}

void bindTrack(py::module_& module) {
    py::class_<Track, ObjectReference> tracks(module, "Track",
                                              "Blocks, clips and sequences laid out in time.");
    addChildren<kaAnimationStreak>(tracks);
    tracks.def("insert", checked([](const Track& self, const ObjectReference& child) {
                   if (!self.get().insertObject(&child.object()))
                       raise(ErrorKind::Refused, "it overlaps what is on the track, or is no block, clip or "
                                                 "sequence");
               }),
               py::arg("child"),
               "Adds a block, clip or sequence where it overlaps nothing; touching ends are fine.");
    tracks.def_property_readonly(
        "blocks", checked([](const Track& self) { return wrapAll(self.session, self.get().getUnits()); }),
        "The children that are blocks, by begin.");
    tracks.def_property_readonly(
        "clips", checked([](const Track& self) { return wrapAll(self.session, self.get().getStrips()); }),
        "The children that are clips, by begin.");
    tracks.def_property_readonly(
        "events", checked([](const Track& self) { return wrapAll(self.session, self.get().getSequences()); }),
        "The children that are sequences, by begin.");
    tracks.def_property("index", checked([](const Track& self) { return self.get().getIndex(); }),
                        checked([](const Track& self, unsigned int index) { self.get().setIndex(index); }),
                        "The track's number in its clip, from 0. After a removal numbers can repeat.");
}

void bindClip(py::module_& module) {
    py::class_<Clip, ObjectReference> clips(module, "Clip",
                                            "A stack of tracks, such as one take of a figure.");
    addChildren<kaAnimationStrip>(clips);
    clips.def(
        "insert", checked([](const Clip& self, const ObjectReference& child) {
            kaAnimationStreak* track = self.get().insertObject(&child.object());
            if (track == nullptr)
                raise(ErrorKind::Refused, "a clip takes blocks, clips and sequences this way");
            return wrap(self.session, track);
        }),
        py::arg("child"),
        "Puts a block, clip or sequence on the first track that has room, else on a new one; returns the "
        "track.");
    clips.def_property_readonly("tracks", checked([](const Clip& self) {
                                    py::list tracks;
                                    for (const auto& [index, track] : self.get().getStreaks())
                                        tracks.append(wrap(self.session, track));
                                    return tracks;
                                }),
                                "The tracks by number.");
    clips.def_property_readonly("blocks", checked([](const Clip& self) {
                                    py::list blocks;
                                    for (const auto& [index, track] : self.get().getStreaks())
                                        for (const kaAnimationUnit* block : track->getUnits())
                                            blocks.append(wrap(self.session, block));
                                    return blocks;
                                }),
                                "The blocks of all tracks, track by track.");
    clips.def("remove_empty_tracks", checked([](const Clip& self) { self.get().destroyEmptyStreaks(); }),
              "Destroys the tracks that hold nothing; the others keep their numbers.");
}

} // namespace

void bindContainers(py::module_& module) {
    py::class_<Block, ObjectReference> blocks(module, "Block",
                                              "The curves that animate one node of the scene.");
    addChildren<kaAnimationUnit>(blocks);
    blocks.def_property_readonly("node", checked([](const Block& self) -> py::object {
                                     const NodeReference node{self.session, self.get().getNodeID()};
                                     try {
                                         return wrap(self.session, node.get());
                                     } catch (py::error_already_set& error) {
                                         if (!error.matches(PyExc_ReferenceError))
                                             throw;
                                         return py::none();
                                     }
                                 }),
                                 "The node that the block animates; None where there is none.");
    bindTrack(module);
    bindClip(module);
}

} // namespace ka::python
