#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

using namespace ka_test;
using testing::ElementsAre;

namespace {

class Ids : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
};

/// The seed from which the next draw is `wanted`: 1664525 is odd, so it has an inverse modulo 2^64.
unsigned long long seedFor(unsigned long long wanted) {
    unsigned long long inverse = 1664525ULL;
    for (int i = 0; i < 6; ++i)
        inverse *= 2ULL - 1664525ULL * inverse;
    return (wanted - 1013904223ULL) * inverse;
}

/// Puts the generator into the state from which the next draw is `wanted`.
void drawNext(unsigned long long wanted) {
    kaAnimationManager::random(seedFor(seedFor(wanted)));
}

TEST_F(Ids, ComeFromTheLinearCongruentialGenerator) {
    EXPECT_EQ(kaAnimationManager::random(5), 1022226848ULL);
    EXPECT_EQ(manager->createUID(), 1022226848ULL * 1664525ULL + 1013904223ULL);
    IdSequence ids(7);
    kaAnimationManager::random(7);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(kaAnimationManager::random(0), ids.next());
}

TEST_F(Ids, AreNeverZero) {
    drawNext(0);
    EXPECT_EQ(manager->createUID(), 1013904223ULL) << "0 is passed over and the draw goes on from it";
}

TEST_F(Ids, AreNeverThoseOfRegisteredObjectsOrFields) {
    const unsigned long long second = 42ULL * 1664525ULL + 1013904223ULL;
    const unsigned long long third = second * 1664525ULL + 1013904223ULL;
    manager->createUnit(42);
    manager->createField(second);
    drawNext(42);
    EXPECT_EQ(manager->createUID(), third);
}

TEST_F(Ids, MayBeThoseOfHandlesForThoseAreNotRegistered) {
    const kaControlPoint2D* key = manager->createPoint2D(0);
    drawNext(key->getInTangent()->getId());
    EXPECT_EQ(manager->createUID(), key->getInTangent()->getId());
}

TEST_F(Ids, AreUniqueUnlessRegistered) {
    manager->createUnit(42);
    manager->createField(43);
    EXPECT_FALSE(manager->isIDUnique(42));
    EXPECT_FALSE(manager->isIDUnique(43));
    EXPECT_TRUE(manager->isIDUnique(44));
    EXPECT_TRUE(manager->isIDUnique(0));
}

class SettingIds : public Ids {};

TEST_F(SettingIds, GivesAFreeIdAndMovesTheEntry) {
    kaAnimationUnit* block = manager->createUnit(42);
    manager->setID(50, block);
    EXPECT_EQ(block->getId(), 50ULL);
    EXPECT_EQ(manager->getObject(50), block);
    EXPECT_EQ(manager->getObject(42), nullptr);
    EXPECT_EQ(manager->getObjects().size(), 1U);
}

TEST_F(SettingIds, ToItsOwnIdGivesAFreshOne) {
    kaAnimationUnit* block = manager->createUnit(42);
    IdSequence ids;
    manager->setID(42, block);
    EXPECT_EQ(block->getId(), ids.next());
    EXPECT_EQ(manager->getObject(block->getId()), block);
    EXPECT_EQ(manager->getObject(42), nullptr);
}

TEST_F(SettingIds, ToATakenIdGivesAFreshOne) {
    kaAnimationUnit* block = manager->createUnit(42);
    kaAnimationUnit* other = manager->createUnit(50);
    const kaAnimationField* field = manager->createField(60);
    IdSequence ids;
    manager->setID(50, block);
    EXPECT_EQ(block->getId(), ids.next());
    manager->setID(60, block);
    EXPECT_EQ(block->getId(), ids.next());
    EXPECT_EQ(manager->getObject(50), other);
    EXPECT_EQ(manager->getField(60), field);
    EXPECT_EQ(manager->getObjects().size(), 2U);
}

TEST_F(SettingIds, ToAFreeIdDrawsNothing) {
    IdSequence ids;
    manager->setID(50, manager->createUnit(42));
    EXPECT_EQ(manager->createUID(), ids.next());
}

TEST_F(SettingIds, OfAnUnregisteredObjectLeavesItUnregistered) {
    kaAnimationUnit block("mine", 42);
    manager->setID(50, &block);
    EXPECT_EQ(block.getId(), 50ULL);
    EXPECT_TRUE(manager->getObjects().empty());
}

