#pragma once

#include "ObjectState.h"

#include <OpenSG/OSGNode.h>
#include <functional>
#include <map>
#include <unordered_set>
#include <vector>

namespace ka::studio {

/// What an edit may change: objects with everything below and above them, and what scene nodes list.
struct Scope {
    std::vector<kaUID> objects;      ///< ids that nobody knows are passed over
    std::vector<unsigned int> nodes; ///< container ids; the nodes of the curves and blocks in scope are added
};

/// How a part of the registry was at one moment, so that it can be so again: objects, keys and fields under
/// their ids, and the lists on scene nodes that name them.
///
/// Cost: linear in what is in scope; about 100 bytes a key.
class Snapshot {
  public:
    Snapshot() = default;
    /// As things are now.
    explicit Snapshot(const Scope& scope);
    /// The same, with what `earlier` tells of and is still there, in scope or not.
    Snapshot(const Scope& scope, const Snapshot& earlier);

    /// The whole registry, and what the nodes at and below `root` list.
    /// @param step  called now and then with how many objects were noted; what it throws passes through.
    static Snapshot everything(const osg::NodePtr& root, const std::function<void(std::size_t)>& step);
    /// Destroys everything that it tells of, one by one: nothing is told of it, and nodes go on listing it.
    void takeAway(const std::function<void(std::size_t)>& step) const;
    /// Puts a registry that holds nothing into the state that `everything` noted, on the nodes it was of.
    void bringBack(const std::function<void(std::size_t)>& step) const { restore(step); }
    std::size_t size() const { return _keys.size() + _objects.size() + _fields.size(); }

    /// Leaves in `before` and `after` only what differs between them; what one of them does not know at all
    /// is noted there as absent.
    static void keepDifferences(Snapshot& before, Snapshot& after);

    /// Puts things back as they were. @return how they were until now, in the same extent.
    Snapshot exchange() const;

    bool isEmpty() const;
    /// Ids of the objects, keys and fields that it tells of.
    std::vector<kaUID> ids() const;
    /// The same, but for each key the curve that it stands on.
    std::vector<kaUID> objectIds() const;

  private:
    /// What a node lists.
    struct Listing {
        std::vector<kaUID> objects, fields;
        bool operator==(const Listing& other) const;
    };

    void includeTree(kaUID root, std::unordered_set<kaUID>& seen);
    void includeAncestors(kaUID id, std::unordered_set<kaUID>& seen);
    void include(kaAnimationObject& object);
    void includeNode(unsigned int node);
    void includeId(kaUID id);
    void sortKeys();
    void restore(const std::function<void(std::size_t)>& step = nullptr) const;
    static void destroy(const std::vector<kaUID>& ids, const std::function<void(std::size_t)>& step);
    static Listing listingOf(unsigned int node);
    static void applyListing(unsigned int node, const Listing& listing);

    std::vector<KeyState> _keys; ///< ascending by id: there may be half a million of them
    std::map<kaUID, ObjectState> _objects;
    std::map<kaUID, FieldState> _fields;
    std::map<unsigned int, Listing> _listings; ///< by the node's container id
    std::vector<kaUID> _absent;                ///< ids that nobody has
};

} // namespace ka::studio
