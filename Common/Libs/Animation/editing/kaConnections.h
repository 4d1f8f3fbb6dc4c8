#pragma once

#include "kaAnimationTypes.h"
#include "kaNesting.h"

#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

class kaAnimationObject;

/// What fired triggers lead to: by connection id an action on an object, or a host function.
///
/// Entries are never removed. When a target is freed its entries keep their place and their action but name
/// nobody any more, and do nothing.
class kaConnections : public kaConnectionTypes {
  public:
    using Function = void (*)();
    using ObjectMap = std::map<kaUID, std::pair<kaAnimationObject*, AnimationAction>>;
    using FunctionMap = std::map<kaUID, Function>;

    /// Whether a connection has this id.
    bool contains(kaUID id) const { return _objects.count(id) > 0 || _functions.count(id) > 0; }

    /// Enters a connection under an id that no other has.
    void add(kaUID id, kaAnimationObject& target, AnimationAction action);
    void add(kaUID id, Function function) { _functions.emplace(id, function); }

    /// Carries out connections in the order given; ids that nobody has are passed over. A function may do
    /// anything, even make connections. Edges: functions that fire triggers whose functions fire triggers,
    /// and so on, are followed as far as `kaNesting` allows; what fires deeper does nothing.
    void execute(const std::vector<kaUID>& ids);

    const ObjectMap& objects() const { return _objects; }
    const FunctionMap& functions() const { return _functions; }

    /// Called for every object that is about to be freed. Cost: nothing while there are no targets, else one
    /// look-up.
    void forget(kaAnimationObject* object) {
        if (!_byTarget.empty())
            disconnect(object);
    }

  private:
    void disconnect(kaAnimationObject* target);
    static void act(kaAnimationObject& target, AnimationAction action);

    ObjectMap _objects;
    FunctionMap _functions;
    std::unordered_map<kaAnimationObject*, std::vector<kaUID>> _byTarget;
    kaNesting::Depth _depth;
};
