#include "ContainerLife.h"
#include "HostType.h"
#include "SceneDump.h"
#include "SceneFiles.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGCameraSetting.h>
#include <OpenSG/OSGComponentTransform.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGOSGWriter.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGSwitch.h>
#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <OpenSG/OSGUberMaterial.h>
#include <cfloat>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace {

using ka_test::dump;
using ka_test::readBody;
using ka_test::ReadScene;
using ka_test::readScene;
using ka_test::writeScene;

/// A plain root with one named child, which tests fill.
class RoundTrip : public testing::Test {
  protected:
    RoundTrip() {
        _root->setCore(osg::Group::create());
        _root->addChild(_node);
        osg::setName(_node, "node");
        _node->setCore(osg::Group::create());
    }

    /// Writes, reads and compares; then once more, which must give the same bytes.
    void expectNothingLost() {
        const std::string text = writeScene(_root);
        const ReadScene read = readScene(text);
        ASSERT_TRUE(read.root != osg::NullFC) << read.report() << text;
        EXPECT_EQ("", read.report()) << text;
        EXPECT_EQ(dump(_root), dump(read.root)) << text;
        EXPECT_EQ(text, writeScene(read.root));
    }

    template <class T>
    typename T::Ptr core() {
        const typename T::Ptr made = T::create();
        _node->setCore(made);
        return made;
    }

    osg::NodeRefPtr _root = osg::Node::create();
    osg::NodePtr _node = osg::Node::create();
};

float fromBits(osg::UInt32 bits) {
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TEST_F(RoundTrip, KeepsAnEmptyScene) {
    _root->subChild(_node);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsEveryFloatBitForBit) {
    std::mt19937 random(11);
    const osg::GeoPositions3fPtr positions = osg::GeoPositions3f::create();
    core<osg::Geometry>()->setPositions(positions);
    const float special[] = {0.0F,
                             -0.0F,
                             0.1F,
                             1.0F / 3.0F,
                             FLT_MAX,
                             -FLT_MAX,
                             FLT_MIN,
                             fromBits(1),
                             123456789.0F,
                             1e-45F,
                             16777217.0F,
                             fromBits(0x7f800000U),
                             fromBits(0xff800000U),
                             fromBits(0x7fc00000U),
                             fromBits(0xffc00000U),
                             fromBits(0x7fc12345U)};
    for (const float value : special)
        positions->editMFPositions()->push_back(osg::Pnt3f(value, -value, 1.0F));
    for (int i = 0; i < 3000; ++i) {
        osg::Pnt3f point;
        for (osg::UInt32 k = 0; k < 3; ++k)
            point[k] = fromBits(static_cast<osg::UInt32>(random()) &
                                0xffbfffffU); // all but signalling NaNs and some
        positions->editMFPositions()->push_back(point);
    }
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsEveryByteOfStrings) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    const char* const names[] = {
        "",        "\"",           "\\",           "\\\"",   "two\nlines", "ends with \\", "# no comment",
        "{ [ ] }", "\xc3\xa9\xff", "DEF USE NULL", "a \\n b"};
    for (const char* name : names) {
        const osg::NodePtr child = osg::Node::create();
        child->setCore(osg::Group::create());
        osg::setName(child, std::string(name));
        _node->addChild(child);
    }
    osg::setName(_node, all);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsTheFourListsOfAnAnimAttachment) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    anim->editMFObjectIDs()->setValues(
        std::vector<osg::UInt64>{1, 18446744073709551615ULL, 9007199254740993ULL});
    anim->editMFFieldIDs()->setValues(std::vector<osg::UInt64>{5, 5, 0});
    anim->editMFSecondObjectIDs()->setValues(std::vector<osg::UInt64>(100, 1234567890123456789ULL));
    _node->addAttachment(anim);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsPlacement) {
    const osg::Transform3DPtr transform = core<osg::Transform3D>();
    transform->setTranslation(osg::Vec3f(0.1F, 0.2F, 0.3F));
    transform->setScale(osg::Vec3f(1.1F, 1.2F, 1.3F));
    transform->editMatrix().setTranslate(7.0F, 8.0F, 9.0F);
    const osg::TransformAttachmentPtr rotation = osg::TransformAttachment::create();
    rotation->setRotation(10.1F, -20.2F, 370.3F);
    _node->addAttachment(rotation);
    _node->setTravMask(3);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsEveryRotation) {
    std::mt19937 random(13);
    std::uniform_real_distribution<float> number(-1.0F, 1.0F);
    for (int i = 0; i < 500; ++i) {
        osg::Quaternion rotation;
        rotation.setValueAsQuat(number(random), number(random), number(random), number(random));
        if (i % 10 != 0) // every tenth is no rotation at all
            rotation.normalize();
        const osg::ComponentTransformPtr transform = osg::ComponentTransform::create();
        transform->setRotation(rotation);
        const osg::NodePtr child = osg::Node::create();
        child->setCore(transform);
        _node->addChild(child);
    }
    const osg::ComponentTransformPtr turned = core<osg::ComponentTransform>();
    turned->editRotation().setValueAsQuat(0.0F, 0.0F, 0.0F, -1.0F);
    turned->editScaleOrientation().setValueAsQuat(0.0F, 1.0F, 0.0F, 0.0F);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsTheCameraValuesThatAreNoFields) {
    const osg::CameraSettingPtr camera = core<osg::CameraSetting>();
    camera->setFrom(osg::Pnt3f(1.0F, 2.0F, 3.0F));
    camera->setRoll(0.25F);
    camera->setDistance(12.3F);
    camera->setHeight(-1.7F);
    camera->setTurnTableAngle(33.3F);
    camera->setFStop(2.8F);
    camera->setFocalLength(85.0F);
    camera->setCameraPath(true);
    expectNothingLost();
    const ReadScene read = readScene(writeScene(_root));
    const auto back = osg::CameraSettingPtr::dcast(read.only()->getCore());
    EXPECT_EQ(12.3F, back->getDistance());
    EXPECT_TRUE(back->isCameraPath());
}

