#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"

using namespace ka_test;
using testing::ElementsAre;

namespace {

using Spots = std::vector<Spot>;
using Keys = std::vector<Key>;

class CurveEdit : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = nullptr;
    kaAnimationUnit* block = nullptr;

    /// Keys at 0, 10, 20 and 30 with handles two frames away, of type USER, in a block.
    void SetUp() override {
        RegistryFixture::SetUp();
        Keys keys;
        for (float x : {0.0F, 10.0F, 20.0F, 30.0F})
            keys.push_back({{x, 0}, {x - 2, -1}, {x + 2, 1}});
        curve = makeCurve(keys);
        block = makeBlock({curve});
    }

    kaControlPoint2D* at(float x) { return curve->findPoint(x); }
    std::vector<float> frames() const {
        std::vector<float> result;
        for (const kaControlPoint2D* key : keysOf(*curve))
            result.push_back(spotOf(*key).x);
        return result;
    }
    static void expectKey(const kaControlPoint2D* point, const Key& expected) {
        ASSERT_NE(point, nullptr);
        const Key actual = keyOf(*point);
        EXPECT_EQ(actual.key.x, expected.key.x);
        EXPECT_EQ(actual.key.y, expected.key.y);
        EXPECT_EQ(actual.in.x, expected.in.x);
        EXPECT_EQ(actual.in.y, expected.in.y);
        EXPECT_EQ(actual.out.x, expected.out.x);
        EXPECT_EQ(actual.out.y, expected.out.y);
    }
};

class MovingTheSelection : public CurveEdit {};

TEST_F(MovingTheSelection, CarriesTheHandlesAlong) {
    at(10)->setSelected(true);
    curve->moveSelectedPoints({3, 4}, false, false, true, false);
    expectKey(at(13), {{13, 4}, {11, 3}, {15, 5}});
    expectKey(at(20), {{20, 0}, {18, -1}, {22, 1}});
    EXPECT_EQ(curve->getMaximum(), 4.0F);
    EXPECT_EQ(block->getMaximum(), 4.0F);
}

TEST_F(MovingTheSelection, WithoutTellingLeavesTheParent) {
    at(30)->setSelected(true);
    curve->moveSelectedPoints({5, 4}, false, false, false, false);
    EXPECT_EQ(curve->getEnd(), 35.0F);
    EXPECT_EQ(block->getEnd(), 30.0F);
}

TEST_F(MovingTheSelection, LeavesAKeyThatTheConstraintsHoldWhileOthersMove) {
    at(10)->setSelected(true);
    at(30)->setSelected(true);
    curve->moveSelectedPoints({-8.25F, 0}, false, false, true, false); // 1.75 is before the out handle at 2
    EXPECT_THAT(frames(), ElementsAre(0, 10, 20, 30)) << "21.75 is before the out handle at 22";
    curve->moveSelectedPoints({-8.0F, 1}, false, false, true, false);
    EXPECT_THAT(frames(), ElementsAre(0, 2, 20, 22));
    EXPECT_EQ(curve->getMaximum(), 1.0F);
}

TEST_F(MovingTheSelection, OneKeyHeldBackDoesNotHoldTheOthers) {
    at(10)->setSelected(true);
    at(30)->setSelected(true);
    curve->moveSelectedPoints({9, 0}, false, false, true, false); // 19 is past the in handle at 18
    EXPECT_THAT(frames(), ElementsAre(0, 10, 20, 39));
}

TEST_F(MovingTheSelection, GoesKeyByKeySoThatAKeyMakesRoomForTheOneBehindIt) {
    for (float x : {10.0F, 20.0F})
        at(x)->setSelected(true);
    curve->moveSelectedPoints({-6, 0}, false, false, true, false);
    EXPECT_THAT(frames(), ElementsAre(0, 4, 14, 30)) << "leftwards the first goes first";
    curve->moveSelectedPoints({9, 0}, false, false, true, false);
    EXPECT_THAT(frames(), ElementsAre(0, 4, 23, 30)) << "rightwards 4 + 9 is still held by the handle at 12";
}

