#include "Bindings.h"
#include "Call.h"
#include "References.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGTransform3D.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationUtils.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Text.h>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka::python {

namespace {

using Node = const NodeReference&;
using Field = const FieldReference&;

motion::NodePose poseOf(Node self) {
    return motion::readPose({self.get()}).front();
}

osg::NodePtr addNode(const osg::NodePtr& parent, const std::string& name) {
    const osg::NodePtr node = osg::Node::create();
    osg::beginEditCP(node);
    node->setCore(osg::Transform3D::create());
    osg::setName(node, name);
    osg::endEditCP(node);
    osg::beginEditCP(parent);
    parent->addChild(node);
    osg::endEditCP(parent);
    return node;
}

void addTree(py::class_<NodeReference>& nodes) {
    nodes.def_property_readonly("name", checked([](Node self) { return motion::nodeName(self.get()); }),
                                "Empty when it has none; any number of nodes may share one.");
    nodes.def_property_readonly(
        "path", checked([](Node self) { return motion::nodePath(self.get()); }),
        "The names from the top of the scene down to its own, with '/' between them.");
    nodes.def_property_readonly(
        "id", [](Node self) { return self.id; }, "The number of its container.");
    nodes.def_property_readonly("kind", checked([](Node self) -> std::string {
                                    const osg::NodeCorePtr core = self.get()->getCore();
                                    return core == osg::NullFC ? "" : core->getType().getCName();
                                }),
                                "The type of its core: 'Transform3D', 'Group', ...");
    nodes.def_property_readonly(
        "parent", checked([](Node self) { return wrap(self.session, self.get()->getParent()); }),
        "None for the top.");
    nodes.def_property_readonly("children", checked([](Node self) {
                                    const osg::NodePtr node = self.get();
                                    py::list children;
                                    for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
                                        children.append(wrap(self.session, node->getChild(i)));
                                    return children;
                                }),
                                "A list as of now.");
    nodes.def("add_child", checked([](Node self, const std::string& name) {
                  return wrap(self.session, addNode(self.get(), toLatin1(name)));
              }),
              py::arg("name"), "Adds a node that can be moved, turned and scaled, at the parent's origin.");
    nodes.def("destroy", checked([](Node self) {
                  const osg::NodePtr node = self.get();
                  if (node == self.session->project().root())
                      raise(ErrorKind::Refused, "the top of the scene goes with the project");
                  const osg::NodePtr parent = node->getParent();
                  for (const osg::NodePtr& below : motion::nodesBelow(node))
                      self.session->manager().destroyNodeObjects(below, false);
                  osg::beginEditCP(parent);
                  parent->subChild(node);
                  osg::endEditCP(parent);
              }),
              "Takes the node and all below it out of the scene, with the animation that they list.");
}

void addPlacing(py::class_<NodeReference>& nodes) {
    nodes.def_property_readonly("translation", checked([](Node self) { return poseOf(self).translation; }),
                                "[x, y, z] in the parent, as the scene holds it.");
    nodes.def_property_readonly("rotation", checked([](Node self) { return poseOf(self).rotation; }),
                                "[x, y, z] in degrees; applied in the order x, y, z.");
    nodes.def_property_readonly("scale", checked([](Node self) { return poseOf(self).scale; }),
                                "Factors [x, y, z].");
    nodes.def_property_readonly("position", checked([](Node self) { return poseOf(self).position; }),
                                "Its origin in the world, [x, y, z].");
    nodes.def_property_readonly("world_matrix", checked([](Node self) {
                                    const osg::Matrix matrix = self.get()->getToWorld();
                                    py::array_t<float> rows({4, 4});
                                    for (osg::UInt32 row = 0; row < 4; ++row)
                                        for (osg::UInt32 column = 0; column < 4; ++column)
                                            rows.mutable_at(row, column) = matrix[column][row];
                                    return rows;
                                }),
                                "4 x 4, float32: takes column vectors from inside the node to the world.");
}

void addAnimation(py::class_<NodeReference>& nodes) {
    nodes.def_property_readonly("objects", checked([](Node self) {
                                    return wrapAll(self.session,
                                                   kaAnimationUtils::getAnimationObjects(self.get()));
                                }),
                                "The objects that the node lists as its own: blocks and curves.");
    nodes.def_property_readonly("fields", checked([](Node self) {
                                    py::list fields;
                                    for (const kaAnimationField* field :
                                         self.session->manager().getAnimationFields(self.get()))
                                        fields.append(FieldReference{self.session, field->getId()});
                                    return fields;
                                }),
                                "What of the node can be animated; found on first use.");
    nodes.def("field", checked([](Node self, const std::string& attribute) {
                  kaAnimationField* field = self.session->manager().getField(self.get(), toLatin1(attribute));
                  if (field == nullptr)
                      raise(ErrorKind::Usage, "the node has no field '" + motion::oneLine(attribute) + "'");
                  return FieldReference{self.session, field->getId()};
              }),
              py::arg("attribute"), "The field of that attribute, such as 'translationX' or 'rotationZ'.");
    nodes.def("destroy_animation", checked([](Node self, bool recursive) {
                  self.session->manager().destroyNodeObjects(self.get(), recursive);
              }),
              py::kw_only(), py::arg("recursive") = false,
              "Destroys the objects and fields that the node lists; recursive: those of the nodes below it "
              "too, down "
              "to\nnodes that list nothing.");
}

void bindNode(py::module_& module) {
    py::class_<NodeReference> nodes(module, "Node", "A place in the scene.");
    addTree(nodes);
    addPlacing(nodes);
    addAnimation(nodes);
    nodes.def("__repr__", checked([](Node self) -> std::string {
                  return "<node '" + motion::oneLine(motion::nodeName(self.get())) + "'>";
              }));
    nodes.def(
        "__eq__", [](Node self, const NodeReference& other) { return self == other; }, py::is_operator());
    nodes.def("__hash__", [](Node self) { return py::hash(py::int_(self.id)); });
}

void bindField(py::module_& module) {
    py::class_<FieldReference> fields(module, "Field", "One number of the scene that curves can drive.");
    fields.def_property_readonly(
        "id", [](Field self) { return self.id; }, "The number by which curves name it.");
    fields.def_property_readonly(
        "attribute", checked([](Field self) { return motion::utf8FromLatin1(self.get().attribute); }),
        "'translationX', 'rotationZ', 'visible', ...");
    fields.def_property_readonly("name",
                                 checked([](Field self) { return motion::utf8FromLatin1(self.get().name); }),
                                 "Of the scene's field, or a special attribute.");
    fields.def_property_readonly("component", checked([](Field self) { return self.get().valuePos; }),
                                 "Which number of the scene's field it is, from 0.");
    fields.def_property_readonly("node", checked([](Field self) -> py::object {
                                     const auto id = static_cast<osg::UInt32>(self.get().nodeID);
                                     const osg::NodePtr node = osg::NodePtr::dcast(
                                         osg::FieldContainerFactory::the()->getContainer(id));
                                     return wrap(self.session, node);
                                 }),
                                 "The node it belongs to; None when that is gone.");
    fields.def_property("value",
                        checked([](Field self) { return kaAnimationUtils::getOSGFieldValue(&self.get()); }),
                        checked([](Field self, double value) {
                            kaAnimationField& field = self.get();
                            field.value = frameOf(value, "value");
                            if (!kaAnimationUtils::setOSGFieldValue(&field))
                                raise(ErrorKind::Refused, "what the field stands for is not in the scene");
                        }),
                        "The number as the scene holds it, angles in degrees. Playing overwrites it.");
    fields.def_property_readonly("curves", checked([](Field self) {
                                     self.get();
                                     return wrapAll(self.session,
                                                    self.session->manager().getReferencedCurves(self.id));
                                 }),
                                 "The curves that drive it, by id.");
    fields.def("__repr__", checked([](Field self) -> std::string {
                   return "<field '" + motion::oneLine(motion::utf8FromLatin1(self.get().attribute)) + "'>";
               }));
    fields.def(
        "__eq__", [](Field self, const FieldReference& other) { return self == other; }, py::is_operator());
    fields.def("__hash__", [](Field self) { return py::hash(py::int_(self.id)); });
}

} // namespace

