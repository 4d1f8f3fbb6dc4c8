#include "SceneState.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGNodeCore.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <kaMotion/NodeChoice.h>

namespace ka::studio {

namespace {

bool isAnimation(const osg::AttachmentPtr& attachment) {
    return osg::AnimAttachmentPtr::dcast(attachment) != osg::NullFC;
}

/// The numbers of the fields that hold one plain value.
template <class Use>
void forSingleValues(osg::FieldContainer& container, Use&& use) {
    for (osg::UInt32 id = 1; id <= container.getType().getNumFieldDescs(); ++id)
        if (osg::Field* field = container.getField(id);
            field != nullptr && field->getCardinality() == osg::FieldType::SINGLE_FIELD &&
            !field->isPointerField() && field->getType() != osg::SFAttachmentMap::getClassType())
            use(id, *field);
}

bool isSameValue(const osg::Field& a, const osg::Field& b) {
    std::string left, right;
    return a.getValueByStr(left) == b.getValueByStr(right);
}

} // namespace

bool SceneState::Place::operator==(const Place& other) const {
    return core == other.core && children == other.children && attachments == other.attachments &&
           travMask == other.travMask;
}

bool SceneState::Values::operator==(const Values& other) const {
    bool isSame = true;
    forSingleValues(*copy, [&](osg::UInt32 id, osg::Field& field) {
        isSame = isSame && isSameValue(field, *other.copy->getField(id));
    });
    return isSame;
}

SceneState::SceneState(const osg::NodePtr& root) {
    for (const osg::NodePtr& node : ka::motion::nodesBelow(root)) {
        Place& place = _nodes[node.getFieldContainerId()];
        place.node = node;
        place.core = node->getCore();
        for (osg::UInt32 i = 0; i < node->getNChildren(); ++i)
            place.children.emplace_back(node->getChild(i));
        for (const auto& [key, attachment] : node->getAttachments())
            if (!isAnimation(attachment)) {
                place.attachments.emplace_back(attachment);
                include(attachment);
            }
        place.travMask = node->getTravMask();
        if (node->getCore() == osg::NullFC)
            continue;
        include(node->getCore());
        for (osg::UInt32 id = 1; id <= node->getCore()->getType().getNumFieldDescs(); ++id)
            if (const osg::Field* field = node->getCore()->getField(id);
                field != nullptr && field->isPointerField() &&
                field->getCardinality() == osg::FieldType::SINGLE_FIELD)
                include(field->getPointer(0)); // a material
    }
}

void SceneState::include(const osg::FieldContainerPtr& container) {
    if (container == osg::NullFC || _values.count(container.getFieldContainerId()) != 0)
        return;
    _values[container.getFieldContainerId()] = {container, container->shallowCopy()};
}

void SceneState::keepDifferences(SceneState& before, SceneState& after) {
    const auto drop = [](auto& mine, auto& others) {
        for (auto here = mine.begin(); here != mine.end();) {
            const auto there = others.find(here->first);
            if (there == others.end() || !(here->second == there->second)) {
                ++here;
                continue;
            }
            others.erase(there);
            here = mine.erase(here);
        }
    };
    drop(before._nodes, after._nodes);
    drop(before._values, after._values);
}

void SceneState::restore() const {
    for (const auto& [id, place] : _nodes) {
        const osg::NodePtr node = place.node;
        osg::beginEditCP(node);
        while (node->getNChildren() > 0)
            node->subChild(0U);
        osg::endEditCP(node);
    }
    for (const auto& [id, place] : _nodes) {
        const osg::NodePtr node = place.node;
        osg::beginEditCP(node);
        for (const osg::NodeRefPtr& child : place.children)
            node->addChild(child);
        if (node->getCore() != place.core.get())
            node->setCore(place.core);
        node->setTravMask(place.travMask);
        std::vector<osg::AttachmentPtr> extra;
        for (const auto& [key, attachment] : node->getAttachments())
            if (!isAnimation(attachment))
                extra.push_back(attachment);
        for (const osg::AttachmentPtr& attachment : extra)
            node->subAttachment(attachment);
        for (const osg::AttachmentRefPtr& attachment : place.attachments)
            node->addAttachment(attachment);
        osg::endEditCP(node);
    }
    for (const auto& entry : _values) {
        const auto& values = entry.second;
        const osg::FieldContainerPtr container = values.container;
        osg::beginEditCP(container);
        forSingleValues(*container, [&](osg::UInt32 field, osg::Field& value) {
            const osg::Field& former = *values.copy->getField(field);
            if (!isSameValue(value, former))
                value.setAbstrValue(former);
        });
        osg::endEditCP(container);
    }
}

} // namespace ka::studio
