#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <array>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaMotion/CopyPaste.h>
#include <kaMotion/NodeChoice.h>
#include <pybind11/stl.h>
#include <utility>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const SessionPtr&;
using Projects = py::class_<Session, SessionPtr>;
using Function = void (*)();

/// Python functions that connections can call: a connection knows a plain function and nothing else, so there
/// is one of those for each.
constexpr std::size_t functionCount = 256;

template <std::size_t Place>
void callFunction() {
    const Session* session = Session::current();
    if (session == nullptr || Place >= session->functions.size())
        return;
    const py::object function = session->functions[Place];
    Call::out([&function] { function(); });
}

template <std::size_t... Places>
constexpr std::array<Function, sizeof...(Places)> functionsFor(std::index_sequence<Places...>) {
    return {&callFunction<Places>...};
}

Function functionFor(Self session, const py::function& function) {
    static constexpr auto all = functionsFor(std::make_index_sequence<functionCount>());
    if (session->functions.size() == functionCount)
        raise(ErrorKind::Refused, "a project connects at most 256 functions");
    session->functions.push_back(function);
    return all[session->functions.size() - 1];
}

/// @throws UsageError for a number that is no member.
template <class Number>
Number memberOf(int number, const char* what) {
    if (number != 0 && number != 1)
        raise(ErrorKind::Usage, std::string("there is no ") + what + " " + std::to_string(number));
    return static_cast<Number>(number);
}

void addConnections(Projects& projects) {
    using Manager = kaAnimationManager;
    projects.def(
        "connect",
        checked([](Self self, const ObjectReference& source, int trigger, const ObjectReference& target,
                   int action) {
            self->manager().createConnection(
                &source.object(), memberOf<Manager::AnimationTrigger>(trigger, "trigger"), &target.object(),
                memberOf<Manager::AnimationAction>(action, "action"));
        }),
        py::arg("source"), py::arg("trigger"), py::arg("target"), py::arg("action") = 0,
        "Has the begin or end of one object, while it plays by itself, start or stop another. Connections "
        "are never\nremoved; with either object gone they do nothing.");
    projects.def(
        "connect",
        checked([](Self self, const ObjectReference& source, int trigger, const py::function& function) {
            self->manager().createConnection(&source.object(),
                                             memberOf<Manager::AnimationTrigger>(trigger, "trigger"),
                                             functionFor(self, function));
        }),
        py::arg("source"), py::arg("trigger"), py::arg("function"),
        "Has it call a function without arguments; a project takes 256 of them.");
    projects.def("fire", checked([](Self, const ObjectReference& source, int trigger) {
                     source.object().trigger(memberOf<Manager::AnimationTrigger>(trigger, "trigger"));
                 }),
                 py::arg("source"), py::arg("trigger"), "Carries out what is connected, as playing would.");
}

void addCopying(Projects& projects) {
    projects.def("copy", checked([](Self self, const std::vector<ObjectReference>& objects) {
                     if (!self->manager().copy(objectsOf(objects)))
                         raise(ErrorKind::Refused, "there is nothing in it that can be copied");
                 }),
                 py::arg("objects"),
                 "Puts copies of the objects into the copy buffer, which is emptied first.");
    projects.def("copy", checked([](Self self, const NodeReference& node) {
                     if (!self->manager().copy(node.get()))
                         raise(ErrorKind::Refused, "the node lists no animation");
                 }),
                 py::arg("node"), "The same for what a node lists.");
    projects.def("paste", checked([](Self self, const NodeReference& node, bool force) {
                     if (self->manager().getCopyBuffer().empty())
                         raise(ErrorKind::Refused, "nothing has been copied");
                     self->manager().getAnimationFields(
                         node.get()); // found on first use: curves go to what is there
                     if (!self->manager().paste(node.get(), force))
                         raise(ErrorKind::Refused, "the node cannot take what was copied");
                 }),
                 py::arg("node"), py::kw_only(), py::arg("force") = false,
                 "Moves what was copied to a node, whose fields it drives from then on; the buffer is empty "
                 "afterwards.");
    projects.def_property_readonly(
        "copied", checked([](Self self) { return wrapAll(self, self->manager().getCopyBuffer()); }),
        "What waits to be pasted.");
    projects.def(
        "paste_to", checked([](Self self, const NodeReference& source, const std::string& pattern) {
            const osg::NodePtr node = source.get();
            const motion::CopiedAnimation animation(node);
            motion::PasteReport report = motion::paste(animation, self->project().root(), pattern, node);
            return std::pair(std::move(report.pasted), std::move(report.passedBy));
        }),
        py::arg("source"), py::arg("pattern"),
        "Copies the animation of one node to every node of that name or pattern. Returns the paths of those "
        "that have\nit and a line for each that was passed by.");
    projects.def(
        "move_to_track",
        checked([](Self self, const ObjectReference& object, const ReferenceTo<kaAnimationStreak>& track) {
            if (!self->manager().moveObjectToStreak(&object.object(), &track.get()))
                raise(ErrorKind::Refused, "it is on no track, or holds that track");
        }),
        py::arg("object"), py::arg("track"),
        "Moves an object from its track to another, where it may overlap.");
    projects.def("move_to_track",
                 checked([](Self self, const ObjectReference& object,
                            const ReferenceTo<kaAnimationStrip>& clip, unsigned int number) {
                     if (!self->manager().moveObjectToStreak(&object.object(), &clip.get(), number))
                         raise(ErrorKind::Refused,
                               "it is on no track, or the clip has no track of that number");
                 }),
                 py::arg("object"), py::arg("clip"), py::arg("number"),
                 "The same to a clip's track of that number; missing tracks are made first.");
}

} // namespace

void bindEditing(py::module_& module) {
    auto projects = py::reinterpret_borrow<Projects>(module.attr("Project"));
    addConnections(projects);
    addCopying(projects);
}

} // namespace ka::python
