#include "BoneField.h"

#include "Painting.h"
#include "SpaceShaders.h"

#include <cstddef>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

/// The eight sides of a double pyramid, its waist at a fifth of the way; four numbers a corner.
std::vector<float> doublePyramid() {
    constexpr float Waist = 0.2F;
    const float ring[4][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
    std::vector<float> corners;
    for (std::size_t i = 0; i < 4; ++i)
        for (const float end : {0.0F, 1.0F}) {
            const float *a = ring[i], *b = ring[(i + 1) % 4];
            corners.insert(corners.end(), {0, end, 0, 2 * end - 1});
            corners.insert(corners.end(), {a[0], Waist, a[1], 0});
            corners.insert(corners.end(), {b[0], Waist, b[1], 0});
        }
    return corners;
}

QAttribute* addOfBone(QGeometry* geometry, QBuffer* buffer, const char* name, unsigned width,
                      std::size_t offset) {
    auto* attribute = new QAttribute(geometry);
    attribute->setName(QString::fromLatin1(name));
    attribute->setVertexBaseType(QAttribute::Float);
    attribute->setVertexSize(width);
    attribute->setAttributeType(QAttribute::VertexAttribute);
    attribute->setBuffer(buffer);
    attribute->setByteOffset(static_cast<unsigned>(offset));
    attribute->setByteStride(sizeof(SpaceBone));
    attribute->setDivisor(1);
    geometry->addAttribute(attribute);
    return attribute;
}

QVariantList boneColors() {
    QVariantList colors;
    for (const std::uint32_t color : BoneColors)
        colors << QVector3D(static_cast<float>(color >> 16 & 255), static_cast<float>(color >> 8 & 255),
                            static_cast<float>(color & 255)) /
                      255;
    return colors;
}

} // namespace

BoneField::BoneField(Qt3DCore::QEntity* root, QLayer* layer) : _entity(new Qt3DCore::QEntity(root)) {
    auto* geometry = new QGeometry(_entity);
    const std::vector<float> corners = doublePyramid();
    addFloats(geometry, "vertexPosition", corners, 4);
    _bones = new QBuffer(geometry);
    _bones->setUsage(QBuffer::StreamDraw);
    _attributes = {addOfBone(geometry, _bones, "from", 3, offsetof(SpaceBone, from)),
                   addOfBone(geometry, _bones, "to", 3, offsetof(SpaceBone, to)),
                   addOfBone(geometry, _bones, "look", 2, offsetof(SpaceBone, color))};
    _renderer = new QGeometryRenderer(_entity);
    _renderer->setGeometry(geometry);
    _renderer->setPrimitiveType(QGeometryRenderer::Triangles);
    _renderer->setVertexCount(static_cast<int>(corners.size() / 4));
    auto* material = new QMaterial(_entity);
    material->setEffect(makeEffect(BoneVertexShader, BoneFragmentShader, Cover::Bones, material));
    _pixel = new QParameter(QStringLiteral("pixel"), 1.0F, material);
    material->addParameter(_pixel);
    material->addParameter(new QParameter(QStringLiteral("colors[0]"), boneColors(), material));
    _entity->addComponent(_renderer);
    _entity->addComponent(material);
    _entity->addComponent(layer);
    _entity->setEnabled(false);
}

void BoneField::update(const SpaceFrame& frame) {
    _entity->setEnabled(!frame.bones.empty());
    if (frame.bones.empty())
        return;
    _bones->setData(bytesOfList(frame.bones));
    for (QAttribute* attribute : _attributes)
        attribute->setCount(static_cast<unsigned>(frame.bones.size()));
    _renderer->setInstanceCount(static_cast<int>(frame.bones.size()));
    // The projection scales heights by this, from -1 to 1 over all of the picture.
    const float scale = frame.projection(1, 1) * static_cast<float>(frame.size.height()) / 2;
    _pixel->setValue(1.0F / std::max(scale, 1e-6F));
}

} // namespace ka::studio
