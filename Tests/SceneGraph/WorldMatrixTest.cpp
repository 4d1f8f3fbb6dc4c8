#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

/// A plain referee in double: points go through the steps one by one, no matrices.
struct Step {
    osg::Vec3f translation;
    osg::Vec3f degrees;
    osg::Vec3f scale;
};

using Point = std::array<double, 3>;

void turn(Point& p, int from, int to, double degrees) {
    const double angle = degrees * 3.14159265358979323846 / 180.0;
    const double a = p[from];
    const double b = p[to];
    p[from] = std::cos(angle) * a - std::sin(angle) * b;
    p[to] = std::sin(angle) * a + std::cos(angle) * b;
}

Point moved(const Step& step, Point p) {
    for (osg::UInt32 i = 0; i < 3; ++i)
        p[i] *= static_cast<double>(step.scale[i]);
    turn(p, 1, 2, static_cast<double>(step.degrees[0])); // about x: y towards z
    turn(p, 2, 0, static_cast<double>(step.degrees[1])); // about y: z towards x
    turn(p, 0, 1, static_cast<double>(step.degrees[2])); // about z: x towards y
    for (osg::UInt32 i = 0; i < 3; ++i)
        p[i] += static_cast<double>(step.translation[i]);
    return p;
}

osg::NodePtr makeNode(const Step& step) {
    const osg::Transform3DPtr core = osg::Transform3D::create();
    core->setTranslation(step.translation);
    core->setScale(step.scale);
    const osg::TransformAttachmentPtr rotation = osg::TransformAttachment::create();
    rotation->setRotation(step.degrees);
    const osg::NodePtr node = osg::Node::create();
    node->setCore(core);
    node->addAttachment(rotation);
    return node;
}

osg::Pnt3f toWorld(const osg::NodePtr& node, const osg::Pnt3f& point) {
    osg::Pnt3f result;
    node->getToWorld().mult(point, result);
    return result;
}

TEST(WorldMatrix, OfAChainAgreesWithPointsMovedStepByStep) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> degrees(-720.0F, 720.0F);
    std::uniform_real_distribution<float> lengths(-10.0F, 10.0F);
    std::uniform_real_distribution<float> factors(0.5F, 2.0F);
    for (int round = 0; round < 200; ++round) {
        std::vector<Step> steps;
        osg::NodeRefPtr root;
        osg::NodePtr deepest;
        for (int level = 0; level < 6; ++level) {
            Step step;
            for (osg::UInt32 i = 0; i < 3; ++i) {
                step.translation[i] = lengths(random);
                step.degrees[i] = degrees(random);
                step.scale[i] = factors(random);
            }
            steps.push_back(step);
            const osg::NodePtr node = makeNode(step);
            if (deepest == osg::NullFC)
                root = node;
            else
                deepest->addChild(node);
            deepest = node;
        }
        const osg::Pnt3f start(1.0F, -2.0F, 3.0F);
        Point expected = {1.0, -2.0, 3.0};
        for (auto step = steps.rbegin(); step != steps.rend(); ++step)
            expected = moved(*step, expected);
        const osg::Pnt3f actual = toWorld(deepest, start);
        for (osg::UInt32 i = 0; i < 3; ++i)
            ASSERT_NEAR(expected[i], static_cast<double>(actual[i]), 2e-4 + 3e-6 * std::fabs(expected[i]));
    }
}

struct QuarterRow {
    const char* name;
    osg::Vec3f degrees;
    osg::Pnt3f expected; ///< where the point 1 2 3 goes
};

class QuarterTurn : public testing::TestWithParam<QuarterRow> {};

TEST_P(QuarterTurn, IsExact) {
    const osg::NodeRefPtr node = makeNode({osg::Vec3f(), GetParam().degrees, osg::Vec3f(1.0F, 1.0F, 1.0F)});
    EXPECT_EQ(GetParam().expected, toWorld(node, osg::Pnt3f(1.0F, 2.0F, 3.0F)));
}

