#include "Builders.h"
#include "CapturedOutput.h"
#include "RegistryFixture.h"
#include "TestScene.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <array>
#include <cmath>
#include <limits>

using namespace ka_test;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

using Spots = std::vector<Spot>;
using Pair = kaAnimationCurve2D::PointPair;

class CurveQueries : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = nullptr;

    void SetUp() override {
        RegistryFixture::SetUp();
        curve = makeCurve(Spots{{0, 1}, {10, 2}, {20, 3}});
    }
    kaControlPoint2D* at(float x) { return curve->findPoint(x); }
};

TEST_F(CurveQueries, PointsAreMappedByFrame) {
    const auto points = curve->getPoints();
    ASSERT_EQ(points.size(), 3U);
    EXPECT_EQ(points.begin()->first, 0.0F);
    EXPECT_EQ(points.at(20.0F)->getMaximum(), 3.0F);
}

TEST_F(CurveQueries, PointsAreMappedByTheFrameTheyStandAtNow) {
    at(0)->setPosition(15.0F, 1.0F);
    const auto points = curve->getPoints();
    EXPECT_EQ(points.begin()->first, 10.0F);
    EXPECT_EQ(points.count(15.0F), 1U);
    EXPECT_EQ(points.count(0.0F), 0U);
}

TEST_F(CurveQueries, FindingNeedsTheExactFrame) {
    EXPECT_NE(curve->findPoint(10.0F), nullptr);
    EXPECT_EQ(curve->findPoint(std::nextafter(10.0F, 11.0F)), nullptr);
    EXPECT_EQ(curve->findPoint(std::numeric_limits<float>::quiet_NaN()), nullptr);
    EXPECT_EQ(curve->findPoint(-0.0F), curve->findPoint(0.0F));
}

TEST_F(CurveQueries, AKeyWhoseFrameIsNoNumberStandsNowhereAmongTheOthers) {
    const float nowhere = std::numeric_limits<float>::quiet_NaN();
    kaControlPoint2D* lost = at(10);
    const auto before = curve->getPoints();
    lost->setPosition(nowhere, 7.0F);
    auto expected = before;
    expected.erase(10.0F);
    EXPECT_EQ(curve->getPoints(), expected);
    EXPECT_FALSE(lost->computeTangents());
    kaAnimationCurve2D* single = makeCurve(std::vector<Spot>{{nowhere, 1.0F}, {5.0F, 2.0F}});
    EXPECT_EQ(single->getPoints().size(), 1U);
    float value = 3.0F;
    EXPECT_FALSE(kaAnimationController::the()->computeCurveValue(single, 5.0F, value));
    EXPECT_EQ(value, 3.0F);
}

TEST_F(CurveQueries, FindingByIdNeedsAKeyOfThisCurve) {
    const kaUID id = at(10)->getId();
    EXPECT_EQ(curve->findPoint(id), at(10));
    const kaUID stranger = manager->createPoint2D(10.0F, 0.0F, 0)->getId();
    EXPECT_EQ(curve->findPoint(stranger), nullptr);
    EXPECT_EQ(curve->findPoint(kaUID{0}), nullptr);
}

TEST_F(CurveQueries, NeighboursOfAKeyAreThoseInTheList) {
    EXPECT_EQ(curve->getPreviousAndNextPoint(at(0)), Pair(nullptr, at(10)));
    EXPECT_EQ(curve->getPreviousAndNextPoint(at(10)), Pair(at(0), at(20)));
    EXPECT_EQ(curve->getPreviousAndNextPoint(at(20)), Pair(at(10), nullptr));
    kaControlPoint2D* moved = at(0);
    moved->setPosition(15.0F, 1.0F); // the list is not sorted by this
    EXPECT_EQ(curve->getPreviousAndNextPoint(moved), Pair(nullptr, at(10)));
}

TEST_F(CurveQueries, NeighboursOfNullOrAStrangerAreNone) {
    EXPECT_EQ(curve->getPreviousAndNextPoint(nullptr), Pair(nullptr, nullptr));
    EXPECT_EQ(curve->getPreviousAndNextPoint(manager->createPoint2D(10.0F, 0.0F, 0)), Pair(nullptr, nullptr));
}

TEST_F(CurveQueries, NeighboursOfAFrameLeaveOutTheKeyOnIt) {
    const struct {
        float frame;
        float previous; // -1: none
        float next;
    } rows[] = {{-5, -1, 0},     {0, -1, 10},  {3, 0, 10},  {10, 0, 20},
                {19.5F, 10, 20}, {20, 10, -1}, {25, 20, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.frame);
        const Pair expected(row.previous < 0 ? nullptr : at(row.previous),
                            row.next < 0 ? nullptr : at(row.next));
        EXPECT_EQ(curve->getPreviousAndNextPoint(row.frame), expected);
    }
}

