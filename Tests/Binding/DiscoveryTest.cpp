#include "Builders.h"
#include "CapturedOutput.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGUberMaterial.h>
#include <kaNodeUtils.h>

namespace {

using namespace binding_test;
using ka_test::TestScene;
using Names = std::vector<std::string>;
using Fields = std::vector<kaAnimationField*>;

osg::AnimAttachmentPtr attachmentOf(const osg::NodePtr& node) {
    return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(node));
}

class Discovery : public ka_test::RegistryFixture {
  protected:
    TestScene scene;
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(Discovery, OfACameraGivesItsValuesAndVisibility) {
    const osg::NodePtr node = scene.add<osg::CameraSetting>("camera");
    const auto camera = osg::CameraSettingPtr::dcast(node->getCore());
    camera->setDistance(1.0F);
    camera->setHeight(2.0F);
    camera->setTurnTableAngle(3.0F);
    camera->setFStop(4.0F);
    camera->setFocalLength(5.0F);
    const Fields fields = manager.createAnimationFields(node);
    ASSERT_EQ(attributesOf(fields),
              (Names{"visible", "focalLength", "fStop", "turnTableAngle", "height", "distance"}));
    const float values[] = {1.0F, 5.0F, 4.0F, 3.0F, 2.0F, 1.0F};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(fields[i]->name, fields[i]->attribute);
        EXPECT_EQ(fields[i]->value, values[i]);
        EXPECT_EQ(fields[i]->valuePos, 0U);
        EXPECT_FALSE(fields[i]->dirty);
        EXPECT_EQ(fields[i]->nodeID, node.getFieldContainerId());
        EXPECT_EQ(fields[i]->fcID, i == 0 ? node.getFieldContainerId() : camera.getFieldContainerId());
    }
}

TEST_F(Discovery, OfATransformGivesItsRotationAndVisibility) {
    const osg::NodePtr node = scene.addTransform("arm");
    kaNodeUtils::setTransformNodeRotation(node, 10.0F, 20.0F, 30.0F, -1);
    node->setTravMask(1);
    const Fields fields = manager.createAnimationFields(node);
    ASSERT_EQ(attributesOf(fields), (Names{"visible", "rotationZ", "rotationY", "rotationX"}));
    const float values[] = {0.0F, 30.0F, 20.0F, 10.0F};
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(fields[i]->name, fields[i]->attribute);
        EXPECT_EQ(fields[i]->value, values[i]);
        EXPECT_EQ(fields[i]->valuePos, 0U);
        EXPECT_FALSE(fields[i]->dirty);
        EXPECT_EQ(fields[i]->nodeID, node.getFieldContainerId());
        EXPECT_EQ(fields[i]->fcID, node.getFieldContainerId());
    }
}

TEST_F(Discovery, OfAPlainTransformWithoutAttachmentGivesZeroAngles) {
    const Fields fields = manager.createAnimationFields(scene.add<osg::Transform>("plain"));
    ASSERT_EQ(attributesOf(fields), (Names{"visible", "rotationZ", "rotationY", "rotationX"}));
    EXPECT_EQ(fields[0]->value, 1.0F);
    for (std::size_t i = 1; i < fields.size(); ++i)
        EXPECT_EQ(fields[i]->value, 0.0F);
}

TEST_F(Discovery, CountsTypesDerivedFromACamera) {
    EXPECT_EQ(manager.createAnimationFields(scene.add<WatchedCamera>("camera")).size(), 6U);
}

TEST_F(Discovery, OfOtherNodesGivesVisibilityAlone) {
    EXPECT_EQ(attributesOf(manager.createAnimationFields(scene.add<osg::Group>("group"))), Names{"visible"});
}

TEST_F(Discovery, NeedsANodeWithACore) {
    EXPECT_TRUE(manager.createAnimationFields(osg::NullFC).empty());
    const osg::NodePtr bare = scene.addNode("bare", osg::NullFC);
    EXPECT_TRUE(manager.createAnimationFields(bare).empty());
    EXPECT_EQ(attachmentOf(bare), osg::NullFC);
    EXPECT_TRUE(manager.getFields().empty());
}