TEST_F(MovingTheSelection, SnapsEachCoordinateOnItsOwn) {
    kaControlPoint2D* key = at(10);
    key->setSelected(true);
    curve->moveSelectedPoints({1.375F, 0.75F}, true, false, true, false);
    expectKey(key, {{11, 0.75F}, {9, -0.25F}, {13, 1.75F}});
    curve->moveSelectedPoints({0.375F, 0}, false, true, true, false);
    expectKey(key, {{11.375F, 1}, {9.375F, 0}, {13.375F, 2}});
}

TEST_F(MovingTheSelection, TestsThePlaceBeforeItIsSnapped) {
    at(10)->setSelected(true);
    curve->moveSelectedPoints({-8.25F, 0}, true, false, true,
                              false); // 1.75 would snap to 2, where it may stand
    EXPECT_THAT(frames(), ElementsAre(0, 10, 20, 30));
    place(*at(20)->getInTangent(), {17.75F, 0});
    curve->moveSelectedPoints({7.625F, 0}, true, false, true,
                              false); // 17.625 may stand there and snaps to 18
    EXPECT_THAT(frames(), ElementsAre(0, 18, 20, 30));
}

TEST_F(MovingTheSelection, SnapRoundsHalfAwayFromZero) {
    at(0)->setSelected(true);
    curve->moveSelectedPoints({-2.5F, -0.5F}, true, true, true, false);
    expectKey(keysOf(*curve)[0], {{-3, -1}, {-5, -2}, {-1, 1}}); // -0.5 gives -1, 0.5 gives 1, -1.5 gives -2
}

TEST_F(MovingTheSelection, FromSavedStartsWhereTheDragBegan) {
    kaControlPoint2D* key = at(10);
    key->setSelected(true);
    key->setSavedPosition({10, 0});
    key->setSavedInTangent({8, -1});
    key->setSavedOutTangent({12, 1});
    curve->moveSelectedPoints({3, 5}, false, false, true, true);
    curve->moveSelectedPoints({4, 6}, false, false, true, true);
    expectKey(key, {{14, 6}, {12, 5}, {16, 7}});
}

TEST_F(MovingTheSelection, FromSavedSnapsToo) {
    kaControlPoint2D* key = at(10);
    key->setSelected(true);
    key->setSavedPosition({10.25F, 0.25F});
    key->setSavedInTangent({8.25F, -1});
    key->setSavedOutTangent({12.25F, 1});
    curve->moveSelectedPoints({1, 1}, true, true, true, true);
    expectKey(key, {{11, 1}, {9, 0}, {13, 2}});
}

TEST_F(MovingTheSelection, ComputesTheHandlesOfTheKeyAndItsNeighbours) {
    for (kaControlPoint2D* key : keysOf(*curve))
        key->setTangentType(kaControlPoint2D::TANGENT_FLAT);
    at(10)->setSelected(true);
    curve->moveSelectedPoints({2, 0}, false, false, true, false);
    expectKey(at(12), {{12, 0}, {6, 0}, {16, 0}});
    expectKey(at(0), {{0, 0}, {-6, 0}, {6, 0}});
    expectKey(at(20), {{20, 0}, {16, 0}, {25, 0}});
    expectKey(at(30), {{30, 0}, {28, -1}, {32, 1}});
}

TEST_F(MovingTheSelection, WithNothingSelectedStillTakesInTheBounds) {
    curve->setEnd(99.0F);
    curve->moveSelectedPoints({1, 1}, false, false, true, false);
    EXPECT_EQ(curve->getEnd(), 30.0F);
}

