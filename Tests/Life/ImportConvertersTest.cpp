#include "ImportFixture.h"

#include <OpenSG/OSGGroup.h>

namespace {

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// Points.

class ImportPoint : public ImportFixture {};

TEST_F(ImportPoint, TakesPositionAndHandles) {
    const ka_older::Key older{{3.0F, 4.0F}, ka_older::User, {1.0F, 2.0F}, {5.0F, 7.0F}};
    const kaControlPoint2D* point = manager().importPoint(ka_older::makePoint(older), nullptr);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->getPosition(), osg::Pnt2f(3.0F, 4.0F));
    EXPECT_EQ(point->getInTangent()->getPosition(), osg::Pnt2f(1.0F, 2.0F));
    EXPECT_EQ(point->getOutTangent()->getPosition(), osg::Pnt2f(5.0F, 7.0F));
    EXPECT_EQ(point->getTangentLengthMode(), kaControlPoint2D::LENGTH_HALF);
    EXPECT_EQ(manager().getPoint2D(point->getId()), point);
}

TEST_F(ImportPoint, OfNullIsNull) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{});
    EXPECT_EQ(manager().importPoint(osg::AnimationControlPointPtr(), curve), nullptr);
    EXPECT_FALSE(curve->hasChildren());
}

TEST_F(ImportPoint, JoinsTheCurve) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
    kaControlPoint2D* point = manager().importPoint(ka_older::makePoint({{5.0F, 1.0F}}), curve);
    EXPECT_EQ(keysOf(*curve).back(), point);
    EXPECT_EQ(point->getParent(), curve->getId());
}

struct TangentCodeRow {
    unsigned int older;
    unsigned int today;
};

class ImportTangentCode : public ImportPoint, public testing::WithParamInterface<TangentCodeRow> {};

TEST_P(ImportTangentCode, BecomesTodaysType) {
    const ka_older::Key key{{0.0F, 0.0F}, GetParam().older};
    const kaControlPoint2D* point = manager().importPoint(ka_older::makePoint(key), nullptr);
    EXPECT_EQ(point->getTangentType(), GetParam().today);
}

INSTANTIATE_TEST_SUITE_P(Codes, ImportTangentCode,
                         testing::Values(TangentCodeRow{0, 2}, TangentCodeRow{1, 0}, TangentCodeRow{2, 1},
                                         TangentCodeRow{3, 4}, TangentCodeRow{4, 2}, TangentCodeRow{5, 8},
                                         TangentCodeRow{6, 16}, TangentCodeRow{7, 2}, TangentCodeRow{255, 2}),
                         [](const auto& row) { return "code_" + std::to_string(row.param.older); });

// Curves.

class ImportCurve : public ImportFixture {
  protected:
    kaAnimationUnit* unit = nullptr;
    osg::NodePtr other = scene.addTransform("other");

    void SetUp() override {
        ImportFixture::SetUp();
        unit = manager().createUnit("block", 0);
    }
};

TEST_F(ImportCurve, IsNamedAfterTheFieldAndJoinsTheBlock) {
    kaAnimationCurve2D* curve = manager().importCurve(turning(node), unit, osg::NodePtr());
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(curve->getName(), "rotationX");
    EXPECT_EQ(curve->getField(), manager().getField(node, "rotationX")->getId());
    EXPECT_THAT(unit->getCurves(), ElementsAre(curve));
    EXPECT_EQ(unit->getNodeID(), idOf(node)) << "the first curve decides";
    const auto keys = keysOf(*curve);
    ASSERT_THAT(keys, SizeIs(2));
    EXPECT_EQ(keys[0]->getPosition(), osg::Pnt2f(0.0F, 1.0F));
    EXPECT_EQ(keys[1]->getPosition(), osg::Pnt2f(10.0F, 2.0F));
    EXPECT_THAT(listedObjects(node), IsEmpty()) << "the block is listed, not the curve";
}

TEST_F(ImportCurve, NeedsABlockAndACurve) {
    EXPECT_EQ(manager().importCurve(turning(node), nullptr, node), nullptr);
    EXPECT_EQ(manager().importCurve(osg::AnimationCurvePtr(), unit, node), nullptr);
    EXPECT_FALSE(unit->hasChildren());
}

