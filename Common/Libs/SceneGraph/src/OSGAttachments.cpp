#include <OpenSG/OSGSimpleAttachments.h>
#include <string>
#include <vector>

/// @file
/// Attachments, the containers that they hang on, and the name of a container.

namespace osg {

namespace {

UInt32 keyOf(UInt32 groupId, UInt16 binding) {
    return (groupId << 16U) | binding;
}

} // namespace

FieldContainerType& Attachment::getClassType() {
    static FieldContainerType& type = declareAbstractType<Attachment>({
        describe<&Attachment::_mfParents>("parents", FieldDescription::Internal),
        describe<&Attachment::_sfInternal>("internal"),
    });
    return type;
}

Attachment::Attachment(const Attachment& source) : Container(source), _sfInternal(source._sfInternal) {}

void Attachment::onDestroy() {
    const std::vector<FieldContainerPtr> parents = _mfParents.getValues();
    for (const FieldContainerPtr& parent : parents) {
        auto* container = dynamic_cast<AttachmentContainer*>(parent.getCPtr());
        if (container == nullptr)
            continue;
        AttachmentMap& map = container->_sfAttachments.getValue();
        for (auto entry = map.begin(); entry != map.end();) {
            const bool isThis = entry->second.getFieldContainerId() == getFieldContainerId();
            entry = isThis ? map.erase(entry) : std::next(entry);
        }
    }
    Inherited::onDestroy();
}

FieldContainerType& AttachmentContainer::getClassType() {
    static FieldContainerType& type = declareAbstractType<AttachmentContainer>({
        describe<&AttachmentContainer::_sfAttachments>("attachments"),
    });
    return type;
}

void AttachmentContainer::addAttachment(const AttachmentPtr& attachment, UInt16 binding) {
    if (attachment == NullFC)
        return;
    const UInt32 key = keyOf(attachment->getGroupId(), binding);
    addRefCP(attachment);
    detach(key);
    _sfAttachments.getValue()[key] = attachment;
    attachment->_parentIndex.add(attachment->_mfParents, FieldContainerPtr(*this));
    endEditCP(attachment, Attachment::ParentsFieldMask);
}

void AttachmentContainer::subAttachment(const AttachmentPtr& attachment, UInt16 binding) {
    if (attachment != NullFC)
        detach(keyOf(attachment->getGroupId(), binding));
}

void AttachmentContainer::detach(UInt32 key) {
    AttachmentMap& map = _sfAttachments.getValue();
    const auto found = map.find(key);
    if (found == map.end())
        return;
    const AttachmentPtr attachment = found->second;
    map.erase(found);
    if (attachment == NullFC)
        return;
    // One entry per binding: the same attachment may hang here twice.
    attachment->_parentIndex.remove(attachment->_mfParents, getFieldContainerId());
    announceParents(attachment, Attachment::ParentsFieldMask);
    releaseRefCP(attachment);
}

AttachmentPtr AttachmentContainer::findAttachment(UInt32 groupId, UInt16 binding) const {
    const AttachmentMap& map = _sfAttachments.getValue();
    const auto found = map.find(keyOf(groupId, binding));
    return found == map.end() ? AttachmentPtr() : found->second;
}

AttachmentPtr AttachmentContainer::findAttachment(const FieldContainerType& type, UInt16 binding) const {
    return findAttachment(type.getGroupId(), binding);
}

void AttachmentContainer::onCopied() {
    for (const auto& [key, attachment] : _sfAttachments.getValue()) {
        addRefCP(attachment);
        attachment->_parentIndex.add(attachment->_mfParents, FieldContainerPtr(*this));
    }
    Inherited::onCopied();
}

void AttachmentContainer::onDestroy() {
    while (!getAttachments().empty())
        detach(getAttachments().begin()->first);
    Inherited::onDestroy();
}

FieldContainerType& Name::getClassType() {
    static FieldContainerType& type = declareType<Name>({describe<&Name::_sfName>("name")}, "name");
    return type;
}

const Char8* getName(const AttachmentContainerPtr& container) {
    if (container == NullFC)
        return nullptr;
    const AttachmentPtr found = container->findAttachment(Name::getClassType());
    return found == NullFC ? nullptr : static_cast<Name&>(*found).getName().c_str();
}

void setName(const AttachmentContainerPtr& container, const std::string& name) {
    if (container == NullFC)
        return;
    NamePtr attachment = NamePtr::dcast(container->findAttachment(Name::getClassType()));
    if (attachment == NullFC || attachment->getParents().size() > 1) {
        attachment = Name::create();
        container->addAttachment(attachment);
    }
    attachment->setName(name);
    endEditCP(attachment, Name::NameFieldMask);
}

void setName(const AttachmentContainerPtr& container, const Char8* name) {
    if (name != nullptr) {
        setName(container, std::string(name));
        return;
    }
    if (container != NullFC)
        container->subAttachment(container->findAttachment(Name::getClassType()));
}

} // namespace osg
