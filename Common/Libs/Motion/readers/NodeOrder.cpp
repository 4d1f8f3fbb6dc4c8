#include "readers/NodeOrder.h"

#include <cmath>
#include <kaMotion/Failure.h>

namespace ka::motion {

namespace {

Vec3 column(const RestMatrix& m, std::size_t index) {
    return {m[0][index], m[1][index], m[2][index]};
}

double dot(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec3 cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec3 scaled(const Vec3& v, double factor) {
    return {v[0] * factor, v[1] * factor, v[2] * factor};
}

bool hasLength(const Vec3& v) {
    return dot(v, v) > 0.0;
}

Vec3 unit(const Vec3& v) {
    return scaled(v, 1.0 / std::sqrt(dot(v, v)));
}

/// Any unit vector at a right angle to `axis`.
Vec3 anyAcross(const Vec3& axis) {
    return unit(cross(axis, std::abs(axis[0]) <= std::abs(axis[1]) ? Vec3{1, 0, 0} : Vec3{0, 1, 0}));
}

/// The direction of `v` without its part along the unit vector `axis`.
Vec3 acrossFrom(const Vec3& v, const Vec3& axis) {
    const double along = dot(v, axis);
    const Vec3 rest{v[0] - along * axis[0], v[1] - along * axis[1], v[2] - along * axis[2]};
    return dot(rest, rest) > 1e-24 * dot(v, v) ? unit(rest) : anyAcross(axis);
}

/// The axes of a rotation that turns the coordinate axes into the directions of the columns; columns of
/// length zero leave the choice to the others.
Matrix3 axesOf(const Vec3& x, const Vec3& y, const Vec3& z, double mirror) {
    const Vec3 across = cross(y, z);
    const Vec3 first = hasLength(x)        ? scaled(unit(x), mirror)
                       : hasLength(across) ? unit(across)
                       : hasLength(y)      ? anyAcross(y)
                       : hasLength(z)      ? anyAcross(z)
                                           : Vec3{1, 0, 0};
    const Vec3 second = hasLength(y)   ? acrossFrom(y, first)
                        : hasLength(z) ? cross(acrossFrom(z, first), first)
                                       : anyAcross(first);
    return {first, second, cross(first, second)};
}

} // namespace

std::vector<std::uint32_t> putParentsFirst(std::vector<MotionNode>& nodes) {
    std::vector<std::vector<std::size_t>> children(nodes.size());
    std::vector<std::size_t> pending;
    for (std::size_t i = nodes.size(); i-- > 0;) {
        if (nodes[i].parent == MotionNode::noParent)
            pending.push_back(i);
        else
            children[static_cast<std::size_t>(nodes[i].parent)].push_back(i);
    }
    std::vector<std::uint32_t> places(nodes.size(), 0);
    std::vector<MotionNode> ordered;
    ordered.reserve(nodes.size());
    while (!pending.empty()) {
        const std::size_t old = pending.back();
        pending.pop_back();
        places[old] = static_cast<std::uint32_t>(ordered.size());
        ordered.push_back(nodes[old]);
        if (MotionNode& node = ordered.back(); node.parent != MotionNode::noParent)
            node.parent = static_cast<std::int32_t>(places[static_cast<std::size_t>(node.parent)]);
        pending.insert(pending.end(), children[old].begin(), children[old].end());
    }
    // What no root leads to hangs on itself.
    if (ordered.size() != nodes.size())
        throw Failure(ExitCode::Unreadable,
                      std::to_string(nodes.size() - ordered.size()) + " nodes are their own ancestors");
    nodes = std::move(ordered);
    return places;
}

bool setRestTransform(MotionNode& node, const RestMatrix& m) {
    node.translation = column(m, 3);
    const Vec3 x = column(m, 0), y = column(m, 1), z = column(m, 2);
    const double xLength = std::sqrt(dot(x, x)), yLength = std::sqrt(dot(y, y)),
                 zLength = std::sqrt(dot(z, z));
    const double mirror = dot(cross(x, y), z) < 0.0 ? -1.0 : 1.0;
    node.scale = {mirror * xLength, yLength, zLength};
    const auto [i, j, k] = axesOf(x, y, z, mirror);
    node.rotation = quaternionFromMatrix({{{i[0], j[0], k[0]}, {i[1], j[1], k[1]}, {i[2], j[2], k[2]}}});
    constexpr double visible = 1e-4;
    return std::abs(dot(x, y)) <= visible * xLength * yLength &&
           std::abs(dot(y, z)) <= visible * yLength * zLength &&
           std::abs(dot(x, z)) <= visible * xLength * zLength;
}

} // namespace ka::motion
