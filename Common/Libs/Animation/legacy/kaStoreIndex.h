#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>
#include <unordered_map>

/// From the address of a container to its id, for handles that may have outlived their container.
///
/// The older containers refer to nodes without counting them, so such a handle may mean memory that is gone
/// or that another container has taken over. It is compared with the slots of the container store and never
/// read.
///
/// Cost: each slot of the store is looked at once, by the first question after it was filled; then one
/// look-up by address a question.
class kaStoreIndex {
  public:
    /// The id under which the store holds a container at the handle's address; 0 for null and when there is
    /// none.
    osg::UInt32 idOf(const osg::FieldContainerPtr& handle);

  private:
    void catchUp();

    std::unordered_map<const osg::FieldContainer*, osg::UInt32> _ids;
    osg::UInt32 _next = 1; ///< the first slot that was not looked at
};
