#include "ContainerLife.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGMaterialGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPointLight.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTransform3D.h>
#include <gtest/gtest.h>

namespace {

osg::FieldContainerFactory* factory() {
    return osg::FieldContainerFactory::the();
}

TEST(Handle, IsSixteenBytes) {
    EXPECT_EQ(16U, sizeof(osg::FieldContainerPtr));
    EXPECT_EQ(16U, sizeof(osg::NodePtr));
    EXPECT_EQ(16U, sizeof(osg::Transform3DPtr));
}

TEST(Handle, DefaultConstructedIsNull) {
    const osg::NodePtr node;
    EXPECT_TRUE(node == osg::NullFC);
    EXPECT_TRUE(osg::NullFC == node);
    EXPECT_FALSE(node != osg::NullFC);
    EXPECT_TRUE(!node);
    EXPECT_FALSE(static_cast<bool>(node));
    EXPECT_FALSE(node < osg::NullFC);
    EXPECT_EQ(nullptr, node.getCPtr());
    EXPECT_EQ(0, node.getRefCount());
    EXPECT_EQ(0U, osg::getContainerId(node));
}

TEST(Handle, SlicedToABaseHandleStaysEqual) {
    const osg::Transform3DPtr transform = osg::Transform3D::create();
    const osg::NodeCorePtr core = transform;
    const osg::FieldContainerPtr container = core;
    EXPECT_TRUE(core == transform);
    EXPECT_TRUE(container == transform);
    EXPECT_EQ(transform.getFieldContainerId(), container.getFieldContainerId());
    osg::subRefCP(container);
}

TEST(Handle, CastDownGivesTheSameContainerOrNull) {
    const osg::Transform3DPtr transform = osg::Transform3D::create();
    const osg::FieldContainerPtr container = transform;
    EXPECT_TRUE(osg::TransformPtr::dcast(container) == transform);
    EXPECT_TRUE(osg::GroupPtr::dcast(container) == transform);
    EXPECT_TRUE(osg::NodePtr::dcast(container) == osg::NullFC);
    EXPECT_TRUE(osg::LightPtr::dcast(container) == osg::NullFC);
    EXPECT_TRUE(osg::TransformPtr::dcast(osg::NullFC) == osg::NullFC);
    EXPECT_TRUE(osg::dynamic_pointer_cast<osg::TransformPtr>(container) == transform);
    osg::subRefCP(container);
}

#ifdef KA_STRICT_HANDLES

TEST(StrictHandle, OfADestroyedContainerIsItsAddressStill) {
    osg::NodePtr node = osg::Node::create();
    const osg::NodePtr copy = node;
    const osg::Node* address = node.getCPtr();
    const osg::UInt32 id = node.getFieldContainerId();
    osg::subRefCP(node);
    EXPECT_TRUE(node == osg::NullFC) << "the handle itself was made null";
    EXPECT_TRUE(copy != osg::NullFC) << "a copy does not know";
    EXPECT_FALSE(copy == osg::NodePtr());
    EXPECT_EQ(address, copy.getCPtr());
    EXPECT_TRUE(osg::NullFC < copy);
    EXPECT_TRUE(factory()->getContainer(id) == osg::NullFC) << "the store knows";
}

TEST(StrictHandleDeathTest, EndsTheProgramWhenReadAfterItsContainerOrNull) {
    osg::NodePtr node = osg::Node::create();
    const osg::NodePtr copy = node;
    osg::subRefCP(node);
    const char* const gone = "is read whose container is gone|use-after-free|does not point to an object";
    EXPECT_DEATH(copy.getFieldContainerId(), gone);
    EXPECT_DEATH(copy.getRefCount(), gone);
    EXPECT_DEATH(copy->getTravMask(), gone);
    EXPECT_DEATH(osg::NodePtr::dcast(copy), gone);
    EXPECT_DEATH(osg::addRefCP(copy), gone);
    EXPECT_DEATH(osg::releaseRefCP(copy), gone);
    EXPECT_DEATH(osg::NodePtr().getFieldContainerId(), "a null handle is read");
}

TEST(StrictHandle, OrdersByAddress) {
    const osg::NodePtr first = osg::Node::create();
    const osg::NodePtr second = osg::Node::create();
    EXPECT_EQ(std::less<>()(first.getCPtr(), second.getCPtr()), first < second);
    EXPECT_EQ(std::less<>()(second.getCPtr(), first.getCPtr()), second < first);
    osg::releaseRefCP(first);
    osg::releaseRefCP(second);
}

TEST(StrictHandle, GivesTheGroupOfAllContainersForEveryClass) {
    EXPECT_EQ(osg::FieldContainer::getClassType().getGroupId(), osg::Transform::getClassGroupId());
}

#else

TEST(Handle, OfADestroyedContainerIsNullInEveryTest) {
    osg::NodePtr node = osg::Node::create();
    const osg::NodePtr copy = node;
    const osg::UInt32 id = node.getFieldContainerId();
    osg::addRefCP(node);
    osg::subRefCP(node);
    EXPECT_TRUE(node == osg::NullFC) << "the handle itself was made null";
    EXPECT_TRUE(copy == osg::NullFC) << "a copy knows as well";
    EXPECT_TRUE(copy == osg::NodePtr());
    EXPECT_TRUE(!copy);
    EXPECT_EQ(nullptr, copy.getCPtr());
    EXPECT_EQ(0, copy.getRefCount());
    EXPECT_EQ(id, copy.getFieldContainerId());
    EXPECT_TRUE(osg::NodePtr::dcast(copy) == osg::NullFC);
    EXPECT_TRUE(factory()->getContainer(id) == osg::NullFC);
}

TEST(Handle, OfADestroyedContainerNeverMeansALaterOne) {
    std::vector<osg::NodePtr> gone;
    for (int i = 0; i < 100; ++i) {
        osg::NodePtr node = osg::Node::create();
        gone.push_back(node);
        osg::subRefCP(node);
    }
    const osg::NodePtr alive = osg::Node::create();
    for (const osg::NodePtr& node : gone) {
        EXPECT_FALSE(node == alive);
        EXPECT_NE(node.getFieldContainerId(), alive.getFieldContainerId());
    }
    osg::releaseRefCP(alive);
}

TEST(Handle, IgnoresCountingWhenItsContainerIsGone) {
    osg::NodePtr gone = osg::Node::create();
    const osg::NodePtr copy = gone;
    osg::subRefCP(gone);
    osg::addRefCP(copy);
    osg::releaseRefCP(copy);
    osg::endEditCP(copy);
    EXPECT_TRUE(copy == osg::NullFC);
}

#endif

TEST(Handle, CanBeMadeFromTheContainer) {
    const osg::NodePtr node = osg::Node::create();
    EXPECT_TRUE(osg::NodePtr(*node) == node);
    EXPECT_TRUE(osg::NodePtr(node.getCPtr()) == node);
    EXPECT_TRUE(osg::FieldContainerPtr(*node) == node);
    osg::releaseRefCP(node);
}

TEST(Handle, OfANodeGivesTheAddressOfItsCore) {
    const osg::NodePtr node = osg::Node::create();
    EXPECT_EQ(nullptr, node.getCore());
    const osg::GroupPtr group = osg::Group::create();
    node->setCore(group);
    EXPECT_EQ(group.getCPtr(), node.getCore());
    osg::releaseRefCP(node);
}

TEST(Counting, DestroysAtZeroAndBelow) {
    osg::NodePtr counted = osg::Node::create();
    const ka_test::ContainerLife countedLife(counted);
    EXPECT_EQ(0, counted.getRefCount());
    osg::addRefCP(counted);
    osg::addRefCP(counted);
    EXPECT_EQ(2, osg::getRefCount(counted));
    osg::releaseRefCP(counted);
    EXPECT_FALSE(countedLife.isOver());
    osg::releaseRefCP(counted);
    EXPECT_TRUE(countedLife.isOver());

    osg::NodePtr uncounted = osg::Node::create();
    const ka_test::ContainerLife uncountedLife(uncounted);
    osg::releaseRefCP(uncounted);
    EXPECT_TRUE(uncountedLife.isOver()) << "a count of 0 falls below";
}

TEST(Counting, IgnoresNull) {
    osg::NodePtr null;
    osg::addRefCP(null);
    osg::subRefCP(null);
    osg::endEditCP(null);
    EXPECT_TRUE(null == osg::NullFC);
}

TEST(Counting, SetRefdCountsTheNewUpAndTheOldDown) {
    osg::NodePtr first = osg::Node::create();
    const ka_test::ContainerLife firstLife(first);
    osg::NodePtr second = osg::Node::create();
    const ka_test::ContainerLife secondLife(second);
    osg::NodePtr slot;
    osg::setRefdCP(slot, first);
    EXPECT_EQ(1, first.getRefCount());
    osg::setRefdCP(slot, first);
    EXPECT_EQ(1, first.getRefCount()) << "the same again does not destroy it";
    osg::setRefdCP(slot, second);
    EXPECT_TRUE(firstLife.isOver());
    EXPECT_EQ(1, second.getRefCount());
    osg::clearRefCP(slot);
    EXPECT_TRUE(slot == osg::NullFC);
    EXPECT_TRUE(secondLife.isOver());
}

TEST(Counting, RefPtrKeepsItsContainer) {
    osg::NodePtr node = osg::Node::create();
    const ka_test::ContainerLife nodeLife(node);
    {
        osg::NodeRefPtr kept = node;
        osg::NodeRefPtr copy = kept;
        EXPECT_EQ(2, node.getRefCount());
        osg::NodeRefPtr moved = std::move(copy);
        EXPECT_EQ(2, node.getRefCount());
        kept = osg::NullFC;
        EXPECT_EQ(1, node.getRefCount());
        kept = moved;
        kept = kept.get();
        EXPECT_EQ(2, node.getRefCount());
        EXPECT_EQ(node->getTravMask(), kept->getTravMask());
    }
    EXPECT_TRUE(nodeLife.isOver());
}

TEST(Counting, TheSettersThatKeepAHandleCountIt) {
    osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
    const ka_test::ContainerLife materialLife(material);
    osg::MaterialGroupPtr group = osg::MaterialGroup::create();
    group->setMaterial(material);
    EXPECT_EQ(1, material.getRefCount());
    osg::MaterialGroupPtr copy = osg::MaterialGroupPtr::dcast(group->shallowCopy());
    EXPECT_EQ(2, material.getRefCount());
    osg::subRefCP(copy);
    EXPECT_EQ(1, material.getRefCount());

    osg::NodePtr beacon = osg::Node::create();
    const ka_test::ContainerLife beaconLife(beacon);
    osg::PointLightPtr light = osg::PointLight::create();
    light->setBeacon(beacon);
    EXPECT_EQ(1, beacon.getRefCount());

    osg::subRefCP(group);
    osg::subRefCP(light);
    EXPECT_TRUE(materialLife.isOver());
    EXPECT_TRUE(beaconLife.isOver());
}

TEST(Store, SlotZeroIsNullAndIdsAreIndices) {
    const auto* store = factory()->getFieldContainerStore();
    EXPECT_TRUE((*store)[0] == osg::NullFC);
    const std::size_t size = store->size();
    osg::NodePtr node = osg::Node::create();
    EXPECT_EQ(size, node.getFieldContainerId());
    EXPECT_EQ(size + 1, store->size());
    EXPECT_TRUE((*store)[node.getFieldContainerId()] == node);
    EXPECT_TRUE(factory()->getContainer(node.getFieldContainerId()) == node);
    osg::subRefCP(node);
    EXPECT_EQ(size + 1, store->size()) << "the slot stays, empty";
    EXPECT_TRUE((*store)[static_cast<osg::UInt32>(size)] == osg::NullFC);
}

TEST(Store, GivesNullForZeroAndBeyondItsEnd) {
    const auto size = static_cast<osg::UInt32>(factory()->getFieldContainerStore()->size());
    EXPECT_TRUE(factory()->getContainer(0) == osg::NullFC);
    EXPECT_TRUE(factory()->getContainer(size) == osg::NullFC);
    EXPECT_TRUE(factory()->getContainer(0xFFFFFFFFU) == osg::NullFC);
}

TEST(Store, AppliesTheMapperOnlyWhenAsked) {
    struct Shift : osg::FieldContainerMapper {
        osg::UInt32 map(osg::UInt32 id) const override { return id + 1; }
    };
    const Shift shift;
    osg::NodePtr first = osg::Node::create();
    osg::NodePtr second = osg::Node::create();
    EXPECT_TRUE(factory()->getMappedContainer(first.getFieldContainerId()) == first);
    factory()->setMapper(&shift);
    EXPECT_TRUE(factory()->getMappedContainer(first.getFieldContainerId()) == second);
    EXPECT_TRUE(factory()->getContainer(first.getFieldContainerId()) == first);
    factory()->setMapper(nullptr);
    osg::subRefCP(first);
    osg::subRefCP(second);
}

TEST(Library, ExitDestroysAllButThePrototypesAndCanBeUsedAgain) {
    ASSERT_TRUE(osg::osgInit(0, nullptr));
    const osg::NodePtr node = osg::Node::create();
    const ka_test::ContainerLife nodeLife(node);
    node->setCore(osg::Group::create());
    node->addChild(osg::Node::create());
    const osg::UInt32 id = node.getFieldContainerId();
    EXPECT_TRUE(osg::osgExit());
    EXPECT_TRUE(nodeLife.isOver());
    EXPECT_TRUE(osg::Node::getClassType().getPrototype() != osg::NullFC);
    osg::NodePtr later = osg::Node::create();
    EXPECT_LT(id, later.getFieldContainerId());
    osg::subRefCP(later);
}

} // namespace
