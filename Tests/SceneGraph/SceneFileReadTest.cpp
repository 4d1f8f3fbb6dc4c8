#include "ContainerLife.h"
#include "DecimalComma.h"
#include "SceneFiles.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationCurve.h>
#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGLoader.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform3D.h>
#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace {

using ka_test::findNode;
using ka_test::readBody;
using ka_test::ReadScene;
using ka_test::readScene;

template <class T>
typename T::Ptr coreOf(const osg::NodePtr& node) {
    return T::Ptr::dcast(node->getCore());
}

TEST(SceneFile, ReadsTheExampleOfThePublishedForm) {
    const ReadScene read =
        readScene("#OSG V1.0 \n"
                  "DEF Scene Node {\n"
                  "  core Group { }\n"
                  "  children [\n"
                  "    DEF Arm Node {\n"
                  "      core DEF ArmCore Transform { matrix 1 0 0 5, 0 1 0 0, 0 0 1 0, 0 0 0 1 }\n"
                  "      children [\n"
                  "        Node { core DEF Lamp PointLight { diffuse 1 0.5 0 1 on TRUE beacon USE Arm "
                  "position 0 2 0 } }\n"
                  "      ]\n"
                  "    }\n"
                  "    Node { core USE ArmCore }\n"
                  "    Transform { }\n"
                  "    Node { core Switch { choice 0 } attachments [ Name { name \"second\" } ] "
                  "travMask 0 }\n"
                  "  ]\n"
                  "}\n");
    ASSERT_TRUE(read.root != osg::NullFC) << read.report();
    EXPECT_EQ("", read.report());
    EXPECT_EQ(nullptr, osg::getName(read.root));
    EXPECT_TRUE(osg::GroupPtr::dcast(read.root->getCore()) != osg::NullFC);
    ASSERT_EQ(1U, read.root->getNChildren());

    const osg::NodePtr scene = read.only();
    EXPECT_STREQ("Scene", osg::getName(scene));
    ASSERT_EQ(4U, scene->getNChildren());
    const osg::NodePtr arm = scene->getChild(0);
    EXPECT_STREQ("Arm", osg::getName(arm));
    EXPECT_STREQ("ArmCore", osg::getName(arm->getCore()));
    EXPECT_EQ(osg::Vec4f(5.0F, 0.0F, 0.0F, 1.0F), coreOf<osg::Transform>(arm)->getMatrix()[3]);
    const osg::PointLightPtr lamp = coreOf<osg::PointLight>(arm->getChild(0));
    EXPECT_EQ(osg::Color4f(1.0F, 0.5F, 0.0F, 1.0F), lamp->getDiffuse());
    EXPECT_EQ(osg::Pnt3f(0.0F, 2.0F, 0.0F), lamp->getPosition());
    EXPECT_TRUE(lamp->getBeacon() == arm);
    EXPECT_TRUE(scene->getChild(1)->getCore() == arm->getCore());
    EXPECT_TRUE(coreOf<osg::Transform>(scene->getChild(2)) != osg::NullFC)
        << "a core among children gets a node";
    const osg::NodePtr second = scene->getChild(3);
    EXPECT_STREQ("second", osg::getName(second));
    EXPECT_EQ(0U, second->getTravMask());
    EXPECT_EQ(0, coreOf<osg::Switch>(second)->getChoice());
    EXPECT_EQ(osg::Vec4f(5.0F, 0.0F, 0.0F, 1.0F), arm->getChild(0)->getToWorld()[3]);
}

TEST(SceneFile, PutsEveryTopLevelNodeAndCoreBelowTheRoot) {
    const ReadScene read =
        readBody("Node { } Transform { } DEF M SimpleMaterial { } Node { core MaterialGroup { "
                 "material USE M } }");
    EXPECT_EQ("", read.report());
    ASSERT_EQ(3U, read.root->getNChildren());
    EXPECT_TRUE(coreOf<osg::Group>(read.root->getChild(0)) != osg::NullFC)
        << "a node without core gets a Group";
    EXPECT_TRUE(coreOf<osg::Transform>(read.root->getChild(1)) != osg::NullFC);
    const osg::MaterialPtr material = coreOf<osg::MaterialGroup>(read.root->getChild(2))->getMaterial();
    EXPECT_STREQ("M", osg::getName(material));
    EXPECT_EQ(1, material.getRefCount());
}

