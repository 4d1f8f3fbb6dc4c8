#include <OpenSG/OSGNode.h>
#include <algorithm>
#include <vector>

namespace osg {

namespace {

/// Up to here climbing alone is cheaper than to look from both sides.
constexpr int ShallowDepth = 16;

/// The nodes below one, one after the other.
class NodesBelow {
  public:
    explicit NodesBelow(const Node& top) : _top(top) {}

    /// Null when all have been visited.
    const Node* next() {
        if (!_begun)
            _path.push_back({&_top, 0});
        _begun = true;
        while (!_path.empty()) {
            Place& place = _path.back();
            if (place.next == place.node->getNChildren()) {
                _path.pop_back();
                continue;
            }
            const NodePtr child = place.node->getChild(place.next++);
            if (child == NullFC)
                continue;
            _path.push_back({&*child, 0});
            return &*child;
        }
        return nullptr;
    }

  private:
    struct Place {
        const Node* node;
        UInt32 next; ///< the child to visit next
    };
    const Node& _top;
    bool _begun = false;
    std::vector<Place> _path; ///< from the top down to the last visited
};

} // namespace

FieldContainerType& Node::getClassType() {
    static FieldContainerType& type = declareType<Node>({
        describe<&Node::_sfVolume>("volume"),
        describe<&Node::_sfTravMask>("travMask"),
        describe<&Node::_sfParent>("parent", FieldDescription::Internal),
        describe<&Node::_mfChildren>("children"),
        describe<&Node::_sfCore>("core"),
    });
    return type;
}

Node::Node(const Node& source)
    : Container(source), _sfVolume(source._sfVolume), _sfTravMask(source._sfTravMask) {}

void Node::onCopied() {
    endEditNotChangedCP(NodePtr(*this), VolumeFieldMask);
    Inherited::onCopied();
}

void Node::onDestroy() {
    if (const NodePtr parent = getParent()) {
        MFNodePtr& siblings = parent->_mfChildren;
        const auto self = std::find_if(siblings.begin(), siblings.end(), [this](const NodePtr& child) {
            return child.getFieldContainerId() == getFieldContainerId();
        });
        if (self != siblings.end())
            siblings.erase(self);
    }
    for (const NodePtr& child : _mfChildren) {
        if (child == NullFC)
            continue;
        child->_sfParent.setValue(NodePtr());
        releaseRefCP(child);
    }
    releaseCore();
    Inherited::onDestroy();
}

void Node::releaseCore() {
    const NodeCorePtr core = getCore();
    _sfCore.setValue(NodeCorePtr());
    if (core == NullFC)
        return;
    core->_parentIndex.remove(core->_mfParents, getFieldContainerId());
    announceParents(core, NodeCore::ParentsFieldMask);
    releaseRefCP(core);
}

void Node::setCore(const NodeCorePtr& core) {
    if (core == getCore())
        return;
    const NodeCorePtr kept = core; // may be a reference to the very field that is about to change
    addRefCP(kept);
    releaseCore();
    if (kept == NullFC)
        return;
    _sfCore.setValue(kept);
    kept->_parentIndex.add(kept->_mfParents, NodePtr(*this));
    endEditCP(kept, NodeCore::ParentsFieldMask);
}

NodePtr Node::getChild(UInt32 index) const {
    return index < _mfChildren.size() ? _mfChildren[index] : NodePtr();
}

bool Node::canAdopt(const NodePtr& child) const {
    if (child == NullFC || &*child == this)
        return false;
    if (child->_mfChildren.empty())
        return true;
    // A deep place and a large child cost no more than the smaller of the two: what ends first answers.
    NodesBelow below(*child);
    int level = 0;
    for (NodePtr above = getParent(); above != NullFC; above = above->getParent()) {
        if (above == child)
            return false;
        if (++level <= ShallowDepth)
            continue;
        const Node* node = below.next();
        if (node == this)
            return false;
        if (!node)
            return true;
    }
    return true;
}

void Node::adopt(const NodePtr& child) {
    addRefCP(child);
    if (const NodePtr before = child->getParent())
        before->subChild(child);
    child->_sfParent.setValue(NodePtr(*this));
    endEditCP(child, ParentFieldMask);
}

void Node::abandon(UInt32 index) {
    const NodePtr child = _mfChildren[index];
    _mfChildren.erase(_mfChildren.begin() + index);
    if (child == NullFC)
        return;
    child->_sfParent.setValue(NodePtr());
    endEditCP(child, ParentFieldMask);
    releaseRefCP(child);
}

void Node::addChild(const NodePtr& child) {
    insertChild(0xFFFFFFFFU, child);
}

void Node::insertChild(UInt32 index, const NodePtr& child) {
    const NodePtr kept = child; // the argument may be an element of the list that is about to change
    if (!canAdopt(kept))
        return;
    adopt(kept);
    const auto where = std::min<std::size_t>(index, _mfChildren.size());
    _mfChildren.insert(_mfChildren.begin() + static_cast<std::ptrdiff_t>(where), kept);
}

void Node::appendUnchecked(const NodePtr& child) {
    adopt(child);
    _mfChildren.push_back(child);
}

void Node::replaceChild(UInt32 index, const NodePtr& child) {
    replaceChildBy(getChild(index), child);
}

bool Node::replaceChildBy(const NodePtr& old, const NodePtr& child) {
    const NodePtr before = old;
    const NodePtr after = child;
    if (before == NullFC || findChild(before) < 0 || !canAdopt(after))
        return false;
    if (before == after)
        return true;
    adopt(after);
    const auto index = static_cast<UInt32>(findChild(before));
    _mfChildren.insert(_mfChildren.begin() + index, after);
    abandon(index + 1);
    return true;
}

Int32 Node::findChild(const NodePtr& child) const {
    const auto found = _mfChildren.find(child);
    return found == _mfChildren.end() ? -1 : static_cast<Int32>(found - _mfChildren.begin());
}

void Node::subChild(const NodePtr& child) {
    // Children that leave in order, or in reverse, are met at once.
    const UInt32 count = getNChildren();
    for (UInt32 i = 0; 2 * i < count; ++i) {
        if (_mfChildren[i] == child)
            return abandon(i);
        if (_mfChildren[count - 1 - i] == child)
            return abandon(count - 1 - i);
    }
}

void Node::subChild(UInt32 index) {
    if (index < _mfChildren.size())
        abandon(index);
}

Matrix Node::getToWorld() const {
    Matrix result;
    Matrix local;
    for (const Node* node = this; node != nullptr; node = node->getParent().getCPtr()) {
        const NodeCorePtr core = node->getCore();
        if (core != NullFC && core->getLocalMatrix(*node, local))
            result.multLeft(local);
    }
    return result;
}

void Node::updateVolume() {
    // Every node after its parent; so the other way round, children come first.
    std::vector<Node*> nodes{this};
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const NodePtr& child : nodes[i]->_mfChildren) {
            if (child != NullFC)
                nodes.push_back(&*child);
        }
    }
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        (*node)->updateOwnVolume();
}

void Node::updateOwnVolume() {
    DynamicVolume volume;
    const NodeCorePtr core = getCore();
    if (core != NullFC)
        core->adjustVolume(volume);
    for (const NodePtr& child : _mfChildren) {
        if (child != NullFC)
            volume.extendBy(child->getVolume());
    }
    Matrix local;
    if (core != NullFC && core->getLocalMatrix(*this, local))
        volume.transform(local);
    _sfVolume.setValue(volume);
}

} // namespace osg
