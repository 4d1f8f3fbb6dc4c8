#include "Figure.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGMatrix.h>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationManager.h>
#include <kaMotion/Project.h>
#include <unordered_map>

namespace ka::studio {

namespace {

osg::NodePtr nodeWithId(unsigned int id) {
    return osg::NodePtr::dcast(osg::FieldContainerFactory::the()->getContainer(id));
}

QMatrix4x4 matrixOf(const osg::NodePtr& node) {
    QMatrix4x4 result;
    if (node == osg::NullFC)
        return result;
    const osg::Matrix world = node->getToWorld();
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            result(row, column) = world[static_cast<osg::UInt32>(column)][static_cast<osg::UInt32>(row)];
    return result;
}

} // namespace

void Figure::setNodes(const std::vector<osg::NodePtr>& nodes) {
    _joints.clear();
    std::unordered_map<unsigned int, int> places;
    for (const osg::NodePtr& node : nodes) {
        int parent = -1;
        for (osg::NodePtr above = node->getParent(); above != osg::NullFC && parent < 0;
             above = above->getParent()) {
            const auto found = places.find(above.getFieldContainerId());
            parent = found != places.end() ? found->second : -1;
        }
        const unsigned int id = node.getFieldContainerId();
        places.emplace(id, static_cast<int>(_joints.size()));
        _joints.push_back({id, parent, QString::fromStdString(ka::motion::nodeName(node))});
    }
}

int Figure::indexOf(unsigned int node) const {
    for (std::size_t i = 0; i < _joints.size(); ++i)
        if (_joints[i].node == node)
            return static_cast<int>(i);
    return -1;
}

std::vector<QVector3D> Figure::places() const {
    std::vector<QVector3D> places;
    places.reserve(_joints.size());
    for (const Joint& joint : _joints) {
        const osg::NodePtr node = nodeWithId(joint.node);
        if (node == osg::NullFC) {
            places.emplace_back();
            continue;
        }
        const osg::Matrix world = node->getToWorld();
        const QVector3D place(world[3][0], world[3][1], world[3][2]);
        const bool isFinite =
            std::isfinite(place.x()) && std::isfinite(place.y()) && std::isfinite(place.z());
        places.push_back(isFinite ? place : QVector3D());
    }
    return places;
}

QMatrix4x4 Figure::worldOf(int joint) const {
    return matrixOf(nodeWithId(_joints[static_cast<std::size_t>(joint)].node));
}

QMatrix4x4 Figure::parentWorldOf(int joint) const {
    const osg::NodePtr node = nodeWithId(_joints[static_cast<std::size_t>(joint)].node);
    return node == osg::NullFC ? QMatrix4x4() : matrixOf(node->getParent());
}

std::vector<std::vector<QVector3D>> Figure::placesAt(const std::vector<float>& frames,
                                                     const std::vector<kaUID>& objects, float frame) const {
    const auto evaluate = [&objects](float at) {
        for (const kaUID id : objects)
            if (kaAnimationObject* object = kaAnimationManager::the()->getObject(id))
                kaAnimationController::the()->evaluateObject(object, at, false);
    };
    std::vector<std::vector<QVector3D>> all;
    for (const float at : frames) {
        evaluate(at);
        all.push_back(places());
    }
    evaluate(frame);
    return all;
}

} // namespace ka::studio
