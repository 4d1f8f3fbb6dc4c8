#include "Builders.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGAnimationAttachment.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform.h>

namespace {

using namespace binding_test;
using ka_test::TestScene;
using Ids = std::vector<kaUID>;

osg::AnimAttachmentPtr attachmentOf(const osg::NodePtr& node) {
    return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(node));
}

Ids listedObjects(const osg::NodePtr& node) {
    const auto& ids = attachmentOf(node)->getObjectIDs();
    return Ids(ids.begin(), ids.end());
}

/// Stands under the group of the animation attachment without being one.
class Impostor : public osg::Container<Impostor, osg::Attachment> {
  public:
    static constexpr const osg::Char8* TypeName = "BindingTestImpostor";
    enum : osg::UInt32 { NextFieldId = Inherited::NextFieldId };
    static osg::FieldContainerType& getClassType() {
        static auto& type = osg::declareType<Impostor>({}, "AnimAttachment");
        return type;
    }
};

class AnimationAttachment : public ka_test::RegistryFixture {
  protected:
    TestScene scene;
    osg::NodePtr node = scene.addTransform("arm");
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(AnimationAttachment, IsNullUntilMade) {
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(osg::NullFC), osg::NullFC);
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(node), osg::NullFC);
    EXPECT_EQ(kaAnimationUtils::getOldAnimationAttachment(osg::NullFC), osg::NullFC);
    EXPECT_EQ(kaAnimationUtils::getOldAnimationAttachment(node), osg::NullFC);
    EXPECT_TRUE(kaAnimationUtils::getAnimationObjects(node).empty());
    EXPECT_TRUE(kaAnimationUtils::getAnimationObjects(osg::NullFC).empty());
    EXPECT_TRUE(kaAnimationUtils::getAnimationFields(node).empty());
    EXPECT_TRUE(kaAnimationUtils::getAnimationFields(osg::NullFC).empty());
    EXPECT_EQ(attachmentOf(node), osg::NullFC);
}

TEST_F(AnimationAttachment, AnotherTypeUnderItsGroupCountsAsNone) {
    ASSERT_EQ(Impostor::getClassType().getGroupId(), osg::AnimAttachment::getClassType().getGroupId());
    node->addAttachment(Impostor::create());
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(node), osg::NullFC);
}

TEST_F(AnimationAttachment, OfTheOlderFormatIsFoundOnItsOwn) {
    const osg::AnimationAttachmentPtr old = osg::AnimationAttachment::create();
    node->addAttachment(old);
    EXPECT_EQ(kaAnimationUtils::getOldAnimationAttachment(node), old);
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(node), osg::NullFC);
}

TEST_F(AnimationAttachment, IsMadeOnceAndAnnounced) {
    Recorder recorder;
    const osg::AttachmentPtr made = kaAnimationUtils::createAnimationAttachment(node, false);
    ASSERT_NE(made, osg::NullFC);
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(node), made);
    const std::pair<osg::UInt32, osg::BitVector> entry{node.getFieldContainerId(),
                                                       osg::AttachmentContainer::AttachmentsFieldMask};
    const auto entries = recorder.take();
    EXPECT_EQ(std::count(entries.begin(), entries.end(), entry), 1);
    EXPECT_TRUE(manager.getFields().empty());

    EXPECT_EQ(kaAnimationUtils::createAnimationAttachment(node, true), made);
    EXPECT_TRUE(recorder.take().empty());
    EXPECT_TRUE(manager.getFields().empty()) << "an attachment that is there gets no fields";
    EXPECT_EQ(kaAnimationUtils::createAnimationAttachment(osg::NullFC, true), osg::NullFC);
}

TEST_F(AnimationAttachment, IsMadeWithTheFieldsOfTheNode) {
    kaAnimationUtils::createAnimationAttachment(node, true);
    EXPECT_EQ(attributesOf(kaAnimationUtils::getAnimationFields(node)),
              (std::vector<std::string>{"visible", "rotationZ", "rotationY", "rotationX"}));
}

