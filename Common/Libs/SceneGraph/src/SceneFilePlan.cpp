#include "SceneFilePlan.h"

#include "SceneFileLexer.h"
#include "SceneFileParser.h"

#include <OpenSG/OSGAttachmentMapFields.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <algorithm>
#include <cstring>
#include <tuple>

namespace osg {

namespace {

/// By type name and binding: the order of the map follows group ids, which differ from run to run.
std::vector<SceneFileLink> attachmentLinks(const AttachmentMap& map) {
    std::vector<SceneFileLink> links;
    for (const auto& [key, attachment] : map) {
        if (attachment != NullFC && !attachment->getInternal())
            links.push_back({attachment, static_cast<UInt16>(key & 0xFFFFU), true});
    }
    std::stable_sort(links.begin(), links.end(), [](const SceneFileLink& a, const SceneFileLink& b) {
        const int order = std::strcmp(a.target->getTypeName(), b.target->getTypeName());
        return order != 0 ? order < 0 : a.binding < b.binding;
    });
    return links;
}

/// The name of a container as a scene file would keep it; null when it has none or hides it.
const Char8* visibleName(const FieldContainerPtr& container) {
    const AttachmentContainerPtr named = AttachmentContainerPtr::dcast(container);
    if (named == NullFC)
        return nullptr;
    const AttachmentPtr name = named->findAttachment(Name::getClassType());
    return name == NullFC || name->getInternal() ? nullptr : getName(named);
}

} // namespace

bool isLinkField(const Field& field) {
    return field.isPointerField() || field.getType() == SFAttachmentMap::getClassType();
}

std::vector<SceneFileLink> linksOf(const FieldContainer& container, const FieldDescription& description) {
    const Field* field = description.getField(container);
    if (const auto* attachments = dynamic_cast<const SFAttachmentMap*>(field))
        return attachmentLinks(attachments->getValue());
    std::vector<SceneFileLink> links;
    if (!field || !field->isPointerField())
        return links;
    const bool isNode = container.getType().isNode();
    const bool isTree = isNode && (description.getFieldId() == Node::ChildrenFieldId ||
                                   description.getFieldId() == Node::CoreFieldId);
    links.reserve(field->getSize());
    for (UInt32 i = 0; i < field->getSize(); ++i) {
        const FieldContainerPtr target = field->getPointer(i);
        // A field that does not own may refer to what is gone.
        links.push_back({ContainerAccess::isGone(target) ? FieldContainerPtr() : target, 0,
                         isTree || description.isOwning()});
    }
    return links;
}

SceneFilePlan::SceneFilePlan(const std::vector<FieldContainerPtr>& tops, SceneFileLog& log) {
    for (const FieldContainerPtr& top : tops) {
        NodePtr above = NodePtr::dcast(top);
        while (above != NullFC && _ancestors.insert(above.getFieldContainerId()).second)
            above = above->getParent();
    }
    for (const FieldContainerPtr& top : tops)
        collectOwned(top);
    collectReferred(log);
}

void SceneFilePlan::meet(const FieldContainerPtr& container, std::vector<FieldContainerPtr>& waiting) {
    if (container == NullFC)
        return;
    if (_names.emplace(container.getFieldContainerId(), std::string()).second)
        waiting.push_back(container);
    else
        name(container);
}

void SceneFilePlan::collectOwned(const FieldContainerPtr& top) {
    std::vector<FieldContainerPtr> waiting;
    meet(top, waiting);
    while (!waiting.empty()) {
        const FieldContainerPtr container = waiting.back();
        waiting.pop_back();
        const FieldContainerType& type = container->getType();
        for (UInt32 id = 1; id <= type.getNumFieldDescs(); ++id) {
            const FieldDescription& description = *type.getFieldDescription(id);
            if (description.isInternal())
                continue;
            for (const SceneFileLink& link : linksOf(*container, description)) {
                if (link.isOwning)
                    meet(link.target, waiting);
                else if (link.target != NullFC)
                    _references.push_back({link.target, container, &description});
            }
        }
    }
}

bool SceneFilePlan::isPartOfAnotherTree(const FieldContainerPtr& container) const {
    const NodePtr node = NodePtr::dcast(container);
    return node != NullFC &&
           (node->getParent() != NullFC || _ancestors.count(container.getFieldContainerId()) != 0);
}

void SceneFilePlan::collectReferred(SceneFileLog& log) {
    // The list grows while containers are met that only references lead to.
    for (std::size_t i = 0; i < _references.size(); ++i) {
        const Reference reference = _references[i];
        const UInt32 id = reference.target.getFieldContainerId();
        if (_names.count(id) != 0) {
            name(reference.target);
        } else if (isPartOfAnotherTree(reference.target)) {
            const Char8* nodeName = visibleName(reference.target);
            log.error(0, std::string(reference.owner->getTypeName()) + "." + reference.field->getCName() +
                             " refers to the node " + quotedForMessage(nodeName == nullptr ? "" : nodeName) +
                             ", which is not part of what is written; NULL is written");
        } else {
            _homes.emplace(id, Place(reference.owner.getFieldContainerId(), reference.field->getFieldId()));
            collectOwned(reference.target);
        }
    }
}

void SceneFilePlan::name(const FieldContainerPtr& container) {
    std::string& slot = _names[container.getFieldContainerId()];
    if (slot.empty())
        slot = chooseName(container);
}

std::string SceneFilePlan::chooseName(const FieldContainerPtr& container) {
    const Char8* own = visibleName(container);
    const Char8* type = container->getTypeName();
    if (own != nullptr && SceneFileLexer::isLegalId(own) && !isMadeUpName(own, type) &&
        _usedNames.insert(own).second)
        return own;
    std::string made;
    do {
        made = std::string(type) + ':' + std::to_string(++_lastNumber);
    } while (!_usedNames.insert(made).second);
    return made;
}

const std::string& SceneFilePlan::nameOf(const FieldContainerPtr& container) const {
    static const std::string none;
    const auto found = _names.find(container.getFieldContainerId());
    return found == _names.end() ? none : found->second;
}

SceneFilePlan::Form SceneFilePlan::formOf(const FieldContainerPtr& owner, const FieldDescription& field,
                                          const SceneFileLink& link) {
    if (link.target == NullFC)
        return Form::Null;
    const UInt32 id = link.target.getFieldContainerId();
    if (_names.count(id) == 0)
        return Form::Null;
    const auto home = _homes.find(id);
    const bool isHome = home == _homes.end()
                            ? link.isOwning
                            : home->second == Place(owner.getFieldContainerId(), field.getFieldId());
    return isHome && _written.insert(id).second ? Form::Definition : Form::Use;
}

} // namespace osg
