#include "MeshParts.h"

#include "Painting.h"
#include "PictureTexture.h"
#include "SpaceShaders.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

constexpr std::size_t MostLights = 8;
constexpr std::size_t BatchCorners = 65536; ///< What moves is sent anew with all of its batch.

QVector3D vectorOf(const std::array<float, 3>& three) {
    return {three[0], three[1], three[2]};
}

/// From over the eye's shoulder, where the scene has no light of its own.
SpaceLight headlight(const QMatrix4x4& view) {
    const QVector3D ahead =
        (-view.row(2).toVector3D() - 0.5F * view.row(1).toVector3D() + 0.3F * view.row(0).toVector3D())
            .normalized();
    SpaceLight light;
    light.direction = {ahead.x(), ahead.y(), ahead.z()};
    light.color = {0.85F, 0.85F, 0.85F};
    return light;
}

} // namespace

MeshParts::MeshParts(Qt3DCore::QEntity* root, QLayer* opaque, QLayer* clear, SpaceScene scene)
    : _scene(std::move(scene)),
      _root(new Qt3DCore::QEntity(root)),
      _opaque(opaque),
      _clear(clear),
      _lightCount(new QParameter(QStringLiteral("lightCount"), 0, _root)),
      _lightPlaces(new QParameter(QStringLiteral("lightPlaces[0]"), QVariantList(), _root)),
      _lightDirections(new QParameter(QStringLiteral("lightDirections[0]"), QVariantList(), _root)),
      _lightColors(new QParameter(QStringLiteral("lightColors[0]"), QVariantList(), _root)),
      _lightFades(new QParameter(QStringLiteral("lightFades[0]"), QVariantList(), _root)) {
    using Kind = std::tuple<int, bool, bool, bool>; // material, and which lists there are
    struct Open {
        std::vector<MeshBatch::Member> members;
        std::size_t corners = 0;
    };
    std::map<Kind, Open> open;
    std::size_t weight = 0;
    for (std::size_t i = 0; i < _scene.parts.size(); ++i) {
        const SpaceMesh& mesh = _scene.meshes[static_cast<std::size_t>(_scene.parts[i].mesh)];
        Open& batch =
            open[{mesh.material, mesh.normals.empty(), mesh.colors.empty(), mesh.texCoords.empty()}];
        if (batch.corners > 0 && batch.corners + mesh.corners() > BatchCorners)
            build(std::exchange(batch, {}).members);
        batch.members.push_back({static_cast<int>(i), weight, 0});
        batch.corners += mesh.corners();
        weight += _scene.parts[i].morphs.size();
    }
    for (auto& [kind, batch] : open)
        build(std::move(batch.members));
}

MeshParts::~MeshParts() {
    _batches.clear();
    delete _root;
}

QAbstractTexture* MeshParts::textureOf(int material) {
    const auto [known, isNew] = _textures.try_emplace(material, nullptr);
    if (isNew) {
        const QImage picture = pictureOf(_scene.materials[static_cast<std::size_t>(material)]);
        known->second = picture.isNull() ? nullptr : makeTexture(picture, _root);
    }
    return known->second;
}

QEffect* MeshParts::effectFor(const SpaceMesh& mesh, bool hasPicture, bool isClear) {
    QByteArray head("#version 150\n");
    if (!mesh.normals.empty())
        head += "#define HAS_NORMAL\n";
    if (!mesh.colors.empty())
        head += "#define HAS_COLOR\n";
    if (hasPicture)
        head += "#define HAS_PICTURE\n";
    const auto [known, isNew] = _effects.try_emplace(head + (isClear ? "clear" : "opaque"));
    if (isNew) {
        known->second = makeEffect(head + MeshVertexShader, head + MeshFragmentShader,
                                   isClear ? Cover::SeenThrough : Cover::Opaque, _root);
        for (QParameter* parameter : {_lightCount, _lightPlaces, _lightDirections, _lightColors, _lightFades})
            known->second->addParameter(parameter);
    }
    return known->second;
}

void MeshParts::build(std::vector<MeshBatch::Member> members) {
    const auto part = static_cast<std::size_t>(members.front().part);
    const SpaceMesh& mesh = _scene.meshes[static_cast<std::size_t>(_scene.parts[part].mesh)];
    QAbstractTexture* texture = mesh.texCoords.empty() ? nullptr : textureOf(mesh.material);
    const bool isClear = _scene.materials[static_cast<std::size_t>(mesh.material)].color[3] < 0.995F;
    auto* entity = new Qt3DCore::QEntity(_root);
    auto* material = new QMaterial(entity);
    material->setEffect(effectFor(mesh, texture != nullptr, isClear));
    if (texture != nullptr)
        material->addParameter(
            new QParameter(QStringLiteral("picture"), QVariant::fromValue(texture), material));
    entity->addComponent(isClear ? _clear : _opaque);
    _batches.push_back(std::make_unique<MeshBatch>(_scene, std::move(members), material, entity));
}

void MeshParts::setLights(const SpaceFrame& frame) {
    std::vector<SpaceLight> lights = frame.lights;
    if (lights.empty())
        lights.push_back(headlight(frame.view));
    lights.resize(std::min(lights.size(), MostLights));
    QVariantList places, directions, colors, fades;
    for (const SpaceLight& light : lights) {
        const float kind = light.kind == SpaceLight::Kind::Directional ? 0.0F
                           : light.kind == SpaceLight::Kind::Point     ? 1.0F
                                                                       : 2.0F;
        places << QVector4D(vectorOf(light.place), kind);
        directions << QVector4D(vectorOf(light.direction), light.cone);
        colors << vectorOf(light.color);
        fades << vectorOf(light.attenuation);
    }
    _lightCount->setValue(places.size());
    _lightPlaces->setValue(places);
    _lightDirections->setValue(directions);
    _lightColors->setValue(colors);
    _lightFades->setValue(fades);
}

void MeshParts::update(const SpaceFrame& frame) {
    setLights(frame);
    for (const auto& batch : _batches)
        batch->update(frame, _shown);
    _shown = frame.pose;
}

} // namespace ka::studio