void bindScene(py::module_& module) {
    bindNode(module);
    bindField(module);
    py::class_<Scene> scenes(module, "Scene",
                             "The nodes of a project, parents before children.\n\n"
                             ">>> import kaanimation\n"
                             ">>> with kaanimation.open(kaanimation.example()) as project:\n"
                             "...     print([node.name for node in project.scene.find_all('H*')])\n"
                             "['Hand', 'Hand_End']");
    scenes.def_property_readonly("root",
                                 checked([](const Scene& self) { return wrap(self.session, self.root()); }),
                                 "The node above everything that was read.");
    scenes.def_property_readonly("nodes", checked([](const Scene& self) {
                                     return wrapAll(self.session, motion::nodesBelow(self.root()));
                                 }),
                                 "All of them, a list as of now.");
    scenes.def_property_readonly("placed_nodes", checked([](const Scene& self) {
                                     return wrapAll(self.session, self.session->project().placedNodes());
                                 }),
                                 "Those whose core places them: the columns of `Project.world_positions`.");
    scenes.def(
        "find", checked([](const Scene& self, const std::string& name) {
            return wrap(self.session, motion::chosenNode(self.root(), name));
        }),
        py::arg("name"),
        "The one node of that name, or whose path ends so ('arm/hand'); raises UsageError for none and for "
        "several.");
    scenes.def("find_all", checked([](const Scene& self, const std::string& pattern) {
                   return wrapAll(self.session, motion::matchingNodes(self.root(), pattern));
               }),
               py::arg("pattern"), "All nodes of that name or pattern ('*Arm'); raises UsageError for none.");
    scenes.def("__len__", checked([](const Scene& self) { return motion::nodesBelow(self.root()).size(); }));
    scenes.def("__bool__", [](const Scene&) { return true; });
    scenes.def("__iter__", checked([](const Scene& self) -> py::iterator {
                   return py::iter(wrapAll(self.session, motion::nodesBelow(self.root())));
               }));
    scenes.def("__getitem__", checked([](const Scene& self, const py::object& index) -> py::object {
                   return wrapAll(self.session, motion::nodesBelow(self.root())).attr("__getitem__")(index);
               }));
}

} // namespace ka::python
