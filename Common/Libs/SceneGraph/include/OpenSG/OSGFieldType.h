#pragma once

#include <OpenSG/OSGDataType.h>
#include <memory>

namespace osg {

class Field;

/// The type of a field, such as "SFVec3f" (one value) or "MFVec3f" (a list of them).
class KA_SCENEGRAPH_API FieldType : public DataType {
  public:
    enum Cardinality { SINGLE_FIELD = 0, MULTI_FIELD = 1 };
    using CreateField = std::unique_ptr<Field> (*)();

    FieldType(const std::string& contentName, Cardinality cardinality, const DataType& content,
              CreateField create);
    ~FieldType() override;

    const DataType& getContentType() const { return _content; }
    Cardinality getCardinality() const { return _cardinality; }

    /// A new, free-standing field of this type.
    std::unique_ptr<Field> createField() const;

  private:
    const DataType& _content;
    Cardinality _cardinality;
    CreateField _create;
};

} // namespace osg
