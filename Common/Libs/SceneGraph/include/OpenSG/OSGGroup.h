#pragma once

#include <OpenSG/OSGNodeCore.h>

namespace osg {

/// Holds children and does nothing else.
class KA_SCENEGRAPH_API Group : public Container<Group, NodeCore> {
  public:
    static constexpr const Char8* TypeName = "Group";

    static FieldContainerType& getClassType();

  protected:
    Group() = default;
    Group(const Group&) = default;
    ~Group() override = default;

  private:
    friend struct ContainerAccess;
};

} // namespace osg
