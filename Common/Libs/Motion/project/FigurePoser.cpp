#include "project/FigurePoser.h"

#include <OpenSG/OSGMorphTarget.h>
#include <OpenSG/OSGPicture.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSkin.h>
#include <algorithm>
#include <cmath>
#include <kaMotion/Failure.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <map>

namespace ka::motion {

namespace {

constexpr unsigned triangles = 4; // what the graphics library calls them

/// More would take seconds for each picture.
constexpr std::size_t mostFaces = 60000;

Vec3 placed(const osg::Matrix& matrix, const Vec3& p) {
    Vec3 out{};
    for (osg::UInt32 row = 0; row < 3; ++row)
        out[row] = static_cast<double>(matrix[0][row]) * p[0] + static_cast<double>(matrix[1][row]) * p[1] +
                   static_cast<double>(matrix[2][row]) * p[2] + static_cast<double>(matrix[3][row]);
    return out;
}

bool isFinite(const Vec3& v) {
    return std::all_of(v.begin(), v.end(), [](double number) { return std::isfinite(number); });
}

QRgb colorOf(const osg::MaterialPtr& material) {
    const osg::SimpleMaterialPtr simple = osg::SimpleMaterialPtr::dcast(material);
    // What a picture paints is not looked up: it is drawn as plain as what has no material.
    if (simple == osg::NullFC || simple->findAttachment(osg::Picture::getClassType()) != osg::NullFC)
        return 0xFF9AA5B4;
    const osg::Color3f& color = simple->getDiffuse();
    const auto level = [&](osg::UInt32 i) {
        // Linear light as the screen has it.
        const double part = std::pow(std::clamp(static_cast<double>(color[i]), 0.0, 1.0), 1.0 / 2.2);
        return static_cast<int>(std::lround(part * 235.0)); // white stays apart from the page
    };
    return qRgb(level(0), level(1), level(2));
}

/// Triangles with corners that exist; what is made of anything else is left out.
std::vector<std::uint32_t> trianglesOf(const osg::GeometryPtr& geometry) {
    std::vector<std::uint32_t> list;
    if (geometry->getPositions() == osg::NullFC || geometry->getIndices() == osg::NullFC ||
        geometry->getTypes() == osg::NullFC)
        return list;
    for (const osg::UInt8 type : *geometry->getTypes()->getMFTypes())
        if (type != triangles)
            return list;
    const std::size_t corners = geometry->getPositions()->getSize();
    const auto& indices = *geometry->getIndices()->getMFIndices();
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
        if (indices[i] < corners && indices[i + 1] < corners && indices[i + 2] < corners)
            list.insert(list.end(), {indices[i], indices[i + 1], indices[i + 2]});
    return list;
}

} // namespace

FigurePoser::FigurePoser(const osg::NodePtr& root, std::vector<osg::NodePtr> nodes, FigureShow show,
                         bool isZUp)
    : _nodes(std::move(nodes)), _show(show), _isZUp(isZUp) {
    collect(root);
    std::size_t faces = 0;
    for (const Shape& shape : _shapes)
        faces += shape.indices.size() / 3;
    if (_show == FigureShow::Auto)
        _show = faces > 0 ? FigureShow::Meshes : FigureShow::Bones;
    if (_show == FigureShow::Meshes && faces > mostFaces)
        _show = FigureShow::Boxes;
    if ((_show == FigureShow::Meshes || _show == FigureShow::Boxes) && faces == 0)
        throw Failure(ExitCode::Unreadable, "there are no meshes to draw");
    if (_nodes.empty() && faces == 0)
        throw Failure(ExitCode::Unreadable, "there is no figure to draw: no placed node and no mesh");
    _hasAxes = _show == FigureShow::Axes;
}

void FigurePoser::collect(const osg::NodePtr& root) {
    std::vector<osg::NodePtr> pending{root};
    while (!pending.empty()) {
        const osg::NodePtr node = pending.back();
        pending.pop_back();
        if (node == osg::NullFC)
            continue;
        const osg::GeometryPtr geometry = osg::GeometryPtr::dcast(node->getCore());
        if (geometry != osg::NullFC) {
            Shape shape{node, geometry, trianglesOf(geometry), colorOf(geometry->getMaterial())};
            if (!shape.indices.empty())
                _shapes.push_back(std::move(shape));
            continue;
        }
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.push_back(node->getChild(i));
    }
}

std::vector<FigureBone> FigurePoser::bones() const {
    std::vector<FigureBone> bones;
    std::map<osg::NodePtr, std::size_t> places;
    for (std::size_t i = 0; i < _nodes.size() && _show == FigureShow::Bones; ++i) {
        osg::NodePtr above = _nodes[i]->getParent();
        while (above != osg::NullFC && places.find(above) == places.end())
            above = above->getParent();
        if (above != osg::NullFC)
            bones.push_back({places[above], i, sideOfName(nodeName(_nodes[i]))});
        places[_nodes[i]] = i;
    }
    return bones;
}

Vec3 FigurePoser::up(const Vec3& point) const {
    return _isZUp ? Vec3{point[0], point[2], -point[1]} : point;
}

FigurePose FigurePoser::pose(float frame) const {
    FigurePose figure;
    const bool hasJoints = _show == FigureShow::Bones || _hasAxes;
    for (const NodePose& pose : hasJoints ? readPose(_nodes) : std::vector<NodePose>()) {
        const Vec3 joint{static_cast<double>(pose.position[0]), static_cast<double>(pose.position[1]),
                         static_cast<double>(pose.position[2])};
        if (!isFinite(joint))
            throw Failure(ExitCode::Unreadable, "node '" + oneLine(pose.name) +
                                                    "' has no finite position at frame " +
                                                    formatNumber(static_cast<double>(frame)));
        figure.joints.push_back(up(joint));
    }
    for (std::size_t i = 0; _hasAxes && i < _nodes.size(); ++i) {
        const osg::Matrix world = _nodes[i]->getToWorld();
        FigureAxes axes{figure.joints[i], {}};
        for (osg::UInt32 axis = 0; axis < 3; ++axis) {
            const auto x = static_cast<double>(world[axis][0]), y = static_cast<double>(world[axis][1]),
                       z = static_cast<double>(world[axis][2]);
            const double length = std::sqrt(x * x + y * y + z * z);
            axes.ends[axis] = length > 0.0 ? up({x / length, y / length, z / length}) : Vec3{0, 0, 0};
        }
        figure.axes.push_back(axes);
    }
    if (_show == FigureShow::Meshes)
        addFaces(figure);
    else if (_show == FigureShow::Boxes)
        addBoxes(figure);
    return figure;
}

/// Shapes first, then the skin or the place of the node, as osg::MorphTarget and osg::Skin have it.
std::vector<Vec3> FigurePoser::cornersOf(const Shape& shape) const {
    std::vector<Vec3> corners;
    for (const osg::Pnt3f& p : *shape.geometry->getPositions()->getMFPositions())
        corners.push_back({static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2])});
    for (osg::UInt32 i = 0; i < shape.node->getNChildren(); ++i) {
        const osg::MorphTargetPtr target = osg::MorphTargetPtr::dcast(shape.node->getChild(i)->getCore());
        if (target == osg::NullFC || target->getMFOffsets()->size() != corners.size())
            continue;
        const auto weight = static_cast<double>(target->getWeight());
        for (std::size_t corner = 0; corner < corners.size(); ++corner)
            for (osg::UInt32 axis = 0; axis < 3; ++axis)
                corners[corner][axis] +=
                    weight * static_cast<double>((*target->getMFOffsets())[corner][axis]);
    }
    const auto skin = osg::SkinPtr::dcast(shape.node->findAttachment(osg::Skin::getClassType()));
    const bool isBound = skin != osg::NullFC && skin->getMFIndices()->size() == 4 * corners.size() &&
                         skin->getMFWeights()->size() == 4 * corners.size();
    std::vector<osg::Matrix> joints;
    for (std::size_t i = 0; isBound && i < skin->getMFJoints()->size(); ++i) {
        const osg::NodePtr& joint = (*skin->getMFJoints())[i];
        osg::Matrix matrix;
        matrix.setIdentity();
        if (joint != osg::NullFC)
            matrix = joint->getToWorld();
        matrix.mult((*skin->getMFInverseBinds())[i]);
        joints.push_back(matrix);
    }
    const osg::Matrix world = shape.node->getToWorld();
    for (std::size_t corner = 0; corner < corners.size(); ++corner) {
        Vec3 moved{0, 0, 0};
        for (std::size_t i = 4 * corner; isBound && i < 4 * corner + 4; ++i) {
            const osg::UInt32 joint = (*skin->getMFIndices())[i];
            const auto weight = static_cast<double>((*skin->getMFWeights())[i]);
            const Vec3 part =
                joint < joints.size() ? placed(joints[joint], corners[corner]) : corners[corner];
            for (std::size_t axis = 0; axis < 3; ++axis)
                moved[axis] += weight * part[axis];
        }
        corners[corner] = up(isBound ? moved : placed(world, corners[corner]));
    }
    return corners;
}

