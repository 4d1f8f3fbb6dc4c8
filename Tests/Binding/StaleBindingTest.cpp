#include "AllocationCount.h"
#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGTransform3D.h>
#include <kaAnimationController.h>
#include <kaNodeUtils.h>

namespace {

using namespace binding_test;
using ka_test::TestScene;

/// Writes go by what the last one found; whatever differs since then must be noticed.
class StaleBinding : public ka_test::RegistryFixture {
  protected:
    StaleBinding() { watch() = Watch(); }

    RigPtr rig = Rig::create();
    Kept kept{rig};
};

TEST_F(StaleBinding, ARenamedFieldIsResolvedAnew) {
    kaAnimationField* field = makeField(rig, "vec3f", 1);
    EXPECT_TRUE(write(field, 1.0F));
    field->name = "pnt3f"; // the same length
    EXPECT_TRUE(write(field, 2.0F));
    EXPECT_EQ(rig->vec3f.getValue(), osg::Vec3f(0.0F, 1.0F, 0.0F));
    EXPECT_EQ(rig->pnt3f.getValue(), osg::Pnt3f(0.0F, 2.0F, 0.0F));
    field->name = "nowhere";
    EXPECT_FALSE(write(field, 3.0F));
    field->name = "vec3f";
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(rig->vec3f.getValue(), osg::Vec3f(0.0F, 4.0F, 0.0F));
}

TEST_F(StaleBinding, AnAngleIsAnAngleByItsPresentName) {
    kaAnimationField* field = makeField(rig, "rotateReal32");
    EXPECT_TRUE(write(field, 180.0F));
    field->name = "real32";
    EXPECT_TRUE(write(field, 180.0F));
    EXPECT_EQ(rig->real32.getValue(), 180.0F);
}

TEST_F(StaleBinding, AMovedPositionCountsAtOnce) {
    kaAnimationField* field = makeField(rig, "vec3f", 0);
    EXPECT_TRUE(write(field, 1.0F));
    field->valuePos = 2;
    EXPECT_TRUE(write(field, 2.0F));
    EXPECT_EQ(rig->vec3f.getValue(), osg::Vec3f(1.0F, 0.0F, 2.0F));
}

TEST_F(StaleBinding, AnotherContainerIsResolvedAnew) {
    const RigPtr other = Rig::create();
    const Kept keptOther(other);
    kaAnimationField* field = makeField(rig, "real32");
    EXPECT_TRUE(write(field, 1.0F));
    field->fcID = other.getFieldContainerId();
    EXPECT_TRUE(write(field, 2.0F));
    EXPECT_EQ(rig->real32.getValue(), 1.0F);
    EXPECT_EQ(other->real32.getValue(), 2.0F);
}

TEST_F(StaleBinding, AContainerOfAnotherTypeIsResolvedAnew) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const osg::CameraSettingPtr camera = osg::CameraSetting::create();
    const Kept keptCamera(camera);
    kaAnimationField* field = makeField(rig, "vec3f");
    field->nodeID = node.getFieldContainerId();
    field->attribute = "visible";
    EXPECT_TRUE(write(field, 1.0F));
    field->fcID = node.getFieldContainerId();
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(node->getTravMask(), 0U);
    field->fcID = camera.getFieldContainerId();
    field->attribute = "height";
    EXPECT_TRUE(write(field, 3.0F));
    EXPECT_EQ(camera->getHeight(), 3.0F);
    field->name = "up";
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(camera->getUp()[0], 4.0F);
    field->fcID = rig.getFieldContainerId();
    field->name = "vec3f";
    EXPECT_TRUE(write(field, 5.0F));
    EXPECT_EQ(rig->vec3f.getValue()[0], 5.0F);
}

