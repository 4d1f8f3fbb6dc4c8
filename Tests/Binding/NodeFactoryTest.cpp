#include "Builders.h"
#include "CapturedOutput.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform3D.h>

namespace {

using namespace binding_test;
using ka_test::TestScene;
using Points = std::vector<kaControlPoint2D*>;

class NodeFactory : public ka_test::RegistryFixture {
  protected:
    Points somePoints() {
        return {manager.createPoint2D(10.0F, 2.0F, 0), manager.createPoint2D(0.0F, 1.0F, 0)};
    }
    static std::vector<kaAnimationObject*> objectsOf(const osg::NodePtr& node) {
        return kaAnimationUtils::getAnimationObjects(node);
    }

    TestScene scene;
    osg::NodePtr node = scene.addTransform("arm");
    kaAnimationManager& manager = *kaAnimationManager::the();
};

struct Interchange {
    const char* attribute;
    const char* field;
};

class InterchangeCurve : public NodeFactory, public testing::WithParamInterface<Interchange> {};

TEST_P(InterchangeCurve, IsBoundToTheFieldOfItsAttribute) {
    manager.addAnimationAttributes("translation,scale,fieldOfView");
    const bool isCamera = std::string(GetParam().field) == "fieldOfView";
    const osg::NodePtr target = isCamera ? scene.add<osg::CameraSetting>("camera") : node;
    kaAnimationField* field = manager.getField(target, GetParam().field);
    ASSERT_NE(field, nullptr);
    field->nodeID = 1;
    field->fcID = 2;
    kaAnimationCurve2D* curve = manager.createCurve2D(target, GetParam().attribute, somePoints(), 77, false);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getId(), 77U);
    EXPECT_EQ(curve->getName(), GetParam().field);
    EXPECT_EQ(curve->getField(), field->getId());
    EXPECT_EQ(curve->getColor(), kaAnimationUtils::getDefaultCurveColor(field));
    EXPECT_EQ(field->nodeID, target.getFieldContainerId());
    EXPECT_EQ(field->fcID, target->getCore().getFieldContainerId());
    EXPECT_EQ(curve->getBegin(), 0.0F);
    EXPECT_EQ(curve->getEnd(), 10.0F);
    EXPECT_EQ(curve->getChildCount(), 2U);
    EXPECT_TRUE(objectsOf(target).empty());
}

INSTANTIATE_TEST_SUITE_P(
    Attributes, InterchangeCurve,
    testing::Values(Interchange{"TransformTX", "translationX"}, Interchange{"TransformTY", "translationY"},
                    Interchange{"TransformTZ", "translationZ"}, Interchange{"TransformRX", "rotationX"},
                    Interchange{"TransformRY", "rotationY"}, Interchange{"TransformRZ", "rotationZ"},
                    Interchange{"TransformSX", "scaleX"}, Interchange{"TransformSY", "scaleY"},
                    Interchange{"TransformSZ", "scaleZ"}, Interchange{"Fov", "fieldOfView"}),
    [](const auto& row) { return std::string(row.param.attribute); });

TEST_F(NodeFactory, AnInterchangeCurveDrivesTheSceneThroughItsField) {
    manager.addAnimationAttribute("translation");
    for (const auto& [attribute, value] : {std::pair("TransformTY", 3.0F), std::pair("TransformRZ", 4.0F)}) {
        kaAnimationCurve2D* curve = manager.createCurve2D(node, attribute, somePoints(), 0, false);
        ASSERT_NE(curve, nullptr);
        EXPECT_TRUE(write(manager.getField(curve->getField()), value));
    }
    EXPECT_EQ(osg::Transform3DPtr::dcast(node->getCore())->getTranslation(), osg::Vec3f(0.0F, 3.0F, 0.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(manager.getField(node, "rotationZ")), 4.0F);
}

TEST_F(NodeFactory, AnInterchangeCurveIsListedOnTheNodeWhenAsked) {
    kaAnimationCurve2D* curve = manager.createCurve2D(node, "TransformRX", somePoints(), 0, true);
    EXPECT_EQ(objectsOf(node), std::vector<kaAnimationObject*>{curve});
}

TEST_F(NodeFactory, AnInterchangeAttributeThatTheNodeLacksIsReported) {
    for (const char* attribute : {"TransformSX", "TransformRX ", "transformRX", "rotationX", "", "%s%n"}) {
        const ka_test::CapturedOutput output;
        EXPECT_EQ(manager.createCurve2D(node, attribute, somePoints(), 0, false), nullptr);
        EXPECT_EQ(output.text(), std::string("kaAnimationManager::importQLNCurve failed! Could not recognize "
                                             "attribute ") +
                                     attribute + "!\n");
    }
    EXPECT_EQ(kaAnimationUtils::getAnimationFields(node).size(), 4U)
        << "the node's fields are made all the same";
}

TEST_F(NodeFactory, AnInterchangeCurveNeedsANodeWithACore) {
    const ka_test::CapturedOutput output;
    EXPECT_EQ(manager.createCurve2D(osg::NullFC, "TransformRX", somePoints(), 0, false), nullptr);
    EXPECT_EQ(
        manager.createCurve2D(scene.addNode("bare", osg::NullFC), "TransformRX", somePoints(), 0, false),
        nullptr);
    EXPECT_EQ(output.text(), "");
}

TEST_F(NodeFactory, AnInterchangeCurveWithoutKeysIsEmpty) {
    kaAnimationCurve2D* curve = manager.createCurve2D(node, "TransformRX", Points(), 0, false);
    ASSERT_NE(curve, nullptr);
    EXPECT_FALSE(curve->hasChildren());
    curve = manager.createCurve2D(node, "TransformRX", Points{nullptr}, 0, false);
    ASSERT_NE(curve, nullptr);
    EXPECT_FALSE(curve->hasChildren());
}

TEST_F(NodeFactory, KeysFreedWhileTheNodeIsAnnouncedAreLeftOut) {
    watch() = Watch();
    const osg::NodePtr watched = WatchedNode::create();
    const Kept kept(watched);
    watched->setCore(osg::Transform3D::create());
    const Points points = somePoints();
    const kaUID doomed = points[0]->getId();
    watch().answer = [this, doomed] { manager.destroyPoint2D(manager.getPoint2D(doomed)); };
    kaAnimationCurve2D* curve = manager.createCurve2D(watched, "TransformRX", points, 0, false);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getChildIDs(), std::vector<kaUID>{points[1]->getId()});
}

