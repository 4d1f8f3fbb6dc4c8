#pragma once

#include <OpenSG/OSGAttachmentContainer.h>

namespace osg {

/// The name of a container; group "name".
class KA_SCENEGRAPH_API Name : public Container<Name, Attachment> {
  public:
    static constexpr const Char8* TypeName = "Name";
    enum : UInt32 { NameFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector NameFieldMask = fieldMask(NameFieldId);

    static FieldContainerType& getClassType();

    const std::string& getName() const { return _sfName.getValue(); }
    void setName(const std::string& name) { _sfName.setValue(name); }

    SFString* getFieldPtr() { return &_sfName; }
    const SFString* getFieldPtr() const { return &_sfName; }
    SFString& getField() { return _sfName; }
    using FieldContainer::getField;

  protected:
    Name() = default;
    Name(const Name&) = default;
    ~Name() override = default;

  private:
    friend struct ContainerAccess;
    SFString _sfName;
};

/// The name of a container; null when it has none or the handle is null. Valid until the name changes.
KA_SCENEGRAPH_API const Char8* getName(const AttachmentContainerPtr& container);

/// Names a container. A name that it shares with others (see FieldContainer::shallowCopy) stays theirs.
KA_SCENEGRAPH_API void setName(const AttachmentContainerPtr& container, const std::string& name);
/// The same; null takes the name away.
KA_SCENEGRAPH_API void setName(const AttachmentContainerPtr& container, const Char8* name);

} // namespace osg
