#include "HostType.h"

#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTransform.h>
#include <gtest/gtest.h>

namespace {

using Entries = std::vector<osg::ChangeList::ChangedEntry>;

Entries changesOf(const osg::ChangeList& list) {
    return {list.beginChanged(), list.endChanged()};
}

class Changes : public testing::Test {
  protected:
    Changes() {
        _list.setReadOnly(false);
        osg::PThreadBase::setCurrentChangeList(&_list);
    }
    ~Changes() override { osg::PThreadBase::setCurrentChangeList(_before); }

    osg::ChangeList* _before = osg::PThreadBase::getCurrentChangeList();
    osg::ChangeList _list;
    osg::RefPtr<ka_test::WindPtr> _wind = ka_test::Wind::create();
};

TEST_F(Changes, AreRecordedAndToldAtTheEndOfAnEdit) {
    _list.clearAll();
    osg::beginEditCP(_wind.get(), ka_test::Wind::StrengthFieldMask);
    EXPECT_EQ(0U, _list.sizeChanged());
    osg::endEditCP(_wind.get(), ka_test::Wind::StrengthFieldMask);
    EXPECT_EQ((Entries{{_wind.get().getFieldContainerId(), ka_test::Wind::StrengthFieldMask}}),
              changesOf(_list));
    EXPECT_EQ(ka_test::Wind::StrengthFieldMask, _wind->lastChange);
}

TEST_F(Changes, AreOnlyToldByChangedAndOnlyRecordedByEndEditNotChanged) {
    _list.clearAll();
    osg::changedCP(_wind.get(), 4);
    EXPECT_EQ(4U, _wind->lastChange);
    EXPECT_EQ(0U, _list.sizeChanged());
    osg::endEditNotChangedCP(_wind.get(), 8);
    EXPECT_EQ(4U, _wind->lastChange);
    EXPECT_EQ((Entries{{_wind.get().getFieldContainerId(), 8}}), changesOf(_list));
}

TEST_F(Changes, EndWithTheScopeOfAnEditor) {
    _list.clearAll();
    {
        const osg::CPEditor editor(_wind.get(), 2);
        EXPECT_EQ(0U, _list.sizeChanged());
    }
    EXPECT_EQ(1U, _list.sizeChanged());
}

TEST_F(Changes, AreNotMergedAndNotMadeByPlainSetters) {
    _list.clearAll();
    _wind->setStrength(3.0F);
    EXPECT_TRUE(_list.empty());
    _list.addChanged(_wind.get(), 2);
    _list.addChanged(_wind.get(), 2);
    EXPECT_EQ(2U, _list.sizeChanged());
    _list.addChanged(osg::NullFC, 2);
    EXPECT_EQ(2U, _list.sizeChanged());
}

TEST_F(Changes, OfRelationsAreRecordedForThePartner) {
    const osg::NodeRefPtr node = osg::Node::create();
    const osg::NodePtr child = osg::Node::create();
    const osg::TransformPtr core = osg::Transform::create();
    _list.clearAll();
    node->addChild(child);
    node->setCore(core);
    node->addAttachment(_wind.get());
    EXPECT_EQ((Entries{{child.getFieldContainerId(), osg::Node::ParentFieldMask},
                       {core.getFieldContainerId(), osg::NodeCore::ParentsFieldMask},
                       {_wind.get().getFieldContainerId(), osg::Attachment::ParentsFieldMask}}),
              changesOf(_list));
    EXPECT_EQ(3U, _list.sizeAddRefd());
}

TEST_F(Changes, HoldCreationAndDestruction) {
    _list.clearAll();
    osg::NodePtr node = osg::Node::create();
    const osg::UInt32 id = node.getFieldContainerId();
    ASSERT_EQ(1U, _list.sizeCreated());
    EXPECT_EQ(id, *_list.beginCreated());
    EXPECT_EQ((Entries{{id, osg::Node::VolumeFieldMask}}), changesOf(_list))
        << "a new node's volume is to be found";
    osg::subRefCP(node);
    ASSERT_EQ(1U, _list.sizeDestroyed());
    EXPECT_EQ(id, *_list.beginDestroyed());
    EXPECT_EQ(1U, _list.sizeSubRefd());
}

TEST_F(Changes, AreNotRecordedWithoutAListOrWhileItIsReadOnly) {
    _list.clearAll();
    _list.setReadOnly(true);
    osg::endEditCP(_wind.get());
    EXPECT_TRUE(_list.empty());
    osg::PThreadBase::setCurrentChangeList(nullptr);
    EXPECT_EQ(nullptr, osg::Thread::getCurrentChangeList());
    osg::endEditCP(_wind.get(), 2);
    EXPECT_EQ(2U, _wind->lastChange) << "the container is told all the same";
    osg::NodePtr node = osg::Node::create();
    osg::subRefCP(node);
}

TEST_F(Changes, MoveFromListToList) {
    _list.clearAll();
    _list.addChanged(_wind.get(), 2);
    osg::ChangeList other;
    other.merge(_list);
    other.merge(other);
    EXPECT_EQ(2U, other.sizeChanged());
    other.swap(_list);
    EXPECT_EQ(1U, other.sizeChanged());
    EXPECT_EQ(2U, _list.sizeChanged());
    _list.applyAndClear();
    EXPECT_TRUE(_list.empty());
}

TEST(ChangeList, StartsReadOnlyUnlessAskedOtherwise) {
    EXPECT_TRUE(osg::ChangeList().isReadOnly());
    osg::ChangeList::setReadWriteDefault(true);
    EXPECT_FALSE(osg::ChangeList().isReadOnly());
    osg::ChangeList::setReadWriteDefault(false);
    EXPECT_TRUE(osg::ChangeList().isReadOnly());
    ASSERT_NE(nullptr, osg::Thread::getCurrentChangeList());
    EXPECT_EQ(osg::PThreadBase::getCurrentChangeList(), osg::Thread::getCurrentChangeList());
    EXPECT_EQ(0U, osg::Thread::getAspect());
}

TEST(IgnoreChange, IsOffAtFirst) {
    EXPECT_FALSE(osg::FieldContainerPtr::_ignore_change);
}

} // namespace
