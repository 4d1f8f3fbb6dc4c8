#pragma once

#include <OpenSG/OSGNode.h>
#include <QMatrix4x4>
#include <QString>
#include <QVector3D>
#include <kaAnimationTypes.h>
#include <vector>

namespace ka::studio {

/// The placed nodes of a scene as joints, each hung from the nearest placed one above it.
class Figure {
  public:
    struct Joint {
        unsigned int node; ///< container id
        int parent;        ///< index of a joint before it; -1 for none
        QString name;
    };

    /// Takes in the nodes, parents before children.
    void setNodes(const std::vector<osg::NodePtr>& nodes);
    const std::vector<Joint>& joints() const { return _joints; }
    int indexOf(unsigned int node) const; ///< -1 where it is none of them.

    /// Where the joints are in the world now. What has gone since stays at the origin.
    std::vector<QVector3D> places() const;
    /// From a joint's own space to the world.
    QMatrix4x4 worldOf(int joint) const;
    /// From the space that a joint's translation is in to the world.
    QMatrix4x4 parentWorldOf(int joint) const;

    /// The places at other frames, by evaluating the objects there; the scene is left as they have it at
    /// `frame`.
    std::vector<std::vector<QVector3D>> placesAt(const std::vector<float>& frames,
                                                 const std::vector<kaUID>& objects, float frame) const;

  private:
    std::vector<Joint> _joints;
};

} // namespace ka::studio
