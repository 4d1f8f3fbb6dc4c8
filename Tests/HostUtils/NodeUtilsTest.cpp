#include "kaNodeUtils.h"

#include <OpenSG/OSGBaseFunctions.h>
#include <OpenSG/OSGChangeList.h>
#include <OpenSG/OSGThread.h>
#include <OpenSG/OSGTransform.h>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

class NodeRotation : public testing::Test {
  protected:
    NodeRotation() {
        osg::osgInit();
        _node = osg::Node::create();
        osg::addRefCP(_node);
        _node->setCore(osg::Transform::create());
        _list.setReadOnly(false);
        osg::PThreadBase::setCurrentChangeList(&_list);
    }
    ~NodeRotation() override {
        osg::PThreadBase::setCurrentChangeList(_before);
        osg::subRefCP(_node);
    }

    bool isRecorded(const osg::FieldContainerPtr& container, osg::BitVector mask) const {
        return std::any_of(_list.beginChanged(), _list.endChanged(), [&](const auto& entry) {
            return entry.first == container.getFieldContainerId() && (entry.second & mask) == mask;
        });
    }

    osg::ChangeList* _before = osg::PThreadBase::getCurrentChangeList();
    osg::ChangeList _list;
    osg::NodePtr _node;
};

} // namespace

TEST_F(NodeRotation, HasNoAttachmentUntilItIsTurned) {
    EXPECT_TRUE(kaNodeUtils::getTransformAttachment(_node) == osg::NullFC);
    EXPECT_TRUE(kaNodeUtils::getTransformAttachment(osg::NullFC) == osg::NullFC);
}

TEST_F(NodeRotation, MakesTheAttachmentAndAnnouncesIt) {
    kaNodeUtils::setTransformNodeRotation(_node, 10, 20, 30, -1);
    const osg::TransformAttachmentPtr attachment = kaNodeUtils::getTransformAttachment(_node);
    ASSERT_TRUE(attachment != osg::NullFC);
    EXPECT_EQ(attachment->getRotation(), osg::Vec3f(10, 20, 30));
    EXPECT_TRUE(isRecorded(_node, osg::Node::AttachmentsFieldMask));
    EXPECT_TRUE(isRecorded(attachment, osg::TransformAttachment::RotationFieldMask));
}

TEST_F(NodeRotation, KeepsTheAttachmentItHas) {
    kaNodeUtils::setTransformNodeRotation(_node, 10, 20, 30, -1);
    const osg::TransformAttachmentPtr first = kaNodeUtils::getTransformAttachment(_node);
    _list.clearAll();
    kaNodeUtils::setTransformNodeRotation(_node, 10, 21, 30, -1);
    EXPECT_TRUE(kaNodeUtils::getTransformAttachment(_node) == first);
    EXPECT_EQ(first->getRotation(), osg::Vec3f(10, 21, 30));
    EXPECT_TRUE(isRecorded(first, osg::TransformAttachment::RotationFieldMask));
    EXPECT_FALSE(isRecorded(_node, osg::Node::AttachmentsFieldMask));
}

TEST_F(NodeRotation, AnnouncesNothingThatIsAsItWas) {
    kaNodeUtils::setTransformNodeRotation(_node, 10, 20, 30, -1);
    _list.clearAll();
    kaNodeUtils::setTransformNodeRotation(_node, 10, 20, 30, -1);
    EXPECT_EQ(_list.sizeChanged(), 0U);
}

TEST_F(NodeRotation, IgnoresANullNode) {
    kaNodeUtils::setTransformNodeRotation(osg::NullFC, 1, 2, 3, -1);
    EXPECT_EQ(_list.sizeChanged(), 0U);
}