TEST_F(StaleBinding, ADestroyedContainerIsRefused) {
    kaAnimationField* field = makeField(rig, "real32");
    EXPECT_TRUE(write(field, 1.0F));
    kept.release();
    EXPECT_FALSE(write(field, 2.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    EXPECT_FALSE(write(field, 3.0F));
}

TEST_F(StaleBinding, ADestroyedNodeIsRefused) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const osg::NodeCorePtr core = node->getCore();
    const Kept keptCore(core);
    for (const char* attribute : {"visible", "rotationX"}) {
        kaAnimationField* ofNode = makeNodeField(node, attribute);
        kaAnimationField* ofCore = makeField(core, attribute);
        ofCore->nodeID = node.getFieldContainerId();
        EXPECT_TRUE(write(ofNode, 1.0F));
        EXPECT_TRUE(write(ofCore, 1.0F));
    }
    std::vector<kaAnimationField*> fields;
    for (const auto& entry : kaAnimationManager::the()->getFields())
        fields.push_back(entry.second);
    ASSERT_EQ(fields.size(), 4U);
    scene.destroy(node);
    for (kaAnimationField* field : fields) {
        EXPECT_FALSE(write(field, 2.0F));
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    }
}

TEST_F(StaleBinding, AnotherNodeOrAttributeIsResolvedAnew) {
    TestScene scene;
    const osg::NodePtr first = scene.addTransform("first");
    const osg::NodePtr second = scene.addTransform("second");
    const osg::NodeCorePtr core = first->getCore();
    kaAnimationField* field = makeField(core, "rotationX");
    field->nodeID = first.getFieldContainerId();
    EXPECT_TRUE(write(field, 1.0F));
    field->nodeID = second.getFieldContainerId();
    EXPECT_TRUE(write(field, 2.0F));
    field->attribute = "rotationZ";
    EXPECT_TRUE(write(field, 3.0F));
    EXPECT_EQ(kaNodeUtils::getTransformAttachment(first)->getRotation(), osg::Vec3f(1.0F, 0.0F, 0.0F));
    EXPECT_EQ(kaNodeUtils::getTransformAttachment(second)->getRotation(), osg::Vec3f(2.0F, 0.0F, 3.0F));
    field->nodeID = 0;
    EXPECT_FALSE(write(field, 4.0F));
    field->nodeID = second.getFieldContainerId();
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(kaNodeUtils::getTransformAttachment(second)->getRotation(), osg::Vec3f(2.0F, 0.0F, 4.0F));
}

TEST_F(StaleBinding, ANodeThatComesLaterIsFound) {
    kaAnimationField* field = makeField(rig, "nowhere");
    field->attribute = "visible";
    field->nodeID = osg::FieldContainerFactory::the()->getFieldContainerStore()->size(); // the next id
    EXPECT_FALSE(write(field, 0.0F));
    const osg::NodePtr later = osg::Node::create();
    const Kept keptLater(later);
    ASSERT_EQ(later.getFieldContainerId(), field->nodeID);
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(later->getTravMask(), 0U);
}

TEST_F(StaleBinding, ValuesChangedBehindTheRecordAreWrittenOver) {
    kaAnimationField* field = makeField(rig, "vec3f", 1);
    EXPECT_TRUE(write(field, 1.0F));
    rig->vec3f.setValue(osg::Vec3f(7.0F, 8.0F, 9.0F));
    EXPECT_TRUE(write(field, 1.0F));
    EXPECT_EQ(rig->vec3f.getValue(), osg::Vec3f(7.0F, 1.0F, 9.0F));
}

TEST_F(StaleBinding, ACopyOfARecordIsResolvedOnItsOwn) {
    kaAnimationField* field = makeField(rig, "vec3f", 1);
    EXPECT_TRUE(write(field, 1.0F));
    kaAnimationField* copy = kaAnimationManager::the()->duplicateField(field);
    kaAnimationManager::the()->destroyField(field);
    EXPECT_TRUE(write(copy, 2.0F));
    EXPECT_EQ(rig->vec3f.getValue()[1], 2.0F);
}

TEST_F(StaleBinding, NamesThatMeanNothingAreCheckedAllTheSame) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    kaAnimationField* field = makeNodeField(node, "nothing that the scene knows");
    EXPECT_TRUE(write(field, 0.0F));
    field->name = "no less unknown to the scene";
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(node->getTravMask(), 0xFFFFFFFFU);
    field->attribute = "visible";
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(node->getTravMask(), 0U);
    field->attribute = "nothing that the scene knows";
    EXPECT_TRUE(write(field, 1.0F));
    EXPECT_EQ(node->getTravMask(), 0U);
    field->name = "travMask"; // a field of the node after all, of whole numbers
    EXPECT_TRUE(write(field, 3.0F));
    EXPECT_EQ(node->getTravMask(), 3U);
}

