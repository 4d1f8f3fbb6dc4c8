#include "space/SceneIntake.h"

#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGSkin.h>
#include <OpenSG/OSGTransform.h>
#include <gtest/gtest.h>

namespace ka::studio {

namespace {

struct Primitive {
    unsigned type; ///< as the graphics library calls it
    unsigned length;
};

/// A geometry of six corners in a row.
osg::NodePtr geometryNode(const std::vector<Primitive>& primitives,
                          const std::vector<unsigned>& indices = {}) {
    const osg::GeometryPtr core = osg::Geometry::create();
    const osg::GeoPTypesUI8Ptr types = osg::GeoPTypesUI8::create();
    const osg::GeoPLengthsUI32Ptr lengths = osg::GeoPLengthsUI32::create();
    for (const Primitive& primitive : primitives) {
        types->editMFTypes()->push_back(static_cast<osg::UInt8>(primitive.type));
        lengths->editMFLengths()->push_back(primitive.length);
    }
    const osg::GeoPositions3fPtr positions = osg::GeoPositions3f::create();
    for (int i = 0; i < 6; ++i)
        positions->editMFPositions()->push_back(osg::Pnt3f(static_cast<float>(i), 0, 0));
    core->setTypes(types);
    core->setLengths(lengths);
    core->setPositions(positions);
    if (!indices.empty()) {
        const osg::GeoIndicesUI32Ptr list = osg::GeoIndicesUI32::create();
        for (const unsigned index : indices)
            list->editMFIndices()->push_back(index);
        core->setIndices(list);
    }
    const osg::NodePtr node = osg::Node::create();
    node->setCore(core);
    return node;
}

/// A node that is moved 3 along X, with the geometry below it.
struct Stage {
    explicit Stage(const osg::NodePtr& geometry) : root(osg::Node::create()) {
        const osg::TransformPtr core = osg::Transform::create();
        osg::Matrix matrix;
        matrix.setTranslate(3, 0, 0);
        core->setMatrix(matrix);
        root->setCore(core);
        osg::addRefCP(root);
        root->addChild(geometry);
        figure.setNodes({root});
    }
    ~Stage() { osg::subRefCP(root); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    SpaceScene takeIn() { return takeInMeshes(root, figure, QString(), left); }

    osg::NodePtr root;
    Figure figure;
    int left = 0;
};

struct ShapeCase {
    const char* name;
    std::vector<Primitive> primitives;
    std::vector<unsigned> indices;
    std::vector<std::uint32_t> triangles; ///< none: it is left out
};

class Shapes : public ::testing::TestWithParam<ShapeCase> {};

TEST_P(Shapes, BecomeTriangles) {
    Stage stage(geometryNode(GetParam().primitives, GetParam().indices));
    const SpaceScene scene = stage.takeIn();
    if (GetParam().triangles.empty()) {
        EXPECT_EQ(scene.parts.size(), 0U);
        EXPECT_EQ(stage.left, 1);
        return;
    }
    ASSERT_EQ(scene.parts.size(), 1U);
    EXPECT_EQ(scene.meshes[0].indices, GetParam().triangles);
    EXPECT_EQ(scene.movers, std::vector<int>{0});
    EXPECT_EQ(poseOf(scene, stage.figure).worlds[0][12], 3.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Shapes,
    ::testing::Values(ShapeCase{"triangles", {{4, 6}}, {}, {0, 1, 2, 3, 4, 5}},
                      ShapeCase{"strip", {{5, 5}}, {}, {0, 1, 2, 2, 1, 3, 2, 3, 4}},
                      ShapeCase{"fan", {{6, 4}}, {}, {0, 1, 2, 0, 2, 3}},
                      ShapeCase{"quads", {{7, 4}}, {}, {0, 1, 2, 0, 2, 3}},
                      ShapeCase{"polygon", {{9, 5}}, {}, {0, 1, 2, 0, 2, 3, 0, 3, 4}},
                      ShapeCase{"twoPrimitives", {{4, 3}, {6, 3}}, {}, {0, 1, 2, 3, 4, 5}},
                      ShapeCase{"indexed", {{4, 3}}, {5, 4, 3}, {5, 4, 3}},
                      ShapeCase{"linesAlone", {{1, 6}}, {}, {}}, ShapeCase{"tooLong", {{4, 9}}, {}, {}},
                      ShapeCase{"cornerThatIsNone", {{4, 3}}, {0, 1, 6}, {}}, ShapeCase{"empty", {}, {}, {}}),
    [](const auto& shape) { return shape.param.name; });

TEST(Intake, LeavesASkinThatDoesNotFitAside) {
    const osg::NodePtr geometry = geometryNode({{4, 6}});
    const osg::SkinPtr skin = osg::Skin::create();
    skin->editMFJoints()->push_back(geometry); // no joint of the figure
    skin->editMFInverseBinds()->push_back(osg::Matrix());
    for (int i = 0; i < 24; ++i) {
        skin->editMFIndices()->push_back(0);
        skin->editMFWeights()->push_back(i % 4 == 0 ? 1.0F : 0.0F);
    }
    geometry->addAttachment(skin);
    Stage stage(geometry);
    EXPECT_FALSE(stage.takeIn().parts.at(0).isSkinned());
    (*skin->editMFJoints())[0] = stage.root;
    EXPECT_TRUE(stage.takeIn().parts.at(0).isSkinned());
    (*skin->editMFIndices())[7] = 1; // there is one joint
    EXPECT_FALSE(stage.takeIn().parts.at(0).isSkinned());
}

TEST(Intake, HidesWhatIsBelowAHiddenNode) {
    Stage stage(geometryNode({{4, 6}}));
    const SpaceScene scene = stage.takeIn();
    EXPECT_EQ(poseOf(scene, stage.figure).isHidden, std::vector<std::uint8_t>{0});
    stage.root->setActive(false);
    stage.figure.update();
    EXPECT_EQ(poseOf(scene, stage.figure).isHidden, std::vector<std::uint8_t>{1});
}

} // namespace

} // namespace ka::studio
