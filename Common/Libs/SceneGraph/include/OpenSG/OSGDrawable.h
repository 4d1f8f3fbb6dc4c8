#pragma once

#include <OpenSG/OSGNodeCore.h>

namespace osg {

/// A core that draws something; a leaf of the tree.
class KA_SCENEGRAPH_API Drawable : public Container<Drawable, NodeCore> {
  public:
    static constexpr const Char8* TypeName = "Drawable";

    static FieldContainerType& getClassType();

  protected:
    Drawable() = default;
    Drawable(const Drawable&) = default;
    ~Drawable() override = default;
};

} // namespace osg
