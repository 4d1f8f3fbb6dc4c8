#pragma once

#include <OpenSG/OSGChangeList.h>

namespace osg {

/// The current thread as far as the scene graph needs it. The graph belongs to one thread.
class KA_SCENEGRAPH_API PThreadBase {
  public:
    /// The list that edits are recorded in; there is one from the start, read-only. Null after it was set to
    /// null.
    static ChangeList* getCurrentChangeList();

    /// Makes `list` the current one; null stops recording. The list stays the caller's and must outlive its
    /// use.
    static void setCurrentChangeList(ChangeList* list);

    /// The number of the copy of the scene that the thread works on: always 0, there is one.
    static UInt32 getAspect() { return 0; }
};

class KA_SCENEGRAPH_API Thread : public PThreadBase {};

} // namespace osg