TEST(SceneFile, ReadsAnEmptyOne) {
    const ReadScene read = readBody("");
    EXPECT_EQ("", read.report());
    EXPECT_EQ(0U, read.root->getNChildren());
    const ReadScene nothing = readScene("");
    ASSERT_TRUE(nothing.root != osg::NullFC);
    EXPECT_EQ("test.osg:1: warning: the header line \"#OSG V1.0 \" is missing\n", nothing.report());
}

TEST(SceneFile, TakesUseBeforeDef) {
    const ReadScene read = readBody("Node { children [ USE B, Node { core USE C }, DEF A Node { } ] }\n"
                                    "DEF B Node { core DEF C Transform3D { } }");
    EXPECT_EQ("", read.report());
    const osg::NodePtr first = read.root->getChild(0);
    ASSERT_EQ(3U, first->getNChildren());
    EXPECT_STREQ("B", osg::getName(first->getChild(0)));
    EXPECT_TRUE(first->getChild(1)->getCore() == first->getChild(0)->getCore());
    EXPECT_EQ(1U, read.root->getNChildren()) << "B stands where it is used, not on the top level too";
}

TEST(SceneFile, TakesReservedWordsAndConstantsAsTheyAre) {
    const ReadScene read =
        readBody("Node { core PointLight { on false beacon null ambient +1 .5 -2e-1 0x2 } }");
    EXPECT_EQ("", read.report());
    const osg::PointLightPtr light = coreOf<osg::PointLight>(read.only());
    EXPECT_FALSE(light->getOn());
    EXPECT_EQ(osg::Color4f(1.0F, 0.5F, -0.2F, 2.0F), light->getAmbient());
}

TEST(SceneFile, TakesBareWordsAsStrings) {
    const ReadScene read = readBody("Node{attachments[Name{name a-b_1:c}]}# the end");
    EXPECT_EQ("", read.report());
    EXPECT_STREQ("a-b_1:c", osg::getName(read.only()));
}

TEST(SceneFile, TakesOneValueForAListAndAListForOneValue) {
    const ReadScene read = readBody("Node { attachments AnimAttachment { objectIDs 7 fieldIDs [ 1 2,3 ] } "
                                    "travMask [ 5 ] children Node { } core [ Switch { } ] }");
    EXPECT_EQ("", read.report());
    const auto anim =
        osg::AnimAttachmentPtr::dcast(read.only()->findAttachment(osg::AnimAttachment::getClassType()));
    ASSERT_TRUE(anim != osg::NullFC);
    EXPECT_EQ(1U, anim->getObjectIDs().size());
    EXPECT_EQ(3U, anim->getFieldIDs().size());
    EXPECT_EQ(5U, read.only()->getTravMask());
    EXPECT_EQ(1U, read.only()->getNChildren());
    EXPECT_TRUE(coreOf<osg::Switch>(read.only()) != osg::NullFC);
}

TEST(SceneFile, ReadsRotationsAsAxisAndAngle) {
    const ReadScene read =
        readBody("Node { core ComponentTransform { rotation 0 0 2 1.5707963 scaleOrientation "
                 "\"0.1 0.2 0.3 0.4\" } }");
    EXPECT_EQ("", read.report());
    const auto transform = coreOf<osg::ComponentTransform>(read.only());
    EXPECT_NEAR(std::sqrt(0.5F), transform->getRotation().z(), 1e-6F);
    EXPECT_NEAR(std::sqrt(0.5F), transform->getRotation().w(), 1e-6F);
    EXPECT_EQ(0.4F, transform->getScaleOrientation().w());
}

TEST(SceneFile, DoesNotDependOnTheLocale) {
    const ka_test::DecimalComma comma;
    const ReadScene read = readBody("Node { core CameraSetting { roll 1.5 distance 2.5 } }");
    const std::string text = ka_test::writeScene(read.root);
    EXPECT_EQ(1.5F, coreOf<osg::CameraSetting>(read.only())->getRoll());
    EXPECT_EQ(2.5F, coreOf<osg::CameraSetting>(read.only())->getDistance());
    EXPECT_NE(std::string::npos, text.find("roll 1.5"));
}

/// Files that are read although something in them cannot be kept: each says so once.
struct DamageRow {
    const char* name;
    const char* body; ///< a node "after" must survive
    const char* report;
};

class Damage : public testing::TestWithParam<DamageRow> {};

