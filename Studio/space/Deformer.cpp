#include "Deformer.h"

#include <algorithm>
#include <limits>

namespace ka::studio {

namespace {

using Matrix = std::array<float, 16>; // column by column

Matrix product(const Matrix& a, const float* b) {
    Matrix result{};
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row)
            for (std::size_t i = 0; i < 4; ++i)
                result[4 * column + row] += a[4 * i + row] * b[4 * column + i];
    return result;
}

/// @param w  1 for places, 0 for directions.
void apply(const Matrix& m, const float* from, float w, float* to) {
    const float x = from[0], y = from[1], z = from[2];
    for (std::size_t row = 0; row < 3; ++row)
        to[row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row] * w;
}

/// What turns normals as the inverse transposed does, up to their length: they stay upright on what is scaled.
Matrix cofactors(const Matrix& m) {
    const auto cross = [&m](std::size_t a, std::size_t b, std::size_t row) {
        const std::size_t next = (row + 1) % 3, last = (row + 2) % 3;
        return m[4 * a + next] * m[4 * b + last] - m[4 * a + last] * m[4 * b + next];
    };
    Matrix result{};
    for (std::size_t row = 0; row < 3; ++row) {
        result[row] = cross(1, 2, row);
        result[4 + row] = cross(2, 0, row);
        result[8 + row] = cross(0, 1, row);
    }
    return result;
}

constexpr Matrix Identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

void bend(const SpaceSkin& skin, const SpacePose& pose, WorldCorners& corners) {
    std::vector<Matrix> joints(skin.movers.size());
    for (std::size_t i = 0; i < joints.size(); ++i)
        joints[i] =
            product(pose.worlds[static_cast<std::size_t>(skin.movers[i])], &skin.inverseBinds[16 * i]);
    for (std::size_t corner = 0; 3 * corner < corners.positions.size(); ++corner) {
        Matrix mixed{};
        for (std::size_t i = 4 * corner; i < 4 * corner + 4; ++i) {
            const float weight = skin.weights[i];
            const Matrix& joint = joints[skin.indices[i]];
            for (std::size_t j = 0; weight != 0.0F && j < 16; ++j)
                mixed[j] += weight * joint[j];
        }
        apply(mixed, &corners.positions[3 * corner], 1.0F, &corners.positions[3 * corner]);
        if (!corners.normals.empty())
            apply(mixed, &corners.normals[3 * corner], 0.0F, &corners.normals[3 * corner]);
    }
}

/// How far along the ray it meets a triangle, by Möller and Trumbore; infinite where it does not.
float distanceTo(const float* a, const float* b, const float* c, const std::array<float, 3>& origin,
                 const std::array<float, 3>& way) {
    constexpr float Never = std::numeric_limits<float>::infinity();
    const auto cross = [](const float* u, const float* v, float* result) {
        result[0] = u[1] * v[2] - u[2] * v[1];
        result[1] = u[2] * v[0] - u[0] * v[2];
        result[2] = u[0] * v[1] - u[1] * v[0];
    };
    const auto dot = [](const float* u, const float* v) { return u[0] * v[0] + u[1] * v[1] + u[2] * v[2]; };
    float ab[3], ac[3], off[3], p[3], q[3];
    for (std::size_t i = 0; i < 3; ++i) {
        ab[i] = b[i] - a[i];
        ac[i] = c[i] - a[i];
        off[i] = origin[i] - a[i];
    }
    cross(way.data(), ac, p);
    const float determinant = dot(ab, p);
    if (determinant == 0.0F)
        return Never;
    const float u = dot(off, p) / determinant;
    cross(off, ab, q);
    const float v = dot(way.data(), q) / determinant;
    const float t = dot(ac, q) / determinant;
    return u >= 0 && v >= 0 && u + v <= 1 && t > 0 ? t : Never;
}

} // namespace

