#pragma once

#include "References.h"

#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGTransform3D.h>
#include <array>
#include <map>
#include <optional>
#include <vector>

namespace ka::python {

/// Where nodes stand in their parents over many frames, worked out a curve at a time instead of a frame at a time
/// and without writing anything into the scene: the very floats of evaluating frame by frame.
///
/// That is so where every number is driven by one curve that does not repeat, nothing has events, and what is
/// driven are translations, rotations and scales of Transform3D cores; everything else has to be evaluated.
class SampledPoses {
  public:
    /// What moves nodes, or nothing where the objects are not as simple as that.
    static std::optional<SampledPoses> of(const std::vector<kaAnimationObject*>& objects);

    /// Takes in all frames. @return false where a curve has no value at one of them.
    bool sample(const float* frames, std::size_t count);

    /// Values over the frames for the components that are driven: places of curves.
    using Driven = std::array<std::optional<std::size_t>, 3>;
    /// What moves one node, and how it stands where nothing does.
    struct Node {
        const Driven *translation = nullptr, *rotation = nullptr,
                     *scale = nullptr; ///< null: nothing drives it
        osg::Vec3f stillTranslation, stillRotation, stillScale;
        osg::Matrix rest; ///< before all these
        bool isMoved() const { return translation || rotation || scale; }
    };
    /// Good as long as the poses and the scene stay as they are.
    Node of(const osg::NodePtr& node, const osg::Transform3DPtr& core) const;
    /// The matrix that the node has at the frame of that number.
    osg::Matrix local(const Node& node, std::size_t frame) const;

  private:
    bool add(kaAnimationCurve2D& curve);
    osg::Vec3f valueOf(const Driven* driven, osg::Vec3f value, std::size_t frame) const;
    const Driven* find(const std::map<osg::UInt32, Driven>& all, osg::UInt32 id) const;

    std::vector<kaAnimationCurve2D*> _curves;
    std::vector<float> _values;                           ///< curve by curve
    std::size_t _count = 0;                               ///< of frames
    std::map<osg::UInt32, Driven> _translations, _scales; ///< by the core's container id
    std::map<osg::UInt32, Driven> _rotations;             ///< by the node's
};

} // namespace ka::python