TEST_F(AnimationAttachment, ListsAnObjectAsOftenAsItIsAdded) {
    kaAnimationCurve2D* curve = manager.createCurve2D(500);
    kaAnimationCurve2D* other = manager.createCurve2D(400);
    EXPECT_TRUE(kaAnimationUtils::addAnimationObject(node, curve));
    EXPECT_TRUE(kaAnimationUtils::addAnimationObject(node, other));
    EXPECT_TRUE(kaAnimationUtils::addAnimationObject(node, curve));
    EXPECT_EQ(listedObjects(node), (Ids{500, 400, 500}));
    EXPECT_EQ(kaAnimationUtils::getAnimationObjects(node),
              (std::vector<kaAnimationObject*>{curve, other, curve}));
    EXPECT_TRUE(kaAnimationUtils::subAnimationObject(node, curve));
    EXPECT_EQ(listedObjects(node), (Ids{400, 500}));
    EXPECT_TRUE(kaAnimationUtils::subAnimationObject(node, curve));
    EXPECT_FALSE(kaAnimationUtils::subAnimationObject(node, curve));
    EXPECT_EQ(listedObjects(node), (Ids{400}));
}

TEST_F(AnimationAttachment, IsMadeWithTheNodesFieldsForItsFirstObject) {
    EXPECT_TRUE(kaAnimationUtils::addAnimationObject(node, manager.createStrip(9)));
    EXPECT_EQ(listedObjects(node), (Ids{9}));
    EXPECT_EQ(kaAnimationUtils::getAnimationFields(node).size(), 4U);
}

TEST_F(AnimationAttachment, RefusesNull) {
    kaAnimationCurve2D* curve = manager.createCurve2D(0);
    EXPECT_FALSE(kaAnimationUtils::addAnimationObject(node, nullptr));
    EXPECT_FALSE(kaAnimationUtils::addAnimationObject(osg::NullFC, curve));
    EXPECT_FALSE(kaAnimationUtils::subAnimationObject(node, nullptr));
    EXPECT_FALSE(kaAnimationUtils::subAnimationObject(osg::NullFC, curve));
    EXPECT_FALSE(kaAnimationUtils::subAnimationObject(node, curve));
    EXPECT_EQ(attachmentOf(node), osg::NullFC);
}

TEST_F(AnimationAttachment, GivesTheCurvesOfABlockOverToTheBlock) {
    std::vector<kaAnimationCurve2D*> curves;
    for (const kaUID id : {30, 10, 20, 40})
        curves.push_back(manager.createCurve2D(id));
    for (kaAnimationCurve2D* curve : curves)
        kaAnimationUtils::addAnimationObject(node, curve);
    kaAnimationUtils::addAnimationObject(node, curves[0]);
    attachmentOf(node)->getObjectIDs().push_back(9999); // unknown to the registry
    ASSERT_EQ(listedObjects(node), (Ids{30, 10, 20, 40, 30, 9999}));

    kaAnimationUnit* block = manager.createUnit("block", 50);
    block->addObject(curves[0]);
    block->addObject(curves[2]);
    EXPECT_TRUE(kaAnimationUtils::addAnimationObject(node, block));
    EXPECT_EQ(listedObjects(node), (Ids{10, 40, 30, 9999, 50})) << "only the first listing of each goes";
}

TEST_F(AnimationAttachment, SkipsWhatTheRegistryDoesNotKnow) {
    kaAnimationUtils::createAnimationAttachment(node, false);
    kaAnimationField* field = manager.createField(7);
    for (const kaUID id : {5, 7, 0})
        attachmentOf(node)->getFieldIDs().push_back(id);
    attachmentOf(node)->getObjectIDs().push_back(7); // the id of a field
    EXPECT_EQ(kaAnimationUtils::getAnimationFields(node), (std::vector<kaAnimationField*>{field}));
    EXPECT_TRUE(kaAnimationUtils::getAnimationObjects(node).empty());
}

