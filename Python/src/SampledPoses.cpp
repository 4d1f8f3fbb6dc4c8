#include "SampledPoses.h"

#include "Sampling.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaMotion/CurveChoice.h>

namespace ka::python {

namespace {

bool isPlainContainer(const kaAnimationObject& object) {
    if (object.isRepeating() || !object.getSequenceIDs().empty())
        return false;
    if (object.getTypeID() == KA_TYPE_CURVE)
        return true;
    for (const kaAnimationObject* child : object.getObjects())
        if (child->getTypeID() == KA_TYPE_SEQUENCE || !isPlainContainer(*child))
            return false;
    return true;
}

osg::FieldContainerPtr containerOf(kaUID id) {
    return osg::FieldContainerFactory::the()->getContainer(static_cast<osg::UInt32>(id));
}

osg::TransformAttachmentPtr anglesOf(const osg::NodePtr& node) {
    return osg::TransformAttachmentPtr::dcast(
        node->findAttachment(osg::TransformAttachment::getClassType().getGroupId()));
}

/// "translationX": the word, and the component.
std::pair<std::string, std::size_t> partsOf(const std::string& attribute) {
    const char last = attribute.empty() ? '\0' : attribute.back();
    if (last < 'X' || last > 'Z')
        return {attribute, 3};
    return {attribute.substr(0, attribute.size() - 1), static_cast<std::size_t>(last - 'X')};
}

} // namespace

std::optional<SampledPoses> SampledPoses::of(const std::vector<kaAnimationObject*>& objects) {
    SampledPoses poses;
    for (const kaAnimationObject* object : objects)
        if (!isPlainContainer(*object))
            return std::nullopt;
    for (kaAnimationCurve2D* curve : motion::curvesBelow(objects))
        if (!poses.add(*curve))
            return std::nullopt;
    return poses;
}

bool SampledPoses::add(kaAnimationCurve2D& curve) {
    const kaAnimationField* field = kaAnimationManager::the()->getField(curve.getField());
    if (field == nullptr || !curve.isActive())
        return true; // writes nothing
    if (!(curve.getBegin() < curve.getEnd()))
        return false;
    const auto [word, component] = partsOf(field->attribute);
    const bool isRotation = word == "rotation";
    if (component > 2 || (!isRotation && word != "translation" && word != "scale")) {
        const osg::FieldContainerPtr container = containerOf(field->fcID);
        return osg::TransformPtr::dcast(container) == osg::NullFC &&
               osg::TransformAttachmentPtr::dcast(container) == osg::NullFC;
    }
    const osg::NodePtr node = osg::NodePtr::dcast(containerOf(field->nodeID));
    if (node == osg::NullFC || node->getCore() == osg::NullFC)
        return false;
    const osg::NodeCorePtr core = node->getCore();
    if (osg::Transform3DPtr::dcast(core) == osg::NullFC ||
        field->name != (isRotation ? field->attribute : word))
        return false;
    if (!isRotation && (field->valuePos != component || field->fcID != core.getFieldContainerId()))
        return false;
    const osg::TransformAttachmentPtr angles = anglesOf(node);
    if (isRotation && angles != osg::NullFC && angles->getParents().size() > 1)
        return false;
    auto& all = isRotation ? _rotations : word == "scale" ? _scales : _translations;
    Driven& driven = all[isRotation ? node.getFieldContainerId() : core.getFieldContainerId()];
    if (driven[component])
        return false; // whose value counts depends on the frame
    driven[component] = _curves.size();
    _curves.push_back(&curve);
    return true;
}

bool SampledPoses::sample(const float* frames, std::size_t count) {
    _count = count;
    _values.resize(_curves.size() * count);
    std::vector<float> held;
    for (std::size_t i = 0; i < _curves.size(); ++i)
        if (!sampleColumn(*_curves[i], frames, count, true, held, _values.data() + i * count))
            return false;
    return true;
}

const SampledPoses::Driven* SampledPoses::find(const std::map<osg::UInt32, Driven>& all,
                                               osg::UInt32 id) const {
    const auto found = all.find(id);
    return found == all.end() ? nullptr : &found->second;
}

SampledPoses::Node SampledPoses::of(const osg::NodePtr& node, const osg::Transform3DPtr& core) const {
    Node moved;
    moved.translation = find(_translations, core.getFieldContainerId());
    moved.scale = find(_scales, core.getFieldContainerId());
    moved.rotation = find(_rotations, node.getFieldContainerId());
    moved.stillTranslation = core->getTranslation();
    moved.stillScale = core->getScale();
    if (const osg::TransformAttachmentPtr angles = anglesOf(node); angles != osg::NullFC)
        moved.stillRotation = angles->getRotation();
    moved.rest = core->getMatrix();
    return moved;
}

osg::Vec3f SampledPoses::valueOf(const Driven* driven, osg::Vec3f value, std::size_t frame) const {
    if (driven != nullptr)
        for (osg::UInt32 component = 0; component < 3; ++component)
            if (const std::optional<std::size_t>& curve = (*driven)[component])
                value[component] = _values[*curve * _count + frame];
    return value;
}

osg::Matrix SampledPoses::local(const Node& node, std::size_t frame) const {
    osg::Matrix matrix = osg::Transform3D::compose(valueOf(node.translation, node.stillTranslation, frame),
                                                   valueOf(node.rotation, node.stillRotation, frame),
                                                   valueOf(node.scale, node.stillScale, frame));
    matrix.multLeft(node.rest);
    return matrix;
}

} // namespace ka::python
