// What is done with the registry as a whole, and with what nodes list of it.
#include "Arguments.h"
#include "Bindings.h"
#include "Call.h"

#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaLoadReport.h>
#include <pybind11/stl.h>
#include <set>

namespace py = pybind11;

namespace ka::python {

namespace {

using Self = const SessionPtr&;
using Projects = py::class_<Session, SessionPtr>;
using Nodes = py::class_<NodeReference>;
using Node = const NodeReference&;

template <class Fields>
py::list wrapFields(const SessionPtr& session, const Fields& fields) {
    py::list list;
    for (const kaAnimationField* field : fields)
        list.append(FieldReference{session, field->getId()});
    return list;
}

void addSweeping(Projects& projects) {
    projects.def_property_readonly("active_blocks", checked([](Self self) {
                                       return wrapAll(self, self->manager().getActiveSceneUnits());
                                   }),
                                   "Those of `blocks` that are active.");
    projects.def("sweep", checked([](Self self) {
                     const std::size_t before = self->manager().getObjectCount();
                     self->manager().destroyUnreferencedObjectsAndFields();
                     return before - self->manager().getObjectCount();
                 }),
                 "Destroys what no node lists: objects that stand in no other, clips excepted, then fields. "
                 "Returns how\nmany objects went, keys included.");
    projects.def("destroy_all",
                 checked([](Self self, bool internal) { self->manager().destroyAllObjects(internal); }),
                 py::kw_only(), py::arg("internal") = true,
                 "Destroys every object; where each stands by itself the one with the largest id stays. "
                 "internal: those that\nare marked so too.");
    projects.def(
        "complete_fields", checked([](Self self) { self->manager().completeAnimationFieldNodes(); }),
        "Points what every node lists at that node: its fields at the core, its blocks at the node.");
    projects.def("ensure_unique_attributes",
                 checked([](Self self) { self->manager().checkUniqueAttributes(); }),
                 "Leaves each node one field for each attribute, to which the curves of the others move.");
    projects.def("clear_copied",
                 checked([](Self self, bool destroy) { self->manager().clearCopyBuffer(destroy); }),
                 py::kw_only(), py::arg("destroy") = true,
                 "Empties the copy buffer; destroy: what was in it goes, else it stays registered.");
    projects.def_property_readonly(
        "connections", checked([](Self self) {
            py::list list;
            for (const auto& [id, target] : self->manager().getObjectConnections())
                list.append(py::make_tuple(id, wrap(self, target.first), static_cast<int>(target.second)));
            return list;
        }),
        "(number, target, action) of each connection of objects; the target is None once it has gone.");
}

void addAttributes(Projects& projects) {
    projects.def_property_readonly(
        "attributes", checked([](Self self) { return self->manager().getAnimationAttributes(); }),
        "Names of scene fields that count as animatable.");
    projects.def("add_attribute", checked([](Self self, const std::string& name) {
                     if (!self->manager().isAnimationAttribute(toLatin1(name)))
                         self->manager().addAnimationAttribute(toLatin1(name));
                 }),
                 py::arg("name"),
                 "Counts fields of that name as animatable, on nodes whose fields have not been found yet.");
    projects.def("remove_attribute", checked([](Self self, const std::string& name) {
                     if (!self->manager().isAnimationAttribute(toLatin1(name)))
                         raise(ErrorKind::Usage, "no such attribute counts as animatable");
                     self->manager().subAnimationAttribute(toLatin1(name));
                 }),
                 py::arg("name"), "No longer counts them; fields that were found stay.");
}

void loadText(Self self, const std::string& text) {
    if (!self->manager().loadAnimations(QString::fromUtf8(text.c_str()), false)) {
        const kaDocumentFault& fault = kaAnimationManager::getLoadFault();
        raise(ErrorKind::File, "text:" + std::to_string(fault.line) + ":" + std::to_string(fault.column) +
                                   ": " + (fault.message.empty() ? "there is nothing in it" : fault.message));
    }
    for (const kaLoadReport::Link& link : kaLoadReport::last().leftOut)
        self->notes.push_back(
            "object " + std::to_string(link.child) + " stays outside " + std::to_string(link.container) +
            (link.reason == kaLoadReport::Reason::TooDeep ? ": too deep" : ": it is within itself"));
}

void addDocuments(Projects& projects) {
    projects.def("document", checked([](Self self) {
                     std::string text;
                     self->manager().writeAnimations([&text](std::string_view piece) { text += piece; });
                     return py::reinterpret_steal<py::str>(
                         PyUnicode_DecodeLatin1(text.data(), static_cast<py::ssize_t>(text.size()), nullptr));
                 }),
                 "The animation document as text: what `save` writes to an .xml file.");
    projects.def("load", checked([](Self self, const std::string& text) { loadText(self, text); }),
                 py::arg("text"),
                 "Adds the animation of a document given as text, as `merge` adds that of a file; raises "
                 "FileError with the\nline for text that is none, with nothing changed.");
}

void addListing(Nodes& nodes) {
    nodes.def("list_object", checked([](Node self, const ObjectReference& object) {
                  if (!kaAnimationUtils::addAnimationObject(self.get(), &object.object()))
                      raise(ErrorKind::Refused, "the node cannot list it");
              }),
              py::arg("object"), "Lists a block or curve as the node's own.");
    nodes.def("unlist_object", checked([](Node self, const ObjectReference& object) {
                  if (!kaAnimationUtils::subAnimationObject(self.get(), &object.object()))
                      raise(ErrorKind::Refused, "the node does not list it");
              }),
              py::arg("object"), "Takes it off the list; it stays.");
    nodes.def("find_fields_again", checked([](Node self) {
                  return wrapFields(self.session,
                                    self.session->manager().recreateAnimationFields(self.get()));
              }),
              "Destroys the node's fields and finds them anew, say after `Project.add_attribute`.");
    nodes.def_property_readonly(
        "driven_fields", checked([](Node self) {
            std::set<unsigned int> containers;
            for (const kaAnimationField* field : kaAnimationUtils::getAnimationFields(self.get()))
                containers.insert(static_cast<unsigned int>(field->fcID));
            py::list driven;
            for (const unsigned int container : containers)
                for (const kaAnimationField* field : self.session->manager().getReferencedFields(container))
                    driven.append(FieldReference{self.session, field->getId()});
            return driven;
        }),
        "Its fields that curves drive, once for each curve.");
    nodes.def("may_take", checked([](Node self, const ObjectReference& object) {
                  return kaAnimationUtils::checkPasteTo(self.get(), &object.object());
              }),
              py::arg("object"), "Whether the object's curves can drive the node: what `paste` asks.");
}

} // namespace

void bindRegistry(py::module_& module) {
    auto projects = py::reinterpret_borrow<Projects>(module.attr("Project"));
    addSweeping(projects);
    addAttributes(projects);
    addDocuments(projects);
    auto nodes = py::reinterpret_borrow<Nodes>(module.attr("Node"));
    addListing(nodes);
    auto blocks = py::reinterpret_borrow<py::class_<ReferenceTo<kaAnimationUnit>, ObjectReference>>(
        module.attr("Block"));
    blocks.def("activate_alone", checked([](const ReferenceTo<kaAnimationUnit>& self) {
                   self.session->manager().setExclusiveActiveNodeUnit(&self.get());
               }),
               "Switches every other block that is listed on its node off. Its own flag stays.");
}

} // namespace ka::python