TEST_P(Damage, IsReportedAndReadingGoesOn) {
    const ReadScene read = readBody(std::string(GetParam().body) + "\nDEF after Node { }");
    EXPECT_EQ(GetParam().report, read.report());
    ASSERT_TRUE(read.root != osg::NullFC);
    EXPECT_TRUE(findNode(read.root, "after") != osg::NullFC);
    const ReadScene again = readScene(ka_test::writeScene(read.root));
    EXPECT_EQ("", again.report());
}

INSTANTIATE_TEST_SUITE_P(
    Faults, Damage,
    testing::Values(
        DamageRow{"unknown_field_with_numbers", "Node { speed 1 2 3 travMask 1 }",
                  "test.osg:2: error: a Node has no field \"speed\"; its value is passed over\n"},
        DamageRow{"unknown_field_with_a_container",
                  "Node {\n speed Engine { power 5 parts [ Node { } ] } travMask 1 }",
                  "test.osg:3: error: a Node has no field \"speed\"; its value is passed over\n"
                  "test.osg:3: error: the type \"Engine\" is not known; the container and what stands in it "
                  "are left "
                  "out\n"},
        DamageRow{"unknown_field_with_a_list", "Node { speed [ 1 \"two\" THREE Node { } USE after NULL ] }",
                  "test.osg:2: error: a Node has no field \"speed\"; its value is passed over\n"},
        DamageRow{"unknown_field_with_a_word", "Node { speed fast travMask 1 }",
                  "test.osg:2: error: a Node has no field \"speed\"; its value is passed over\n"},
        DamageRow{"unknown_type_inside", "Node { children [ Engine { power 5 } Node { } ] core Motor { } }",
                  "test.osg:2: error: the type \"Engine\" is not known; the container and what stands in it "
                  "are left "
                  "out\ntest.osg:2: error: the type \"Motor\" is not known; the container and what stands in "
                  "it are "
                  "left out\n"},
        DamageRow{"unknown_type_on_top", "Engine { a [ 1 2 ] b Node { } }",
                  "test.osg:2: error: the type \"Engine\" is not known; the container and what stands in it "
                  "are left "
                  "out\n"},
        DamageRow{"abstract_type", "Node { core Light { } }",
                  "test.osg:2: error: the type \"Light\" is not known; the container and what stands in it "
                  "are left "
                  "out\n"},
        DamageRow{"internal_field", "Node { parent NULL }",
                  "test.osg:2: error: a Node has no field \"parent\"; its value is passed over\n"},
        DamageRow{"name_that_nothing_defines", "Node { core PointLight { beacon USE nobody } }",
                  "test.osg:2: error: USE \"nobody\" means nothing in this file\n"},
        DamageRow{"name_that_comes_again", "DEF x Node { } DEF x Node { }",
                  "test.osg:2: warning: DEF \"x\" comes again; USE means the first\n"},
        DamageRow{"core_of_the_wrong_type", "Node { core Node { } }",
                  "test.osg:2: error: Node stands where a core should; it is left out\n"},
        DamageRow{"child_of_the_wrong_type", "Node { children [ SimpleMaterial { } ] }",
                  "test.osg:2: error: SimpleMaterial stands where a node or a core should; it is left out\n"},
        DamageRow{"attachment_of_the_wrong_type", "Node { attachments [ Group { } ] }",
                  "test.osg:2: error: Group stands where an attachment should; it is left out\n"},
        DamageRow{"field_of_the_wrong_type", "Node { core MaterialGroup { material Group { } } }",
                  "test.osg:2: error: Group stands where a MaterialPtr should; it is left out\n"},
        DamageRow{"second_parent", "DEF c Node { } Node { children [ USE c ] } Node { children [ USE c ] }",
                  "test.osg:2: error: a node cannot have a second parent; it stays with the first\n"},
        DamageRow{"child_of_itself", "DEF c Node { children [ USE c ] }",
                  "test.osg:2: error: a node cannot stand below itself; it is left out there\n"},
        DamageRow{"child_of_its_grandchild", "DEF c Node { children [ Node { children [ USE c ] } ] }",
                  "test.osg:2: error: a node cannot stand below itself; it is left out there\n"},
        DamageRow{"container_for_a_number", "Node { travMask Node { } }",
                  "test.osg:2: error: \"Node\" cannot be a value of \"travMask\"; it is passed over\n"},
        DamageRow{
            "containers_in_a_list_of_numbers",
            "Node { attachments AnimAttachment { objectIDs [ 1 Node { } 2 ] } }",
            "test.osg:2: error: \"Node\" cannot be a value of \"objectIDs\"; the rest of the list is passed "
            "over\n"},
        DamageRow{"missing_numbers", "Node { core Transform3D { translation 1 2 scale 2 2 2 } }",
                  "test.osg:2: error: 1 of 3 numbers are missing; 0 is taken\n"},
        DamageRow{"missing_value", "Node { core Transform3D { translation } }",
                  "test.osg:2: error: \"}\" cannot be a value of \"translation\"; it is passed over\n"},
        DamageRow{"too_many_numbers", "Node { core Switch { choice 1 2 } }",
                  "test.osg:2: error: \"2\" stands where a field name should; it is passed over\n"},
        DamageRow{"number_out_of_range", "Node { travMask 4294967296 }",
                  "test.osg:2: error: the number \"4294967296\" is out of range\n"},
        DamageRow{"negative_number_out_of_range", "Node { travMask -1 }",
                  "test.osg:2: error: the number \"-1\" is out of range\n"},
        DamageRow{"float_out_of_range", "Node { core CameraSetting { roll 1e39 } }",
                  "test.osg:2: error: the number \"1e39\" is out of range\n"},
        DamageRow{"number_with_a_tail", "Node { core CameraSetting { roll 1.5x } }",
                  "test.osg:2: error: \"1.5x\" is no number; 0 is taken\n"},
        DamageRow{"two_points_in_a_number", "Node { core CameraSetting { roll 1.2.3 } }",
                  "test.osg:2: error: \"1.2.3\" is no number; 0 is taken\n"},
        DamageRow{"bool_from_a_word", "Node { core PointLight { on maybe } }",
                  "test.osg:2: error: \"maybe\" cannot be a value of \"on\"; it is passed over\n"},
        DamageRow{"volume_of_five_numbers", "Node { volume 1 2 3 4 5 }",
                  "test.osg:2: error: a volume needs 4 or 6 numbers\n"},
        DamageRow{"binding_out_of_range", "Node { attachments [ 70000 Name { } ] }",
                  "test.osg:2: error: \"70000\" cannot be a binding; 0 is taken\n"},
        DamageRow{"container_that_nobody_uses", "SimpleMaterial { }",
                  "test.osg:2: warning: SimpleMaterial belongs to nothing and is left out\n"},
        DamageRow{
            "camera_value_that_is_none", "Node { core CameraSetting { distance far height 2 } }",
            "test.osg:2: error: a CameraSetting has no field \"distance\"; its value is passed over\n"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SceneFile, KeepsWhatAnUnknownFieldDefines) {
    const ReadScene read = readBody("Node { speed [ DEF inside Node { } ] children [ USE inside ] }");
    ASSERT_EQ(1U, read.only()->getNChildren());
    EXPECT_STREQ("inside", osg::getName(read.only()->getChild(0)));
}

TEST(SceneFile, ReplacesAValueThatComesAgain) {
    const ReadScene read = readBody("Node { core MaterialGroup { material DEF a SimpleMaterial { } material "
                                    "SimpleMaterial { attachments Name { name \"b\" } } } "
                                    "attachments AnimAttachment { objectIDs [ 1 2 ] objectIDs [ 3 ] } }");
    EXPECT_EQ("", read.report());
    EXPECT_STREQ("b", osg::getName(coreOf<osg::MaterialGroup>(read.only())->getMaterial()));
    const auto anim =
        osg::AnimAttachmentPtr::dcast(read.only()->findAttachment(osg::AnimAttachment::getClassType()));
    ASSERT_EQ(1U, anim->getObjectIDs().size());
    EXPECT_EQ(3U, anim->getObjectIDs()[0]);
}

TEST(Loader, KeepsItsSceneUntilItIsTaken) {
    osg::NodePtr kept;
    {
        osg::OSGLoader loader;
        std::istringstream first("#OSG V1.0 \nNode { }");
        EXPECT_TRUE(loader.scanStream(first));
        const osg::NodePtr dropped = loader.getRootNode();
        const ka_test::ContainerLife droppedLife(dropped);
        std::istringstream second("#OSG V1.0 \nNode { }");
        EXPECT_TRUE(loader.scanStream(second));
        EXPECT_TRUE(droppedLife.isOver());
        kept = loader.takeRootNode();
        EXPECT_TRUE(loader.getRootNode() == osg::NullFC);
    }
    EXPECT_FALSE(ka_test::isGone(kept.getFieldContainerId()));
    osg::subRefCP(kept);
}

} // namespace
