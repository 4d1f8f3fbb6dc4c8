#include "RegistryFixture.h"
#include "Rig.h"
#include "TestScene.h"
#include "kaAnimationUtils.h"

#include <OpenSG/OSGTransform3D.h>
#include <OpenSG/OSGTransformAttachment.h>
#include <kaNodeUtils.h>

namespace {

using namespace binding_test;
using Entries = std::vector<std::pair<osg::UInt32, osg::BitVector>>;

constexpr osg::UInt32 ALL = 0xFFFFFFFFU;

class SpecialAttribute : public ka_test::RegistryFixture {
  protected:
    SpecialAttribute() {
        node->setCore(osg::Transform3D::create());
        watch() = Watch();
        recorder.take();
    }

    osg::Vec3f rotation() const {
        const auto attachment = kaNodeUtils::getTransformAttachment(node);
        return attachment != osg::NullFC ? attachment->getRotation() : osg::Vec3f();
    }

    osg::NodePtr node = WatchedNode::create();
    Kept kept{node};
    Recorder recorder;
};

struct Visibility {
    const char* name;
    osg::UInt32 mask;
    float value;
    osg::UInt32 expected;
};

class NodeVisibility : public SpecialAttribute, public testing::WithParamInterface<Visibility> {};

TEST_P(NodeVisibility, IsWrittenWhereItDiffers) {
    node->setTravMask(GetParam().mask);
    kaAnimationField* field = makeNodeField(node, "visible");
    EXPECT_TRUE(write(field, GetParam().value));
    EXPECT_EQ(node->getTravMask(), GetParam().expected);
    const bool changed = GetParam().mask != GetParam().expected;
    const Entries entry{{node.getFieldContainerId(), osg::Node::TravMaskFieldMask}};
    EXPECT_EQ(recorder.take(), changed ? entry : Entries());
    EXPECT_EQ(watch().calls.size(), changed ? 1U : 0U);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), GetParam().expected == ALL ? 1.0F : 0.0F);
}

INSTANTIATE_TEST_SUITE_P(Masks, NodeVisibility,
                         testing::Values(Visibility{"four_tenths_hide", ALL, 0.4F, 0},
                                         Visibility{"a_half_keeps", ALL, 0.5F, ALL},
                                         Visibility{"minus_six_tenths_hide", ALL, -0.6F, 0},
                                         Visibility{"one_shows", 0, 1.0F, ALL},
                                         Visibility{"zero_stays_hidden", 0, 0.0F, 0},
                                         Visibility{"a_partial_mask_counts_as_hidden", 1, 0.0F, 1},
                                         Visibility{"a_partial_mask_is_completed", 1, 1.0F, ALL}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SpecialAttribute, RotationIsWrittenInDegreesOneAxisAtATime) {
    kaNodeUtils::setTransformNodeRotation(node, 1.0F, 2.0F, 3.0F, -1);
    EXPECT_TRUE(write(makeNodeField(node, "rotationX"), 10.0F));
    EXPECT_EQ(rotation(), osg::Vec3f(10.0F, 2.0F, 3.0F));
    EXPECT_TRUE(write(makeNodeField(node, "rotationY"), 20.0F));
    EXPECT_EQ(rotation(), osg::Vec3f(10.0F, 20.0F, 3.0F));
    EXPECT_TRUE(write(makeNodeField(node, "rotationZ"), 30.0F));
    EXPECT_EQ(rotation(), osg::Vec3f(10.0F, 20.0F, 30.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(makeNodeField(node, "rotationX")), 10.0F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(makeNodeField(node, "rotationY")), 20.0F);
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(makeNodeField(node, "rotationZ")), 30.0F);
}

TEST_F(SpecialAttribute, AnEqualRotationIsNotWritten) {
    kaNodeUtils::setTransformNodeRotation(node, 1.0F, 2.0F, 3.0F, -1);
    recorder.take();
    EXPECT_TRUE(write(makeNodeField(node, "rotationY"), 2.0F));
    EXPECT_EQ(recorder.take(), Entries());
}

TEST_F(SpecialAttribute, RotationWithoutAttachmentIsZero) {
    kaAnimationField* field = makeNodeField(node, "rotationX");
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(kaNodeUtils::getTransformAttachment(node), osg::NullFC);
    EXPECT_TRUE(write(field, 5.0F));
    EXPECT_EQ(rotation(), osg::Vec3f(5.0F, 0.0F, 0.0F));
}

TEST_F(SpecialAttribute, RotationFollowsAnAttachmentThatIsReplaced) {
    kaAnimationField* field = makeNodeField(node, "rotationX");
    EXPECT_TRUE(write(field, 5.0F));
    const osg::TransformAttachmentPtr other = osg::TransformAttachment::create();
    other->setRotation(5.0F, 6.0F, 7.0F);
    node->addAttachment(other);
    EXPECT_TRUE(write(field, 8.0F));
    EXPECT_EQ(other->getRotation(), osg::Vec3f(8.0F, 6.0F, 7.0F));
}

TEST_F(SpecialAttribute, AFieldThatAddressesTheCoreFallsBackOnTheNode) {
    kaAnimationField* field = makeField(node->getCore(), "rotationZ");
    field->nodeID = node.getFieldContainerId();
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(rotation(), osg::Vec3f(0.0F, 0.0F, 4.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 4.0F);
    field->attribute = "visible";
    EXPECT_TRUE(write(field, 0.0F));
    EXPECT_EQ(node->getTravMask(), 0U);
}

TEST_F(SpecialAttribute, UnknownAttributesOfANodeAreLeftAlone) {
    kaAnimationField* field = makeNodeField(node, "nonsense");
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    // Only a camera setting has camera values.
    field = makeNodeField(node, "distance");
    EXPECT_TRUE(write(field, 4.0F));
    EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F);
    EXPECT_EQ(recorder.take(), Entries());
}

TEST_F(SpecialAttribute, AMissingNodeIsRefused) {
    kaAnimationField* field = makeNodeField(node, "visible");
    for (const kaUID id : {kaUID(0), kaUID(4000000000U), kaUID(node->getCore().getFieldContainerId())}) {
        field->nodeID = id;
        EXPECT_FALSE(write(field, 0.0F)) << id;
        EXPECT_EQ(kaAnimationUtils::getOSGFieldValue(field), 0.0F) << id;
    }
    EXPECT_EQ(node->getTravMask(), ALL);
}

TEST_F(SpecialAttribute, AFieldOfTheContainerGoesBeforeASpecialAttribute) {
    const RigPtr rig = Rig::create();
    const Kept keptRig(rig);
    kaAnimationField* field = makeField(rig, "real32");
    field->nodeID = node.getFieldContainerId();
    field->attribute = "visible";
    EXPECT_TRUE(write(field, 0.25F));
    EXPECT_EQ(rig->real32.getValue(), 0.25F);
    EXPECT_EQ(node->getTravMask(), ALL);
}

} // namespace
