#pragma once

#include <OpenSG/OSGDrawable.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGMaterialFields.h>

namespace osg {

/// A drawable with a material of its own.
class KA_SCENEGRAPH_API MaterialDrawable : public Container<MaterialDrawable, Drawable> {
  public:
    static constexpr const Char8* TypeName = "MaterialDrawable";
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
    MaterialDrawable() = default;
    MaterialDrawable(const MaterialDrawable&) = default;
    ~MaterialDrawable() override = default;

  private:
    SFMaterialPtr _sfMaterial;
};

} // namespace osg