TEST_F(MovingTheSelection, OnACurveWithoutKeysDoesNothing) {
    kaAnimationCurve2D* empty = manager->createCurve2D(0ULL);
    empty->setBegin(5.0F);
    empty->moveSelectedPoints({1, 1}, false, false, true, false);
    empty->moveSelectedPointsTo({1, 1}, false, false, true);
    EXPECT_EQ(empty->getBegin(), 5.0F);
}

TEST_F(MovingTheSelection, WorksOnKeysWithoutHandles) {
    manager->destroyPoint2D(at(10)->getInTangent());
    manager->destroyPoint2D(at(10)->getOutTangent());
    at(10)->setSelected(true);
    curve->moveSelectedPoints({3, 4}, false, false, true, false);
    EXPECT_EQ(at(13)->getMaximum(), 4.0F);
    curve->moveSelectedPointsTo({14, 5}, false, false, true);
    EXPECT_EQ(at(14)->getMaximum(), 5.0F);
}

class MovingTheSelectionTo : public CurveEdit {};

TEST_F(MovingTheSelectionTo, CarriesTheHandlesAlong) {
    at(10)->setSelected(true);
    curve->moveSelectedPointsTo({13, 4}, false, false, true);
    expectKey(at(13), {{13, 4}, {11, 3}, {15, 5}});
    EXPECT_EQ(block->getMaximum(), 4.0F);
}

TEST_F(MovingTheSelectionTo, KeepsALockedCoordinate) {
    at(10)->setSelected(true);
    curve->moveSelectedPointsTo({13, 4}, true, false, true);
    expectKey(at(10), {{10, 4}, {8, 3}, {12, 5}});
    curve->moveSelectedPointsTo({13, 9}, false, true, true);
    expectKey(at(13), {{13, 4}, {11, 3}, {15, 5}});
}

TEST_F(MovingTheSelectionTo, AKeyHeldInXIsHeldInYToo) {
    at(10)->setSelected(true);
    curve->moveSelectedPointsTo({19, 4}, false, false, true); // past the in handle at 18
    expectKey(at(10), {{10, 0}, {8, -1}, {12, 1}});
    curve->moveSelectedPointsTo({19, 4}, true, false, true);
    EXPECT_EQ(at(10)->getMaximum(), 4.0F) << "with x locked nothing holds it";
}

TEST_F(MovingTheSelectionTo, WithBothLocksDoesNothingAtAll) {
    at(10)->setSelected(true);
    curve->setEnd(99.0F);
    curve->moveSelectedPointsTo({13, 4}, true, true, true);
    EXPECT_EQ(curve->getEnd(), 99.0F) << "not even a bounds update";
    expectKey(at(10), {{10, 0}, {8, -1}, {12, 1}});
}

TEST_F(MovingTheSelectionTo, SendsEverySelectedKeyToTheSameValue) {
    at(0)->setSelected(true);
    at(30)->setSelected(true);
    curve->moveSelectedPointsTo({500, 7}, true, false, true);
    EXPECT_EQ(at(0)->getMaximum(), 7.0F);
    EXPECT_EQ(at(30)->getMaximum(), 7.0F);
    EXPECT_EQ(at(10)->getMaximum(), 0.0F);
}

class MovingACurve : public CurveEdit {};

TEST_F(MovingACurve, ShiftsKeysAndHandlesInTime) {
    curve->move(2.5F, true);
    EXPECT_THAT(frames(), ElementsAre(2.5F, 12.5F, 22.5F, 32.5F));
    expectKey(at(12.5F), {{12.5F, 0}, {10.5F, -1}, {14.5F, 1}});
    EXPECT_EQ(curve->getBegin(), 2.5F);
    EXPECT_EQ(block->getEnd(), 32.5F);
}

TEST_F(MovingACurve, WithoutTellingLeavesTheParent) {
    curve->move(2.5F, false);
    EXPECT_EQ(curve->getBegin(), 2.5F);
    EXPECT_EQ(block->getBegin(), 0.0F);
}

