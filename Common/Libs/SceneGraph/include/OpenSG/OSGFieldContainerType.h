#pragma once

#include <OpenSG/OSGFieldDescription.h>
#include <initializer_list>
#include <vector>

namespace osg {

/// The type of containers: its name, its parent type, its group and its fields. Made once per class (see
/// declareType) and never destroyed.
///
/// Attachments are found by group and copy-and-paste compares groups. A type is a group of its own unless it
/// says otherwise; a derived type is in ANOTHER group than its parent: use isDerivedFrom to ask for kinds.
class KA_SCENEGRAPH_API FieldContainerType : public DataType {
  public:
    enum class Kind { Other, Node, NodeCore, Attachment };

    /// How containers of the type are made; both null for an abstract type.
    struct Makers {
        FieldContainer* (*create)() = nullptr;
        FieldContainer* (*copy)(const FieldContainer&) = nullptr;
    };

    /// @param parent     null for the root type only.
    /// @param groupName  null: the type's own name.
    /// @param fields     the type's own fields, in order; ids follow on the parent's.
    FieldContainerType(const Char8* name, FieldContainerType* parent, const Char8* groupName, Kind kind,
                       Makers makers, std::initializer_list<FieldDescription> fields);
    ~FieldContainerType() override;

    UInt16 getGroupId() const { return _groupId; }
    FieldContainerType* getParent() { return _parent; }
    const FieldContainerType* getParent() const { return _parent; }

    /// True for the type itself and its ancestors. Cost: the length of the parent chain.
    bool isDerivedFrom(const FieldContainerType& other) const;
    /// False, whatever is asked: only container types derive from one another.
    bool isDerivedFrom(const TypeBase&) const { return false; }

    bool isNode() const { return _kind == Kind::Node; }
    bool isNodeCore() const { return _kind == Kind::NodeCore; }
    bool isAttachment() const { return _kind == Kind::Attachment; }
    /// An abstract type has no prototype and cannot be created.
    bool isAbstract() const { return _makers.create == nullptr; }
    bool isInitialized() const { return true; }

    UInt32 getNumFieldDescs() const { return static_cast<UInt32>(_all.size()); }
    /// 1-based, inherited fields first; null outside 1..getNumFieldDescs().
    FieldDescription* getFieldDescription(UInt32 fieldId);
    const FieldDescription* getFieldDescription(UInt32 fieldId) const;
    /// Null when there is no field of that name, or no name.
    FieldDescription* findFieldDescription(const Char8* fieldName);
    const FieldDescription* findFieldDescription(const Char8* fieldName) const;

    /// A copy of the prototype, with no references counted; null for an abstract type.
    FieldContainerPtr createFieldContainer();
    /// A container with the values that the class gives it, whatever the prototype says.
    FieldContainerPtr createEmptyFieldContainer();
    /// The same as createFieldContainer, null when the type is not of that kind.
    NodePtr createNode();
    NodeCorePtr createNodeCore();
    AttachmentPtr createAttachment();

    /// The container that new ones are copies of, made on first use; null for an abstract type.
    FieldContainerPtr getPrototype();
    /// From now on new containers are copies of `prototype`. Ignored unless it is of this very type.
    void setPrototype(const FieldContainerPtr& prototype);

  private:
    friend class FieldContainer;

    UInt16 _groupId;
    FieldContainerType* _parent;
    Kind _kind;
    Makers _makers;
    std::vector<FieldDescription> _own; ///< never grows: `_all` points into it
    std::vector<FieldDescription*> _all;
    FieldContainerPtr _prototype;
};

} // namespace osg
