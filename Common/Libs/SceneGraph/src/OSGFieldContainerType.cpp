#include "Lifetime.h"

#include <OpenSG/OSGContainer.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <cstring>

namespace osg {

const Field* FieldDescription::getField(const FieldContainer& container) const {
    return _access(const_cast<FieldContainer&>(container));
}

FieldContainerType::FieldContainerType(const Char8* name, FieldContainerType* parent, const Char8* groupName,
                                       Kind kind, Makers makers,
                                       std::initializer_list<FieldDescription> fields)
    : DataType(name, parent == nullptr ? "" : parent->getCName()),
      _groupId(FieldContainerFactory::registry().groupIdFor(groupName == nullptr ? name : groupName)),
      _parent(parent),
      _kind(kind),
      _makers(makers),
      _own(fields) {
    if (parent != nullptr)
        _all = parent->_all;
    for (FieldDescription& description : _own) {
        _all.push_back(&description);
        description._id = static_cast<UInt32>(_all.size());
    }
    FieldContainerFactory::registry().add(*this);
}

FieldContainerType::~FieldContainerType() = default;

bool FieldContainerType::isDerivedFrom(const FieldContainerType& other) const {
    for (const FieldContainerType* type = this; type != nullptr; type = type->_parent) {
        if (type == &other)
            return true;
    }
    return false;
}

FieldDescription* FieldContainerType::getFieldDescription(UInt32 fieldId) {
    return fieldId >= 1 && fieldId <= _all.size() ? _all[fieldId - 1] : nullptr;
}

const FieldDescription* FieldContainerType::getFieldDescription(UInt32 fieldId) const {
    return const_cast<FieldContainerType*>(this)->getFieldDescription(fieldId);
}

FieldDescription* FieldContainerType::findFieldDescription(const Char8* fieldName) {
    if (fieldName == nullptr)
        return nullptr;
    for (FieldDescription* description : _all) {
        if (std::strcmp(description->getCName(), fieldName) == 0)
            return description;
    }
    return nullptr;
}

const FieldDescription* FieldContainerType::findFieldDescription(const Char8* fieldName) const {
    return const_cast<FieldContainerType*>(this)->findFieldDescription(fieldName);
}

FieldContainerPtr FieldContainerType::createFieldContainer() {
    const FieldContainerPtr prototype = getPrototype();
    return prototype == NullFC ? FieldContainerPtr() : prototype->shallowCopy();
}

FieldContainerPtr FieldContainerType::createEmptyFieldContainer() {
#ifdef KA_STRICT_HANDLES
    if (!isStarted)
        return FieldContainerPtr();
#endif
    return isAbstract() ? FieldContainerPtr() : FieldContainerPtr(_makers.create());
}

NodePtr FieldContainerType::createNode() {
    return isNode() ? NodePtr::dcast(createFieldContainer()) : NodePtr();
}

NodeCorePtr FieldContainerType::createNodeCore() {
    return isNodeCore() ? NodeCorePtr::dcast(createFieldContainer()) : NodeCorePtr();
}

AttachmentPtr FieldContainerType::createAttachment() {
    return isAttachment() ? AttachmentPtr::dcast(createFieldContainer()) : AttachmentPtr();
}

FieldContainerPtr FieldContainerType::getPrototype() {
    if (_prototype == NullFC && !isAbstract()) {
        _prototype = createEmptyFieldContainer();
        addRefCP(_prototype);
    }
    return _prototype;
}

void FieldContainerType::setPrototype(const FieldContainerPtr& prototype) {
    if (prototype != NullFC && prototype->getType() == *this)
        setRefdCP(_prototype, prototype);
}

} // namespace osg
