#include "LibraryTypes.h"
#include "Lifetime.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGNode.h>
#include <cstdio>
#include <cstdlib>

namespace osg {

FieldContainerMapper::~FieldContainerMapper() = default;

FieldContainerFactory& FieldContainerFactory::registry() {
    static FieldContainerFactory& factory = *new FieldContainerFactory;
    return factory;
}

FieldContainerFactory* FieldContainerFactory::the() {
    static FieldContainerFactory* const factory = [] {
        registerLibraryTypes();
        return &registry();
    }();
    return factory;
}

void FieldContainerFactory::refuseBeforeStart() {
    if (isStarted)
        return;
    std::fputs("scene graph: a container is looked up before osgInit\n", stderr);
    std::abort();
}

FieldContainerPtr FieldContainerFactory::getMappedContainer(UInt32 id) const {
    return getContainer(_mapper == nullptr ? id : _mapper->map(id));
}

FieldContainerPtr FieldContainerFactory::createFieldContainer(const Char8* typeName) const {
    FieldContainerType* type = findType(typeName);
    return type == nullptr ? FieldContainerPtr() : type->createFieldContainer();
}

NodePtr FieldContainerFactory::createNode(const Char8* typeName) const {
    FieldContainerType* type = findType(typeName);
    return type == nullptr ? NodePtr() : type->createNode();
}

NodeCorePtr FieldContainerFactory::createNodeCore(const Char8* typeName) const {
    FieldContainerType* type = findType(typeName);
    return type == nullptr ? NodeCorePtr() : type->createNodeCore();
}

AttachmentPtr FieldContainerFactory::createAttachment(const Char8* typeName) const {
    FieldContainerType* type = findType(typeName);
    return type == nullptr ? AttachmentPtr() : type->createAttachment();
}

FieldContainerType* FieldContainerFactory::findType(UInt32 typeId) const {
    const auto found = _types.find(typeId);
    return found == _types.end() ? nullptr : found->second;
}

FieldContainerType* FieldContainerFactory::findType(const Char8* name) const {
    if (name == nullptr)
        return nullptr;
    const auto found = _typesByName.find(name);
    return found == _typesByName.end() ? nullptr : found->second;
}

UInt16 FieldContainerFactory::findGroupId(const Char8* name) const {
    for (std::size_t i = 0; name != nullptr && i < _groups.size(); ++i) {
        if (_groups[i] == name)
            return static_cast<UInt16>(i + 1);
    }
    return 0;
}

const Char8* FieldContainerFactory::findGroupName(UInt16 groupId) const {
    return groupId >= 1 && groupId <= _groups.size() ? _groups[groupId - 1U].c_str() : nullptr;
}

void FieldContainerFactory::add(FieldContainerType& type) {
    _types.emplace(type.getId(), &type);
    _typesByName.emplace(type.getCName(), &type);
}

UInt16 FieldContainerFactory::groupIdFor(const Char8* name) {
    const UInt16 known = findGroupId(name);
    if (known != 0)
        return known;
    _groups.emplace_back(name);
    return static_cast<UInt16>(_groups.size());
}

} // namespace osg
