#include "MeshParts.h"

#include "Painting.h"
#include "PictureTexture.h"
#include "SpaceShaders.h"

#include <Qt3DRender/QGeometryRenderer>
#include <algorithm>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

constexpr std::size_t MostLights = 8;

QMatrix4x4 matrixOf(const std::array<float, 16>& columns) {
    return QMatrix4x4(columns.data()).transposed(); // it takes rows
}

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

QParameter* addParameter(QMaterial* material, const char* name, const QVariant& value) {
    auto* parameter = new QParameter(QString::fromLatin1(name), value, material);
    material->addParameter(parameter);
    return parameter;
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
    std::size_t weight = 0;
    for (const SpacePart& part : _scene.parts) {
        _entities.push_back(build(part));
        _entities.back().firstWeight = weight;
        weight += part.morphs.size();
    }
}

MeshParts::~MeshParts() {
    delete _root;
}

MeshParts::Look& MeshParts::lookOf(int material) {
    const auto [known, isNew] = _looks.try_emplace(material);
    if (isNew) {
        known->second.picture = pictureOf(_scene.materials[static_cast<std::size_t>(material)]);
        if (!known->second.picture.isNull())
            known->second.texture = makeTexture(known->second.picture, _root);
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

QGeometry* MeshParts::geometryOf(const SpaceMesh& mesh, Entity& entity) {
    auto* geometry = new QGeometry(_root);
    entity.positions = addFloats(geometry, "vertexPosition", mesh.positions, 3);
    if (!mesh.normals.empty())
        entity.normals = addFloats(geometry, "cornerNormal", mesh.normals, 3);
    if (!mesh.colors.empty())
        addFloats(geometry, "cornerColor", mesh.colors, 4);
    if (!mesh.texCoords.empty())
        addFloats(geometry, "cornerPlace", mesh.texCoords, 2);
    addIndices(geometry, mesh.indices);
    return geometry;
}

MeshParts::Entity MeshParts::build(const SpacePart& part) {
    const SpaceMesh& mesh = _scene.meshes[static_cast<std::size_t>(part.mesh)];
    const SpaceMaterial& look = _scene.materials[static_cast<std::size_t>(mesh.material)];
    Entity entity;
    QGeometry* geometry = nullptr;
    if (part.isRigid()) {
        QGeometry*& shared = _geometries[part.mesh];
        Entity nobody;
        shared = shared != nullptr ? shared : geometryOf(mesh, nobody);
        geometry = shared;
    } else {
        geometry = geometryOf(mesh, entity);
        entity.positions->setUsage(QBuffer::StreamDraw);
    }
    auto* node = new Qt3DCore::QEntity(_root);
    auto* renderer = new QGeometryRenderer(node);
    renderer->setGeometry(geometry);
    renderer->setPrimitiveType(QGeometryRenderer::Triangles);
    renderer->setVertexCount(static_cast<int>(mesh.indices.size()));
    auto* material = new QMaterial(node);
    QAbstractTexture* texture = mesh.texCoords.empty() ? nullptr : lookOf(mesh.material).texture;
    const bool isClear = look.color[3] < 0.995F;
    material->setEffect(effectFor(mesh, texture != nullptr, isClear));
    entity.color = addParameter(material, "color", QVector4D());
    entity.glow = addParameter(material, "glow", QVector3D());
    if (texture != nullptr)
        addParameter(material, "picture", QVariant::fromValue(texture));
    entity.picked = addParameter(material, "picked", 0.0F);
    entity.world = addParameter(material, "world", QMatrix4x4());
    entity.node = node;
    node->addComponent(renderer);
    node->addComponent(material);
    node->addComponent(isClear ? _clear : _opaque);
    return entity;
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
    const bool isFirst = _pose.worlds.empty();
    const bool hasMoved = isFirst || _pose.worlds != frame.pose.worlds || _pose.weights != frame.pose.weights;
    for (std::size_t i = 0; i < _entities.size(); ++i) {
        const SpacePart& part = _scene.parts[i];
        Entity& entity = _entities[i];
        const bool isPicked = std::find(frame.pickedParts.begin(), frame.pickedParts.end(),
                                        static_cast<int>(i)) != frame.pickedParts.end();
        entity.picked->setValue(isPicked ? 1.0F : 0.0F);
        const auto& look =
            frame.pose
                .looks[static_cast<std::size_t>(_scene.meshes[static_cast<std::size_t>(part.mesh)].material)];
        entity.color->setValue(QVector4D(look[0], look[1], look[2], look[3]));
        entity.glow->setValue(QVector3D(look[4], look[5], look[6]));
        entity.node->setEnabled(frame.pose.isHidden[i] == 0);
        if (part.isRigid()) {
            if (part.mover >= 0)
                entity.world->setValue(matrixOf(frame.pose.worlds[static_cast<std::size_t>(part.mover)]));
        } else if (hasMoved) {
            deform(_scene, part, frame.pose, entity.firstWeight, _corners);
            entity.positions->setData(bytesOfList(_corners.positions));
            if (entity.normals != nullptr)
                entity.normals->setData(bytesOfList(_corners.normals));
        }
    }
    _pose = frame.pose;
}

} // namespace ka::studio
