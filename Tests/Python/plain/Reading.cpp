// What the libraries themselves say of everything that is registered, under the names that the Python package has
// for it: ids in, plain values out.
#include "Plain.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGNodeCore.h>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaAnimationUtils.h>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace ka_plain {

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

kaAnimationObject& objectOf(kaUID id) {
    kaAnimationObject* object = manager().getObject(id);
    if (object == nullptr)
        throw py::key_error("no object " + std::to_string(id));
    return *object;
}

osg::NodePtr nodeOf(kaUID id) {
    osg::NodePtr node =
        osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(static_cast<unsigned>(id)));
    if (node == osg::NullFC)
        throw py::key_error("no node " + std::to_string(id));
    return node;
}

namespace {

kaUID idOf(const kaAnimationObject* object) {
    return object == nullptr ? 0 : object->getId();
}

kaUID idOf(const osg::NodePtr& node) {
    return node == osg::NullFC ? 0 : node.getFieldContainerId();
}

template <class List>
std::vector<kaUID> idsOf(const List& objects) {
    std::vector<kaUID> ids;
    for (const auto& object : objects)
        ids.push_back(idOf(object));
    return ids;
}

std::vector<kaUID> idsOfFields(const std::vector<kaAnimationField*>& fields) {
    std::vector<kaUID> ids;
    for (const kaAnimationField* field : fields)
        ids.push_back(field->getId());
    return ids;
}

std::pair<float, float> placeOf(const kaControlPoint2D& point) {
    return {point.getPosition()[0], point.getPosition()[1]};
}

void addKey(py::dict& told, const kaControlPoint2D& key) {
    told["frame"] = key.getPosition()[0];
    told["value"] = key.getPosition()[1];
    told["in_handle"] = placeOf(*key.getInTangent());
    told["out_handle"] = placeOf(*key.getOutTangent());
    told["tangent"] = key.getTangentType();
    told["length"] = key.getTangentLengthMode();
}

void addCurve(py::dict& told, const kaAnimationCurve2D& curve) {
    told["field"] = curve.getField();
    told["color"] = std::tuple(curve.getColor()[0], curve.getColor()[1], curve.getColor()[2]);
    std::vector<kaUID> keys;
    for (const auto& [frame, key] : curve.getPoints())
        keys.push_back(key->getId());
    told["keys"] = keys;
    told["label"] = ka::motion::curveLabel(&curve);
    told["unit"] = ka::motion::curveUnit(&curve);
    told["node"] = idOf(curve.getParentOSGNode());
}

void addContainer(py::dict& told, const kaAnimationObject& object) {
    if (const kaAnimationUnit* block = manager().getUnit(object.getId())) {
        told["node"] = block->getNodeID();
    } else if (const kaAnimationStreak* track = manager().getStreak(object.getId())) {
        told["index"] = track->getIndex();
        told["blocks"] = idsOf(track->getUnits());
        told["clips"] = idsOf(track->getStrips());
        told["events"] = idsOf(track->getSequences());
    } else if (const kaAnimationStrip* clip = manager().getStrip(object.getId())) {
        std::vector<kaUID> tracks, blocks;
        for (const auto& [index, numbered] : clip->getStreaks()) {
            tracks.push_back(numbered->getId());
            for (const kaAnimationUnit* held : numbered->getUnits())
                blocks.push_back(held->getId());
        }
        told["tracks"] = tracks;
        told["blocks"] = blocks;
    } else if (const kaAnimationSequence* event = manager().getSequence(object.getId())) {
        told["armed"] = event->isArmed();
    }
}

py::dict tellObject(kaUID id) {
    kaAnimationObject& object = objectOf(id);
    py::dict told;
    told["id"] = object.getId();
    told["name"] = ka::motion::utf8FromLatin1(object.getName());
    told["is_alive"] = true;
    told["begin"] = object.getBegin();
    told["end"] = object.getEnd();
    told["minimum"] = object.getMinimum();
    told["maximum"] = object.getMaximum();
    told["custom_range"] = object.isUseCustomRange()
                               ? py::cast(std::pair(object.getCustomBegin(), object.getCustomEnd()))
                               : py::object(py::none());
    told["play_range"] = std::pair(object.getPlayBegin(), object.getPlayEnd());
    told["last_frame"] = object.getLastFrame();
    told["parent"] = object.getParent();
    told["children"] =
        object.getTypeID() == KA_TYPE_POINT ? std::vector<kaUID>() : idsOf(object.getObjects());
    told["curves"] = idsOf(object.getCurves());
    told["sequences"] = idsOf(object.getSequencesRecursive());
    told["active"] = object.isActive();
    told["playing"] = object.isPlaying();
    told["reverse"] = object.isReversePlay();
    told["repeating"] = object.isRepeating();
    told["pausing"] = object.isPausing();
    told["motion_blur"] = object.isMotionBlur();
    told["selected"] = object.isSelected();
    told["locked"] = object.isLocked();
    told["internal"] = object.isInternal();
    told["flipped"] = object.isFlipped();
    told["trimmed"] = object.isTrimmed();
    if (object.getTypeID() == KA_TYPE_POINT)
        addKey(told, static_cast<kaControlPoint2D&>(object));
    else if (object.getTypeID() == KA_TYPE_CURVE)
        addCurve(told, static_cast<kaAnimationCurve2D&>(object));
    else
        addContainer(told, object);
    return told;
}

py::dict tellField(kaUID id) {
    kaAnimationField* field = manager().getField(id);
    py::dict told;
    told["id"] = field->getId();
    told["attribute"] = field->attribute;
    told["name"] = field->name;
    told["component"] = field->valuePos;
    told["node"] = field->nodeID;
    told["value"] = kaAnimationUtils::getOSGFieldValue(field);
    told["curves"] = idsOf(manager().getReferencedCurves(id));
    return told;
}

py::dict tellNode(kaUID id) {
    const osg::NodePtr node = nodeOf(id);
    const ka::motion::NodePose pose = ka::motion::readPose({node}).front();
    py::dict told;
    told["id"] = id;
    told["name"] = ka::motion::nodeName(node);
    told["path"] = ka::motion::nodePath(node);
    told["kind"] = node->getCore() == osg::NullFC ? "" : node->getCore()->getType().getCName();
    told["parent"] = idOf(node->getParent());
    std::vector<kaUID> children;
    for (unsigned int i = 0; i < node->getNChildren(); ++i)
        children.push_back(idOf(node->getChild(i)));
    told["children"] = children;
    told["translation"] = pose.translation;
    told["rotation"] = pose.rotation;
    told["scale"] = pose.scale;
    told["position"] = pose.position;
    const osg::Matrix world = node->getToWorld();
    std::vector<std::vector<float>> rows(4);
    for (unsigned int row = 0; row < 4; ++row)
        for (unsigned int column = 0; column < 4; ++column)
            rows[row].push_back(world[column][row]);
    told["world_matrix"] = rows;
    told["objects"] = idsOf(kaAnimationUtils::getAnimationObjects(node));
    told["fields"] = idsOfFields(manager().getAnimationFields(node));
    std::vector<kaUID> driven;
    for (const kaAnimationField* field : kaAnimationUtils::getAnimationFields(node))
        for (std::size_t i = 0; i < manager().getReferencedCurves(field->getId()).size(); ++i)
            driven.push_back(field->getId());
    told["driven_fields"] = driven;
    return told;
}

py::dict tellRegistry(kaUID rootID) {
    const osg::NodePtr root = nodeOf(rootID);
    py::dict told;
    told["clips"] = idsOf(manager().getSceneStrips());
    told["blocks"] = idsOf(manager().getSceneUnits());
    told["active_blocks"] = idsOf(manager().getActiveSceneUnits());
    told["curves"] = idsOf(manager().getObjects(KA_TYPE_CURVE));
    told["object_count"] = manager().getObjectCount();
    told["attributes"] = manager().getAnimationAttributes();
    told["copied"] = idsOf(manager().getCopyBuffer());
    told["nodes"] = idsOf(ka::motion::nodesBelow(root));
    std::string text;
    manager().writeAnimations([&text](std::string_view piece) { text += piece; });
    told["document"] = ka::motion::utf8FromLatin1(text);
    return told;
}

std::vector<float> sampleCurve(kaUID id, const std::vector<float>& frames) {
    std::vector<float> values;
    for (const float frame : frames) {
        float value = NAN;
        kaAnimationController::the()->computeCurveValue(manager().getCurve2D(id), frame, value);
        values.push_back(value);
    }
    return values;
}

} // namespace

void bindReading(py::module_& module) {
    module.def("tell_object", &tellObject);
    module.def("tell_field", &tellField);
    module.def("tell_node", &tellNode);
    module.def("tell_registry", &tellRegistry);
    module.def("sample", &sampleCurve);
    module.def("seed", [](unsigned long long seed) { kaAnimationManager::random(seed); });
}

} // namespace ka_plain
