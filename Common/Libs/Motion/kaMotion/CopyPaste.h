#pragma once

#include <OpenSG/OSGNode.h>
#include <kaAnimationTypes.h>
#include <string>
#include <vector>

class kaAnimationObject;

#pragma GCC visibility push(default)
namespace ka::motion {

/// The animation of one node, ready to be pasted onto others as often as wanted: through the registry's copy
/// buffer, as a host does it.
class CopiedAnimation {
  public:
    /// @throws Failure (Usage) when the node carries no animation.
    explicit CopiedAnimation(const osg::NodePtr& node);
    ~CopiedAnimation();
    CopiedAnimation(const CopiedAnimation&) = delete;
    CopiedAnimation& operator=(const CopiedAnimation&) = delete;

    /// Makes the copy stand by itself: it keeps its node alive and takes fields of its own, and everything
    /// else that is registered is destroyed. What is loaded afterwards can take any id that it took before.
    void detach();

    /// What speaks against pasting onto the node, in words; empty when nothing does. Then a node without
    /// fields has had them discovered; otherwise the node is as it was.
    std::string obstacle(const osg::NodePtr& node) const;

    /// Pastes onto the node, which must be without obstacle.
    /// @return whether the registry accepted.
    bool pasteTo(const osg::NodePtr& node) const;

    /// Curves of the copy.
    std::size_t curveCount() const;
    /// The name of the node that was copied, UTF-8.
    const std::string& name() const { return _name; }

  private:
    std::vector<kaAnimationObject*> objects() const;
    std::string missingField(const osg::NodePtr& node) const;

    osg::NodePtr _node;
    std::string _name;
    std::vector<kaUID> _objects; ///< the node's own, after detach() copies that no node lists
    std::vector<kaUID> _fields;  ///< those of the copies
    bool _isDetached = false;
};

/// What became of the nodes that a paste was meant for.
struct PasteReport {
    std::vector<std::string> pasted;   ///< paths
    std::vector<std::string> passedBy; ///< a line each: path and obstacle
};

/// Pastes onto every node that `text` stands for. Those that match a pattern and cannot take the animation
/// are passed by.
/// @throws Failure (Usage), with nothing pasted, when a name stands for nothing or for more than one node,
/// when the node that it names has an obstacle, and when all nodes of a pattern do.
PasteReport paste(const CopiedAnimation& animation, const osg::NodePtr& root, const std::string& text,
                  const osg::NodePtr& except);

} // namespace ka::motion
#pragma GCC visibility pop
