#pragma once

#include <OpenSG/OSGFieldContainerType.h>
#include <map>
#include <string>

namespace osg {

/// Translates container ids, as a host that loads several files into one numbering does.
class KA_SCENEGRAPH_API FieldContainerMapper {
  public:
    virtual ~FieldContainerMapper();
    virtual UInt32 map(UInt32 id) const = 0;
};

/// Finds containers by id, types by id and name, groups by name, and makes containers by the name of their
/// type.
class KA_SCENEGRAPH_API FieldContainerFactory {
  public:
    using TypeMap = std::map<UInt32, FieldContainerType*>;

    /// The one factory; on first use it registers the library's types and makes their prototypes.
    static FieldContainerFactory* the();

    /// The container with that id. Null for 0, for an id beyond the store and for a container that is gone;
    /// only the size of the store tells the last two apart. Cost: a comparison and a load.
    FieldContainerPtr getContainer(UInt32 id) const {
#ifdef KA_STRICT_HANDLES
        refuseBeforeStart();
#endif
        const FieldContainerStore& store = FieldContainerStore::the();
        return id < store.size() ? store[id] : FieldContainerPtr();
    }
    /// The same with the id first translated by the mapper, if one is set.
    FieldContainerPtr getMappedContainer(UInt32 id) const;
    void setMapper(const FieldContainerMapper* mapper) {
        _mapper = mapper;
    }

    const FieldContainerStore* getFieldContainerStore() const {
        return &FieldContainerStore::the();
    }

    /// A new container of the named type; null when the type is unknown, abstract or not of that kind.
    FieldContainerPtr createFieldContainer(const Char8* typeName) const;
    NodePtr createNode(const Char8* typeName) const;
    NodeCorePtr createNodeCore(const Char8* typeName) const;
    AttachmentPtr createAttachment(const Char8* typeName) const;

    /// Null when there is no such type.
    FieldContainerType* findType(UInt32 typeId) const;
    FieldContainerType* findType(const Char8* name) const;
    UInt32 getNumTypes() const {
        return static_cast<UInt32>(_types.size());
    }
    TypeMap::const_iterator beginTypes() const {
        return _types.begin();
    }
    TypeMap::const_iterator endTypes() const {
        return _types.end();
    }

    /// 0 when there is no such group.
    UInt16 findGroupId(const Char8* name) const;
    /// Null when there is no such group.
    const Char8* findGroupName(UInt16 groupId) const;
    UInt32 getNumGroups() const {
        return static_cast<UInt32>(_groups.size());
    }

    /// Types are usable as soon as they are declared; kept for hosts that load types late. @return true.
    bool initializePendingTypes() {
        return true;
    }

  private:
    friend class FieldContainerType;
    FieldContainerFactory() = default;
    /// Ends the program with a message unless osgInit ran.
    static void refuseBeforeStart();

    /// The factory without the library's types: what types register with, the library's own among them.
    static FieldContainerFactory& registry();
    void add(FieldContainerType& type);
    UInt16 groupIdFor(const Char8* name);

    TypeMap _types;
    std::map<std::string, FieldContainerType*, std::less<>> _typesByName;
    std::vector<std::string> _groups; ///< the id of a group is its place, counted from 1
    const FieldContainerMapper* _mapper = nullptr;
};

} // namespace osg
