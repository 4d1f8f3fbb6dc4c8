#include "Builders.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <memory>

namespace {

using namespace binding_test;

class RequestedId : public ka_test::RegistryFixture {
  protected:
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(RequestedId, IsGivenWhereItIsFree) {
    kaAnimationUnit* unit = manager.createUnit(10);
    manager.setID(20, unit);
    EXPECT_EQ(unit->getId(), 20U);
    EXPECT_EQ(manager.getObject(20), unit);
    EXPECT_EQ(manager.getObject(10), nullptr);

    kaAnimationField* field = manager.createField(30);
    manager.setID(40, field);
    EXPECT_EQ(field->getId(), 40U);
    EXPECT_EQ(manager.getField(40), field);
    EXPECT_EQ(manager.getField(30), nullptr);
}

TEST_F(RequestedId, ItsOwnCountsAsTaken) {
    kaAnimationUnit* unit = manager.createUnit(10);
    kaAnimationField* field = manager.createField(30);
    ka_test::IdSequence ids;
    manager.setID(10, unit);
    EXPECT_EQ(unit->getId(), ids.next());
    EXPECT_EQ(manager.getObject(unit->getId()), unit);
    EXPECT_EQ(manager.getObject(10), nullptr);
    manager.setID(30, field);
    EXPECT_EQ(field->getId(), ids.next());
    EXPECT_EQ(manager.getField(field->getId()), field);
    EXPECT_EQ(manager.getField(30), nullptr);
}

TEST_F(RequestedId, OfAFieldIsTakenForAnObjectAndTheOtherWayRound) {
    kaAnimationUnit* unit = manager.createUnit(10);
    kaAnimationField* field = manager.createField(5);
    ka_test::IdSequence ids;
    manager.setID(5, unit);
    EXPECT_EQ(unit->getId(), ids.next());
    EXPECT_EQ(manager.getField(5), field);
    manager.setID(unit->getId(), field);
    EXPECT_EQ(field->getId(), ids.next());
}

TEST_F(RequestedId, LeavesAnUnregisteredObjectUnregistered) {
    kaAnimationUnit unit("loose", 10);
    manager.setID(20, &unit);
    EXPECT_EQ(unit.getId(), 20U);
    EXPECT_EQ(manager.getObject(20), nullptr);
    kaAnimationField field(30);
    manager.setID(40, &field);
    EXPECT_EQ(field.getId(), 40U);
    EXPECT_EQ(manager.getField(40), nullptr);
}

TEST_F(RequestedId, TakesOverTheEntryThatStandsUnderTheFormerId) {
    const std::unique_ptr<kaAnimationUnit> registered(manager.createUnit(10));
    kaAnimationUnit* second = manager.createUnit(10);
    ASSERT_EQ(manager.getObject(10), registered.get());
    manager.setID(20, second);
    EXPECT_EQ(manager.getObject(20), second);
    EXPECT_EQ(manager.getObject(10), nullptr);
    EXPECT_EQ(registered->getId(), 10U);
}

TEST_F(RequestedId, OfNullDoesNothing) {
    ka_test::IdSequence ids;
    manager.setID(5, static_cast<kaAnimationObject*>(nullptr));
    manager.setID(5, static_cast<kaAnimationField*>(nullptr));
    EXPECT_EQ(manager.createUID(), ids.next());
}

TEST_F(RequestedId, KeepsChildrenFindingTheirBlockOnlyByTheNewId) {
    kaAnimationCurve2D* curve = manager.createCurve2D(0);
    kaAnimationUnit* unit = ka_test::makeBlock({curve});
    const kaUID former = unit->getId();
    manager.setID(20, unit);
    EXPECT_EQ(curve->getParent(), former) << "references are not rewritten";
    EXPECT_EQ(unit->getObjects(), (std::vector<kaAnimationObject*>{curve}));
}

TEST_F(RequestedId, LeavesTheListsOfAllNodesAsTheyAre) {
    ka_test::TestScene scene;
    kaAnimationManager::setSceneRootNode(scene.root());
    const osg::NodePtr node = scene.addTransform("arm");
    kaAnimationCurve2D* curve = manager.createCurve2D(500);
    kaAnimationUtils::addAnimationObject(node, curve);
    const auto attachment = osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(node));
    kaAnimationField* field = manager.getField(attachment->getFieldIDs()[0]);
    const std::vector<osg::UInt64> objects(attachment->getObjectIDs().begin(),
                                           attachment->getObjectIDs().end());
    const std::vector<osg::UInt64> fields(attachment->getFieldIDs().begin(), attachment->getFieldIDs().end());

    manager.setID(500, curve);
    manager.setID(field->getId(), field);
    EXPECT_NE(curve->getId(), 500U);
    EXPECT_EQ(std::vector<osg::UInt64>(attachment->getObjectIDs().begin(), attachment->getObjectIDs().end()),
              objects);
    EXPECT_EQ(std::vector<osg::UInt64>(attachment->getFieldIDs().begin(), attachment->getFieldIDs().end()),
              fields);
    EXPECT_TRUE(kaAnimationUtils::getAnimationObjects(node).empty());

    manager.changeAnimAttachmentIDs(500, 600);
    manager.changeAnimAttachmentFieldIDs(fields[0], 600);
    EXPECT_EQ(attachment->getObjectIDs()[0], 500U);
    EXPECT_EQ(attachment->getFieldIDs()[0], fields[0]);
    EXPECT_EQ(kaAnimationManager::changeSceneAnimAttachmentIDs(node), osg::Action::Continue);
    EXPECT_EQ(kaAnimationManager::changeSceneAnimAttachmentFieldIDs(node), osg::Action::Continue);
    EXPECT_EQ(kaAnimationManager::changeSceneAnimAttachmentIDs(osg::NullFC), osg::Action::Continue);
    EXPECT_EQ(kaAnimationManager::changeSceneAnimAttachmentFieldIDs(osg::NullFC), osg::Action::Continue);
}

} // namespace