TEST_F(MovingACurve, ComputesNoHandles) {
    at(10)->setTangentType(kaControlPoint2D::TANGENT_FLAT);
    curve->move(5.0F, true);
    expectKey(at(15), {{15, 0}, {13, -1}, {17, 1}});
}

TEST_F(MovingACurve, WithoutKeysDoesNothing) {
    kaAnimationCurve2D* empty = manager->createCurve2D(0ULL);
    empty->setBegin(5.0F);
    empty->setEnd(9.0F);
    empty->move(1.0F, true);
    empty->moveBegin(1.0F, true);
    empty->moveEnd(100.0F, true);
    empty->flip();
    EXPECT_EQ(empty->getBegin(), 5.0F);
    EXPECT_EQ(empty->getEnd(), 9.0F);
    EXPECT_FALSE(empty->isFlipped());
}

class StretchingACurve : public CurveEdit {};

TEST_F(StretchingACurve, AtTheBeginKeepsTheEnd) {
    curve->moveBegin(-30.0F, true); // twice as long
    EXPECT_THAT(frames(), ElementsAre(-30, -10, 10, 30));
    expectKey(at(10), {{10, 0}, {6, -1}, {14, 1}});
    EXPECT_EQ(curve->getBegin(), -30.0F);
    EXPECT_EQ(curve->getEnd(), 30.0F);
    EXPECT_EQ(block->getBegin(), -30.0F);
}

TEST_F(StretchingACurve, AtTheEndKeepsTheBegin) {
    curve->moveEnd(15.0F, true); // half as long
    EXPECT_THAT(frames(), ElementsAre(0, 5, 10, 15));
    expectKey(at(5), {{5, 0}, {4, -1}, {6, 1}});
    EXPECT_EQ(curve->getEnd(), 15.0F);
    EXPECT_EQ(block->getEnd(), 15.0F);
}

TEST_F(StretchingACurve, WithoutTellingLeavesTheParent) {
    curve->moveBegin(-30.0F, false);
    curve->moveEnd(90.0F, false);
    EXPECT_EQ(block->getBegin(), 0.0F);
    EXPECT_EQ(block->getEnd(), 30.0F);
}

TEST_F(StretchingACurve, KeepsTheExtentAsSetRatherThanRecomputed) {
    curve->setMaximum(77.0F);
    curve->moveBegin(-30.0F, true);
    EXPECT_EQ(curve->getMaximum(), 77.0F);
}

TEST_F(StretchingACurve, IsRefusedWithinTheToleranceOfTheOtherEnd) {
    const auto expectUnchanged = [this] {
        EXPECT_THAT(frames(), ElementsAre(0, 10, 20, 30));
        EXPECT_EQ(curve->getBegin(), 0.0F);
        EXPECT_EQ(curve->getEnd(), 30.0F);
    };
    for (float begin : {30.0F, 30.0000005F, 31.0F, 1e30F}) {
        curve->moveBegin(begin, true);
        expectUnchanged();
    }
    for (float end : {0.0F, 0.0000005F, -1.0F, -1e30F}) {
        curve->moveEnd(end, true);
        expectUnchanged();
    }
    curve->moveEnd(0.000002F, true);
    EXPECT_EQ(curve->getEnd(), 0.000002F);
}

TEST_F(StretchingACurve, LeavesTheKeysOfACurveWithoutSpan) {
    kaAnimationCurve2D* single = makeCurve(Spots{{5, 1}});
    single->moveBegin(2.0F, true);
    single->moveEnd(9.0F, true);
    EXPECT_EQ(single->findPoint(5.0F)->getMaximum(), 1.0F);
}

TEST_F(StretchingACurve, TrimmingDoesNothing) {
    curve->trimBegin(5.0F, true);
    curve->trimEnd(25.0F, true);
    EXPECT_THAT(frames(), ElementsAre(0, 10, 20, 30));
    EXPECT_EQ(curve->getBegin(), 0.0F);
    EXPECT_EQ(curve->getEnd(), 30.0F);
    EXPECT_FALSE(curve->isTrimmed());
}

