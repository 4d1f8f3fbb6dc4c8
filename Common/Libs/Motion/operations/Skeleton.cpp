#include "operations/Skeleton.h"

#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <kaAnimationCurve2D.h>
#include <kaMotion/CurveKind.h>
#include <kaMotion/NodeChoice.h>
#include <kaMotion/Project.h>
#include <kaNodeUtils.h>
#include <map>

namespace ka::motion {

namespace {

Placement placementOf(const osg::Matrix& matrix) {
    Placement placement;
    for (osg::UInt32 row = 0; row < 3; ++row) {
        for (osg::UInt32 column = 0; column < 3; ++column)
            placement.linear[row][column] = static_cast<double>(matrix[column][row]);
        placement.origin[row] = static_cast<double>(matrix[3][row]);
    }
    return placement;
}

void readRest(const osg::NodePtr& source, Skeleton::Node& node) {
    const osg::Transform3DPtr placed = osg::Transform3DPtr::dcast(source->getCore());
    const osg::TransformPtr moved = osg::TransformPtr::dcast(source->getCore());
    if (moved != osg::NullFC)
        node.base = placementOf(moved->getMatrix());
    if (placed == osg::NullFC)
        return;
    node.isPlaced = true;
    const osg::TransformAttachmentPtr turned = kaNodeUtils::getTransformAttachment(source);
    for (osg::UInt32 axis = 0; axis < 3; ++axis) {
        node.rest[axis] = static_cast<double>(placed->getTranslation()[axis]);
        node.rest[axis + 3] = turned == osg::NullFC ? 0.0 : static_cast<double>(turned->getRotation()[axis]);
        node.rest[axis + 6] = static_cast<double>(placed->getScale()[axis]);
    }
}

Placement local(const Skeleton::Node& node, const double* values) {
    std::array<double, Skeleton::channels> now = node.rest;
    for (std::size_t channel = 0; channel < now.size(); ++channel)
        if (node.curves[channel] != Skeleton::none)
            now[channel] = values[node.curves[channel]];
    Placement placement;
    placement.linear = matrixFromAngles({now[3], now[4], now[5]}, sceneOrder);
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            placement.linear[row][column] *= now[6 + column];
    placement.origin = {now[0], now[1], now[2]};
    return placement;
}

} // namespace

Placement product(const Placement& a, const Placement& b) {
    Placement both;
    both.linear = product(a.linear, b.linear);
    const Vec3 turned = product(a.linear, b.origin);
    for (std::size_t axis = 0; axis < 3; ++axis)
        both.origin[axis] = a.origin[axis] + turned[axis];
    return both;
}

std::size_t channelOf(const kaAnimationCurve2D* curve) {
    const CurveKind kind = curveKind(curve);
    if (kind == CurveKind::Other)
        return Skeleton::none;
    const std::size_t group = kind == CurveKind::Translation ? 0 : kind == CurveKind::Rotation ? 3 : 6;
    return group + static_cast<std::size_t>(curveAxis(curve));
}

Skeleton::Skeleton(const osg::NodePtr& root, const CurveList& curves)
    : _nodeOfCurve(curves.size(), none), _channelOfCurve(curves.size(), none) {
    std::map<osg::UInt32, std::size_t> numbers;
    for (const osg::NodePtr& source : nodesBelow(root)) {
        Node node;
        node.node = source;
        node.name = nodeName(source);
        node.curves.fill(none);
        const osg::NodePtr parent = source->getParent();
        if (const auto found =
                parent == osg::NullFC ? numbers.end() : numbers.find(parent.getFieldContainerId());
            found != numbers.end())
            node.parent = found->second;
        readRest(source, node);
        numbers.emplace(source.getFieldContainerId(), _nodes.size());
        _nodes.push_back(std::move(node));
    }
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const osg::NodePtr node = curves[i]->getParentOSGNode();
        const std::size_t channel = motion::channelOf(curves[i]);
        const auto found = node == osg::NullFC ? numbers.end() : numbers.find(node.getFieldContainerId());
        if (found == numbers.end() || channel == none || !_nodes[found->second].isPlaced)
            continue;
        _nodeOfCurve[i] = found->second;
        _channelOfCurve[i] = channel;
        _nodes[found->second].curves[channel] = i;
    }
}

void Skeleton::place(const double* values, std::vector<Placement>& worlds) const {
    worlds.resize(_nodes.size());
    for (std::size_t i = 0; i < _nodes.size(); ++i) {
        const Node& node = _nodes[i];
        Placement placement = node.isPlaced ? product(node.base, local(node, values)) : node.base;
        worlds[i] = node.parent == none ? placement : product(worlds[node.parent], placement);
    }
}

} // namespace ka::motion