TEST_F(SettingIds, OfNullDoesNothing) {
    manager->setID(50, static_cast<kaAnimationObject*>(nullptr));
    manager->setID(50, static_cast<kaAnimationField*>(nullptr));
    EXPECT_TRUE(manager->getObjects().empty());
    IdSequence ids;
    EXPECT_EQ(manager->createUID(), ids.next());
}

TEST_F(SettingIds, OfAFieldFollowsTheSameRules) {
    kaAnimationField* field = manager->createField(42);
    manager->createUnit(60);
    IdSequence ids;
    manager->setID(50, field);
    EXPECT_EQ(field->getId(), 50ULL);
    EXPECT_EQ(manager->getField(50), field);
    EXPECT_EQ(manager->getField(42), nullptr);
    manager->setID(60, field);
    EXPECT_EQ(field->getId(), ids.next());
    manager->setID(field->getId(), field);
    EXPECT_EQ(field->getId(), ids.next());
    EXPECT_EQ(manager->getFields().size(), 1U);
}

TEST_F(SettingIds, OfAParentLeavesItsChildrenWithTheOldOne) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 1}});
    kaAnimationUnit* block = makeBlock({curve});
    const kaUID old = block->getId();
    manager->setID(50, block);
    EXPECT_EQ(curve->getParent(), old);
    EXPECT_THAT(block->getChildIDs(), ElementsAre(curve->getId()));
    curve->move(100.0F, true);
    EXPECT_EQ(block->getEnd(), 10.0F) << "the curve's notice no longer finds its block";
}

TEST_F(SettingIds, OfAChildLeavesItsParentWithTheOldOne) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 1}});
    kaAnimationUnit* block = makeBlock({curve});
    const kaUID old = curve->getId();
    manager->setID(50, curve);
    EXPECT_THAT(block->getChildIDs(), ElementsAre(old));
    EXPECT_THAT(block->getObjects(), testing::IsEmpty());
    EXPECT_THAT(curve->getCurveIDs(), ElementsAre(old)) << "the id sets keep what they hold";
    EXPECT_THAT(block->getCurves(), testing::IsEmpty());
    block->updateBounds();
    EXPECT_EQ(block->getBegin(), 1e23F);
}

TEST_F(SettingIds, OfAKeyTakesItOutOfItsCurve) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {10, 1}, {20, 2}});
    kaControlPoint2D* key = curve->findPoint(10.0F);
    const kaUID old = key->getId();
    manager->setID(50, key);
    EXPECT_EQ(curve->getPoints().size(), 2U);
    EXPECT_EQ(curve->findPoint(10.0F), nullptr);
    EXPECT_THAT(key->getChildIDs(), ElementsAre(old));
    EXPECT_EQ(key->getInTangent()->getParent(), old);
    manager->setID(old, key);
    EXPECT_EQ(curve->findPoint(10.0F), key) << "and back again";
    EXPECT_EQ(curve->getPoints().size(), 3U);
}

TEST_F(SettingIds, ToAListedIdBringsTheObjectIntoThatList) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 5, 6)});
    std::vector<kaUID> listed = track->getChildIDs();
    listed.push_back(50);
    track->setChildIDs(listed);
    kaAnimationSequence* late = makeSequence("late", 1, 99);
    manager->setID(50, late);
    EXPECT_EQ(track->getObjects().size(), 2U);
    EXPECT_EQ(track->getEnd(), 6.0F) << "no one was told";
    track->updateBounds();
    EXPECT_EQ(track->getEnd(), 99.0F);
    track->updateBy(track, kaAnimationObject::MOVE_OBJECT, false);
    EXPECT_EQ(track->getChildIDs().front(), 50ULL);
}

TEST_F(SettingIds, ToZeroIsPossibleAndNoParentIdResolvesToIt) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 5, 6)});
    manager->setID(0, track);
    EXPECT_EQ(track->getId(), 0ULL);
    EXPECT_EQ(manager->getObject(0), track);
    EXPECT_EQ(manager->getStreak(0), track);
    kaAnimationSequence* loose = makeSequence("loose", 1, 2);
    loose->moveEnd(50.0F, true); // its parent id 0 means none
    EXPECT_EQ(track->getEnd(), 6.0F);
    manager->destroySequence(loose);
    EXPECT_EQ(track->getChildCount(), 1U);
}

