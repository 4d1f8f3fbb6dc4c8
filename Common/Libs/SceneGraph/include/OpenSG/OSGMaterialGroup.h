#pragma once

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMaterialFields.h>

namespace osg {

/// Everything below its node has one material.
class KA_SCENEGRAPH_API MaterialGroup : public Container<MaterialGroup, Group> {
  public:
    static constexpr const Char8* TypeName = "MaterialGroup";
    enum : UInt32 { MaterialFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector MaterialFieldMask = fieldMask(MaterialFieldId);

    static FieldContainerType& getClassType();

    /// Counted; null by default.
    /// @{
    const MaterialPtr& getMaterial() const { return _sfMaterial.getValue(); }
    void setMaterial(const MaterialPtr& material);
    const SFMaterialPtr* getSFMaterial() const { return &_sfMaterial; }
    /// @}

  protected:
    MaterialGroup() = default;
    MaterialGroup(const MaterialGroup&) = default;
    ~MaterialGroup() override = default;

  private:
    friend struct ContainerAccess;

    SFMaterialPtr _sfMaterial;
};

} // namespace osg
