#include "WorldPositions.h"

#include <OpenSG/OSGNodeCore.h>
#include <algorithm>
#include <array>
#include <unordered_map>

namespace ka::python {

WorldPositions::WorldPositions(const std::vector<NodeReference>& nodes) {
    std::unordered_map<osg::UInt32, std::size_t> known;
    for (const NodeReference& wanted : nodes) {
        std::vector<osg::NodePtr> way; // up to the first node that is known
        osg::NodePtr node = wanted.get();
        for (; node != osg::NullFC && known.count(node.getFieldContainerId()) == 0; node = node->getParent())
            way.push_back(node);
        std::size_t parent = node == osg::NullFC ? none : known.at(node.getFieldContainerId());
        for (; !way.empty(); way.pop_back()) {
            const osg::UInt32 id = way.back().getFieldContainerId();
            _places.push_back({{wanted.session, id}, parent, false, {}});
            parent = known[id] = _places.size() - 1;
        }
        _wanted.push_back(parent);
    }
}

void WorldPositions::readStill(Place& place) const {
    const osg::NodePtr node = place.node.get();
    const osg::NodeCorePtr core = node->getCore();
    place.moves = core != osg::NullFC && core->getLocalMatrix(*node, place.local);
}

float* WorldPositions::read(float* positions) {
    for (Place& place : _places)
        readStill(place);
    return write(positions);
}

void WorldPositions::read(const SampledPoses& poses, std::size_t frames, float* positions) {
    std::vector<std::pair<Place*, SampledPoses::Node>> moved;
    for (Place& place : _places) {
        readStill(place);
        const osg::NodePtr node = place.node.get();
        const osg::Transform3DPtr core = osg::Transform3DPtr::dcast(node->getCore());
        if (core == osg::NullFC)
            continue; // nothing that was sampled moves it
        if (const SampledPoses::Node pose = poses.of(node, core); pose.isMoved())
            moved.emplace_back(&place, pose);
    }
    for (std::size_t frame = 0; frame < frames; ++frame) {
        for (const auto& [place, pose] : moved)
            place->local = poses.local(pose, frame);
        positions = write(positions);
    }
}

float* WorldPositions::write(float* positions) const {
    for (const std::size_t wanted : _wanted) {
        // From the inside out and term by term as a product of matrices, so that the floats are the same.
        std::array<float, 4> point{0.0F, 0.0F, 0.0F, 1.0F};
        for (std::size_t at = wanted; at != none; at = _places[at].parent) {
            const Place& place = _places[at];
            if (!place.moves)
                continue;
            std::array<float, 4> outside{};
            for (osg::UInt32 k = 0; k < 4; ++k) {
                const osg::Vec4f& column = place.local[k];
                for (osg::UInt32 row = 0; row < 4; ++row)
                    outside[row] += column[row] * point[k];
            }
            point = outside;
        }
        positions = std::copy_n(point.begin(), 3, positions);
    }
    return positions;
}

} // namespace ka::python