class FlippingACurve : public CurveEdit {};

TEST_F(FlippingACurve, MirrorsKeysAndSwapsHandles) {
    curve = makeCurve(Keys{{{0, 1}, {-1, 2}, {3, 4}}, {{10, 5}, {6, 7}, {12, 8}}});
    curve->flip();
    ASSERT_EQ(keysOf(*curve).size(), 2U);
    expectKey(keysOf(*curve)[0], {{0, 5}, {-2, 8}, {4, 7}});
    expectKey(keysOf(*curve)[1], {{10, 1}, {7, 4}, {11, 2}});
    EXPECT_TRUE(curve->isFlipped());
}

TEST_F(FlippingACurve, TwiceRestoresEverything) {
    curve = makeCurve(Keys{{{0, 1}, {-1, 2}, {3, 4}}, {{4, 0}, {3, 0}, {5, 5}}, {{10, 5}, {6, 7}, {12, 8}}});
    curve->flip();
    curve->flip();
    expectKey(at(0), {{0, 1}, {-1, 2}, {3, 4}});
    expectKey(at(4), {{4, 0}, {3, 0}, {5, 5}});
    expectKey(at(10), {{10, 5}, {6, 7}, {12, 8}});
    EXPECT_FALSE(curve->isFlipped());
}

TEST_F(FlippingACurve, GivesALoneHandleTheOrigin) {
    manager->destroyPoint2D(at(10)->getInTangent());
    kaControlPoint2D* key = at(10);
    curve->flip();
    EXPECT_EQ(spotOf(*key).x, 20.0F);
    EXPECT_EQ(spotOf(*key->getOutTangent()).x, 0.0F);
    EXPECT_EQ(spotOf(*key->getOutTangent()).y, 0.0F);
    EXPECT_EQ(key->getInTangent(), nullptr);
}

TEST_F(FlippingACurve, DoesNotTellTheAncestors) {
    block->setBegin(-99.0F);
    curve->flip();
    EXPECT_EQ(block->getBegin(), -99.0F);
}

TEST_F(FlippingACurve, TakesTheMiddleFromTheExtentAsItStands) {
    curve->setEnd(50.0F);
    curve->flip();
    EXPECT_THAT(frames(), ElementsAre(20, 30, 40, 50));
    EXPECT_EQ(curve->getBegin(), 20.0F);
    EXPECT_EQ(curve->getEnd(), 50.0F);
}

class LoopingACurve : public CurveEdit {};

TEST_F(LoopingACurve, PlaysFromItsBeginUntilAfterItsEnd) {
    const struct {
        float frame;
        bool playing;
    } rows[] = {{-1, false}, {0, true}, {30, true}, {30.5F, false}, {30.5F, false}, {10, true}};
    for (const auto& row : rows) {
        curve->triggerLoop(row.frame);
        EXPECT_EQ(curve->isPlaying(), row.playing) << row.frame;
    }
}

TEST_F(LoopingACurve, GoesByTheCustomRangeWhenThatIsInUse) {
    curve->setCustomBegin(100.0F);
    curve->setCustomEnd(110.0F);
    curve->setUseCustomRange(true);
    curve->triggerLoop(50.0F);
    EXPECT_FALSE(curve->isPlaying());
    curve->triggerLoop(100.0F);
    EXPECT_TRUE(curve->isPlaying());
    curve->triggerLoop(111.0F);
    EXPECT_FALSE(curve->isPlaying());
}

TEST_F(LoopingACurve, NeedsAnIdInItsCurveSet) {
    curve->setCurveIDs({});
    curve->triggerLoop(5.0F);
    EXPECT_FALSE(curve->isPlaying());
}

} // namespace
