#pragma once

#include <OpenSG/OSGTypeBase.h>

namespace osg {

/// The type of one value, such as "Vec3f" or "string".
class KA_SCENEGRAPH_API DataType : public TypeBase {
  public:
    explicit DataType(std::string name, std::string parentName = std::string());
    ~DataType() override;
};

} // namespace osg