TEST_F(ImportCurve, GoesByItsNameWhereItHasNoAttribute) {
    const osg::AnimationCurvePtr older = turning(node);
    older->setAttribute("");
    older->setName("rotateY");
    const kaAnimationCurve2D* curve = manager().importCurve(older, unit, osg::NodePtr());
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(fieldOf(curve)->attribute, "rotationY");
}

TEST_F(ImportCurve, OfAnUnknownAttributeOrNoneIsLeftOut) {
    for (const char* attribute : {"wobble", ""}) {
        const osg::AnimationCurvePtr older = turning(node);
        older->setAttribute(attribute);
        older->setName(attribute);
        EXPECT_EQ(manager().importCurve(older, unit, osg::NodePtr()), nullptr);
    }
    EXPECT_FALSE(unit->hasChildren());
    EXPECT_THAT(all<kaAnimationCurve2D>(KA_TYPE_CURVE), IsEmpty());
    EXPECT_THAT(all<kaControlPoint2D>(KA_TYPE_POINT), IsEmpty());
}

TEST_F(ImportCurve, PassesOverNullKeys) {
    const osg::AnimationCurvePtr older = turning(node);
    older->getPoints().insert(older->getPoints().begin(), osg::AnimationControlPointPtr());
    older->getPoints().push_back(osg::AnimationControlPointPtr());
    EXPECT_THAT(keysOf(*manager().importCurve(older, unit, osg::NodePtr())), SizeIs(2));
}

TEST_F(ImportCurve, KeepsTheLaterOfTwoKeysAtOneFrame) {
    const osg::AnimationCurvePtr older =
        ka_older::makeCurve("rotateX", {{{10.0F, 1.0F}}, {{0.0F, 2.0F}}, {{10.0F, 3.0F}}}, node);
    const auto keys = keysOf(*manager().importCurve(older, unit, osg::NodePtr()));
    ASSERT_THAT(keys, SizeIs(2));
    EXPECT_EQ(keys[0]->getPosition(), osg::Pnt2f(0.0F, 2.0F));
    EXPECT_EQ(keys[1]->getPosition(), osg::Pnt2f(10.0F, 3.0F));
}

TEST_F(ImportCurve, WithoutKeysIsAnEmptyCurve) {
    const auto* curve = manager().importCurve(ka_older::makeCurve("rotateX", {}, node), unit, osg::NodePtr());
    ASSERT_NE(curve, nullptr);
    EXPECT_FALSE(curve->hasChildren());
}

/// Which of the four references to a node are there; the first of them counts.
struct NodeChoice {
    const char* name;
    bool asked, own, block, fallback;
    int expected; ///< index in that order, -1 for none
};

class ImportCurveNode : public ImportCurve, public testing::WithParamInterface<NodeChoice> {};

TEST_P(ImportCurveNode, IsTheFirstThatIsThere) {
    const NodeChoice& choice = GetParam();
    const std::vector<osg::NodePtr> nodes{node, other, scene.addTransform("third"),
                                          scene.addTransform("fourth")};
    const osg::AnimationCurvePtr older = turning(choice.own ? nodes[1] : osg::NodePtr());
    unit->setNodeID(choice.block ? idOf(nodes[2]) : 0);
    older->setFallback(choice.fallback ? nodes[3] : osg::NodePtr());
    const kaAnimationCurve2D* curve =
        manager().importCurve(older, unit, choice.asked ? nodes[0] : osg::NodePtr());
    if (choice.expected < 0) {
        EXPECT_EQ(curve, nullptr);
        return;
    }
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(nodeOf(curve), idOf(nodes[static_cast<std::size_t>(choice.expected)]));
}

