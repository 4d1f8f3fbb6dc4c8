#pragma once

#include "operations/Skeleton.h"

#include <vector>

namespace ka::motion {

/// Where every node of a scene stands at every quarter frame of a motion, to measure another motion against.
class WorldPath {
  public:
    /// @param skeleton  outlives this. @param curves  the keys of each of its curves.
    WorldPath(const Skeleton& skeleton, const std::vector<std::vector<PlainKey>>& curves);

    /// How far one node is from its path at worst.
    struct Distance {
        double most = 0.0;
        double frame = 0.0;
    };

    /// For each node its largest distance when the curves have other keys.
    std::vector<Distance> distances(const std::vector<std::vector<PlainKey>>& curves) const;

    /// For each node the largest distance to it of any node below it, at any time.
    std::vector<double> reaches() const;

    /// Frames from one measurement to the next: a quarter, more where a motion is longer than 16 384 frames.
    double step() const { return _step; }

  private:
    static constexpr double mostFrames = 65536;

    template <class Visit>
    void walk(const std::vector<std::vector<PlainKey>>& curves, const Visit& visit) const;

    const Skeleton& _skeleton;
    double _begin = 0.0, _step = 0.25;
    std::size_t _count = 0;
    std::vector<std::array<float, 3>> _positions; ///< of all nodes at the first frame, then at the next
};

} // namespace ka::motion