TEST_F(Discovery, OffersTheListedFieldsOfTheCoreByComponent) {
    manager.addAnimationAttributes("scale,translation,nonsense");
    const osg::NodePtr node = scene.addTransform("arm");
    const auto core = osg::Transform3DPtr::dcast(node->getCore());
    core->setTranslation(osg::Vec3f(1.5F, 2.5F, 3.5F));
    core->setScale(osg::Vec3f(4.0F, 5.0F, 6.0F));
    ka_test::IdSequence ids;
    const Fields fields = manager.createAnimationFields(node);
    ASSERT_EQ(attributesOf(fields),
              (Names{"visible", "rotationZ", "rotationY", "rotationX", "scaleZ", "scaleY", "scaleX",
                     "translationZ", "translationY", "translationX"}));
    const float values[] = {3.5F, 2.5F, 1.5F};
    for (unsigned int i = 0; i < 3; ++i) {
        const kaAnimationField& field = *fields[7 + i];
        EXPECT_EQ(field.name, "translation");
        EXPECT_EQ(field.value, values[i]);
        EXPECT_EQ(field.valuePos, 2 - i);
        EXPECT_EQ(field.fcID, core.getFieldContainerId());
        EXPECT_EQ(field.nodeID, node.getFieldContainerId());
        EXPECT_FALSE(field.dirty);
    }
    for (std::size_t i = fields.size(); i-- > 0;)
        EXPECT_EQ(fields[i]->getId(), ids.next())
            << "ids are drawn in order of making, the last of the list first";
}

struct Listed {
    const char* name;
    Names attributes; ///< in order of making
};

class DiscoveryByType : public Discovery, public testing::WithParamInterface<Listed> {};

