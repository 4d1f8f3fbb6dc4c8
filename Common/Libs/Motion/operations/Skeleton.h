#pragma once

#include <OpenSG/OSGNode.h>
#include <array>
#include <cstddef>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/PlainCurve.h>
#include <kaMotion/Rotation.h>
#include <string>
#include <vector>

namespace ka::motion {

/// A linear map and a move after it, of column vectors.
struct Placement {
    Matrix3 linear{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    Vec3 origin{0, 0, 0};
};

Placement product(const Placement& a, const Placement& b);

/// The nodes of a scene with the curves that place them, as plain data: where each node stands at a frame is
/// worked out here without touching the scene.
class Skeleton {
  public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    /// Translation, rotation in degrees and scale about X, Y and Z.
    static constexpr std::size_t channels = 9;

    struct Node {
        osg::NodePtr node;
        std::string name; ///< UTF-8
        std::size_t parent = none;
        Placement base;                             ///< what comes before the channels
        std::array<double, channels> rest{};        ///< as the scene holds them now
        std::array<std::size_t, channels> curves{}; ///< of each channel the number of its curve, or none
        bool isPlaced = false;                      ///< whether the channels place it at all
    };

    /// The nodes at and below `root`, those above first, with those of `curves` that place them. Of several
    /// curves for one channel the last counts.
    Skeleton(const osg::NodePtr& root, const CurveList& curves);

    const std::vector<Node>& nodes() const { return _nodes; }
    /// Of a curve the node that it places, or none.
    std::size_t nodeOf(std::size_t curve) const { return _nodeOfCurve[curve]; }
    /// The channel of that node.
    std::size_t channelOf(std::size_t curve) const { return _channelOfCurve[curve]; }

    /// Where every node stands in the world. @param values  one for each curve.
    void place(const double* values, std::vector<Placement>& worlds) const;

  private:
    std::vector<Node> _nodes;
    std::vector<std::size_t> _nodeOfCurve, _channelOfCurve;
};

/// The channel of a curve in a Skeleton's sense, or Skeleton::none.
std::size_t channelOf(const kaAnimationCurve2D* curve);

} // namespace ka::motion