INSTANTIATE_TEST_SUITE_P(
    Axes, QuarterTurn,
    testing::Values(
        QuarterRow{"about_x", osg::Vec3f(90.0F, 0.0F, 0.0F), osg::Pnt3f(1.0F, -3.0F, 2.0F)},
        QuarterRow{"about_y", osg::Vec3f(0.0F, 90.0F, 0.0F), osg::Pnt3f(3.0F, 2.0F, -1.0F)},
        QuarterRow{"about_z", osg::Vec3f(0.0F, 0.0F, 90.0F), osg::Pnt3f(-2.0F, 1.0F, 3.0F)},
        QuarterRow{"x_before_z", osg::Vec3f(90.0F, 0.0F, 90.0F), osg::Pnt3f(3.0F, 1.0F, 2.0F)},
        QuarterRow{"x_before_y", osg::Vec3f(90.0F, 90.0F, 0.0F), osg::Pnt3f(2.0F, -3.0F, -1.0F)},
        QuarterRow{"many_turns", osg::Vec3f(90.0F + 36000.0F, 0.0F, 0.0F), osg::Pnt3f(1.0F, -3.0F, 2.0F)},
        QuarterRow{"backwards", osg::Vec3f(-90.0F, 0.0F, 0.0F), osg::Pnt3f(1.0F, 3.0F, -2.0F)},
        QuarterRow{"half_about_z", osg::Vec3f(0.0F, 0.0F, 180.0F), osg::Pnt3f(-1.0F, -2.0F, 3.0F)}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(WorldMatrix, OfNodesThatShareACoreFollowsTheRotationOfEach) {
    const osg::Transform3DPtr core = osg::Transform3D::create();
    core->setTranslation(osg::Vec3f(5.0F, 0.0F, 0.0F));
    const osg::NodeRefPtr straight = osg::Node::create();
    const osg::NodeRefPtr turned = osg::Node::create();
    straight->setCore(core);
    turned->setCore(core);
    const osg::TransformAttachmentPtr rotation = osg::TransformAttachment::create();
    rotation->setRotation(0.0F, 0.0F, 90.0F);
    turned->addAttachment(rotation);
    const osg::Pnt3f point(1.0F, 0.0F, 0.0F);
    EXPECT_EQ(osg::Pnt3f(6.0F, 0.0F, 0.0F), toWorld(straight, point));
    EXPECT_EQ(osg::Pnt3f(5.0F, 1.0F, 0.0F), toWorld(turned, point));
}

TEST(WorldMatrix, AppliesTheInheritedMatrixLast) {
    const osg::NodeRefPtr node =
        makeNode({osg::Vec3f(1.0F, 0.0F, 0.0F), osg::Vec3f(), osg::Vec3f(2.0F, 2.0F, 2.0F)});
    osg::Transform3DPtr::dcast(node->getCore())->editMatrix().setScale(10.0F, 1.0F, 1.0F);
    EXPECT_EQ(osg::Pnt3f(30.0F, 2.0F, 2.0F), toWorld(node, osg::Pnt3f(1.0F, 1.0F, 1.0F)));
}

TEST(WorldMatrix, OfNodesWithoutCoreOrTransformIsTheParents) {
    const osg::NodeRefPtr root =
        makeNode({osg::Vec3f(1.0F, 2.0F, 3.0F), osg::Vec3f(), osg::Vec3f(1.0F, 1.0F, 1.0F)});
    const osg::NodePtr bare = osg::Node::create();
    root->addChild(bare);
    EXPECT_EQ(root->getToWorld(), bare->getToWorld());
    osg::Matrix matrix;
    bare->getToWorld(matrix);
    EXPECT_EQ(root->getToWorld(), matrix);
}

TEST(ComponentTransform, KeepsMatrixAndPartsInStepInsideChanged) {
    const osg::RefPtr<osg::ComponentTransformPtr> transform = osg::ComponentTransform::create();
    transform->setTranslation(osg::Vec3f(1.0F, 2.0F, 3.0F));
    transform->setScale(osg::Vec3f(2.0F, 2.0F, 2.0F));
    EXPECT_EQ(osg::Matrix(), transform->getMatrix()) << "not before changed()";
    osg::endEditCP(transform.get(), osg::ComponentTransform::TranslationFieldMask);
    EXPECT_EQ(osg::Matrix(2, 0, 0, 1, 0, 2, 0, 2, 0, 0, 2, 3, 0, 0, 0, 1), transform->getMatrix());

    osg::Matrix matrix;
    matrix.setTransform(osg::Vec3f(4.0F, 5.0F, 6.0F), osg::Quaternion(osg::Vec3f(0.0F, 0.0F, 1.0F), 0.5F),
                        osg::Vec3f(1.0F, 2.0F, 3.0F));
    transform->setMatrix(matrix);
    osg::changedCP(transform.get(), osg::Transform::MatrixFieldMask);
    EXPECT_EQ(osg::Vec3f(4.0F, 5.0F, 6.0F), transform->getTranslation());
    osg::changedCP(transform.get(), osg::ComponentTransform::RotationFieldMask);
    EXPECT_TRUE(matrix.equals(transform->getMatrix(), 1e-5F));
}

} // namespace
