#include <OpenSG/OSGAction.h>

namespace osg {

namespace {

/// One tree walked with a stack of its own. Nodes that are still to be visited wait on it together with the
/// node whose child they were; nodes to be left wait below their children.
class Traversal {
  public:
    Traversal(const TraverseEnterFunctor& enter, const TraverseLeaveFunctor* leave)
        : _enter(enter), _leave(leave) {}

    Action::ResultE run(const NodePtr& root) {
        _result = visit(root);
        while (!_waiting.empty()) {
            const Waiting next = _waiting.back();
            _waiting.pop_back();
            if (ContainerAccess::isGone(next.node))
                continue;
            if (next.isLeaving)
                leave(next.node);
            else if (_result != Action::Quit && next.node->getParent() == next.parent)
                _result = visit(next.node);
        }
        return _result;
    }

  private:
    struct Waiting {
        NodePtr node;
        NodePtr parent;
        bool isLeaving;
    };

    Action::ResultE visit(NodePtr node) {
        const NodePtr visited = node;
        const Action::ResultE answer = _enter(node);
        if (ContainerAccess::isGone(visited))
            return answer == Action::Quit ? Action::Quit : Action::Continue;
        if (_leave != nullptr)
            _waiting.push_back({visited, NodePtr(), true});
        if (answer == Action::Continue) {
            const MFNodePtr& children = *visited->getMFChildren();
            for (auto child = children.rbegin(); child != children.rend(); ++child)
                _waiting.push_back({*child, visited, false});
        }
        return answer == Action::Quit ? Action::Quit : Action::Continue;
    }

    void leave(NodePtr node) {
        if ((*_leave)(node, _result) == Action::Quit)
            _result = Action::Quit;
    }

    const TraverseEnterFunctor& _enter;
    const TraverseLeaveFunctor* _leave;
    Action::ResultE _result = Action::Continue;
    std::vector<Waiting> _waiting;
};

template <class Walk>
Action::ResultE forEachRoot(const std::vector<NodePtr>& roots, const Walk& walk) {
    const std::vector<NodePtr> snapshot = roots; // the caller's list may be one that a callback edits
    for (const NodePtr& root : snapshot) {
        if (walk(root) == Action::Quit)
            return Action::Quit;
    }
    return Action::Continue;
}

} // namespace

Action::ResultE traverse(NodePtr root, const TraverseEnterFunctor& enter) {
    return Traversal(enter, nullptr).run(root);
}

Action::ResultE traverse(const std::vector<NodePtr>& roots, const TraverseEnterFunctor& enter) {
    return forEachRoot(roots, [&](const NodePtr& root) { return traverse(root, enter); });
}

Action::ResultE traverse(NodePtr root, const TraverseEnterFunctor& enter, const TraverseLeaveFunctor& leave) {
    return root == NullFC ? Action::Continue : Traversal(enter, &leave).run(root);
}

Action::ResultE traverse(const std::vector<NodePtr>& roots, const TraverseEnterFunctor& enter,
                         const TraverseLeaveFunctor& leave) {
    return forEachRoot(roots, [&](const NodePtr& root) { return traverse(root, enter, leave); });
}

} // namespace osg