TEST_F(RoundTrip, KeepsMaterialsLightsAndSwitches) {
    const osg::SimpleMaterialPtr shared = osg::SimpleMaterial::create();
    shared->setDiffuse(osg::Color3f(0.1F, 0.2F, 0.3F));
    osg::setName(shared, "shared");
    for (int i = 0; i < 3; ++i) {
        const osg::MaterialGroupPtr group = osg::MaterialGroup::create();
        group->setMaterial(i < 2 ? osg::MaterialPtr(shared) : osg::MaterialPtr(osg::UberMaterial::create()));
        const osg::NodePtr child = osg::Node::create();
        child->setCore(group);
        _node->addChild(child);
    }
    const osg::NodePtr light = osg::Node::create();
    const osg::PointLightPtr core = osg::PointLight::create();
    core->setOn(false);
    light->setCore(core);
    _node->addChild(light);
    const osg::SwitchPtr choice = osg::Switch::create();
    choice->setChoice(osg::Switch::ALL);
    _node->setCore(choice);
    expectNothingLost();
    EXPECT_EQ(2, shared.getRefCount());
}

TEST_F(RoundTrip, CountsSharedContainersAsTheOriginalsWere) {
    const osg::SimpleMaterialPtr shared = osg::SimpleMaterial::create();
    const osg::MaterialGroupPtr group = core<osg::MaterialGroup>();
    group->setMaterial(shared);
    ReadScene read = readScene(writeScene(_root));
    const osg::NodeCorePtr core = read.only()->getCore();
    const ka_test::ContainerLife coreLife(core);
    const osg::MaterialPtr material = osg::MaterialGroupPtr::dcast(core)->getMaterial();
    const ka_test::ContainerLife materialLife(material);
    EXPECT_EQ(1, core.getRefCount());
    EXPECT_EQ(1, material.getRefCount());
    read.root = osg::NullFC;
    EXPECT_TRUE(coreLife.isOver());
    EXPECT_TRUE(materialLife.isOver());
}