TEST_F(AnimationAttachment, RecordsEditsOfItsListsWithoutCallingTheHost) {
    kaAnimationUtils::createAnimationAttachment(node, true);
    kaAnimationCurve2D* curve = manager.createCurve2D(0);
    Recorder recorder;
    const std::vector<std::pair<osg::UInt32, osg::BitVector>> entry{
        {attachmentOf(node).getFieldContainerId(), osg::AnimAttachment::ObjectIDsFieldMask}};
    kaAnimationUtils::addAnimationObject(node, curve);
    EXPECT_EQ(recorder.take(), entry);
    kaAnimationUtils::subAnimationObject(node, curve);
    EXPECT_EQ(recorder.take(), entry);
    kaAnimationUtils::subAnimationObject(node, curve);
    EXPECT_TRUE(recorder.take().empty());
}

TEST_F(AnimationAttachment, IsDetachedAndAnnounced) {
    kaAnimationUtils::addAnimationObject(node, manager.createCurve2D(500));
    Recorder recorder;
    EXPECT_TRUE(kaAnimationUtils::removeAnimationAttachment(node));
    EXPECT_EQ(attachmentOf(node), osg::NullFC);
    const std::pair<osg::UInt32, osg::BitVector> entry{node.getFieldContainerId(),
                                                       osg::AttachmentContainer::AttachmentsFieldMask};
    const auto entries = recorder.take();
    EXPECT_EQ(std::count(entries.begin(), entries.end(), entry), 1);
    EXPECT_NE(manager.getObject(500), nullptr);
    EXPECT_EQ(manager.getFields().size(), 5U) << "the node's four and the curve's own";

    EXPECT_FALSE(kaAnimationUtils::removeAnimationAttachment(node));
    EXPECT_FALSE(kaAnimationUtils::removeAnimationAttachment(osg::NullFC));
    EXPECT_TRUE(recorder.take().empty());
}

TEST_F(AnimationAttachment, OfANodeThatGoesWhenItIsAnnouncedIsNull) {
    watch() = Watch();
    const osg::NodePtr fleeting = WatchedNode::create();
    Kept kept(fleeting);
    fleeting->setCore(osg::Group::create());
    watch().answer = [&kept] { kept.release(); };
    EXPECT_EQ(kaAnimationUtils::createAnimationAttachment(fleeting, true), osg::NullFC);
}

TEST_F(AnimationAttachment, AnObjectThatGoesWhenItIsAnnouncedIsNotListed) {
    watch() = Watch();
    const osg::NodePtr watched = WatchedNode::create();
    const Kept kept(watched);
    watched->setCore(osg::Group::create());
    kaAnimationUnit* unit = manager.createUnit("block", 50);
    watch().answer = [this] { manager.destroyObject(manager.getObject(50)); };
    EXPECT_FALSE(kaAnimationUtils::addAnimationObject(watched, unit));
    EXPECT_TRUE(listedObjects(watched).empty());
}

TEST_F(AnimationAttachment, BelongsToTheTransformAboveAShape) {
    const osg::NodePtr shape = scene.add<osg::Geometry>("shape", node);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(shape), node);
    const osg::NodePtr plain = scene.add<osg::Transform>("plain");
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(scene.add<osg::Geometry>("shape", plain)), plain);
}

TEST_F(AnimationAttachment, OtherwiseBelongsToTheNodeItself) {
    const osg::NodePtr below = scene.add<osg::Geometry>("below a group");
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(below), below);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(node), node);
    const osg::NodePtr group = scene.add<osg::Group>("group", node);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(group), group);
    const osg::NodePtr loose = osg::Node::create();
    const Kept kept(loose);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(loose), osg::NullFC);
    loose->setCore(osg::Geometry::create());
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(loose), loose);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(osg::NullFC), osg::NullFC);
    const osg::NodePtr bare = scene.addNode("bare", osg::NullFC);
    const osg::NodePtr belowBare = scene.add<osg::Geometry>("shape", bare);
    EXPECT_EQ(kaAnimationUtils::getAnimationNode(belowBare), belowBare);
}

} // namespace
