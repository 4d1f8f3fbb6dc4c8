#include "Builders.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGAnimAttachment.h>

namespace {

using namespace binding_test;
using ka_test::TestScene;
using osg::AnimAttachment;

/// Every edit of a node's list of animation stands in the host's change list, or views that share the scene
/// never hear of it.
class RecordedChange : public ka_test::RegistryFixture {
  protected:
    osg::AnimAttachmentPtr attachment() const {
        return osg::AnimAttachmentPtr::dcast(kaAnimationUtils::getAnimationAttachment(node));
    }

    /// All that was recorded of the node's attachment since the last look.
    osg::BitVector recorded() {
        osg::BitVector mask = 0;
        for (const auto& entry : recorder.take())
            if (entry.first == attachment().getFieldContainerId())
                mask |= entry.second;
        return mask;
    }

    TestScene scene;
    osg::NodePtr node = scene.addTransform("arm");
    Recorder recorder;
    kaAnimationManager& manager = *kaAnimationManager::the();
};

TEST_F(RecordedChange, TellsThatAnObjectWasListedOrTakenOut) {
    kaAnimationUnit* block = ka_test::makeBlock(0.0F, 10.0F);
    ASSERT_TRUE(kaAnimationUtils::addAnimationObject(node, block));
    EXPECT_TRUE(recorded() & AnimAttachment::ObjectIDsFieldMask);
    ASSERT_TRUE(kaAnimationUtils::addAnimationObject(node, block));
    EXPECT_EQ(recorded(), AnimAttachment::ObjectIDsFieldMask) << "a second listing";
    ASSERT_TRUE(kaAnimationUtils::subAnimationObject(node, block));
    EXPECT_EQ(recorded(), AnimAttachment::ObjectIDsFieldMask);
}

TEST_F(RecordedChange, IsNoneWhereNothingWasTakenOut) {
    kaAnimationUtils::createAnimationAttachment(node, true);
    recorder.take();
    EXPECT_FALSE(kaAnimationUtils::subAnimationObject(node, ka_test::makeBlock(0.0F, 10.0F)));
    EXPECT_EQ(recorded(), 0U);
}

TEST_F(RecordedChange, TellsThatFieldsWereFound) {
    kaAnimationUtils::createAnimationAttachment(node, false);
    recorder.take();
    ASSERT_FALSE(manager.createAnimationFields(node).empty());
    EXPECT_EQ(recorded(), AnimAttachment::FieldIDsFieldMask);
    manager.createAnimationFields(node);
    EXPECT_EQ(recorded(), 0U) << "they stand there already";
}

TEST_F(RecordedChange, TellsThatFieldsWereTakenOutWhereNoneAreFoundAnew) {
    manager.createAnimationFields(node);
    node->setCore(osg::NullFC);
    recorder.take();
    EXPECT_TRUE(manager.recreateAnimationFields(node).empty());
    EXPECT_TRUE(attachment()->getFieldIDs().empty());
    EXPECT_EQ(recorded(), AnimAttachment::FieldIDsFieldMask);
}

TEST_F(RecordedChange, TellsThatASecondFieldOfOneAttributeWasTakenOut) {
    kaAnimationManager::setSceneRootNode(scene.root());
    manager.createAnimationFields(node);
    recorder.take();
    manager.checkUniqueAttributes();
    EXPECT_EQ(recorded(), 0U) << "each stands once";
    const osg::UInt64 first = attachment()->getFieldIDs()[0];
    kaAnimationField* second = manager.createField(0);
    second->attribute = manager.getField(first)->attribute;
    attachment()->getFieldIDs().push_back(second->getId());
    const std::size_t count = attachment()->getFieldIDs().size();
    manager.checkUniqueAttributes();
    EXPECT_EQ(attachment()->getFieldIDs().size(), count - 1);
    EXPECT_EQ(recorded(), AnimAttachment::FieldIDsFieldMask);
}

} // namespace
