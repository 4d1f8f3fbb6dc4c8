#include "readers/NodeOrder.h"

#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaNodeUtils.h>

namespace ka::motion {

namespace {

std::array<float, 3> floats(const osg::Vec3f& v) {
    return {v[0], v[1], v[2]};
}

std::array<float, 3> floats(const Vec3& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

/// A node that is placed by a matrix alone.
void takeApart(const osg::Matrix& matrix, NodePose& pose) {
    RestMatrix rows{};
    for (osg::UInt32 row = 0; row < 3; ++row)
        for (osg::UInt32 column = 0; column < 4; ++column)
            rows[row][column] = matrix[column][row];
    MotionNode parts;
    setRestTransform(parts, rows);
    pose.translation = floats(parts.translation);
    pose.rotation = floats(sceneAngles(matrixFromQuaternion(parts.rotation), {0, 0, 0}));
    pose.scale = floats(parts.scale);
}

NodePose poseOf(const osg::NodePtr& node) {
    NodePose pose;
    pose.name = nodeName(node);
    const osg::Transform3DPtr placed = osg::Transform3DPtr::dcast(node->getCore());
    const osg::TransformPtr moved = osg::TransformPtr::dcast(node->getCore());
    if (placed != osg::NullFC) {
        pose.translation = floats(placed->getTranslation());
        pose.scale = floats(placed->getScale());
        const osg::TransformAttachmentPtr turned = kaNodeUtils::getTransformAttachment(node);
        if (turned != osg::NullFC)
            pose.rotation = floats(turned->getRotation());
    } else if (moved != osg::NullFC) {
        takeApart(moved->getMatrix(), pose);
    }
    const osg::Matrix world = node->getToWorld();
    pose.position = {world[3][0], world[3][1], world[3][2]};
    return pose;
}

} // namespace

std::vector<NodePose> readPose(const std::vector<osg::NodePtr>& nodes) {
    std::vector<NodePose> poses;
    poses.reserve(nodes.size());
    for (const osg::NodePtr& node : nodes)
        poses.push_back(poseOf(node));
    return poses;
}

} // namespace ka::motion
