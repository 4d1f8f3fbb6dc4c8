#pragma once

#include "SampledPoses.h"

#include <OpenSG/OSGMatrix.h>
#include <vector>

namespace ka::python {

/// Reads where nodes stand in the world, frame after frame: the floats of `osg::Node::getToWorld`, with each
/// node's own matrix worked out once a frame however many nodes are below it.
class WorldPositions {
  public:
    /// @throws GoneError.
    explicit WorldPositions(const std::vector<NodeReference>& nodes);

    /// Writes x, y, z of each node as the scene stands, in the order given. @return behind the last.
    /// @throws GoneError.
    float* read(float* positions);
    /// The same for all frames that were sampled, one after the other. @throws GoneError.
    void read(const SampledPoses& poses, std::size_t frames, float* positions);

  private:
    struct Place {
        NodeReference node;
        std::size_t parent; ///< in `_places`; `none` for the top
        bool moves = false; ///< whether its core has a matrix
        osg::Matrix local;
    };
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    void readStill(Place& place) const;
    float* write(float* positions) const;

    std::vector<Place> _places;
    std::vector<std::size_t> _wanted; ///< the places of the nodes asked for
};

} // namespace ka::python
