#pragma once

#include <OpenSG/OSGFieldContainerPtr.h>
#include <set>

/// Which nodes the entries of the current change list concern.
class kaChangedNodes {
  public:
    kaChangedNodes();

    /// The container ids of the nodes; each is there.
    const std::set<osg::UInt32>& ids() const { return _nodes; }
    /// Whether something has changed that hangs on no node.
    bool areMore() const { return _areMore; }

  private:
    void follow(const osg::FieldContainerPtr& changed);
    void findByMaterial();

    std::set<osg::UInt32> _nodes;
    std::set<osg::UInt32> _seen;  ///< containers that have been followed
    std::set<osg::UInt32> _loose; ///< changed containers that know nobody who holds them
    bool _areMore = false;
};
