#pragma once

#include <OpenSG/OSGField.h>
#include <OpenSG/OSGFieldContainerBase.h>

namespace osg {

/// One field of a container type: its name, id, mask and type, and the way from a container to the field.
/// Owned by its FieldContainerType and unchanged after that is made.
class KA_SCENEGRAPH_API FieldDescription {
  public:
    using Access = Field* (*)(FieldContainer& container);

    /// What sets a field apart; to be or'ed.
    enum Flags : UInt32 {
        Plain = 0,
        Internal = 1, ///< worked out by the library; neither copied nor saved
        Owning = 2,   ///< the containers that its handles mean are counted, and counted down with their owner
    };

    FieldDescription(std::string name, const FieldType& type, Access access, UInt32 flags = Plain)
        : _name(std::move(name)), _type(&type), _access(access), _flags(flags) {}

    const IDString& getName() const { return _name; }
    const Char8* getCName() const { return _name.str(); }

    /// The place among the fields of the type, inherited ones first, starting at 1; the mask is `1 << id`.
    UInt32 getFieldId() const { return _id; }
    BitVector getFieldMask() const { return fieldMask(_id); }

    /// The type of the FIELD ("SFVec3f") and its id; the type of the values is the field's content type.
    const FieldType& getFieldType() const { return *_type; }
    UInt32 getTypeId() const { return _type->getId(); }

    bool isInternal() const { return (_flags & Internal) != 0; }
    bool isOwning() const { return (_flags & Owning) != 0; }
    bool isValid() const { return _id != 0; }

    /// The field of a container of the described type; its address stays the same as long as the container
    /// lives.
    Field* getField(FieldContainer& container) const { return _access(container); }
    const Field* getField(const FieldContainer& container) const;

  private:
    friend class FieldContainerType;

    IDString _name;
    const FieldType* _type;
    Access _access;
    UInt32 _flags;
    UInt32 _id = 0;
};

} // namespace osg