void FigurePoser::addFaces(FigurePose& pose) const {
    for (const Shape& shape : _shapes) {
        const std::vector<Vec3> corners = cornersOf(shape);
        for (std::size_t i = 0; i + 2 < shape.indices.size(); i += 3) {
            const FigureFace face{
                {corners[shape.indices[i]], corners[shape.indices[i + 1]], corners[shape.indices[i + 2]]},
                shape.color};
            if (std::all_of(face.corners.begin(), face.corners.end(), isFinite))
                pose.faces.push_back(face);
        }
    }
}

/// A box about each geometry, along the axes of the world.
void FigurePoser::addBoxes(FigurePose& pose) const {
    for (const Shape& shape : _shapes) {
        Vec3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
        for (const Vec3& corner : cornersOf(shape))
            for (std::size_t axis = 0; axis < 3 && isFinite(corner); ++axis) {
                low[axis] = std::min(low[axis], corner[axis]);
                high[axis] = std::max(high[axis], corner[axis]);
            }
        if (!(low[0] <= high[0]))
            continue;
        std::array<Vec3, 8> corners;
        for (std::size_t i = 0; i < 8; ++i)
            corners[i] = {(i & 1) == 0 ? low[0] : high[0], (i & 2) == 0 ? low[1] : high[1],
                          (i & 4) == 0 ? low[2] : high[2]};
        constexpr std::size_t sides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                             {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
        for (const auto& side : sides) {
            pose.faces.push_back({{corners[side[0]], corners[side[1]], corners[side[2]]}, shape.color});
            pose.faces.push_back({{corners[side[0]], corners[side[2]], corners[side[3]]}, shape.color});
        }
    }
}

} // namespace ka::motion
