#pragma once

#include <OpenSG/OSGNode.h>
#include <QMatrix4x4>
#include <QString>
#include <QVector3D>
#include <kaAnimationTypes.h>
#include <unordered_map>
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

    /// Takes in the nodes, parents before children, and where they stand.
    void setNodes(const std::vector<osg::NodePtr>& nodes);
    const std::vector<Joint>& joints() const { return _joints; }
    int indexOf(unsigned int node) const; ///< -1 where it is none of them.

    /// Looks where the joints are now. What has gone since, and what is nowhere, goes to the origin.
    void update();
    /// Where the joints were at the last look.
    const std::vector<QVector3D>& places() const { return _places; }
    /// From a joint's own space to the world, at the last look.
    const QMatrix4x4& worldOf(int joint) const { return _worlds[static_cast<std::size_t>(joint)]; }
    bool isHidden(int joint) const { return _isHidden[static_cast<std::size_t>(joint)]; }
    /// From the space that a joint's translation is in to the world.
    QMatrix4x4 parentWorldOf(int joint) const;

  private:
    std::vector<Joint> _joints;
    std::unordered_map<unsigned int, int> _indices;
    std::vector<QMatrix4x4> _worlds;
    std::vector<QVector3D> _places;
    std::vector<bool> _isHidden; ///< or below what is
};

} // namespace ka::studio