TEST_P(DiscoveryByType, GivesTheLettersOfTheType) {
    manager.addAnimationAttribute(GetParam().name);
    Names expected = GetParam().attributes;
    expected.push_back("visible");
    std::reverse(expected.begin(), expected.end());
    const RigPtr rig = Rig::create();
    rig->reals.push_back(1.0F);
    rig->vectors.push_back(osg::Vec3f(1.0F, 2.0F, 3.0F));
    EXPECT_EQ(attributesOf(manager.createAnimationFields(scene.addNode("rig", rig))), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Types, DiscoveryByType,
    testing::Values(Listed{"vec2f", {"vec2fX", "vec2fY"}}, Listed{"pnt2f", {"pnt2fX", "pnt2fY"}},
                    Listed{"vec3f", {"vec3fX", "vec3fY", "vec3fZ"}},
                    Listed{"pnt3f", {"pnt3fX", "pnt3fY", "pnt3fZ"}},
                    Listed{"vec4f", {"vec4fX", "vec4fY", "vec4fZ", "vec4fW"}},
                    Listed{"tintColor", {"tintColorX", "tintColorY", "tintColorZ", "tintColorI"}},
                    Listed{"color3f", {"color3fR", "color3fG", "color3fB"}},
                    Listed{"color4f", {"color4fR", "color4fG", "color4fB", "color4fA"}},
                    Listed{"real32", {"real32"}}, Listed{"real64", {"real64"}}, Listed{"pnt4f", {}},
                    Listed{"matrix", {}}, Listed{"int32", {}}, Listed{"flag", {}}, Listed{"reals", {}},
                    Listed{"vectors", {}}, Listed{"Vec3f", {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Discovery, WhatItFindsCanBeWritten) {
    manager.addAnimationAttributes("fieldOfView,vec3f,tintColor,real64");
    const RigPtr rig = Rig::create();
    const osg::NodePtr node = scene.addNode("rig", rig);
    for (kaAnimationField* field : manager.createAnimationFields(node))
        EXPECT_TRUE(write(field, 0.25F)) << field->attribute;
    EXPECT_EQ(rig->vec3f.getValue(), osg::Vec3f(0.25F, 0.25F, 0.25F));
    EXPECT_EQ(rig->tintColor.getValue(), osg::Vec4f(0.25F, 0.25F, 0.25F, 0.25F));
    EXPECT_EQ(rig->real64.getValue(), 0.25);
    EXPECT_FLOAT_EQ(rig->fieldOfView.getValue(), 0.004363323F);
    EXPECT_EQ(node->getTravMask(), 0U);
}

TEST_F(Discovery, ScansTheMaterialOfAMaterialGroup) {
    manager.addAnimationAttributes("diffuse,shininess");
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    const osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
    material->setDiffuse(osg::Color3f(0.125F, 0.25F, 0.5F));
    group->setMaterial(material);
    const Fields fields = manager.createAnimationFields(scene.addNode("skin", group));
    ASSERT_EQ(attributesOf(fields), (Names{"visible", "shininess", "diffuseB", "diffuseG", "diffuseR"}));
    EXPECT_EQ(fields[2]->value, 0.5F);
    EXPECT_EQ(fields[4]->value, 0.125F);
    for (std::size_t i = 1; i < fields.size(); ++i)
        EXPECT_EQ(fields[i]->fcID, material.getFieldContainerId());
}

TEST_F(Discovery, OfAMaterialOutsideTheListGivesNothing) {
    manager.addAnimationAttributes("specular");
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    group->setMaterial(osg::SimpleMaterial::create());
    manager.subAnimationAttribute("specular");
    manager.addAnimationAttribute("Diffuse");
    EXPECT_EQ(attributesOf(manager.createAnimationFields(scene.addNode("skin", group))), Names{"visible"});
}

TEST_F(Discovery, OfAMaterialGroupWithoutMaterialGivesVisibilityAlone) {
    manager.addAnimationAttributes("diffuse,material");
    EXPECT_EQ(attributesOf(manager.createAnimationFields(scene.add<osg::MaterialGroup>("skin"))),
              Names{"visible"});
}

TEST_F(Discovery, OfAnUberMaterialGivesItsListedFields) {
    manager.addAnimationAttributes("diffuseColor,transparencyColor,roughness");
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    group->setMaterial(osg::UberMaterial::create());
    Names attributes = attributesOf(manager.createAnimationFields(scene.addNode("skin", group)));
    std::reverse(attributes.begin(), attributes.end());
    EXPECT_EQ(attributes,
              (Names{"diffuseColorX", "diffuseColorY", "diffuseColorZ", "diffuseColorI", "transparencyColorR",
                     "transparencyColorG", "transparencyColorB", "roughness", "visible"}));
}

TEST_F(Discovery, ListsTheNewFieldsOnTheNodeInTheReturnedOrder) {
    const osg::NodePtr node = scene.addTransform("arm");
    const Fields fields = manager.createAnimationFields(node);
    ASSERT_EQ(attachmentOf(node)->getFieldIDs().size(), fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i)
        EXPECT_EQ(attachmentOf(node)->getFieldIDs()[static_cast<osg::UInt32>(i)], fields[i]->getId());
    EXPECT_EQ(manager.createAnimationFields(node), fields);
    EXPECT_EQ(manager.createAnimationFields(node), fields);
}

TEST_F(Discovery, AddsNothingToANodeThatListsAField) {
    const osg::NodePtr node = scene.addTransform("arm");
    kaAnimationUtils::createAnimationAttachment(node, false);
    kaAnimationField* field = manager.createField(7);
    attachmentOf(node)->getFieldIDs().push_back(7);
    EXPECT_EQ(manager.createAnimationFields(node), Fields{field});
    EXPECT_EQ(attachmentOf(node)->getFieldIDs().size(), 1U);
}

TEST_F(Discovery, RunsForANodeThatListsOnlyUnknownFields) {
    const osg::NodePtr node = scene.add<osg::Group>("group");
    kaAnimationUtils::createAnimationAttachment(node, false);
    attachmentOf(node)->getFieldIDs().push_back(7);
    const Fields fields = manager.createAnimationFields(node);
    EXPECT_EQ(attributesOf(fields), Names{"visible"});
    EXPECT_EQ(attachmentOf(node)->getFieldIDs().size(), 2U);
    EXPECT_EQ(manager.createAnimationFields(node), fields);
}

TEST_F(Discovery, OfANodeThatDiscoversItselfWhenItIsAnnouncedHappensOnce) {
    watch() = Watch();
    const osg::NodePtr node = WatchedNode::create();
    const Kept kept(node);
    node->setCore(osg::Group::create());
    Fields inner;
    watch().answer = [&] { inner = manager.createAnimationFields(node); };
    EXPECT_EQ(manager.createAnimationFields(node), inner);
    EXPECT_EQ(manager.getFields().size(), 1U);
}

TEST_F(Discovery, OfANodeThatGoesWhenItIsAnnouncedGivesNothing) {
    watch() = Watch();
    const osg::NodePtr node = WatchedNode::create();
    Kept kept(node);
    node->setCore(osg::Group::create());
    watch().answer = [&kept] { kept.release(); };
    EXPECT_TRUE(manager.createAnimationFields(node).empty());
    EXPECT_TRUE(manager.getFields().empty());
}

class FieldOfNode : public Discovery {};

TEST_F(FieldOfNode, IsFoundUnderItsOlderSpellingToo) {
    manager.addAnimationAttribute("translation");
    const osg::NodePtr node = scene.addTransform("arm");
    for (const char* axis : {"X", "Y", "Z"}) {
        for (const auto& [older, current] :
             {std::pair("rotate", "rotation"), std::pair("translate", "translation")}) {
            kaAnimationField* field = manager.getField(node, std::string(current) + axis);
            ASSERT_NE(field, nullptr);
            EXPECT_EQ(field->attribute, std::string(current) + axis);
            EXPECT_EQ(manager.getField(node, std::string(older) + axis), field);
        }
    }
}

TEST_F(FieldOfNode, IsNullForWhatIsNotThere) {
    const osg::NodePtr node = scene.addTransform("arm");
    EXPECT_EQ(manager.getField(osg::NullFC, "visible"), nullptr);
    EXPECT_EQ(manager.getField(node, ""), nullptr);
    EXPECT_TRUE(manager.getFields().empty());
    EXPECT_EQ(manager.getField(node, "Visible"), nullptr);
    EXPECT_EQ(manager.getField(node, "scaleX"), nullptr);
    EXPECT_EQ(manager.getField(node, "rotate"), nullptr);
    EXPECT_EQ(manager.getField(scene.addNode("bare", osg::NullFC), "visible"), nullptr);
}

TEST_F(FieldOfNode, IsTheFirstOfThoseWithTheAttribute) {
    const osg::NodePtr node = scene.add<osg::Group>("group");
    kaAnimationUtils::createAnimationAttachment(node, false);
    for (const kaUID id : {9, 8, 7}) {
        manager.createField(id)->attribute = id == 9 ? "scaleY" : "scaleX";
        attachmentOf(node)->getFieldIDs().push_back(id);
    }
    attachmentOf(node)->getFieldIDs().insert(attachmentOf(node)->getFieldIDs().begin(), 12345); // unknown
    ASSERT_NE(manager.getField(node, "scaleX"), nullptr);
    EXPECT_EQ(manager.getField(node, "scaleX")->getId(), 8U);
}

class RecreatedFields : public Discovery {};

TEST_F(RecreatedFields, ReplaceTheFormerOnes) {
    const osg::NodePtr node = scene.addTransform("arm");
    const Fields former = manager.createAnimationFields(node);
    std::vector<kaUID> formerIDs;
    for (const kaAnimationField* field : former)
        formerIDs.push_back(field->getId());
    attachmentOf(node)->getFieldIDs().push_back(12345); // unknown
    manager.addAnimationAttribute("scale");
    Fields fields;
    {
        const ka_test::CapturedOutput output;
        fields = manager.recreateAnimationFields(node);
        EXPECT_EQ(output.text(), "Recreating animation fields for node " +
                                     std::to_string(node.getFieldContainerId()) + "\n");
    }
    EXPECT_EQ(fields.size(), 7U);
    for (const kaUID id : formerIDs)
        EXPECT_EQ(manager.getField(id), nullptr);
    EXPECT_EQ(kaAnimationUtils::getAnimationFields(node), fields);
    EXPECT_EQ(attachmentOf(node)->getFieldIDs().size(), 7U);
}

TEST_F(RecreatedFields, AreMadeForANodeWithoutAny) {
    const ka_test::CapturedOutput output;
    EXPECT_EQ(manager.recreateAnimationFields(scene.add<osg::Group>("group")).size(), 1U);
    EXPECT_EQ(manager.getFields().size(), 1U);
}

TEST_F(RecreatedFields, OfNullAreNone) {
    const ka_test::CapturedOutput output;
    EXPECT_TRUE(manager.recreateAnimationFields(osg::NullFC).empty());
    EXPECT_EQ(output.text(), "");
}

class UniqueAttributes : public Discovery {
  protected:
    kaAnimationField* listed(const osg::NodePtr& on, kaUID id, const std::string& attribute) {
        kaAnimationUtils::createAnimationAttachment(on, false);
        kaAnimationField* field = manager.createField(id);
        field->attribute = attribute;
        attachmentOf(on)->getFieldIDs().push_back(id);
        return field;
    }
    static std::vector<osg::UInt64> idsOf(const osg::NodePtr& on) {
        const auto& ids = attachmentOf(on)->getFieldIDs();
        return {ids.begin(), ids.end()};
    }

    osg::NodePtr node = scene.addTransform("arm");
};

TEST_F(UniqueAttributes, MoveTheCurvesOfADuplicateToTheFirst) {
    kaAnimationField* first = listed(node, 10, "scaleX");
    kaAnimationField* other = listed(node, 20, "scaleY");
    kaAnimationField* duplicate = listed(node, 5, "scaleX");
    attachmentOf(node)->getFieldIDs().push_back(12345); // unknown
    kaAnimationCurve2D* onFirst = manager.createCurve2D(first, "first", 0, false);
    kaAnimationCurve2D* onOther = manager.createCurve2D(other, "other", 0, false);
    kaAnimationCurve2D* onDuplicate = manager.createCurve2D(duplicate, "duplicate", 0, false);
    for (kaAnimationCurve2D* curve : {onFirst, onOther, onDuplicate})
        curve->setColor(osg::Color3f(0.0F, 0.0F, 0.0F));

    EXPECT_EQ(kaAnimationManager::ensureUniqueAttributes(node), osg::Action::Continue);
    EXPECT_EQ(idsOf(node), (std::vector<osg::UInt64>{10, 20}));
    EXPECT_EQ(onDuplicate->getField(), 10U);
    EXPECT_EQ(onDuplicate->getColor(), kaAnimationUtils::getDefaultCurveColor(first));
    EXPECT_EQ(onFirst->getField(), 10U);
    EXPECT_EQ(onFirst->getColor(), osg::Color3f(0.0F, 0.0F, 0.0F));
    EXPECT_EQ(onOther->getField(), 20U);
    EXPECT_EQ(manager.getField(5), duplicate);
}

TEST_F(UniqueAttributes, AreMadeSoOnEveryNodeOfTheScene) {
    const osg::NodePtr below = scene.addTransform("hand", node);
    for (const kaUID id : {1, 2})
        listed(node, id, "same");
    for (const kaUID id : {3, 4})
        listed(below, id, "same");
    manager.checkUniqueAttributes();
    EXPECT_EQ(idsOf(node).size(), 2U) << "without scene root nothing happens";
    kaAnimationManager::setSceneRootNode(scene.root());
    manager.checkUniqueAttributes();
    EXPECT_EQ(idsOf(node), std::vector<osg::UInt64>{1});
    EXPECT_EQ(idsOf(below), std::vector<osg::UInt64>{3});
}

TEST_F(UniqueAttributes, PassOverNodesWithoutAttachment) {
    EXPECT_EQ(kaAnimationManager::ensureUniqueAttributes(osg::NullFC), osg::Action::Continue);
    EXPECT_EQ(kaAnimationManager::ensureUniqueAttributes(node), osg::Action::Continue);
    EXPECT_EQ(attachmentOf(node), osg::NullFC);
}

TEST_F(UniqueAttributes, ReferencesAreMovedOnlyBetweenFields) {
    kaAnimationField* from = manager.createField(1);
    kaAnimationField* to = manager.createField(2);
    to->attribute = "scaleX";
    kaAnimationCurve2D* curve = manager.createCurve2D(from, "curve", 0, false);
    manager.changeFieldReferences(nullptr, to);
    manager.changeFieldReferences(from, nullptr);
    EXPECT_EQ(curve->getField(), 1U);
    manager.changeFieldReferences(from, to);
    EXPECT_EQ(curve->getField(), 2U);
    EXPECT_EQ(curve->getColor(), kaAnimationUtils::getDefaultCurveColor(to));
}

TEST_F(UniqueAttributes, ReferencesOfAnUnregisteredFieldAreNotMoved) {
    kaAnimationField* to = manager.createField(2);
    kaAnimationField loose(1);
    kaAnimationCurve2D* curve = manager.createCurve2D(&loose, "curve", 0, false);
    manager.changeFieldReferences(&loose, to);
    EXPECT_EQ(curve->getField(), 1U);
}

class CompletedNode : public Discovery {};

TEST_F(CompletedNode, AddressesItsCoreWithEveryField) {
    const osg::NodePtr node = scene.addTransform("arm");
    const Fields fields = manager.createAnimationFields(node);
    for (kaAnimationField* field : fields) {
        field->nodeID = 1;
        field->fcID = 2;
    }
    kaAnimationUnit* unit = manager.createUnit(0);
    kaAnimationStreak* streak = manager.createStreak(0);
    kaAnimationCurve2D* curve = manager.createCurve2D(fields[0], "curve", 0, false);
    for (kaAnimationObject* object : std::vector<kaAnimationObject*>{streak, curve, unit})
        kaAnimationUtils::addAnimationObject(node, object);
    attachmentOf(node)->getFieldIDs().push_back(12345); // unknown

    EXPECT_EQ(kaAnimationManager::completeAnimationFieldNode(node), osg::Action::Continue);
    for (const kaAnimationField* field : fields) {
        EXPECT_EQ(field->nodeID, node.getFieldContainerId());
        EXPECT_EQ(field->fcID, node->getCore().getFieldContainerId());
        EXPECT_EQ(field->name, field->attribute);
    }
    EXPECT_EQ(unit->getNodeID(), node.getFieldContainerId());
    EXPECT_EQ(curve->getField(), fields[0]->getId());
}

TEST_F(CompletedNode, AddressesTheMaterialOfAGroupIfThereIsOne) {
    const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    const osg::NodePtr node = scene.addNode("skin", group);
    kaAnimationField* field = manager.createAnimationFields(node).at(0);
    field->fcID = 2;
    field->nodeID = 1;
    kaAnimationManager::completeAnimationFieldNode(node);
    EXPECT_EQ(field->fcID, 2U);
    EXPECT_EQ(field->nodeID, node.getFieldContainerId());
    group->setMaterial(osg::SimpleMaterial::create());
    kaAnimationManager::completeAnimationFieldNode(node);
    EXPECT_EQ(field->fcID, group->getMaterial().getFieldContainerId());
}

TEST_F(CompletedNode, IsPassedOverWithoutAttachmentOrCore) {
    EXPECT_EQ(kaAnimationManager::completeAnimationFieldNode(osg::NullFC), osg::Action::Continue);
    const osg::NodePtr bare = scene.addNode("bare", osg::NullFC);
    kaAnimationUtils::createAnimationAttachment(bare, false);
    kaAnimationField* field = manager.createField(7);
    attachmentOf(bare)->getFieldIDs().push_back(7);
    EXPECT_EQ(kaAnimationManager::completeAnimationFieldNode(bare), osg::Action::Continue);
    EXPECT_EQ(field->nodeID, 0U);
    const osg::NodePtr node = scene.addTransform("arm");
    EXPECT_EQ(kaAnimationManager::completeAnimationFieldNode(node), osg::Action::Continue);
    EXPECT_EQ(attachmentOf(node), osg::NullFC);
}

TEST_F(CompletedNode, IsEveryNodeOfTheSceneOnceARootIsSet) {
    const osg::NodePtr node = scene.addTransform("arm");
    const osg::NodePtr below = scene.addTransform("hand", node);
    kaAnimationField* first = manager.createAnimationFields(node).at(0);
    kaAnimationField* second = manager.createAnimationFields(below).at(0);
    first->nodeID = second->nodeID = 1;
    manager.completeAnimationFieldNodes();
    EXPECT_EQ(first->nodeID, 1U);
    kaAnimationManager::setSceneRootNode(scene.root());
    manager.completeAnimationFieldNodes();
    EXPECT_EQ(first->nodeID, node.getFieldContainerId());
    EXPECT_EQ(second->nodeID, below.getFieldContainerId());
}

} // namespace
