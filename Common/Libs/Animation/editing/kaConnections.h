#pragma once

#include "kaAnimationTypes.h"
#include "kaReentryGuard.h"
#include "kaWeak.h"

#include <map>
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
    /// anything, even make connections.
    /// Edges: functions that fire triggers whose functions fire triggers, and so on, are followed as far as
    /// `kaReentryGuard` allows; what fires deeper does nothing.
    void execute(const std::vector<kaUID>& ids);

    ObjectMap objects() const; ///< With null for a target that has been freed.
    const FunctionMap& functions() const { return _functions; }

  private:
    static void act(kaAnimationObject& target, AnimationAction action);

    std::map<kaUID, std::pair<kaWeak<kaAnimationObject>, AnimationAction>> _objects;
    FunctionMap _functions;
    kaReentryGuard::Calls _calls;
};
