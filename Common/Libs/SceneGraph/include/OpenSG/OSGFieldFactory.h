#pragma once

#include <OpenSG/OSGField.h>
#include <map>
#include <string>

namespace osg {

/// Finds field types by id and by name and makes free-standing fields. A type is known from its first use on.
class KA_SCENEGRAPH_API FieldFactory {
  public:
    static FieldFactory& the();

    /// Null when there is no such field type.
    const FieldType* getFieldType(UInt32 id) const;
    const FieldType* getFieldType(const Char8* name) const;
    UInt32 getNFieldTypes() const { return static_cast<UInt32>(_byId.size()); }

    /// A new field of the type, or null when there is no such type.
    std::unique_ptr<Field> createField(UInt32 id) const;
    std::unique_ptr<Field> createField(const Char8* name) const;

  private:
    friend class FieldType;
    FieldFactory() = default;
    void add(const FieldType& type);

    std::map<UInt32, const FieldType*> _byId;
    std::map<std::string, const FieldType*, std::less<>> _byName;
};

} // namespace osg