TEST_F(RoundTrip, KeepsABeaconBeforeAndBehindTheLight) {
    for (int i = 0; i < 3; ++i) {
        const osg::NodePtr child = osg::Node::create();
        child->setCore(osg::PointLight::create());
        _node->addChild(child);
    }
    const auto light = [&](osg::UInt32 i) {
        return osg::PointLightPtr::dcast(_node->getChild(i)->getCore());
    };
    light(0)->setBeacon(_node->getChild(2)); // further down in the file
    light(1)->setBeacon(_node);              // around it
    light(2)->setBeacon(_node->getChild(0)); // before it
    expectNothingLost();
    ReadScene read = readScene(writeScene(_root));
    const osg::NodePtr node = read.only();
    const ka_test::ContainerLife nodeLife(node);
    EXPECT_EQ(1, node.getRefCount()) << "a beacon does not keep its node";
    read.root = osg::NullFC;
    EXPECT_TRUE(nodeLife.isOver());
}

TEST_F(RoundTrip, KeepsABeaconThatStandsNowhereElse) {
    const osg::PointLightPtr light = core<osg::PointLight>();
    const osg::NodeRefPtr beacon = osg::Node::create();
    beacon->setCore(osg::Transform::create());
    osg::setName(beacon, "free");
    light->setBeacon(beacon);
    expectNothingLost();
    ReadScene read = readScene(writeScene(_root));
    const osg::NodePtr back = osg::PointLightPtr::dcast(read.only()->getCore())->getBeacon();
    const ka_test::ContainerLife backLife(back);
    EXPECT_STREQ("free", osg::getName(back));
    read.root = osg::NullFC;
    EXPECT_TRUE(backLife.isOver()) << "it goes with the light that it was written in";
}

TEST_F(RoundTrip, LeavesOutANodeOfALargerTree) {
    const osg::NodePtr outside = osg::Node::create();
    osg::setName(outside, "outside");
    _root->addChild(outside);
    core<osg::PointLight>()->setBeacon(outside);
    std::ostringstream stream;
    osg::SceneFileMessages messages;
    ASSERT_TRUE(osg::SceneFileHandler::the().writeWithMessages(_node, stream, messages));
    ASSERT_EQ(1U, messages.size());
    EXPECT_EQ("scene: error: PointLight.beacon refers to the node \"outside\", which is not part of what is "
              "written; "
              "NULL is written",
              messages[0].toString());
    const ReadScene read = readScene(stream.str());
    EXPECT_EQ("", read.report());
    EXPECT_TRUE(osg::PointLightPtr::dcast(read.only()->getCore())->getBeacon() == osg::NullFC);

    const osg::PointLightPtr light = osg::PointLightPtr::dcast(_node->getCore());
    light->setBeacon(_root); // no parent, but the written node stands below it
    std::ostringstream again;
    osg::SceneFileHandler::the().writeWithMessages(_node, again, messages);
    EXPECT_EQ(1U, messages.size());
    EXPECT_EQ(std::string::npos, again.str().find("outside"));
}