TEST_F(CurveQueries, NeighboursOfAFrameOnTheOnlyKeyAreNone) {
    kaAnimationCurve2D* lonely = makeCurve(Spots{{5, 5}});
    EXPECT_EQ(lonely->getPreviousAndNextPoint(5.0F), Pair(nullptr, nullptr));
    EXPECT_EQ(lonely->getPreviousAndNextPoint(4.0F), Pair(nullptr, lonely->findPoint(5.0F)));
    EXPECT_EQ(lonely->getPreviousAndNextPoint(6.0F), Pair(lonely->findPoint(5.0F), nullptr));
    EXPECT_EQ(manager->createCurve2D(0ULL)->getPreviousAndNextPoint(5.0F), Pair(nullptr, nullptr));
}

TEST_F(CurveQueries, TheNodeIsTheOneTheFieldNames) {
    TestScene scene;
    const osg::NodePtr node = scene.addTransform("node");
    kaAnimationField* field = manager->getField(curve->getField());
    EXPECT_TRUE(curve->getParentOSGNode() == osg::NullFC) << "a fresh field names no node";
    field->nodeID = node.getFieldContainerId();
    EXPECT_TRUE(curve->getParentOSGNode() == node);
    field->fcID = node.getFieldContainerId();
    field->nodeID = node->getCore().getFieldContainerId();
    EXPECT_TRUE(curve->getParentOSGNode() == osg::NullFC) << "a core is no node";
    field->nodeID = 0xFFFFFF;
    EXPECT_TRUE(curve->getParentOSGNode() == osg::NullFC) << "beyond the store";
    curve->setField(0);
    EXPECT_TRUE(curve->getParentOSGNode() == osg::NullFC);
}

TEST_F(CurveQueries, PrintsItself) {
    curve->setName("Path");
    const CapturedOutput output;
    curve->printInfo();
    EXPECT_THAT(output.text(), StartsWith("Curve Path:\nPoints: 3\n"
                                          "Begin: 0.000000 End: 20.000000 Min: 1.000000 Max: 3.000000\n"
                                          "FieldPtr 0x"));
    EXPECT_THAT(output.text(), HasSubstr("\nField Info:\n"));
}

TEST_F(CurveQueries, PrintsItselfWithoutField) {
    curve->setField(0);
    const CapturedOutput output;
    curve->printInfo();
    EXPECT_THAT(output.text(), StartsWith("Curve Curve:\nPoints: 3\n"));
    EXPECT_THAT(output.text(), HasSubstr("FieldPtr "));
    EXPECT_THAT(output.text(), testing::Not(HasSubstr("Field Info")));
}

TEST_F(CurveQueries, WhatIsNoKeyIsNoNeighbourOfOne) {
    curve = makeCurve(Spots{{0, 1}, {4, 7}, {20, 3}});
    const auto ids = curve->getChildIDs();
    kaControlPoint2D* middle = at(4.0F);
    const std::array<kaControlPoint2D*, 2> handles{middle->getInTangent(), middle->getOutTangent()};
    const std::array<Spot, 2> before{spotOf(*handles[0]), spotOf(*handles[1])};
    for (const std::size_t place : {1U, 2U}) {
        std::vector<kaUID> mixed = ids;
        const float frame = place == 1 ? 3.0F : 5.0F;
        mixed.insert(mixed.begin() + static_cast<std::ptrdiff_t>(place),
                     makeSequence("door", frame, frame)->getId());
        curve->setChildIDs(mixed);
        middle->getInTangent()->setPosition(0.0F, 0.0F);
        middle->getOutTangent()->setPosition(0.0F, 0.0F);
        ASSERT_TRUE(middle->computeTangents());
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_EQ(spotOf(*handles[i]).x, before[i].x) << "at place " << place;
            EXPECT_EQ(spotOf(*handles[i]).y, before[i].y) << "at place " << place;
        }
        EXPECT_EQ(curve->getPoints().size(), 3U);
    }
}

TEST_F(CurveQueries, SkipKeysThatTheRegistryDoesNotKnow) {
    const kaUID gone = 4242;
    curve->setChildIDs({at(0)->getId(), gone, at(10)->getId(), at(20)->getId()});
    EXPECT_EQ(curve->getPoints().size(), 3U);
    EXPECT_EQ(curve->getObjects().size(), 3U);
    EXPECT_EQ(curve->findPoint(gone), nullptr);
    EXPECT_EQ(curve->findPoint(10.0F)->getMaximum(), 2.0F);
    EXPECT_EQ(curve->getPreviousAndNextPoint(5.0F), Pair(at(0), at(10)));
}