std::size_t SpaceScene::triangles() const {
    std::size_t count = 0;
    for (const SpacePart& part : parts)
        count += meshes[static_cast<std::size_t>(part.mesh)].indices.size() / 3;
    return count;
}

std::size_t SpaceScene::bytes() const {
    std::size_t numbers = 0, pictures = 0;
    for (const SpaceMesh& mesh : meshes)
        numbers += mesh.positions.size() + mesh.normals.size() + mesh.colors.size() + mesh.texCoords.size() +
                   mesh.indices.size();
    for (const SpacePart& part : parts) {
        numbers += part.skin.indices.size() + part.skin.weights.size() + part.skin.inverseBinds.size();
        for (const SpaceMorph& morph : part.morphs)
            numbers += morph.offsets.size();
    }
    for (const SpaceMaterial& material : materials)
        pictures += static_cast<std::size_t>(material.picture.size());
    return numbers * sizeof(float) + pictures;
}

void deform(const SpaceScene& scene, const SpacePart& part, const SpacePose& pose, std::size_t firstWeight,
            WorldCorners& corners) {
    const SpaceMesh& mesh = scene.meshes[static_cast<std::size_t>(part.mesh)];
    corners.positions = mesh.positions;
    corners.normals = mesh.normals;
    for (std::size_t i = 0; i < part.morphs.size(); ++i) {
        const float weight = pose.weights[firstWeight + i];
        for (std::size_t j = 0; weight != 0.0F && j < corners.positions.size(); ++j)
            corners.positions[j] += weight * part.morphs[i].offsets[j];
    }
    if (part.isSkinned())
        return bend(part.skin, pose, corners);
    const Matrix& world = part.mover < 0 ? Identity : pose.worlds[static_cast<std::size_t>(part.mover)];
    const Matrix turned = cofactors(world);
    for (std::size_t i = 0; i < corners.positions.size(); i += 3) {
        apply(world, &corners.positions[i], 1.0F, &corners.positions[i]);
        if (!corners.normals.empty())
            apply(turned, &corners.normals[i], 0.0F, &corners.normals[i]);
    }
}

SpaceHit meet(const SpaceScene& scene, const SpacePose& pose, const std::array<float, 3>& origin,
              const std::array<float, 3>& direction) {
    SpaceHit hit;
    hit.distance = std::numeric_limits<float>::infinity();
    std::size_t weight = 0;
    WorldCorners corners;
    for (std::size_t i = 0; i < scene.parts.size(); ++i) {
        const SpacePart& part = scene.parts[i];
        const std::size_t firstWeight = weight;
        weight += part.morphs.size();
        if (pose.isHidden[i] != 0)
            continue;
        deform(scene, part, pose, firstWeight, corners);
        const std::vector<std::uint32_t>& indices = scene.meshes[static_cast<std::size_t>(part.mesh)].indices;
        for (std::size_t j = 0; j + 3 <= indices.size(); j += 3) {
            const float* at = corners.positions.data();
            const float distance = distanceTo(at + 3 * indices[j], at + 3 * indices[j + 1],
                                              at + 3 * indices[j + 2], origin, direction);
            if (distance < hit.distance)
                hit = {static_cast<int>(i), indices[j], distance};
        }
    }
    return hit;
}

int jointAt(const SpaceScene& scene, const SpaceHit& hit) {
    if (hit.part < 0)
        return -1;
    const SpacePart& part = scene.parts[static_cast<std::size_t>(hit.part)];
    int mover = part.mover;
    if (part.isSkinned()) {
        const auto weights = part.skin.weights.begin() + 4 * static_cast<std::ptrdiff_t>(hit.corner);
        const auto most = std::max_element(weights, weights + 4);
        mover =
            part.skin.movers[part.skin.indices[static_cast<std::size_t>(most - part.skin.weights.begin())]];
    }
    return mover < 0 ? -1 : scene.movers[static_cast<std::size_t>(mover)];
}

} // namespace ka::studio
