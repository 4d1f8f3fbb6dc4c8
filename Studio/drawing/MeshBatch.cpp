#include "MeshBatch.h"

#include "Painting.h"

#include <Qt3DRender/QGeometryRenderer>
#include <algorithm>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

QParameter* addParameter(QMaterial* material, const char* name, const QVariant& value) {
    auto* parameter = new QParameter(QString::fromLatin1(name), value, material);
    material->addParameter(parameter);
    return parameter;
}

const SpaceMesh& meshOf(const SpaceScene& scene, const MeshBatch::Member& member) {
    return scene.meshes[static_cast<std::size_t>(scene.parts[static_cast<std::size_t>(member.part)].mesh)];
}

} // namespace

MeshBatch::MeshBatch(const SpaceScene& scene, std::vector<Member> members, QMaterial* material,
                     Qt3DCore::QEntity* entity)
    : _scene(scene), _members(std::move(members)), _look(meshOf(scene, _members.front()).material) {
    std::vector<float> colors, places;
    std::vector<std::uint32_t> indices;
    for (Member& member : _members) {
        const SpaceMesh& mesh = meshOf(scene, member);
        member.firstCorner = _positions.size() / 3;
        for (const std::uint32_t index : mesh.indices)
            indices.push_back(index + static_cast<std::uint32_t>(member.firstCorner));
        _positions.insert(_positions.end(), mesh.positions.begin(), mesh.positions.end());
        _normals.insert(_normals.end(), mesh.normals.begin(), mesh.normals.end());
        colors.insert(colors.end(), mesh.colors.begin(), mesh.colors.end());
        places.insert(places.end(), mesh.texCoords.begin(), mesh.texCoords.end());
    }
    _tints.resize(_positions.size() / 3);
    auto* geometry = new QGeometry(entity);
    _positionBuffer = addFloats(geometry, "vertexPosition", _positions, 3);
    _tintBuffer = addFloats(geometry, "cornerTint", _tints, 1);
    if (!_normals.empty())
        _normalBuffer = addFloats(geometry, "cornerNormal", _normals, 3);
    if (!colors.empty())
        addFloats(geometry, "cornerColor", colors, 4);
    if (!places.empty())
        addFloats(geometry, "cornerPlace", places, 2);
    addIndices(geometry, indices);
    auto* renderer = new QGeometryRenderer(entity);
    renderer->setGeometry(geometry);
    renderer->setPrimitiveType(QGeometryRenderer::Triangles);
    renderer->setVertexCount(static_cast<int>(indices.size()));
    _color = addParameter(material, "color", QVector4D());
    _glow = addParameter(material, "glow", QVector3D());
    entity->addComponent(renderer);
    entity->addComponent(material);
}

bool MeshBatch::hasMoved(const SpacePart& part, const Member& member, const SpacePose& now,
                         const SpacePose& before) const {
    const auto at = static_cast<std::size_t>(member.part);
    if (before.looks.empty() || now.isHidden[at] != before.isHidden[at])
        return true;
    const auto differs = [&](int mover) {
        return mover >= 0 &&
               now.worlds[static_cast<std::size_t>(mover)] != before.worlds[static_cast<std::size_t>(mover)];
    };
    const auto weight = static_cast<std::ptrdiff_t>(member.firstWeight);
    const auto last = weight + static_cast<std::ptrdiff_t>(part.morphs.size());
    if (!std::equal(now.weights.begin() + weight, now.weights.begin() + last,
                    before.weights.begin() + weight))
        return true;
    return part.isSkinned() ? std::any_of(part.skin.movers.begin(), part.skin.movers.end(), differs)
                            : differs(part.mover);
}

void MeshBatch::place(const Member& member, const SpacePose& pose) {
    const SpacePart& part = _scene.parts[static_cast<std::size_t>(member.part)];
    const auto at = static_cast<std::ptrdiff_t>(3 * member.firstCorner);
    if (pose.isHidden[static_cast<std::size_t>(member.part)] != 0) { // triangles without size are not drawn
        std::fill_n(_positions.begin() + at, meshOf(_scene, member).positions.size(), 0.0F);
        return;
    }
    deform(_scene, part, pose, member.firstWeight, _corners);
    std::copy(_corners.positions.begin(), _corners.positions.end(), _positions.begin() + at);
    if (_normalBuffer != nullptr)
        std::copy(_corners.normals.begin(), _corners.normals.end(), _normals.begin() + at);
}

void MeshBatch::setTints(const std::vector<int>& pickedParts) {
    std::vector<int> picked;
    for (const Member& member : _members)
        if (std::find(pickedParts.begin(), pickedParts.end(), member.part) != pickedParts.end())
            picked.push_back(member.part);
    if (picked == _picked)
        return;
    _picked = picked;
    for (const Member& member : _members) {
        const bool isPicked = std::find(picked.begin(), picked.end(), member.part) != picked.end();
        std::fill_n(_tints.begin() + static_cast<std::ptrdiff_t>(member.firstCorner),
                    meshOf(_scene, member).corners(), isPicked ? 1.0F : 0.0F);
    }
    _tintBuffer->setData(bytesOfList(_tints));
}

void MeshBatch::update(const SpaceFrame& frame, const SpacePose& before) {
    bool isOther = false;
    for (const Member& member : _members)
        if (hasMoved(_scene.parts[static_cast<std::size_t>(member.part)], member, frame.pose, before)) {
            place(member, frame.pose);
            isOther = true;
        }
    if (isOther) {
        _positionBuffer->setData(bytesOfList(_positions));
        if (_normalBuffer != nullptr)
            _normalBuffer->setData(bytesOfList(_normals));
    }
    setTints(frame.pickedParts);
    const std::array<float, 7>& look = frame.pose.looks[static_cast<std::size_t>(_look)];
    _color->setValue(QVector4D(look[0], look[1], look[2], look[3]));
    _glow->setValue(QVector3D(look[4], look[5], look[6]));
}

} // namespace ka::studio
