#pragma once

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGSFSysTypes.h>

namespace osg {

/// Shows one of its children, all or none.
class KA_SCENEGRAPH_API Switch : public Container<Switch, Group> {
  public:
    static constexpr const Char8* TypeName = "Switch";
    enum : UInt32 { ChoiceFieldId = Inherited::NextFieldId, NextFieldId };
    static constexpr BitVector ChoiceFieldMask = fieldMask(ChoiceFieldId);

    /// What `choice` may be besides an index.
    enum : Int32 { ALL = -2, NONE = -1 };

    static FieldContainerType& getClassType();

    /// The index of the child that is shown, or ALL or NONE (the default).
    /// @{
    Int32 getChoice() const { return _sfChoice.getValue(); }
    Int32& getChoice() { return _sfChoice.getValue(); }
    Int32& editChoice() { return _sfChoice.getValue(); }
    void setChoice(Int32 choice) { _sfChoice.setValue(choice); }
    const SFInt32* getSFChoice() const { return &_sfChoice; }
    SFInt32* getSFChoice() { return &_sfChoice; }
    SFInt32* editSFChoice() { return &_sfChoice; }
    /// @}

  protected:
    Switch() = default;
    Switch(const Switch&) = default;
    ~Switch() override = default;

  private:
    friend struct ContainerAccess;

    SFInt32 _sfChoice{NONE};
};

} // namespace osg
