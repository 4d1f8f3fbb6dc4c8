#pragma once

#include <OpenSG/OSGFieldContainerFactory.h>

namespace ka_test {

/// Whether the container that drew this id is gone. A handle cannot tell on every scene graph; the store can.
inline bool isGone(osg::UInt32 id) {
    return osg::FieldContainerFactory::the()->getContainer(id) == osg::NullFC;
}

/// Remembers which container a handle means while it is there, to tell later whether it is gone.
class ContainerLife {
  public:
    explicit ContainerLife(const osg::FieldContainerPtr& container) : _id(container.getFieldContainerId()) {}
    bool isOver() const { return isGone(_id); }

  private:
    osg::UInt32 _id;
};

} // namespace ka_test
