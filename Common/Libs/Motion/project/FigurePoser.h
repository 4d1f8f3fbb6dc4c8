#pragma once

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGNode.h>
#include <kaMotion/FigureSheet.h>
#include <kaMotion/Pictures.h>
#include <vector>

namespace ka::motion {

/// Takes what a scene shows at a moment for a picture.
class FigurePoser {
  public:
    /// @param nodes  that are placed. @param root  of the scene.
    FigurePoser(const osg::NodePtr& root, std::vector<osg::NodePtr> nodes, FigureShow show, bool isZUp);

    /// One line for each node and its nearest placed ancestor; none where something else is shown.
    std::vector<FigureBone> bones() const;

    /// As the scene stands now. @throws Failure (Unreadable) where a place is not finite.
    FigurePose pose(float frame) const;

    /// What is shown: never `Auto`.
    FigureShow shown() const { return _show; }
    /// From here on, nodes are drawn as axes as well.
    void addAxes() { _hasAxes = true; }

  private:
    /// Triangles of a geometry, and what moves its corners.
    struct Shape {
        osg::NodePtr node;
        osg::GeometryPtr geometry;
        std::vector<std::uint32_t> indices; ///< three a triangle
        QRgb color = 0;
    };

    void collect(const osg::NodePtr& root);
    std::vector<Vec3> cornersOf(const Shape& shape) const;
    void addFaces(FigurePose& pose) const;
    void addBoxes(FigurePose& pose) const;
    Vec3 up(const Vec3& point) const;

    std::vector<osg::NodePtr> _nodes;
    std::vector<Shape> _shapes;
    FigureShow _show;
    bool _isZUp, _hasAxes = false;
};

} // namespace ka::motion
