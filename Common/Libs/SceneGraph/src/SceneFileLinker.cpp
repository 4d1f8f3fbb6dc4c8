#include "SceneFileLinker.h"

#include <OpenSG/OSGGroup.h>
#include <numeric>

namespace osg {

namespace {

constexpr UInt32 NONE = SceneFileContents::NONE;

/// A node around a core that stands where a node should.
NodePtr nodeAround(const NodeCorePtr& core) {
    const NodePtr node = Node::create();
    node->setCore(core);
    return node;
}

} // namespace

SceneFileLinker::SceneFileLinker(SceneFileContents& contents, SceneFileLog& log)
    : _contents(contents), _log(log) {
    _trees.resize(contents.items.size());
    std::iota(_trees.begin(), _trees.end(), 0U);
}

NodePtr SceneFileLinker::link() {
    for (const Slot& slot : _contents.slots) {
        if (slot.owner != NONE)
            linkSlot(slot);
    }
    for (const Item& item : _contents.items) {
        const NodePtr node = NodePtr::dcast(item.container);
        if (node != NullFC && !item.hasCore)
            node->setCore(Group::create());
    }
    const NodePtr root = nodeAround(Group::create());
    linkTopLevel(root, _contents.slots.front());
    return root;
}

FieldContainerPtr SceneFileLinker::resolve(Reference& reference) {
    if (reference.item == NONE && reference.name != NONE) {
        const std::string& name = _contents.names[reference.name];
        const auto found = _contents.definitions.find(name);
        if (found == _contents.definitions.end())
            _log.error(reference.line, "USE " + quotedForMessage(name) + " means nothing in this file");
        else
            reference.item = found->second;
    }
    return reference.item == NONE ? FieldContainerPtr() : _contents.items[reference.item].container;
}

template <class Use>
void SceneFileLinker::forEachReference(const Slot& slot, const Use& use) {
    for (UInt32 index = slot.first; index != NONE; index = _contents.references[index].next) {
        Reference& reference = _contents.references[index];
        const FieldContainerPtr container = resolve(reference);
        use(reference, container);
    }
}

void SceneFileLinker::linkSlot(const Slot& slot) {
    Item& owner = _contents.items[slot.owner];
    FieldContainer& container = *owner.container;
    const NodePtr node = NodePtr::dcast(owner.container);
    if (node != NullFC && slot.field->getFieldId() == Node::ChildrenFieldId)
        linkChildren(*node, slot);
    else if (node != NullFC && slot.field->getFieldId() == Node::CoreFieldId)
        linkCore(owner, slot);
    else if (auto* attachments = dynamic_cast<AttachmentContainer*>(&container);
             attachments != nullptr && slot.field->getFieldId() == AttachmentContainer::AttachmentsFieldId)
        linkAttachments(*attachments, slot);
    else
        linkField(container, slot);
}

void SceneFileLinker::wrongType(const Reference& reference, const FieldContainerPtr& container,
                                const std::string& wanted) {
    _log.error(reference.line,
               std::string(container->getTypeName()) + " stands where " + wanted + " should; it is left out");
}

UInt32 SceneFileLinker::treeOf(UInt32 item) {
    while (_trees[item] != item) {
        _trees[item] = _trees[_trees[item]];
        item = _trees[item];
    }
    return item;
}

void SceneFileLinker::linkChildren(Node& parent, const Slot& slot) {
    forEachReference(slot, [&](const Reference& reference, const FieldContainerPtr& container) {
        adopt(parent, itemOf(slot), reference, container);
    });
}

void SceneFileLinker::adopt(Node& parent, UInt32 parentItem, const Reference& reference,
                            const FieldContainerPtr& container) {
    if (container == NullFC)
        return;
    if (const NodeCorePtr core = NodeCorePtr::dcast(container)) {
        parent.appendUnchecked(nodeAround(core));
        return;
    }
    const NodePtr child = NodePtr::dcast(container);
    if (child == NullFC) {
        wrongType(reference, container, "a node or a core");
    } else if (child->getParent() != NullFC) {
        _log.error(reference.line, "a node cannot have a second parent; it stays with the first");
    } else if (treeOf(parentItem) == reference.item) {
        _log.error(reference.line, "a node cannot stand below itself; it is left out there");
    } else {
        _trees[reference.item] = treeOf(parentItem);
        parent.appendUnchecked(child);
    }
}

void SceneFileLinker::linkCore(Item& owner, const Slot& slot) {
    forEachReference(slot, [&](const Reference& reference, const FieldContainerPtr& container) {
        const NodeCorePtr core = NodeCorePtr::dcast(container);
        if (container != NullFC && core == NullFC)
            wrongType(reference, container, "a core");
        // What was meant to be a core and could not be read is not a node without one.
        const bool isToldNull = reference.item == NONE && reference.name == NONE;
        if (core == NullFC && !isToldNull)
            return;
        NodePtr::dcast(owner.container)->setCore(core);
        owner.hasCore = true;
    });
}

void SceneFileLinker::linkAttachments(AttachmentContainer& owner, const Slot& slot) {
    forEachReference(slot, [&](const Reference& reference, const FieldContainerPtr& container) {
        const AttachmentPtr attachment = AttachmentPtr::dcast(container);
        if (attachment != NullFC)
            owner.addAttachment(attachment, reference.binding);
        else if (container != NullFC)
            wrongType(reference, container, "an attachment");
    });
}

void SceneFileLinker::linkField(FieldContainer& owner, const Slot& slot) {
    Field* field = slot.field->getField(owner);
    const bool isOwning = slot.field->isOwning();
    const bool isSingle = field->getCardinality() == FieldType::SINGLE_FIELD;
    if (!isSingle) { // what a prototype or an earlier mention of the field left there
        for (UInt32 i = 0; isOwning && i < field->getSize(); ++i)
            releaseRefCP(field->getPointer(i));
        field->setAbstrValue(*field->getType().createField());
    }
    forEachReference(slot, [&](const Reference& reference, const FieldContainerPtr& container) {
        const FieldContainerPtr before = isSingle ? field->getPointer(0) : FieldContainerPtr();
        if (!field->pushPointer(container)) {
            wrongType(reference, container, "a " + std::string(field->getContentType().getCName()));
            return;
        }
        if (isOwning) {
            addRefCP(container);
            releaseRefCP(before);
        } else if (reference.isDefinition && container != NullFC) {
            owner.keepAlive(container);
        }
    });
}

void SceneFileLinker::linkTopLevel(const NodePtr& root, const Slot& slot) {
    forEachReference(slot, [&](const Reference& reference, const FieldContainerPtr& container) {
        const NodePtr node = NodePtr::dcast(container);
        if (node != NullFC && node->getParent() == NullFC)
            root->appendUnchecked(node);
        else if (const NodeCorePtr core = NodeCorePtr::dcast(container))
            root->appendUnchecked(nodeAround(core));
        else if (container != NullFC && node == NullFC && container.getRefCount() == 1)
            _log.warning(reference.line,
                         std::string(container->getTypeName()) + " belongs to nothing and is left out");
    });
}

} // namespace osg
