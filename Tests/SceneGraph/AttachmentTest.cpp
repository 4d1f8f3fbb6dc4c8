#include "ContainerLife.h"
#include "HostType.h"

#include <OpenSG/OSGAnimAttachment.h>
#include <OpenSG/OSGGroup.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGRefPtr.h>
#include <OpenSG/OSGSimpleAttachments.h>
#include <OpenSG/OSGSimpleMaterial.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <gtest/gtest.h>

namespace {

class Attachments : public testing::Test {
  protected:
    osg::NodeRefPtr _node = osg::Node::create();
};

TEST_F(Attachments, AreFoundByGroup) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType().getGroupId()) == osg::NullFC);
    _node->addAttachment(anim);
    const osg::AttachmentPtr found = _node->findAttachment(osg::AnimAttachment::getClassType().getGroupId());
    EXPECT_TRUE(found == anim);
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType()) == anim);
    EXPECT_TRUE(_node->findAttachment(osg::TransformAttachment::getClassType()) == osg::NullFC);
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType(), 1) == osg::NullFC)
        << "another binding";
    osg::AnimAttachmentPtr::dcast(found)->editMFObjectIDs()->push_back(5);
    EXPECT_EQ(5U, anim->getObjectIDs()[0]);
}

TEST_F(Attachments, AreCountedAndKnowTheirParents) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    const ka_test::ContainerLife animLife(anim);
    _node->addAttachment(anim);
    EXPECT_EQ(1, anim.getRefCount());
    ASSERT_EQ(1U, anim->getParents().size());
    EXPECT_TRUE(anim->getParents()[0] == _node.get());
    _node->subAttachment(anim);
    EXPECT_TRUE(animLife.isOver());
    EXPECT_TRUE(_node->getAttachments().empty());
}

TEST_F(Attachments, OfTheSameGroupReplaceOneAnother) {
    const osg::AnimAttachmentPtr first = osg::AnimAttachment::create();
    const ka_test::ContainerLife firstLife(first);
    const osg::AnimAttachmentPtr second = osg::AnimAttachment::create();
    _node->addAttachment(first);
    _node->addAttachment(first);
    EXPECT_EQ(1, first.getRefCount()) << "adding it again is no second reference";
    _node->addAttachment(second);
    EXPECT_TRUE(firstLife.isOver());
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType()) == second);
    EXPECT_EQ(1U, _node->getAttachments().size());
}

TEST_F(Attachments, OfDifferentBindingsStandSideBySide) {
    const osg::AnimAttachmentPtr first = osg::AnimAttachment::create();
    const ka_test::ContainerLife firstLife(first);
    const osg::AnimAttachmentPtr second = osg::AnimAttachment::create();
    const ka_test::ContainerLife secondLife(second);
    _node->addAttachment(first);
    _node->addAttachment(second, 3);
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType()) == first);
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType(), 3) == second);
    _node->subAttachment(first, 3);
    EXPECT_TRUE(secondLife.isOver()) << "whatever sits under the group and binding is removed";
    EXPECT_FALSE(firstLife.isOver());
}

TEST_F(Attachments, MayBeSharedAndGoWithTheLastParent) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    const ka_test::ContainerLife animLife(anim);
    osg::NodeRefPtr other = osg::Node::create();
    _node->addAttachment(anim);
    other->addAttachment(anim);
    EXPECT_EQ(2, anim.getRefCount());
    other = osg::NullFC;
    EXPECT_EQ(1, anim.getRefCount());
    EXPECT_EQ(1U, anim->getParents().size());
    _node = osg::NullFC;
    EXPECT_TRUE(animLife.isOver());
}

TEST_F(Attachments, AreSharedWithAShallowCopy) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    _node->addAttachment(anim);
    osg::NodePtr copy = osg::NodePtr::dcast(_node->shallowCopy());
    EXPECT_TRUE(copy->findAttachment(osg::AnimAttachment::getClassType()) == anim);
    EXPECT_EQ(2, anim.getRefCount());
    osg::subRefCP(copy);
    EXPECT_EQ(1, anim.getRefCount());
}

TEST_F(Attachments, DestroyedUnderTheirParentLeaveNothingBehind) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    const ka_test::ContainerLife animLife(anim);
    _node->addAttachment(anim);
    _node->addAttachment(anim, 1);
    osg::releaseRefCP(anim);
    osg::releaseRefCP(anim);
    EXPECT_TRUE(animLife.isOver());
    EXPECT_TRUE(_node->getAttachments().empty());
    EXPECT_TRUE(_node->findAttachment(osg::AnimAttachment::getClassType()) == osg::NullFC);
}

TEST_F(Attachments, OfNullAreIgnored) {
    _node->addAttachment(osg::NullFC);
    _node->subAttachment(osg::NullFC);
    EXPECT_TRUE(_node->getAttachments().empty());
}

TEST_F(Attachments, OfAHostsOwnTypeWorkAsWell) {
    _node->addAttachment(ka_test::Wind::create());
    EXPECT_TRUE(ka_test::WindPtr::dcast(_node->findAttachment(ka_test::Wind::getClassType())) != osg::NullFC);
}

TEST_F(Attachments, HangOnManyNodesAndLeaveThemInAnyOrder) {
    const osg::AnimAttachmentPtr anim = osg::AnimAttachment::create();
    const osg::RefPtr<osg::AnimAttachmentPtr> kept = anim;
    std::vector<osg::NodeRefPtr> nodes;
    for (int i = 0; i < 200; ++i) {
        nodes.emplace_back(osg::Node::create());
        nodes.back()->addAttachment(anim);
        nodes.back()->addAttachment(anim, 1);
    }
    EXPECT_EQ(400U, anim->getParents().size());
    for (std::size_t step = 0; step < nodes.size(); ++step) { // 7 and 200 have no common divisor: all are met
        const std::size_t index = step * 7 % nodes.size();
        nodes[index] = osg::NullFC;
        EXPECT_EQ(2 * (nodes.size() - 1 - step), anim->getParents().size());
        for (const osg::FieldContainerPtr& parent : anim->getParents())
            ASSERT_TRUE(parent != osg::NullFC);
    }
    EXPECT_EQ(1, anim.getRefCount());
}

TEST_F(Attachments, GiveContainersTheirNames) {
    EXPECT_EQ(nullptr, osg::getName(_node));
    osg::setName(_node, "first");
    EXPECT_STREQ("first", osg::getName(_node));
    osg::setName(_node, std::string("second"));
    EXPECT_STREQ("second", osg::getName(_node));
    osg::setName(_node, nullptr);
    EXPECT_EQ(nullptr, osg::getName(_node));
    osg::setName(_node, nullptr);
    osg::setName(osg::NullFC, "nobody");
    EXPECT_EQ(nullptr, osg::getName(osg::NodePtr()));

    osg::SimpleMaterialPtr material = osg::SimpleMaterial::create();
    osg::setName(material, "red");
    EXPECT_STREQ("red", osg::getName(material));
    osg::subRefCP(material);
}

TEST_F(Attachments, KeepTheNamesOfCopiesApart) {
    osg::setName(_node, "original");
    osg::NodePtr copy = osg::NodePtr::dcast(_node->shallowCopy());
    EXPECT_STREQ("original", osg::getName(copy));
    osg::setName(copy, "copy");
    EXPECT_STREQ("original", osg::getName(_node));
    EXPECT_STREQ("copy", osg::getName(copy));
    osg::subRefCP(copy);
}

} // namespace
