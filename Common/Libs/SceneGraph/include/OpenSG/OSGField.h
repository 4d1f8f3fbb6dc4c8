#pragma once

#include <OpenSG/OSGContainerPtrs.h>
#include <OpenSG/OSGFieldType.h>
#include <string>

namespace osg {

/// One value (SField) or a list of values (MField) of one type, held by a container.
///
/// The text forms are for people and for host code that does not know the type: numbers keep seven digits, a
/// string does not come back the way it was written, and handles cannot be read at all. A scene file does not
/// use them (see SceneFileHandler). They do not depend on the locale.
class KA_SCENEGRAPH_API Field {
  public:
    virtual ~Field();

    /// The type of the field ("SFVec3f") and of its values ("Vec3f").
    virtual const FieldType& getType() const = 0;
    const DataType& getContentType() const { return getType().getContentType(); }
    FieldType::Cardinality getCardinality() const { return getType().getCardinality(); }

    virtual UInt32 getSize() const = 0;
    virtual bool isEmpty() const = 0;

    /// Takes the value from its text form: a single field is overwritten, a list gets one more value.
    /// Numbers may stand between blanks; what is missing counts as 0. Text that the type cannot read at all
    /// (handles, anything but TRUE and FALSE for a bool) changes nothing.
    virtual void pushValueByStr(const Char8* text) = 0;

    /// The text form: a single field replaces `text`, a list appends its values to it, separated by ", ".
    /// @return `text`.
    virtual std::string& getValueByStr(std::string& text) const = 0;

    /// The text form of the value at `index`, handled in the same way; `text` is left alone when there is
    /// none.
    virtual std::string& getValueByStr(std::string& text, UInt32 index) const = 0;

    /// Copies all values of a field of the same type; another type changes nothing.
    virtual void setAbstrValue(const Field& source) = 0;

    /// @name Handles, whatever their type
    /// For code that walks over fields without knowing them.
    /// @{

    /// True when the values are handles of containers.
    virtual bool isPointerField() const { return false; }
    /// The handle at `index`; null when there is none or the values are no handles.
    virtual FieldContainerPtr getPointer(UInt32 index) const;
    /// Stores the handle in a single field, appends it to a list. Does not count references.
    /// @return false when the values are no handles, or not of a type that fits; nothing is changed then.
    virtual bool pushPointer(const FieldContainerPtr& handle);
    /// @}

  protected:
    Field() = default;
    Field(const Field&) = default;
    Field& operator=(const Field&) = default;
};

} // namespace osg