class TakenIds : public Ids {};

TEST_F(TakenIds, KeepTheirEntryAndTheNewObjectStaysOutside) {
    kaAnimationUnit* first = manager->createUnit(7);
    kaAnimationUnit* second = manager->createUnit(7);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);
    EXPECT_EQ(second->getId(), 7ULL);
    EXPECT_EQ(manager->getObject(7), first);
    EXPECT_EQ(manager->getObjects().size(), 1U);
    manager->setID(50, first);
    manager->destroyUnit(second);
    EXPECT_EQ(manager->getObject(50), first);
}

TEST_F(TakenIds, ChangedForTheOneOutsideCarryTheEntryToIt) {
    kaAnimationUnit* first = manager->createUnit(7);
    kaAnimationUnit* second = manager->createUnit(7);
    manager->setID(8, second);
    EXPECT_EQ(manager->getObject(7), nullptr);
    EXPECT_EQ(manager->getObject(8), second);
    manager->destroyUnit(first); // outside now
    EXPECT_EQ(manager->getObjects().size(), 1U);
}

TEST_F(TakenIds, OfEveryClassAreSafeToDestroyInAnyOrder) {
    for (bool firstFirst : {true, false}) {
        std::vector<std::pair<kaAnimationObject*, kaAnimationObject*>> pairs = {
            {manager->createPoint2D(71), manager->createPoint2D(71)},
            {manager->createCurve2D(72), manager->createCurve2D(72)},
            {manager->createUnit(73), manager->createUnit(73)},
            {manager->createStreak(74), manager->createStreak(74)},
            {manager->createStrip(75), manager->createStrip(75)},
            {manager->createSequence("s", 76), manager->createSequence("s", 76)},
            {manager->createUnit(77), manager->createPoint2D(77)},
        };
        for (const auto& pair : pairs) {
            manager->destroyObject(firstFirst ? pair.first : pair.second);
            manager->destroyObject(firstFirst ? pair.second : pair.first);
        }
        EXPECT_TRUE(manager->getObjects().empty());
    }
}

TEST_F(TakenIds, DestroyingTheOneOutsideTakesTheEntryOfItsIdAway) {
    kaAnimationUnit* first = manager->createUnit(7);
    kaAnimationUnit* second = manager->createUnit(7);
    manager->destroyUnit(second);
    EXPECT_EQ(manager->getObject(7), nullptr) << "the entry goes by the id, whoever has it";
    EXPECT_EQ(first->getId(), 7ULL);
    manager->destroyUnit(first);
    EXPECT_TRUE(manager->getObjects().empty());
}

TEST_F(TakenIds, OfAnUnregisteredKeyStandForTheRegisteredOneInACurve) {
    kaAnimationCurve2D* curve = manager->createCurve2D(0ULL);
    kaControlPoint2D* known = manager->createPoint2D(1.0F, 1.0F, 7);
    kaControlPoint2D* outside = manager->createPoint2D(2.0F, 2.0F, 7);
    EXPECT_EQ(curve->addObject(outside), outside);
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(7));
    EXPECT_EQ(curve->getPoints().begin()->second, known);
    EXPECT_EQ(curve->getBegin(), 1.0F);
    manager->destroyPoint2D(outside);
    EXPECT_TRUE(curve->getPoints().empty());
    manager->destroyPoint2D(known);
}

TEST_F(TakenIds, OfFieldsAreSafeToo) {
    kaAnimationField* first = manager->createField(7);
    kaAnimationField* second = manager->createField(7);
    EXPECT_EQ(manager->getField(7), first);
    manager->destroyField(second);
    EXPECT_EQ(manager->getField(7), nullptr);
    manager->destroyField(first);
}

TEST_F(TakenIds, ObjectsAndFieldsHaveMapsOfTheirOwn) {
    kaAnimationUnit* block = manager->createUnit(7);
    kaAnimationField* field = manager->createField(7);
    EXPECT_EQ(manager->getObject(7), block);
    EXPECT_EQ(manager->getField(7), field);
    manager->destroyUnit(block);
    EXPECT_EQ(manager->getField(7), field);
}

} // namespace
