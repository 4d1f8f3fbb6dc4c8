#include "Painting.h"

#include <QDebug>
#include <Qt3DRender/QBlendEquation>
#include <Qt3DRender/QBlendEquationArguments>
#include <Qt3DRender/QBuffer>
#include <Qt3DRender/QCullFace>
#include <Qt3DRender/QDepthTest>
#include <Qt3DRender/QGraphicsApiFilter>
#include <Qt3DRender/QNoDepthMask>
#include <Qt3DRender/QRenderPass>
#include <Qt3DRender/QShaderProgram>
#include <Qt3DRender/QTechnique>

namespace ka::studio {

using namespace Qt3DRender;

namespace {

/// The picture lies over another in the end: its own opacity is kept, and colours are multiplied by it.
void addBlending(QRenderPass* pass) {
    auto* arguments = new QBlendEquationArguments(pass);
    arguments->setSourceRgb(QBlendEquationArguments::SourceAlpha);
    arguments->setDestinationRgb(QBlendEquationArguments::OneMinusSourceAlpha);
    arguments->setSourceAlpha(QBlendEquationArguments::One);
    arguments->setDestinationAlpha(QBlendEquationArguments::OneMinusSourceAlpha);
    auto* equation = new QBlendEquation(pass);
    equation->setBlendFunction(QBlendEquation::Add);
    pass->addRenderState(arguments);
    pass->addRenderState(equation);
}

} // namespace

QEffect* makeEffect(const QByteArray& vertexShader, const QByteArray& fragmentShader, Cover cover,
                    Qt3DCore::QNode* parent) {
    auto* effect = new QEffect(parent);
    auto* technique = new QTechnique(effect);
    QGraphicsApiFilter* api = technique->graphicsApiFilter();
    api->setApi(QGraphicsApiFilter::OpenGL);
    api->setProfile(QGraphicsApiFilter::CoreProfile);
    api->setMajorVersion(3);
    api->setMinorVersion(2);
    auto* pass = new QRenderPass(technique);
    auto* program = new QShaderProgram(pass);
    program->setVertexShaderCode(vertexShader);
    program->setFragmentShaderCode(fragmentShader);
    QObject::connect(program, &QShaderProgram::logChanged,
                     [](const QString& log) { qWarning().noquote() << log; });
    pass->setShaderProgram(program);
    auto* test = new QDepthTest(pass);
    test->setDepthFunction(QDepthTest::Less);
    pass->addRenderState(test);
    auto* sides = new QCullFace(pass); // surfaces are seen from both
    sides->setMode(QCullFace::NoCulling);
    pass->addRenderState(sides);
    addBlending(pass);
    if (cover == Cover::SeenThrough)
        pass->addRenderState(new QNoDepthMask(pass));
    technique->addRenderPass(pass);
    effect->addTechnique(technique);
    return effect;
}

QBuffer* addFloats(QGeometry* geometry, const char* name, const std::vector<float>& numbers, unsigned width) {
    auto* buffer = new QBuffer(geometry);
    buffer->setData(bytesOfList(numbers));
    auto* attribute = new QAttribute(geometry);
    attribute->setName(QString::fromLatin1(name));
    attribute->setVertexBaseType(QAttribute::Float);
    attribute->setVertexSize(width);
    attribute->setAttributeType(QAttribute::VertexAttribute);
    attribute->setBuffer(buffer);
    attribute->setByteStride(width * static_cast<unsigned>(sizeof(float)));
    attribute->setCount(static_cast<unsigned>(numbers.size()) / width);
    geometry->addAttribute(attribute);
    return buffer;
}

void addIndices(QGeometry* geometry, const std::vector<std::uint32_t>& indices) {
    auto* buffer = new QBuffer(geometry);
    buffer->setData(bytesOfList(indices));
    auto* attribute = new QAttribute(geometry);
    attribute->setVertexBaseType(QAttribute::UnsignedInt);
    attribute->setVertexSize(1);
    attribute->setAttributeType(QAttribute::IndexAttribute);
    attribute->setBuffer(buffer);
    attribute->setCount(static_cast<unsigned>(indices.size()));
    geometry->addAttribute(attribute);
}

} // namespace ka::studio