/// The older animation: a clip in a track in a clip, shared blocks, references forwards and backwards.
TEST_F(RoundTrip, KeepsTheOlderAnimationContainers) {
    const osg::AnimationControlPointPtr point = osg::AnimationControlPoint::create();
    point->setPosition(osg::Vec2f(0.1F, 2.0F));
    point->setInTangent(osg::Vec2f(-3.5F, 2.0F));
    point->setTangentType(6);
    const osg::AnimationCurvePtr curve = osg::AnimationCurve::create();
    curve->setName("translateX");
    curve->setAttribute("");
    curve->setNode(_node);
    curve->setFallback(_root->getCore());
    curve->addPoint(point);
    curve->addPoint(point);
    const osg::AnimationBlockPtr block = osg::AnimationBlock::create();
    block->setName("block \"1\"");
    block->addCurve(curve);
    block->setNode(_node);
    block->setRepeating(true);
    const osg::AnimationBlockPtr sequence = osg::AnimationBlock::create();
    sequence->setBegin(10.0F);
    sequence->setEnd(20.0F);
    const osg::AnimationClipPtr inner = osg::AnimationClip::create();
    inner->setName("inner");
    inner->addBlock(block);
    const osg::AnimationTrackPtr track = osg::AnimationTrack::create();
    track->addEntry(inner);
    track->addSequence(sequence);
    track->setActive(false);
    const osg::AnimationClipPtr outer = osg::AnimationClip::create();
    outer->addTrack(track);
    outer->addEntry(inner);
    outer->setFlipped(true);
    const osg::AnimationAttachmentPtr attachment = osg::AnimationAttachment::create();
    attachment->addClip(outer);
    attachment->addBlock(block);
    attachment->editMFBlocks()->push_back(osg::AnimationBlockPtr());
    attachment->addEntry(_root->getCore());
    _node->addAttachment(attachment);
    _root->addAttachment(osg::AnimAttachment::create());

    const std::string text = writeScene(_root);
    ReadScene read = readScene(text);
    EXPECT_EQ("", read.report()) << text;
    EXPECT_EQ(dump(_root), dump(read.only())) << text;
    EXPECT_EQ(text, writeScene(read.only()));
    const osg::AttachmentPtr back =
        read.only()->getChild(0)->findAttachment(osg::AnimationAttachment::getClassType());
    const osg::AnimationBlockPtr backBlock = osg::AnimationAttachmentPtr::dcast(back)->getBlocks()[0];
    const ka_test::ContainerLife backBlockLife(backBlock);
    read.root = osg::NullFC;
    EXPECT_TRUE(backBlockLife.isOver()) << "all of it goes with the scene";
}

TEST_F(RoundTrip, KeepsCyclesAmongTheOlderContainers) {
    const osg::AnimationClipPtr clip = osg::AnimationClip::create();
    const osg::AnimationClipPtr other = osg::AnimationClip::create();
    clip->setName("clip");
    other->setName("other");
    clip->addEntry(other);
    clip->addEntry(clip);
    other->addEntry(clip);
    const osg::AnimationAttachmentPtr attachment = osg::AnimationAttachment::create();
    attachment->addClip(clip);
    _node->addAttachment(attachment);
    expectNothingLost();
    clip->editMFEntries()->clear();
    other->editMFEntries()->clear();
    osg::releaseRefCP(clip);
    osg::releaseRefCP(clip);
    osg::releaseRefCP(other);
}

TEST_F(RoundTrip, KeepsBindingsAndSharedAttachments) {
    const osg::AnimAttachmentPtr shared = osg::AnimAttachment::create();
    _node->addAttachment(shared, 7);
    _node->addAttachment(osg::AnimAttachment::create());
    _node->getCore()->addAttachment(shared, 65535);
    expectNothingLost();
}

TEST_F(RoundTrip, LeavesOutInternalAttachments) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    anim->setInternal(true);
    _node->addAttachment(anim);
    const std::string text = writeScene(_root);
    EXPECT_EQ(std::string::npos, text.find("AnimAttachment"));
}

TEST_F(RoundTrip, KeepsNodesWithoutCore) {
    _node->setCore(osg::NullFC);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsSharedCoresAndTheNamesOfSharedThings) {
    const char* const names[] = {nullptr, "arm", "arm", "SFVec3f", "Transform3D:1", "two words", "", "9"};
    for (const char* name : names) {
        const osg::Transform3DPtr shared = osg::Transform3D::create();
        osg::setName(shared, name);
        for (int i = 0; i < 2; ++i) {
            const osg::NodePtr child = osg::Node::create();
            child->setCore(shared);
            _node->addChild(child);
        }
    }
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsTheTypesOfHosts) {
    const ka_test::WindPtr wind = ka_test::Wind::create();
    wind->setStrength(0.1F);
    _node->addAttachment(wind);
    expectNothingLost();
}