TEST_F(StaleBinding, WarmWritesAllocateNothing) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("arm");
    const osg::CameraSettingPtr camera = osg::CameraSetting::create();
    const Kept keptCamera(camera);
    const std::vector<kaAnimationField*> fields{
        makeField(rig, "vec3f", 2),    makeField(rig, "rotateReal32"),   makeField(rig, "real64"),
        makeField(camera, "distance"), makeNodeField(node, "rotationY"), makeNodeField(node, "visible")};
    for (kaAnimationField* field : fields)
        EXPECT_TRUE(write(field, 1.0F));
    watch().calls.reserve(100);
    const std::size_t before = allocationCount();
    for (const float value : {1.0F, 0.25F, 0.75F, 0.75F})
        for (kaAnimationField* field : fields)
            write(field, value);
    EXPECT_EQ(allocationCount(), before);
}

TEST_F(StaleBinding, ARecordFreedInAnswerToItsWriteIsLeftAlone) {
    for (const char* name : {"vec3f", "real64", "matrix", "int32"}) {
        kaAnimationField* field = makeField(rig, name);
        const kaUID id = field->getId();
        watch().answer = [id] {
            kaAnimationManager::the()->destroyField(kaAnimationManager::the()->getField(id));
        };
        EXPECT_TRUE(write(field, 3.0F)) << name;
        EXPECT_EQ(kaAnimationManager::the()->getField(id), nullptr) << name;
    }
}

TEST_F(StaleBinding, OfRecordsWrittenTogetherOneFreedInAnswerToAnotherIsPassedOver) {
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationField* first = makeField(rig, "vec3f");
    const kaUID doomed = makeField(rig, "real32")->getId();
    kaAnimationField* last = makeField(rig, "real64");
    first->value = manager->getField(doomed)->value = last->value = 3.0F;
    watch().answer = [manager, doomed] { manager->destroyField(manager->getField(doomed)); };
    EXPECT_EQ(kaAnimationController::the()->updateAnimationFields({first, manager->getField(doomed), last}),
              2U);
    EXPECT_EQ(rig->vec3f.getValue()[0], 3.0F);
    EXPECT_EQ(rig->real32.getValue(), 0.0F);
    EXPECT_EQ(rig->real64.getValue(), 3.0);
}

TEST_F(StaleBinding, AContainerFreedInAnswerToItsWriteIsLeftAlone) {
    kaAnimationField* field = makeField(rig, "vec3f");
    watch().answer = [this] { kept.release(); };
    EXPECT_TRUE(write(field, 3.0F));
    EXPECT_FALSE(write(field, 4.0F));
}

TEST_F(StaleBinding, ARecordChangedAndWrittenInAnswerToItsWriteEndsAsChanged) {
    kaAnimationField* field = makeField(rig, "vec3f");
    watch().answer = [field] {
        field->name = "matrix";
        EXPECT_TRUE(write(field, 6.0F));
    };
    EXPECT_TRUE(write(field, 3.0F));
    EXPECT_EQ(rig->vec3f.getValue()[0], 3.0F);
    EXPECT_EQ(rig->matrix.getValue()[0][0], 6.0F);
}

TEST_F(StaleBinding, ANodeFreedInAnswerToItsWriteIsLeftAlone) {
    for (const char* attribute : {"visible", "rotationY"}) {
        const osg::NodePtr node = WatchedNode::create();
        Kept keptNode(node);
        node->setCore(osg::Group::create());
        kaAnimationField* field = makeNodeField(node, attribute);
        const kaUID id = field->getId();
        watch().answer = [&keptNode, id] {
            kaAnimationManager::the()->destroyField(kaAnimationManager::the()->getField(id));
            keptNode.release();
        };
        EXPECT_TRUE(write(field, 0.25F)) << attribute;
        EXPECT_EQ(kaAnimationManager::the()->getField(id), nullptr) << attribute;
    }
}

} // namespace
