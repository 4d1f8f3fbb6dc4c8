#include "WorldPositions.h"

#include <OpenSG/OSGNodeCore.h>
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

void WorldPositions::read(float* positions) {
    for (Place& place : _places) {
        const osg::NodePtr node = place.node.get();
        const osg::NodeCorePtr core = node->getCore();
        place.moves = core != osg::NullFC && core->getLocalMatrix(*node, place.local);
    }
    for (const std::size_t wanted : _wanted) {
        // From the inside out and term by term as a product of matrices, so that the floats are the same.
        osg::Vec4f point(0.0F, 0.0F, 0.0F, 1.0F);
        for (std::size_t at = wanted; at != none; at = _places[at].parent) {
            if (!_places[at].moves)
                continue;
            const osg::Vec4f inside = point;
            for (osg::UInt32 row = 0; row < 4; ++row) {
                float sum = 0.0F;
                for (osg::UInt32 k = 0; k < 4; ++k)
                    sum += _places[at].local[k][row] * inside[k];
                point[row] = sum;
            }
        }
        for (osg::UInt32 axis = 0; axis < 3; ++axis)
            *positions++ = point[axis];
    }
}

} // namespace ka::python
