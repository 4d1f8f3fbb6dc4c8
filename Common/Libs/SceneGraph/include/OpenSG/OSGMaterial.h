#pragma once

#include <OpenSG/OSGAttachmentContainer.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// How surfaces look; base of all materials.
class KA_SCENEGRAPH_API Material : public Container<Material, AttachmentContainer> {
  public:
    static constexpr const Char8* TypeName = "Material";
    enum : UInt32 { SortKeyFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector SortKeyFieldMask = fieldMask(SortKeyFieldId);

    static FieldContainerType& getClassType();

    /// Materials of a lower key are drawn first.
    /// @{
    Int32 getSortKey() const { return _sfSortKey.getValue(); }
    Int32& getSortKey() { return _sfSortKey.getValue(); }
    Int32& editSortKey() { return _sfSortKey.getValue(); }
    void setSortKey(Int32 sortKey) { _sfSortKey.setValue(sortKey); }
    const SFInt32* getSFSortKey() const { return &_sfSortKey; }
    SFInt32* getSFSortKey() { return &_sfSortKey; }
    SFInt32* editSFSortKey() { return &_sfSortKey; }
    /// @}

  protected:
    Material() = default;
    Material(const Material&) = default;
    ~Material() override = default;

  private:
    SFInt32 _sfSortKey{0};
};

} // namespace osg