TEST_F(NodeFactory, ACurveOfAFieldIsListedOnTheFieldsNodeWhenAsked) {
    kaAnimationField* field = manager.getField(node, "rotationX");
    kaAnimationCurve2D* loose = manager.createCurve2D(field, "loose", 5, false);
    EXPECT_EQ(loose->getId(), 5U);
    EXPECT_EQ(loose->getName(), "loose");
    EXPECT_EQ(loose->getField(), field->getId());
    EXPECT_EQ(manager.getCurve2D(5), loose);
    EXPECT_TRUE(objectsOf(node).empty());
    kaAnimationCurve2D* listed = manager.createCurve2D(field, "listed", 0, true);
    EXPECT_EQ(objectsOf(node), std::vector<kaAnimationObject*>{listed});
}

TEST_F(NodeFactory, ACurveOfNoFieldIsUnbound) {
    kaAnimationCurve2D* curve = manager.createCurve2D(nullptr, "unbound", 5, true);
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getField(), 0U);
    EXPECT_EQ(manager.getCurve2D(5), curve);
    EXPECT_TRUE(manager.getFields().empty());
}

TEST_F(NodeFactory, ACurveOfAFieldWithoutNodeIsMadeUnlisted) {
    kaAnimationCurve2D* curve = manager.createCurve2D(manager.createField(0), "curve", 0, true);
    EXPECT_NE(curve, nullptr);
}

TEST_F(NodeFactory, ACurveFreedWhenItsNodeIsAnnouncedIsNull) {
    watch() = Watch();
    const osg::NodePtr watched = WatchedNode::create();
    const Kept kept(watched);
    watched->setCore(osg::Group::create());
    kaAnimationField* field = makeNodeField(watched, "visible");
    watch().answer = [this] { manager.destroyObject(manager.getObject(5)); };
    EXPECT_EQ(manager.createCurve2D(field, "curve", 5, true), nullptr);
    EXPECT_EQ(manager.getObject(5), nullptr);
}

TEST_F(NodeFactory, ACurveOfANodesAttributeIsNamedAfterIt) {
    kaAnimationCurve2D* curve = manager.createCurve2D(node, "rotateY");
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getName(), "rotationY");
    EXPECT_EQ(curve->getField(), manager.getField(node, "rotationY")->getId());
    EXPECT_TRUE(objectsOf(node).empty());
    EXPECT_EQ(manager.createCurve2D(node, "nonsense"), nullptr);
    EXPECT_EQ(manager.createCurve2D(osg::NullFC, "rotateY"), nullptr);
}

TEST_F(NodeFactory, ABlockTakesTheGivenCurves) {
    kaAnimationCurve2D* first = manager.createCurve2D(node, "rotationX");
    kaAnimationCurve2D* second = manager.createCurve2D(node, "rotationY");
    kaAnimationUtils::addAnimationObject(node, first);
    kaAnimationUnit* unit = manager.createUnit({first, nullptr, second}, "block", 9, true);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->getId(), 9U);
    EXPECT_EQ(unit->getName(), "block");
    EXPECT_EQ(unit->getChildCount(), 2U);
    EXPECT_EQ(unit->getNodeID(), node.getFieldContainerId());
    EXPECT_EQ(objectsOf(node), std::vector<kaAnimationObject*>{unit});

    kaAnimationUnit* loose =
        manager.createUnit({manager.createCurve2D(node, "rotationZ")}, "loose", 0, false);
    EXPECT_EQ(objectsOf(node), std::vector<kaAnimationObject*>{unit});
    EXPECT_EQ(loose->getNodeID(), node.getFieldContainerId());
    EXPECT_EQ(manager.createUnit(std::vector<kaAnimationCurve2D*>(), "empty", 0, true)->getChildCount(), 0U);
}

} // namespace
