#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSpotLight.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTransform3D.h>
#include <cstring>

namespace {

using namespace binding_test;
using ka_test::TestScene;

class FieldRecord : public ka_test::RegistryFixture {};

TEST_F(FieldRecord, StartsWithItsDefaults) {
    const kaAnimationField field(7);
    EXPECT_EQ(field.getId(), 7U);
    EXPECT_EQ(field.fcID, 0U);
    EXPECT_EQ(field.nodeID, 0U);
    EXPECT_EQ(field.name, "");
    EXPECT_EQ(field.attribute, "");
    EXPECT_EQ(field.value, 0.0F);
    EXPECT_EQ(field.valuePos, 0U);
    EXPECT_TRUE(field.dirty);
}

TEST_F(FieldRecord, DrawsAnIdForZero) {
    ka_test::IdSequence ids;
    const kaAnimationField first(0);
    const kaAnimationField second(0);
    EXPECT_EQ(first.getId(), ids.next());
    EXPECT_EQ(second.getId(), ids.next());
}

TEST_F(FieldRecord, CopiesEverythingButTheId) {
    kaAnimationField field(7);
    field.fcID = 11;
    field.nodeID = 12;
    field.name = "scale";
    field.attribute = "scaleY";
    field.value = 1.5F;
    field.valuePos = 1;
    field.dirty = false;
    ka_test::IdSequence ids;
    const kaAnimationField copy(field);
    EXPECT_EQ(copy.getId(), ids.next());
    EXPECT_EQ(copy.fcID, 11U);
    EXPECT_EQ(copy.nodeID, 12U);
    EXPECT_EQ(copy.name, "scale");
    EXPECT_EQ(copy.attribute, "scaleY");
    EXPECT_EQ(copy.value, 1.5F);
    EXPECT_EQ(copy.valuePos, 1U);
    EXPECT_FALSE(copy.dirty);
}

struct Colour {
    const char* name;
    const char* letters;
    osg::UInt32 bits[3];
};

class DefaultCurveColour : public testing::TestWithParam<Colour> {};

TEST_P(DefaultCurveColour, FollowsTheLastLetter) {
    for (const char* letter = GetParam().letters; *letter; ++letter) {
        kaAnimationField field(1);
        field.attribute = std::string("some") + *letter;
        const osg::Color3f colour = kaAnimationUtils::getDefaultCurveColor(&field);
        osg::UInt32 bits[3];
        for (osg::UInt32 i = 0; i < 3; ++i)
            std::memcpy(&bits[i], &colour[i], sizeof bits[i]);
        EXPECT_EQ(bits[0], GetParam().bits[0]) << field.attribute;
        EXPECT_EQ(bits[1], GetParam().bits[1]) << field.attribute;
        EXPECT_EQ(bits[2], GetParam().bits[2]) << field.attribute;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Letters, DefaultCurveColour,
    testing::Values(Colour{"red", "RX", {0x3F65E354, 0x3E989375, 0x3E989375}},
                    Colour{"green", "GY", {0x3E989375, 0x3F65E354, 0x3E989375}},
                    Colour{"blue", "BZ", {0x3ECCCCCD, 0x3F1FBE77, 0x3F50E560}},
                    Colour{"yellow", "AIW", {0x3F65E354, 0x3F53B646, 0x3E989375}},
                    Colour{"orange", "xrbae1 CV\xE4", {0x3F73F7CF, 0x3F0E978D, 0x3E8AC083}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(DefaultCurveColour, IsBlackWithoutAttribute) {
    kaAnimationField field(1);
    EXPECT_EQ(kaAnimationUtils::getDefaultCurveColor(&field), osg::Color3f(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(kaAnimationUtils::getDefaultCurveColor(nullptr), osg::Color3f(0.0F, 0.0F, 0.0F));
}

/// The addressing derived from an attribute as the host spells it.
struct Addressing {
    unsigned int fcID = 77;
    std::string attribute = "old attribute";
    std::string name = "old name";
    unsigned int valuePos = 9;

    Addressing(kaUID nodeID, const std::string& input) {
        kaAnimationUtils::computeAnimationFieldAttributes(nodeID, input, fcID, attribute, name, valuePos);
    }
    bool isUntouched() const {
        return fcID == 77 && attribute == "old attribute" && name == "old name" && valuePos == 9;
    }
};

struct Spelling {
    const char* input;
    bool ofNode; ///< addresses the node, not its core
    const char* attribute;
    const char* name;
    unsigned int valuePos;
};

class SpelledAttribute : public ka_test::RegistryFixture, public testing::WithParamInterface<Spelling> {};

TEST_P(SpelledAttribute, AddressesAScalar) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const Addressing addressing(node.getFieldContainerId(), GetParam().input);
    EXPECT_EQ(addressing.fcID,
              GetParam().ofNode ? node.getFieldContainerId() : node->getCore().getFieldContainerId());
    EXPECT_EQ(addressing.attribute, GetParam().attribute);
    EXPECT_EQ(addressing.name, GetParam().name);
    EXPECT_EQ(addressing.valuePos, GetParam().valuePos);
}

INSTANTIATE_TEST_SUITE_P(Inputs, SpelledAttribute,
                         testing::Values(Spelling{"rotateX", true, "rotationX", "rotationX", 0},
                                         Spelling{"rotateY", true, "rotationY", "rotationY", 1},
                                         Spelling{"rotateZ", true, "rotationZ", "rotationZ", 2},
                                         Spelling{"rotationY", false, "rotationY", "rotationY", 1},
                                         Spelling{"visible", true, "visible", "visible", 0},
                                         Spelling{"translateX", false, "translationX", "translati", 0},
                                         Spelling{"translateY", false, "translationY", "translati", 1},
                                         Spelling{"translateZ", false, "translationZ", "translati", 2},
                                         Spelling{"translationX", false, "translationX", "translation", 0},
                                         Spelling{"scaleX", false, "scaleX", "scale", 0},
                                         Spelling{"diffuseR", false, "diffuseR", "diffuse", 0},
                                         Spelling{"diffuseG", false, "diffuseG", "diffuse", 1},
                                         Spelling{"diffuseB", false, "diffuseB", "diffuse", 2},
                                         Spelling{"diffuseA", false, "diffuseA", "diffuseA", 0},
                                         Spelling{"directionW", false, "directionW", "directionW", 0},
                                         Spelling{"colorI", false, "colorI", "colorI", 0},
                                         Spelling{"fStop", false, "fStop", "fStop", 0},
                                         Spelling{"Z", false, "Z", "", 2}),
                         [](const auto& row) { return std::string(row.param.input); });

class SpelledAttributeOf : public ka_test::RegistryFixture {};

TEST_F(SpelledAttributeOf, ANodeWithoutCoreKeepsTheContainer) {
    TestScene scene;
    const osg::NodePtr node = scene.addNode("empty", osg::NullFC);
    const Addressing addressing(node.getFieldContainerId(), "scaleY");
    EXPECT_EQ(addressing.fcID, 77U);
    EXPECT_EQ(addressing.attribute, "scaleY");
    EXPECT_EQ(addressing.name, "scale");
    EXPECT_EQ(addressing.valuePos, 1U);
}

TEST_F(SpelledAttributeOf, WhatIsNoNodeChangesNothing) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    EXPECT_TRUE(Addressing(node->getCore().getFieldContainerId(), "scaleX").isUntouched());
    EXPECT_TRUE(Addressing(0, "scaleX").isUntouched());
    EXPECT_TRUE(Addressing(4000000000U, "scaleX").isUntouched());
    EXPECT_TRUE(Addressing(node.getFieldContainerId(), "").isUntouched());
}

TEST_F(SpelledAttributeOf, ANodeIsFoundByTheLowHalfOfTheId) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const Addressing addressing(node.getFieldContainerId() | (1ULL << 40), "visible");
    EXPECT_EQ(addressing.fcID, node.getFieldContainerId());
}

TEST_F(SpelledAttributeOf, ADestroyedNodeChangesNothing) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const osg::UInt32 id = node.getFieldContainerId();
    scene.destroy(node);
    EXPECT_TRUE(Addressing(id, "scaleX").isUntouched());
}

TEST_F(SpelledAttributeOf, TheInputMayBeOneOfTheOutputs) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    unsigned int fcID = 0;
    unsigned int valuePos = 0;
    std::string attribute = "translateX";
    std::string name;
    kaAnimationUtils::computeAnimationFieldAttributes(node.getFieldContainerId(), attribute, fcID, attribute,
                                                      name, valuePos);
    EXPECT_EQ(attribute, "translationX");
    EXPECT_EQ(name, "translati");
}

class CoreOfField : public ka_test::RegistryFixture {
  protected:
    kaUID containerOf(const osg::NodePtr& node, const std::string& attribute) {
        kaAnimationField field(1);
        field.fcID = 5;
        field.nodeID = node.getFieldContainerId();
        field.attribute = attribute;
        kaAnimationUtils::computeCoreTypeID(&field);
        return field.fcID;
    }

    TestScene scene;
};

TEST_F(CoreOfField, RotationOfATransform3DIsTheNodes) {
    const osg::NodePtr node = scene.addTransform("arm");
    for (const char* attribute : {"rotationX", "rotationY", "rotationZ", "visible"})
        EXPECT_EQ(containerOf(node, attribute), node.getFieldContainerId()) << attribute;
    for (const char* attribute : {"scaleX", "rotateX", "rotationW", ""})
        EXPECT_EQ(containerOf(node, attribute), node->getCore().getFieldContainerId()) << attribute;
}

TEST_F(CoreOfField, RotationOfAPlainTransformIsTheCores) {
    const osg::NodePtr node = scene.add<osg::Transform>("arm");
    EXPECT_EQ(containerOf(node, "rotationX"), node->getCore().getFieldContainerId());
    EXPECT_EQ(containerOf(node, "visible"), node.getFieldContainerId());
}

TEST_F(CoreOfField, MaterialGroupsGiveTheirMaterialOrNothing) {
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    const osg::NodePtr node = scene.addNode("skin", group);
    EXPECT_EQ(containerOf(node, "diffuseR"), 0U);
    EXPECT_EQ(containerOf(node, "visible"), node.getFieldContainerId());
    group->setMaterial(osg::SimpleMaterial::create());
    EXPECT_EQ(containerOf(node, "diffuseR"), group->getMaterial().getFieldContainerId());
}

TEST_F(CoreOfField, LightsCamerasAndSwitchesGiveTheirCore) {
    const std::vector<osg::NodePtr> nodes{
        scene.add<osg::SpotLight>("spot"), scene.add<osg::PointLight>("point"),
        scene.add<osg::DirectionalLight>("sun"), scene.add<osg::CameraSetting>("camera"),
        scene.add<osg::Switch>("switch")};
    for (const osg::NodePtr& node : nodes)
        EXPECT_EQ(containerOf(node, "any"), node->getCore().getFieldContainerId());
}

TEST_F(CoreOfField, OtherCoresKeepTheContainer) {
    EXPECT_EQ(containerOf(scene.add<osg::Group>("group"), "any"), 5U);
    EXPECT_EQ(containerOf(scene.add<osg::Geometry>("shape"), "any"), 5U);
    EXPECT_EQ(containerOf(scene.addNode("empty", osg::NullFC), "visible"), 5U);
    // A type derived from a light or camera is in a group of its own.
    EXPECT_EQ(containerOf(scene.add<WatchedCamera>("camera"), "distance"), 5U);
}

TEST_F(CoreOfField, WhatIsNoNodeKeepsTheContainer) {
    kaAnimationField field(1);
    field.fcID = 5;
    field.attribute = "visible";
    for (const kaUID nodeID :
         {kaUID(0), kaUID(4000000000U), kaUID(scene.root()->getCore().getFieldContainerId())}) {
        field.nodeID = nodeID;
        kaAnimationUtils::computeCoreTypeID(&field);
        EXPECT_EQ(field.fcID, 5U);
    }
    kaAnimationUtils::computeCoreTypeID(nullptr);
}

} // namespace