TEST_F(RoundTrip, KeepsVolumesThatAreKnown) {
    _node->editVolume().setBox(osg::Pnt3f(1, 2, 3), osg::Pnt3f(4, 5, 6));
    const osg::NodePtr child = osg::Node::create();
    child->editVolume().setSphere(osg::Pnt3f(1, 2, 3), 0.1F);
    _node->addChild(child);
    expectNothingLost();
}

TEST_F(RoundTrip, WritesARootThatSaysSomethingItself) {
    osg::setName(_root, "scene");
    const ReadScene read = readScene(writeScene(_root));
    EXPECT_EQ(dump(_root), dump(read.only()));
    EXPECT_EQ(writeScene(_root), writeScene(read.root));
    EXPECT_EQ(writeScene(_root), writeScene(read.only()));
}

TEST_F(RoundTrip, WritesAPlainRootThatSomebodyMeans) {
    core<osg::PointLight>()->setBeacon(_root);
    const ReadScene read = readScene(writeScene(_root));
    EXPECT_EQ("", read.report());
    EXPECT_EQ(dump(_root), dump(read.only()));
}

TEST_F(RoundTrip, OfAVeryDeepTreeNeedsNoDeepStack) {
    osg::NodePtr bottom = _node;
    for (int i = 0; i < 20000; ++i) {
        const osg::NodePtr next = osg::Node::create();
        bottom->addChild(next);
        bottom = next;
    }
    const std::string text = writeScene(_root);
    const ReadScene read = readScene(text);
    EXPECT_EQ("", read.report());
    EXPECT_EQ(text, writeScene(read.root));
}

TEST_F(RoundTrip, GoesThroughAFile) {
    const std::string name = testing::TempDir() + "ka_scene_round_trip.osg";
    ASSERT_TRUE(osg::SceneFileHandler::the().write(_root, name));
    osg::NodePtr read = osg::SceneFileHandler::the().read(name);
    ASSERT_TRUE(read != osg::NullFC);
    EXPECT_EQ(dump(_root), dump(read));
    EXPECT_EQ(0, read.getRefCount());
    osg::subRefCP(read);
    std::remove(name.c_str());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(osg::SceneFileHandler::the().read(name) == osg::NullFC);
    EXPECT_EQ(name + ": refused: cannot be opened\n", testing::internal::GetCapturedStderr());
}

TEST_F(RoundTrip, ReportsAStreamThatFails) {
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    osg::OSGWriter writer(stream);
    EXPECT_FALSE(writer.write(_root.get()));
    ASSERT_EQ(1U, writer.getMessages().size());
    EXPECT_EQ(osg::SceneFileMessage::Fatal, writer.getMessages()[0].severity);
    EXPECT_FALSE(osg::SceneFileHandler::the().write(_root, "/no/such/folder/scene.osg"));
    EXPECT_FALSE(osg::SceneFileHandler::the().write(osg::NullFC, "scene.osg"));
    std::ostringstream good;
    EXPECT_FALSE(osg::SceneFileHandler::the().write(_root, good, "wrl"));
    EXPECT_FALSE(osg::SceneFileHandler::the().write(osg::NullFC, good));
}

TEST_F(RoundTrip, LooksLikeThis) {
    osg::setName(_node, "Arm");
    core<osg::Switch>()->setChoice(0);
    _node->addAttachment(osg::AnimAttachment::create());
    EXPECT_EQ("#OSG V1.0 \n"
              "\n"
              "Node {\n"
              "  attachments [\n"
              "    AnimAttachment {\n"
              "      internal FALSE\n"
              "      objectIDs [  ]\n"
              "      fieldIDs [  ]\n"
              "      secondObjectIDs [  ]\n"
              "      secondFieldIDs [  ]\n"
              "    }\n"
              "    Name {\n"
              "      internal FALSE\n"
              "      name \"Arm\"\n"
              "    }\n"
              "  ]\n"
              "  travMask 4294967295\n"
              "  children [  ]\n"
              "  core Switch {\n"
              "    attachments [  ]\n"
              "    choice 0\n"
              "  }\n"
              "}\n",
              writeScene(_root));
}

} // namespace
