#pragma once

#include <OpenSG/OSGAnimationBlock.h>
#include <OpenSG/OSGAnimationClip.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// The referee of the import: what the older containers themselves say at a frame, worked out plainly and
/// slowly in long double, time by bisection.
namespace ka_older {

/// A value of the scene: container id of the node, and the attribute as it is called today ("rotationX").
using Address = std::pair<osg::UInt32, std::string>;
using Values = std::map<Address, long double>;

/// One curve with its keys in order and every handle where its tangent type puts it.
class OlderCurve {
  public:
    explicit OlderCurve(const osg::AnimationCurvePtr& curve);

    bool isEmpty() const { return _keys.empty(); }
    bool hasValues() const { return _keys.size() >= 2; }
    long double begin() const { return _keys.front().x; }
    long double end() const { return _keys.back().x; }

    /// The value at a frame; before the first key that key's value, after the last key that key's value.
    long double at(long double frame) const;

  private:
    struct Key {
        long double x, y, inX, inY, outX, outY;
        unsigned int code;
    };

    void placeHandles(std::size_t index);
    static long double along(const Key& from, const Key& to, long double x);

    std::vector<Key> _keys;
};

/// Everything that a block (or a clip with all it contains) sets at a frame. Where several curves set one
/// value, the running block that began last wins, else the finished one that began last, else the coming one
/// that ends first.
Values evaluate(const osg::AnimationBlockPtr& block, long double frame);
Values evaluate(const osg::AnimationClipPtr& clip, long double frame);

} // namespace ka_older
