#include "writers/SceneNodes.h"

#include "kaMotion/Project.h"
#include "kaMotion/SceneFiles.h"
#include "kaMotion/Text.h"
#include "readers/NodeOrder.h"

#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGLight.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <kaNodeUtils.h>

namespace ka::motion {

namespace {

Vec3 vec(const osg::Vec3f& v) {
    return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

class NodeDescriber {
  public:
    SceneNodes run(const osg::NodePtr& root) {
        const osg::NodePtr top = root->getNChildren() == 1 ? topOf(root) : root;
        if (osg::TransformPtr::dcast(top->getCore()) != osg::NullFC)
            _pending.push_back({top, MotionNode::noParent});
        else
            pushChildren(top, MotionNode::noParent);
        while (!_pending.empty()) {
            const Pending next = _pending.back();
            _pending.pop_back();
            pushChildren(next.node, add(next.node, next.parent));
        }
        if (_sheared > 0)
            _found.notes.push_back(counted(_sheared, "node") +
                                   " with a sheared matrix; the shear was left out");
        return std::move(_found);
    }

  private:
    struct Pending {
        osg::NodePtr node;
        std::int32_t parent;
    };

    void pushChildren(const osg::NodePtr& node, std::int32_t parent) {
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            if (node->getChild(i) != osg::NullFC && !isShape(node->getChild(i)))
                _pending.push_back({node->getChild(i), parent});
    }

    /// What is shown, with what is below it, and what other nodes carry.
    static bool isShape(const osg::NodePtr& node) {
        const osg::NodeCorePtr core = node->getCore();
        const bool isCarried = osg::CameraSettingPtr::dcast(core) != osg::NullFC ||
                               osg::LightPtr::dcast(core) != osg::NullFC ||
                               osg::MaterialGroupPtr::dcast(core) != osg::NullFC;
        return osg::GeometryPtr::dcast(core) != osg::NullFC || (isCarried && node->getNChildren() == 0);
    }

    /// @return its place.
    std::int32_t add(const osg::NodePtr& node, std::int32_t parent) {
        MotionNode made;
        made.name = nodeName(node);
        made.parent = parent;
        const osg::Transform3DPtr parts = osg::Transform3DPtr::dcast(node->getCore());
        const osg::TransformPtr matrix = osg::TransformPtr::dcast(node->getCore());
        osg::Matrix identity;
        identity.setIdentity();
        if (parts != osg::NullFC) {
            if (!parts->getMatrix().equals(identity, 0.0F)) {
                MotionNode outer{made.name + "_matrix", parent, {}, {}, {1, 1, 1}, sceneOrder, true};
                takeApart(parts->getMatrix(), outer);
                made.parent = append(std::move(outer), node);
            }
            made.translation = vec(parts->getTranslation());
            made.scale = vec(parts->getScale());
            const osg::TransformAttachmentPtr turned = kaNodeUtils::getTransformAttachment(node);
            if (turned != osg::NullFC)
                made.rotation =
                    quaternionFromMatrix(matrixFromAngles(vec(turned->getRotation()), sceneOrder));
        } else if (matrix != osg::NullFC) {
            takeApart(matrix->getMatrix(), made);
        }
        made.isVisible = node->getTravMask() != 0;
        const std::int32_t place = append(std::move(made), node);
        _found.places.emplace(node.getFieldContainerId(), static_cast<std::uint32_t>(place));
        return place;
    }

    void takeApart(const osg::Matrix& matrix, MotionNode& node) {
        RestMatrix rows{};
        for (osg::UInt32 row = 0; row < 3; ++row)
            for (osg::UInt32 column = 0; column < 4; ++column)
                rows[row][column] = static_cast<double>(matrix[column][row]);
        if (!setRestTransform(node, rows))
            ++_sheared;
    }

    std::int32_t append(MotionNode node, const osg::NodePtr& source) {
        _found.nodes.push_back(std::move(node));
        _found.sources.push_back(source);
        return static_cast<std::int32_t>(_found.nodes.size() - 1);
    }

    SceneNodes _found;
    std::vector<Pending> _pending;
    std::size_t _sheared = 0;
};

} // namespace

SceneNodes describeNodes(const osg::NodePtr& root) {
    return NodeDescriber().run(root);
}

} // namespace ka::motion
