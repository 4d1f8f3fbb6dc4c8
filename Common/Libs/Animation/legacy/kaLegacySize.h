#pragma once

#include "kaLegacyContainers.h"

#include <cstddef>
#include <unordered_set>

/// How much animation of the older format there is: containers that can be reached, each counted once however
/// often it is listed, `NameBytesPerContainer` of a name counting as one.
///
/// Cost: linear in the lists, on the heap whatever the depth.
class kaLegacySize {
  public:
    static constexpr std::size_t NameBytesPerContainer = 64;

    /// Counts a container and what it leads to; null is nothing.
    void add(const osg::FieldContainerPtr& container);
    /// Counts what the older attachment of a node, if it has one, leads to.
    void addNode(const osg::NodePtr& node);
    /// The same for the node and all below it.
    void addScene(const osg::NodePtr& root);

    std::size_t count() const { return _count; }

  private:
    void addPending();
    void addLists(const osg::FieldContainerPtr& container);
    template <class List>
    void wait(const List& list);
    void countName(const std::string& name) { _count += name.size() / NameBytesPerContainer; }

    std::size_t _count = 0;
    std::unordered_set<osg::UInt32> _seen;
    kaContainerIDs _pending;
};