class CurveCopy : public CurveQueries {};

TEST_F(CurveCopy, AnimatesTheSameFieldWithKeysOfItsOwn) {
    curve->setColor(osg::Color3f(0.25F, 0.5F, 0.75F));
    curve->setName("Path");
    at(10)->setTangentType(16);
    place(*at(10)->getOutTangent(), {12, 34});
    kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_EQ(copy->getField(), curve->getField());
    EXPECT_EQ(copy->getColor(), curve->getColor());
    EXPECT_EQ(copy->getName(), "Path");
    EXPECT_EQ(copy->getChildCount(), 3U);
    EXPECT_EQ(copy->getBegin(), 0.0F);
    EXPECT_EQ(copy->getEnd(), 20.0F);
    EXPECT_EQ(copy->getMaximum(), 3.0F);
    EXPECT_EQ(copy->getMinimum(), 1.0F);
    EXPECT_THAT(copy->getCurveIDs(), testing::ElementsAre(copy->getId()));
    kaControlPoint2D* key = copy->findPoint(10.0F);
    EXPECT_NE(key, at(10));
    EXPECT_EQ(key->getParent(), copy->getId());
    EXPECT_EQ(spotOf(*key->getOutTangent()).y, 34.0F);
    EXPECT_EQ(manager->getObject(copy->getId()), copy);
}

TEST_F(CurveCopy, TakesTheFlagsThatAreCopiedAndNoOther) {
    curve->setActive(false);
    curve->setPlaying(true);
    curve->setRepeating(true);
    curve->setReversePlay(true);
    curve->setPausing(true);
    curve->setFlipped(true);
    curve->setTrimmed(true);
    curve->setMotionBlur(true);
    curve->setRangeBegin(3.0F);
    curve->setRangeEnd(4.0F);
    curve->setUseCustomRange(true);
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_FALSE(copy->isActive());
    EXPECT_TRUE(copy->isPlaying());
    EXPECT_TRUE(copy->isRepeating());
    EXPECT_FALSE(copy->isReversePlay());
    EXPECT_FALSE(copy->isPausing());
    EXPECT_TRUE(copy->isFlipped());
    EXPECT_TRUE(copy->isTrimmed());
    EXPECT_TRUE(copy->isMotionBlur());
    EXPECT_EQ(copy->getRangeBegin(), 3.0F);
    EXPECT_EQ(copy->getRangeEnd(), 4.0F);
    EXPECT_FALSE(copy->isUseCustomRange());
}

TEST_F(CurveCopy, IsNotSelectedBecauseItHasNoKeysYetWhenTheFlagArrives) {
    curve->setSelected(true);
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_FALSE(copy->isSelected());
    for (const kaControlPoint2D* key : keysOf(*copy))
        EXPECT_TRUE(key->isSelected());
}

TEST_F(CurveCopy, DrawsItsIdThenThatOfEachKeyWithItsHandles) {
    kaAnimationManager::random(7);
    IdSequence ids(7);
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_EQ(copy->getId(), ids.next());
    for (const kaControlPoint2D* key : keysOf(*copy)) {
        EXPECT_EQ(key->getId(), ids.next());
        EXPECT_EQ(key->getInTangent()->getId(), ids.next());
        EXPECT_EQ(key->getOutTangent()->getId(), ids.next());
    }
}

TEST_F(CurveCopy, HasTheSourcesParentIdWithoutBeingItsChild) {
    kaAnimationUnit* block = makeBlock({curve});
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    EXPECT_EQ(copy->getParent(), block->getId());
    EXPECT_THAT(block->getChildIDs(), testing::ElementsAre(curve->getId()));
    curve->setParent(31415);
    EXPECT_EQ(manager->duplicateCurve2D(curve)->getParent(), 0ULL);
}

TEST_F(CurveCopy, OfTwoKeysAtOneFrameKeepsTheLater) {
    curve->setPoints({makeKey(stepKey(5, 1)), makeKey(stepKey(5, 2)), makeKey(stepKey(9, 3))});
    const kaAnimationCurve2D* copy = manager->duplicateCurve2D(curve);
    ASSERT_EQ(copy->getChildCount(), 2U);
    EXPECT_EQ(copy->findPoint(5.0F)->getMaximum(), 2.0F);
}

} // namespace