INSTANTIATE_TEST_SUITE_P(References, ImportCurveNode,
                         testing::Values(NodeChoice{"all", true, true, true, true, 0},
                                         NodeChoice{"not_asked", false, true, true, true, 1},
                                         NodeChoice{"block_and_fallback", false, false, true, true, 2},
                                         NodeChoice{"fallback_alone", false, false, false, true, 3},
                                         NodeChoice{"none", false, false, false, false, -1}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ImportCurve, ContainersThatAreNoNodesDoNotCount) {
    const osg::AnimationCurvePtr older = turning(osg::NodePtr());
    const osg::FieldContainerPtr core = node->getCore();
    unit->setNodeID(core.getFieldContainerId());
    older->setFallback(core);
    EXPECT_EQ(manager().importCurve(older, unit, osg::NodePtr()), nullptr);
    older->setFallback(other);
    const kaAnimationCurve2D* curve = manager().importCurve(older, unit, osg::NodePtr());
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(nodeOf(curve), idOf(other));
}

TEST_F(ImportCurve, NodesThatAreGoneDoNotCount) {
    const osg::NodePtr gone = scene.addTransform("gone");
    const osg::AnimationCurvePtr older = turning(gone);
    older->setFallback(node);
    unit->setNodeID(idOf(gone));
    scene.destroy(gone);
    const kaAnimationCurve2D* curve = manager().importCurve(older, unit, osg::NodePtr());
    ASSERT_NE(curve, nullptr);
    EXPECT_EQ(nodeOf(curve), idOf(node));
}

TEST_F(ImportCurve, OfANodeWithoutCoreIsLeftOut) {
    const osg::NodePtr bare = scene.addNode("bare", osg::NodeCorePtr());
    EXPECT_EQ(manager().importCurve(turning(bare), unit, osg::NodePtr()), nullptr);
}

// Blocks.

class ImportBlock : public ImportFixture {};

TEST_F(ImportBlock, TakesNameFlagsCurvesAndNode) {
    const osg::NodePtr other = scene.addTransform("other");
    const osg::AnimationBlockPtr older = ka_older::makeBlock("wave", {turning(node)}, other);
    older->setRepeating(true);
    older->setMotionBlur(true);
    older->setFlipped(true);
    kaAnimationUnit* unit = manager().importBlock(older, nullptr);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(unit->getName(), "wave");
    EXPECT_TRUE(unit->isRepeating() && unit->isMotionBlur() && unit->isFlipped());
    EXPECT_EQ(unit->getParent(), 0U);
    EXPECT_EQ(unit->getNodeID(), idOf(other));
    const auto curves = unit->getCurves();
    ASSERT_THAT(curves, SizeIs(1));
    EXPECT_TRUE(curves[0]->isRepeating() && curves[0]->isMotionBlur());
    EXPECT_FALSE(curves[0]->isFlipped()) << "only the mark is stored";
    EXPECT_EQ(unit->getBegin(), 0.0F);
    EXPECT_EQ(unit->getEnd(), 10.0F);
}

TEST_F(ImportBlock, NamesNoNodeThatIsGone) {
    const osg::NodePtr gone = scene.addTransform("gone");
    const osg::AnimationBlockPtr older = ka_older::makeBlock("wave", {}, gone);
    const osg::AnimationBlockPtr other = ka_older::makeBlock("other", {}, node);
    scene.destroy(gone);
    EXPECT_EQ(manager().importBlock(older, nullptr)->getNodeID(), 0U);
    EXPECT_EQ(manager().importBlock(other, nullptr)->getNodeID(), idOf(node));
    const osg::NodePtr later = scene.addTransform("later"); // a node that the last import cannot have seen
    other->setNode(later);
    EXPECT_EQ(manager().importBlock(other, nullptr)->getNodeID(), idOf(later));
}

TEST_F(ImportBlock, OfNullIsNull) {
    EXPECT_EQ(manager().importBlock(osg::AnimationBlockPtr(), nullptr), nullptr);
    EXPECT_THAT(manager().getObjects(), IsEmpty());
}

TEST_F(ImportBlock, JoinsTheTrack) {
    kaAnimationStreak* track = makeTrack({});
    kaAnimationUnit* unit = manager().importBlock(ka_older::makeBlock("wave", {}), track);
    EXPECT_THAT(track->getUnits(), ElementsAre(unit));
}

/// The block's node is set after its curves, so a curve that says nothing of its own does not get it.
TEST_F(ImportBlock, CurvesDoNotSeeTheBlocksOwnNode) {
    kaAnimationUnit* unit =
        manager().importBlock(ka_older::makeBlock("wave", {turning(osg::NodePtr())}, node), nullptr);
    EXPECT_THAT(unit->getCurves(), IsEmpty());
    EXPECT_EQ(unit->getNodeID(), idOf(node));
}

TEST_F(ImportBlock, CurvesWithoutNodeFollowTheFirstThatHasOne) {
    const osg::NodePtr other = scene.addTransform("other");
    const osg::AnimationCurvePtr second = ka_older::makeCurve("rotateY", twoKeys(), osg::NodePtr());
    kaAnimationUnit* unit =
        manager().importBlock(ka_older::makeBlock("wave", {turning(node), second}, other), nullptr);
    const auto curves = unit->getCurves();
    ASSERT_THAT(curves, SizeIs(2));
    EXPECT_EQ(nodeOf(curves[1]), idOf(node));
}

TEST_F(ImportBlock, WithoutNodeReferenceEndsWithoutNode) {
    kaAnimationUnit* unit = manager().importBlock(ka_older::makeBlock("wave", {turning(node)}), nullptr);
    EXPECT_THAT(unit->getCurves(), SizeIs(1));
    EXPECT_EQ(unit->getNodeID(), 0U);
}

TEST_F(ImportBlock, KeepsTheCurvesThatCanBeImported) {
    const osg::AnimationCurvePtr unknown = ka_older::makeCurve("wobble", twoKeys(), node);
    const osg::AnimationBlockPtr older = ka_older::makeBlock("wave", {unknown, turning(node)});
    older->getCurves().push_back(osg::AnimationCurvePtr());
    EXPECT_THAT(manager().importBlock(older, nullptr)->getCurves(), SizeIs(1));
}

// Sequences.

class ImportSequence : public ImportFixture {};

TEST_F(ImportSequence, IsActiveWithItsSpan) {
    kaAnimationStreak* track = makeTrack({});
    const kaAnimationSequence* sequence =
        manager().importSequence(ka_older::makeSequence("doors", 10.0F, 20.0F), track);
    ASSERT_NE(sequence, nullptr);
    EXPECT_EQ(sequence->getName(), "doors");
    EXPECT_EQ(sequence->getBegin(), 10.0F);
    EXPECT_EQ(sequence->getEnd(), 20.0F);
    EXPECT_TRUE(sequence->isActive());
    EXPECT_THAT(track->getSequences(), ElementsAre(sequence));
}

TEST_F(ImportSequence, NeedsNoParentAndOfNullIsNull) {
    EXPECT_EQ(manager().importSequence(ka_older::makeSequence("doors", 1.0F, 2.0F), nullptr)->getParent(),
              0U);
    EXPECT_EQ(manager().importSequence(osg::AnimationBlockPtr(), nullptr), nullptr);
}

// Tracks.

class ImportTrack : public ImportFixture {};

TEST_F(ImportTrack, IsNamedTrackWhateverItWasCalled) {
    const osg::AnimationTrackPtr older = ka_older::makeTrack({});
    older->setName("left arm");
    EXPECT_EQ(manager().importTrack(older, nullptr)->getName(), "Track");
}

TEST_F(ImportTrack, HoldsBlocksEventsAndClips) {
    const osg::AnimationTrackPtr older = ka_older::makeTrack({ka_older::makeBlock("wave", {turning(node)})});
    older->addSequence(ka_older::makeSequence("doors", 10.0F, 20.0F));
    older->addEntry(ka_older::makeClip("walk", {}));
    older->addEntry(ka_older::makeBlock("no clip", {}));
    kaAnimationStreak* track = manager().importTrack(older, nullptr);
    ASSERT_THAT(track->getUnits(), SizeIs(1));
    EXPECT_EQ(track->getUnits().front()->getName(), "wave");
    ASSERT_THAT(track->getSequences(), SizeIs(1));
    EXPECT_EQ(track->getSequences().front()->getEnd(), 20.0F);
    ASSERT_THAT(track->getStrips(), SizeIs(1));
    EXPECT_EQ(track->getStrips().front()->getName(), "walk");
    EXPECT_EQ(track->getChildCount(), 3U);
}

TEST_F(ImportTrack, TakesItsFlagsLast) {
    const osg::AnimationTrackPtr older = ka_older::makeTrack({ka_older::makeBlock("wave", {turning(node)})});
    older->addSequence(ka_older::makeSequence("doors", 10.0F, 20.0F));
    older->setActive(false);
    older->setMotionBlur(true);
    older->setFlipped(true);
    kaAnimationStreak* track = manager().importTrack(older, nullptr);
    EXPECT_FALSE(track->isActive());
    EXPECT_TRUE(track->isMotionBlur() && track->isFlipped());
    EXPECT_FALSE(track->isRepeating());
    EXPECT_FALSE(track->getUnits().front()->isActive());
    EXPECT_TRUE(track->getUnits().front()->isMotionBlur());
    EXPECT_FALSE(track->getUnits().front()->isFlipped());
    EXPECT_FALSE(track->getSequences().front()->isActive());
}

TEST_F(ImportTrack, JoinsTheClipAndOfNullIsNull) {
    kaAnimationStrip* clip = makeClip({});
    kaAnimationStreak* track = manager().importTrack(ka_older::makeTrack({}), clip);
    EXPECT_EQ(track->getParent(), clip->getId());
    EXPECT_EQ(manager().importTrack(osg::AnimationTrackPtr(), clip), nullptr);
    EXPECT_EQ(clip->getChildCount(), 1U);
}

// Clips.

class ImportClip : public ImportFixture {};

TEST_F(ImportClip, HoldsBlocksNestedClipsAndTracks) {
    const osg::AnimationClipPtr older = ka_older::makeClip("walk", {ka_older::makeTrack({})});
    older->addBlock(ka_older::makeBlock("wave", {turning(node)}));
    older->addEntry(ka_older::makeClip("step", {}));
    kaAnimationStrip* clip = manager().importClip(older, nullptr);
    EXPECT_EQ(clip->getName(), "walk");
    const auto tracks = clip->getStreaks();
    ASSERT_THAT(tracks, SizeIs(3)) << "block and nested clip each on a track of their own";
    EXPECT_THAT(tracks.at(0)->getUnits(), SizeIs(1));
    ASSERT_THAT(tracks.at(1)->getStrips(), SizeIs(1));
    EXPECT_EQ(tracks.at(1)->getStrips().front()->getName(), "step");
    EXPECT_FALSE(tracks.at(2)->hasChildren());
}

TEST_F(ImportClip, PassesOverNestedEntriesThatAreNoClips) {
    const osg::AnimationClipPtr older = ka_older::makeClip("walk", {});
    older->addEntry(ka_older::makeBlock("no clip", {}));
    older->addEntry(osg::Group::create());
    older->getEntries().push_back(osg::FieldContainerPtr());
    older->getTracks().push_back(osg::AnimationTrackPtr());
    older->getBlocks().push_back(osg::AnimationBlockPtr());
    kaAnimationStrip* clip = manager().importClip(older, nullptr);
    EXPECT_FALSE(clip->hasChildren());
    EXPECT_THAT(manager().getObjects(), SizeIs(1));
}

TEST_F(ImportClip, PassesItsFlagsDown) {
    const osg::AnimationBlockPtr block = ka_older::makeBlock("wave", {turning(node)});
    const osg::AnimationClipPtr older = ka_older::makeClip("walk", {ka_older::makeTrack({block})});
    older->setRepeating(true);
    older->setMotionBlur(true);
    older->setFlipped(true);
    kaAnimationStrip* clip = manager().importClip(older, nullptr);
    EXPECT_TRUE(clip->isRepeating() && clip->isMotionBlur() && clip->isFlipped());
    const kaAnimationUnit* unit = all<kaAnimationUnit>(KA_TYPE_UNIT).front();
    EXPECT_TRUE(unit->isRepeating() && unit->isMotionBlur());
    EXPECT_FALSE(unit->isFlipped());
}

TEST_F(ImportClip, JoinsTheTrackAndOfNullIsNull) {
    kaAnimationStreak* track = makeTrack({});
    kaAnimationStrip* clip = manager().importClip(ka_older::makeClip("walk", {}), track);
    EXPECT_THAT(track->getStrips(), ElementsAre(clip));
    EXPECT_EQ(manager().importClip(osg::AnimationClipPtr(), track), nullptr);
    EXPECT_EQ(track->getChildCount(), 1U);
}

} // namespace
