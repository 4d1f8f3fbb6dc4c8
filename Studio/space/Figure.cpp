#include "Figure.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGMatrix.h>
#include <cmath>
#include <kaMotion/Project.h>

namespace ka::studio {

namespace {

osg::NodePtr nodeWithId(unsigned int id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

QMatrix4x4 ownMatrixOf(const osg::NodePtr& node) {
    osg::Matrix local;
    if (node == osg::NullFC || node->getCore() == osg::NullFC ||
        !node->getCore()->getLocalMatrix(*node, local))
        return {};
    return QMatrix4x4(local.getValues()).transposed(); // it takes rows
}

bool isFinite(const QMatrix4x4& matrix) {
    const float* numbers = matrix.constData();
    for (int i = 0; i < 16; ++i)
        if (!std::isfinite(numbers[i]))
            return false;
    return true;
}

} // namespace

void Figure::setNodes(const std::vector<osg::NodePtr>& nodes) {
    _joints.clear();
    _indices.clear();
    for (const osg::NodePtr& node : nodes) {
        int parent = -1;
        for (osg::NodePtr above = node->getParent(); above != osg::NullFC && parent < 0;
             above = above->getParent())
            parent = indexOf(above.getFieldContainerId());
        const unsigned int id = node.getFieldContainerId();
        _indices.emplace(id, static_cast<int>(_joints.size()));
        _joints.push_back({id, parent, QString::fromStdString(ka::motion::nodeName(node))});
    }
    update();
}

int Figure::indexOf(unsigned int node) const {
    const auto found = _indices.find(node);
    return found == _indices.end() ? -1 : found->second;
}

/// One multiplication a joint: what stands between two placed nodes moves nothing.
void Figure::update() {
    _worlds.resize(_joints.size());
    _places.resize(_joints.size());
    _isHidden.resize(_joints.size());
    for (std::size_t i = 0; i < _joints.size(); ++i) {
        const osg::NodePtr node = nodeWithId(_joints[i].node);
        const QMatrix4x4 own = ownMatrixOf(node);
        const int parent = _joints[i].parent;
        _worlds[i] = parent < 0 ? own : worldOf(parent) * own;
        _isHidden[i] = node == osg::NullFC || !node->getActive() || (parent >= 0 && isHidden(parent));
        if (!isFinite(_worlds[i]))
            _worlds[i] = QMatrix4x4();
        _places[i] = _worlds[i].column(3).toVector3D();
    }
}

QMatrix4x4 Figure::parentWorldOf(int joint) const {
    const int parent = _joints[static_cast<std::size_t>(joint)].parent;
    return parent < 0 ? QMatrix4x4() : worldOf(parent);
}

} // namespace ka::studio
