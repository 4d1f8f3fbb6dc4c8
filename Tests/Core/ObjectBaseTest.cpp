#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"
#include "kaAnimationUtils.h"
#include "kaObjectName.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Spots = std::vector<Spot>;
using Object = kaAnimationObject;

std::uint32_t bitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

void expectEmptyExtent(const Object& object) {
    EXPECT_EQ(bitsOf(object.getBegin()), 0x65A96816U);
    EXPECT_EQ(bitsOf(object.getEnd()), 0xE5A96816U);
    EXPECT_EQ(bitsOf(object.getMaximum()), 0xE5A96816U);
    EXPECT_EQ(bitsOf(object.getMinimum()), 0x65A96816U);
}

class ObjectBase : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
};

void expectDefaults(const Object& object) {
    expectEmptyExtent(object);
    EXPECT_EQ(bitsOf(object.getRangeBegin()), 0x65A96816U);
    EXPECT_EQ(bitsOf(object.getRangeEnd()), 0xE5A96816U);
    for (float zero :
         {object.getStartTime(), object.getEndTime(), object.getPauseTime(), object.getLastFrame(),
          object.getCustomBegin(), object.getCustomEnd(), object.getCustomStart()})
        EXPECT_EQ(bitsOf(zero), 0U);
    EXPECT_TRUE(object.isActive());
    for (bool flag : {object.isPlaying(), object.isReversePlay(), object.isRepeating(), object.isPausing(),
                      object.isFlipped(), object.isTrimmed(), object.isSelected(), object.isLocked(),
                      object.isInternal(), object.isMotionBlur(), object.isUseCustomRange()})
        EXPECT_FALSE(flag);
    EXPECT_EQ(object.getParent(), 0ULL);
    EXPECT_THAT(object.getTriggers(), IsEmpty());
}

TEST_F(ObjectBase, IsBornWithTheTabledDefaults) {
    const Object object;
    expectDefaults(object);
    EXPECT_EQ(object.getId(), 0ULL);
    EXPECT_EQ(object.getName(), "Unnamed");
    EXPECT_THAT(object.getChildIDs(), IsEmpty());
    EXPECT_THAT(object.getCurveIDs(), IsEmpty());
    EXPECT_THAT(object.getSequenceIDs(), IsEmpty());
    EXPECT_EQ(object.getTypeID(), 0U);
    expectDefaults(Object::_the);
}

TEST_F(ObjectBase, EveryClassAnswersItsTypeId) {
    const struct {
        const Object* object;
        unsigned int type;
    } rows[] = {
        {manager->createPoint2D(0), 1}, {manager->createCurve2D(0ULL), 2},
        {manager->createUnit(0), 3},    {manager->createStreak(0), 4},
        {manager->createStrip(0), 5},   {manager->createSequence("s", 0), 6},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.object->getTypeID(), row.type);
    EXPECT_EQ(kaControlPoint2D::_typeID, 1U);
    EXPECT_EQ(kaAnimationCurve2D::_typeID, 2U);
    EXPECT_EQ(kaAnimationSequence::_typeID, 6U);
    expectDefaults(*rows[1].object);
    expectDefaults(*rows[2].object);
    expectDefaults(*rows[5].object);
}

TEST_F(ObjectBase, KeepsEveryPlainMember) {
    Object* object = manager->createUnit(0);
    object->setCustomBegin(1);
    object->setCustomEnd(2);
    object->setCustomStart(3);
    object->setRangeBegin(4);
    object->setRangeEnd(5);
    object->setStartTime(6);
    object->setEndTime(7);
    object->setPauseTime(8);
    object->setLastFrame(9);
    object->setName("name");
    object->setInternal(true);
    object->setFlipped(true);
    object->setTrimmed(true);
    object->setUseCustomRange(true);
    EXPECT_EQ(object->getCustomBegin(), 1.0F);
    EXPECT_EQ(object->getCustomEnd(), 2.0F);
    EXPECT_EQ(object->getCustomStart(), 3.0F);
    EXPECT_EQ(object->getRangeBegin(), 4.0F);
    EXPECT_EQ(object->getRangeEnd(), 5.0F);
    EXPECT_EQ(object->getStartTime(), 6.0F);
    EXPECT_EQ(object->getEndTime(), 7.0F);
    EXPECT_EQ(object->getPauseTime(), 8.0F);
    EXPECT_EQ(object->getLastFrame(), 9.0F);
    EXPECT_EQ(object->getName(), "name");
    EXPECT_TRUE(object->isInternal());
    EXPECT_TRUE(object->isFlipped());
    EXPECT_TRUE(object->isTrimmed());
    EXPECT_TRUE(object->isUseCustomRange());
    EXPECT_FALSE(object->isLocked());
}

class Bounds : public ObjectBase {};

TEST_F(Bounds, OfChildrenThatAllLackChildrenAreEmpty) {
    kaAnimationUnit* empty = manager->createUnit(0);
    empty->setBegin(3.0F);
    empty->setEnd(9.0F);
    kaAnimationStreak* track = makeTrack({empty, manager->createCurve2D(0ULL)});
    expectEmptyExtent(*track);
    track->setBegin(1.0F);
    track->updateBounds();
    expectEmptyExtent(*track);
}

TEST_F(Bounds, WithoutChildrenStayAsTheyWere) {
    kaAnimationUnit* block = manager->createUnit(0);
    block->setBegin(3.0F);
    block->setEnd(-9.0F);
    block->setMaximum(5.0F);
    block->setMinimum(6.0F);
    block->updateBounds();
    EXPECT_EQ(block->getBegin(), 3.0F);
    EXPECT_EQ(block->getEnd(), -9.0F);
    EXPECT_EQ(block->getMaximum(), 5.0F);
    EXPECT_EQ(block->getMinimum(), 6.0F);
}

TEST_F(Bounds, UniteTheChildren) {
    kaAnimationUnit* block = makeBlock({makeCurve(Spots{{5, -3}, {9, 1}}), makeCurve(Spots{{2, 0}, {7, 8}})});
    EXPECT_EQ(block->getBegin(), 2.0F);
    EXPECT_EQ(block->getEnd(), 9.0F);
    EXPECT_EQ(block->getMaximum(), 8.0F);
    EXPECT_EQ(block->getMinimum(), -3.0F);
}

TEST_F(Bounds, CountASequenceThoughItHasNoChildren) {
    const kaAnimationStreak* track = makeTrack({makeSequence("s", 4, 6)});
    EXPECT_EQ(track->getBegin(), 4.0F);
    EXPECT_EQ(track->getEnd(), 6.0F);
    EXPECT_EQ(bitsOf(track->getMaximum()), 0xE5A96816U);
    expectEmptyExtent(*makeTrack({manager->createSequence("empty", 0)}));
}

TEST_F(Bounds, SkipIdsThatTheRegistryDoesNotKnow) {
    kaAnimationStreak* track = makeTrack({makeSequence("s", 4, 6)});
    track->setChildIDs({111, track->getChildIDs()[0], 222});
    track->updateBounds();
    EXPECT_EQ(track->getBegin(), 4.0F);
    track->setChildIDs({111});
    track->updateBounds();
    expectEmptyExtent(*track);
}

TEST_F(Bounds, OverlookWhatIsNoNumber) {
    kaAnimationSequence* strange = makeSequence("strange", NAN, NAN);
    kaAnimationStreak* track = makeTrack({strange, makeSequence("s", 4, 6)});
    EXPECT_EQ(track->getBegin(), 4.0F);
    EXPECT_EQ(track->getEnd(), 6.0F);
}

TEST_F(Bounds, AreStoredAsTheyAreForAKeyToo) {
    // A key lists itself: its extent members take its position, which its getters give anyway.
    kaControlPoint2D* key = manager->createPoint2D(3.0F, 4.0F, 0);
    key->updateBounds();
    EXPECT_EQ(key->getBegin(), 3.0F);
    EXPECT_EQ(key->getMaximum(), 4.0F);
}

class ChildOrder : public ObjectBase {
  protected:
    kaAnimationStreak* track = nullptr;
    std::vector<kaUID> ids;

    /// Three sequences that all begin at 5.
    void SetUp() override {
        ObjectBase::SetUp();
        track = makeTrack({makeSequence("a", 5, 6), makeSequence("b", 5, 6), makeSequence("c", 5, 6)});
        ids = track->getChildIDs();
    }
    kaAnimationSequence* child(int index) {
        return manager->getSequence(ids[static_cast<std::size_t>(index)]);
    }
};

TEST_F(ChildOrder, KeepsEqualBeginsInTheirOrder) {
    track->updateBy(child(1), Object::MOVE_OBJECT, true);
    EXPECT_EQ(track->getChildIDs(), ids);
    kaAnimationSequence* early = makeSequence("early", 2, 3);
    track->addObject(early);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(early->getId(), ids[0], ids[1], ids[2]));
}

TEST_F(ChildOrder, AChildThatLeavesATieAndComesBackStandsWhereTheSortLeavesIt) {
    child(0)->setBegin(7.0F);
    track->updateBy(child(0), Object::MOVE_OBJECT, false);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(ids[1], ids[2], ids[0]));
    child(0)->setBegin(5.0F);
    track->updateBy(child(0), Object::MOVE_OBJECT, false);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(ids[1], ids[2], ids[0]));
}

TEST_F(ChildOrder, IsMadeByUpdatesOnly) {
    child(0)->setBegin(7.0F);
    EXPECT_EQ(track->getChildIDs(), ids);
    track->updateBounds();
    EXPECT_EQ(track->getChildIDs(), ids);
}

TEST_F(ChildOrder, IsUntouchedByANullChildAndByAnEmptyBatch) {
    child(0)->setBegin(7.0F);
    track->updateBy(nullptr, Object::ADD_OBJECT, true);
    EXPECT_EQ(track->getChildIDs(), ids);
    EXPECT_EQ(track->getBegin(), 5.0F);
    track->updateAll({}, Object::MOVE_OBJECT, true);
    EXPECT_EQ(track->getChildIDs(), ids);
    track->updateAll({999}, Object::MOVE_OBJECT, false); // an unknown id is still a batch
    EXPECT_THAT(track->getChildIDs(), ElementsAre(ids[1], ids[2], ids[0]));
}

TEST_F(ChildOrder, SettingTheListTakesItAsItStands) {
    track->setChildIDs({ids[2], 42, ids[2], ids[0]});
    EXPECT_THAT(track->getChildIDs(), ElementsAre(ids[2], 42, ids[2], ids[0]));
    EXPECT_EQ(track->getChildCount(), 4U);
    EXPECT_EQ(child(2)->getParent(), track->getId());
    EXPECT_EQ(track->getObjects().size(), 3U);
    track->setChildIDs({});
    EXPECT_FALSE(track->hasChildren());
    EXPECT_EQ(child(2)->getParent(), track->getId());
}

TEST_F(ChildOrder, ComparesByBeginAndKnowsNoOrderForStrangers) {
    child(0)->setBegin(1.0F);
    EXPECT_TRUE(Object::compareObjectsByBegin(ids[0], ids[1]));
    EXPECT_FALSE(Object::compareObjectsByBegin(ids[1], ids[0]));
    EXPECT_FALSE(Object::compareObjectsByBegin(ids[1], ids[2])) << "equal begins";
    EXPECT_FALSE(Object::compareObjectsByBegin(ids[0], 999));
    EXPECT_FALSE(Object::compareObjectsByBegin(999, ids[0]));
    EXPECT_FALSE(Object::compareObjectsByBegin(998, 999));
}

TEST_F(ChildOrder, ComparesPointersByBeginOrEnd) {
    child(0)->setBegin(1.0F);
    child(1)->setEnd(9.0F);
    EXPECT_TRUE(kaAnimationUtils::sortBeginBased(child(0), child(1)));
    EXPECT_FALSE(kaAnimationUtils::sortBeginBased(child(1), child(0)));
    EXPECT_TRUE(kaAnimationUtils::sortEndBased(child(0), child(1)));
    EXPECT_FALSE(kaAnimationUtils::sortEndBased(child(0), child(2)));
    for (auto sort : {kaAnimationUtils::sortBeginBased, kaAnimationUtils::sortEndBased}) {
        EXPECT_FALSE(sort(nullptr, child(0)));
        EXPECT_FALSE(sort(child(0), nullptr));
        EXPECT_FALSE(sort(nullptr, nullptr));
    }
}

class Finding : public ChildOrder {};

TEST_F(Finding, ByIdGivesTheFirstEntry) {
    track->setChildIDs({ids[0], 42, ids[1], 42});
    EXPECT_EQ(track->findObject(ids[1]), std::make_pair(std::size_t{2}, true));
    EXPECT_EQ(track->findObject(kaUID{42}), std::make_pair(std::size_t{1}, true)) << "known or not";
    EXPECT_EQ(track->findObject(kaUID{77}), std::make_pair(std::size_t{4}, false));
}

TEST_F(Finding, ByBeginNeedsTheExactValueAndARegisteredChild) {
    track->setChildIDs({42, ids[0], ids[1]});
    EXPECT_EQ(track->findObject(5.0F), std::make_pair(std::size_t{1}, true));
    EXPECT_EQ(track->findObject(std::nextafter(5.0F, 6.0F)), std::make_pair(std::size_t{3}, false));
    child(0)->setBegin(-0.0F);
    EXPECT_EQ(track->findObject(0.0F), std::make_pair(std::size_t{1}, true));
    EXPECT_EQ(track->findObject(NAN), std::make_pair(std::size_t{3}, false));
}

TEST_F(Finding, GivesTheSameWhereEveryChildIsRegistered) {
    track->setChildIDs({ids[0], ids[1], ids[2]});
    for (std::size_t i = 0; i < 3; ++i) {
        child(i)->setBegin(static_cast<float>(10 * i));
        EXPECT_EQ(track->findObject(ids[i]), std::make_pair(i, true));
        EXPECT_EQ(track->findObject(static_cast<float>(10 * i)), std::make_pair(i, true));
    }
    EXPECT_EQ(track->findObject(kaUID{42}), std::make_pair(std::size_t{3}, false));
    EXPECT_EQ(track->findObject(5.0F), std::make_pair(std::size_t{3}, false));
    child(2)->setBegin(10.0F);
    EXPECT_EQ(track->findObject(10.0F), std::make_pair(std::size_t{1}, true)) << "the first of them";
}

TEST_F(Finding, AKeyListsItselfAlone) {
    const kaControlPoint2D* key = manager->createPoint2D(10.0F, 2.0F, 0);
    EXPECT_EQ(key->findObject(key->getId()), std::make_pair(std::size_t{0}, true));
    EXPECT_EQ(key->findObject(ids[0]), std::make_pair(std::size_t{1}, false));
    EXPECT_EQ(key->findObject(10.0F), std::make_pair(std::size_t{0}, true));
    EXPECT_EQ(key->findObject(11.0F), std::make_pair(std::size_t{1}, false));
}

TEST_F(Finding, ObjectsComeInListOrderWithoutStrangers) {
    track->setChildIDs({ids[2], 42, ids[0], ids[2]});
    const std::vector<Object*> expected = {child(2), child(0), child(2)};
    EXPECT_EQ(track->getObjects(), expected);
}

class IdSets : public ObjectBase {};

TEST_F(IdSets, ClimbToEveryAncestor) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {1, 1}});
    kaAnimationSequence* sequence = makeSequence("s", 0, 1);
    kaAnimationUnit* block = makeBlock({curve});
    kaAnimationStreak* track = makeTrack({block, sequence});
    const kaAnimationStrip* clip = makeClip({track});
    for (const Object* object : {static_cast<const Object*>(track), static_cast<const Object*>(clip)}) {
        EXPECT_THAT(object->getCurveIDs(), ElementsAre(curve->getId()));
        EXPECT_THAT(object->getSequenceIDs(), ElementsAre(sequence->getId()));
        EXPECT_THAT(object->getCurves(), ElementsAre(curve));
        EXPECT_THAT(object->getSequencesRecursive(), ElementsAre(sequence));
    }
    EXPECT_THAT(sequence->getSequencesRecursive(), ElementsAre(sequence));
}

TEST_F(IdSets, LoseAnIdEverywhereThoughAnotherChildGaveItToo) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {1, 1}});
    kaAnimationUnit* first = makeBlock({curve});
    kaAnimationUnit* second = makeBlock({curve});
    const kaAnimationStreak* track = makeTrack({first, second});
    first->subObject(curve, false);
    EXPECT_THAT(first->getCurveIDs(), IsEmpty());
    EXPECT_THAT(track->getCurveIDs(), IsEmpty());
    EXPECT_THAT(second->getCurveIDs(), ElementsAre(curve->getId()));
    EXPECT_THAT(second->getChildIDs(), ElementsAre(curve->getId()));
}

TEST_F(IdSets, StopLosingIdsAtAnIdOfZero) {
    kaAnimationCurve2D* curve = manager->createCurve2D(50);
    kaAnimationUnit* block = manager->createUnit(0);
    curve->setCurveIDs({0, 50, 60});
    block->setCurveIDs({0, 50, 60});
    block->updateBy(curve, Object::SUB_OBJECT, false);
    EXPECT_EQ(block->getCurveIDs().count(50), 1U);
    EXPECT_EQ(block->getCurveIDs().count(60), 1U);
    block->setCurveIDs({50, 60, 70}); // here 0 is not found, so nothing stops
    block->updateBy(curve, Object::SUB_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(70));
}

TEST_F(IdSets, AreNotChangedByAMove) {
    kaAnimationCurve2D* curve = manager->createCurve2D(50);
    kaAnimationUnit* block = manager->createUnit(0);
    block->updateBy(curve, Object::MOVE_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), IsEmpty());
    block->setCurveIDs({50});
    block->updateBy(curve, Object::MOVE_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(50));
}

TEST_F(IdSets, OfABatchFollowItsFirstIdAlone) {
    const kaAnimationCurve2D* first = manager->createCurve2D(50);
    const kaAnimationCurve2D* second = manager->createCurve2D(60);
    kaAnimationUnit* block = manager->createUnit(0);
    block->updateAll({first->getId(), second->getId()}, Object::ADD_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(50));
    block->setCurveIDs({50, 60});
    block->updateAll({second->getId(), first->getId()}, Object::SUB_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(50));
    block->updateAll({999, 50}, Object::SUB_OBJECT, false);
    EXPECT_THAT(block->getCurveIDs(), ElementsAre(50)) << "the first id is unknown";
}

TEST_F(IdSets, OfABatchClimbTogether) {
    kaAnimationUnit* block = manager->createUnit(0);
    const kaAnimationStreak* track = makeTrack({block});
    manager->createCurve2D(50);
    block->updateAll({50}, Object::ADD_OBJECT, true);
    EXPECT_THAT(track->getCurveIDs(), ElementsAre(50));
    block->updateAll({50}, Object::SUB_OBJECT, false);
    EXPECT_THAT(track->getCurveIDs(), ElementsAre(50));
    EXPECT_THAT(block->getCurveIDs(), IsEmpty());
}

TEST_F(IdSets, ResolveInAscendingOrderAndSkipStrangers) {
    kaAnimationUnit* block = manager->createUnit(0);
    kaAnimationCurve2D* high = manager->createCurve2D(70);
    kaAnimationCurve2D* low = manager->createCurve2D(30);
    block->setCurveIDs({70, 30, 50, block->getId()});
    EXPECT_THAT(block->getCurves(), ElementsAre(low, high));
    block->setSequenceIDs({30, 70});
    EXPECT_THAT(block->getSequencesRecursive(), IsEmpty()) << "curves are no sequences";
}

TEST_F(IdSets, SequencesCanBeSetFromPointers) {
    kaAnimationSequence* a = manager->createSequence("a", 90);
    kaAnimationSequence* b = manager->createSequence("b", 80);
    kaAnimationUnit* block = manager->createUnit(0);
    block->setSequenceIDs({1, 2, 3});
    block->setRecursiveSequences({a, nullptr, b, a});
    EXPECT_THAT(block->getSequenceIDs(), ElementsAre(80, 90));
    block->setRecursiveSequences({});
    EXPECT_THAT(block->getSequenceIDs(), IsEmpty());
}

class Activating : public ObjectBase {};

TEST_F(Activating, ACurveSwitchesTheCurvesAndSequencesInItsSetsButNotItselfTwice) {
    kaAnimationCurve2D* other = manager->createCurve2D(50);
    kaAnimationSequence* sequence = manager->createSequence("s", 60);
    kaAnimationCurve2D* curve = manager->createCurve2D(40);
    curve->setCurveIDs({40, 50, 12345});
    curve->setSequenceIDs({60});
    curve->setActive(false);
    EXPECT_FALSE(curve->isActive());
    EXPECT_FALSE(other->isActive());
    EXPECT_FALSE(sequence->isActive());
}

TEST_F(Activating, CurvesThatNameEachOtherComeToAnEnd) {
    kaAnimationCurve2D* a = manager->createCurve2D(50);
    kaAnimationCurve2D* b = manager->createCurve2D(60);
    a->setCurveIDs({50, 60});
    b->setCurveIDs({50, 60});
    a->setActive(false);
    EXPECT_FALSE(a->isActive());
    EXPECT_FALSE(b->isActive());
}

class Triggers : public ObjectBase {
  protected:
    static std::string log;
};

std::string Triggers::log;

TEST_F(Triggers, FireWhatIsStoredUnderThemInTheOrderItWasMade) {
    log.clear();
    kaAnimationUnit* source = manager->createUnit(0);
    using Manager = kaAnimationManager;
    ASSERT_TRUE(manager->createConnection(
        source, Manager::TriggerBegin, +[] { log += "b1 "; }));
    ASSERT_TRUE(manager->createConnection(
        source, Manager::TriggerEnd, +[] { log += "e1 "; }));
    ASSERT_TRUE(manager->createConnection(
        source, Manager::TriggerBegin, +[] { log += "b2 "; }));
    source->trigger(Manager::TriggerBegin);
    EXPECT_EQ(log, "b1 b2 ");
    source->trigger(Manager::TriggerEnd);
    EXPECT_EQ(log, "b1 b2 e1 ");
    manager->createUnit(0)->trigger(Manager::TriggerBegin);
    EXPECT_EQ(log, "b1 b2 e1 ");
}

TEST_F(Triggers, CanBeSetAltogether) {
    log.clear();
    kaAnimationUnit* source = manager->createUnit(0);
    kaAnimationUnit* other = manager->createUnit(0);
    ASSERT_TRUE(manager->createConnection(
        source, kaAnimationManager::TriggerBegin, +[] { log += "b "; }));
    other->setTriggers(source->getTriggers());
    source->setTriggers({});
    source->trigger(kaAnimationManager::TriggerBegin);
    EXPECT_EQ(log, "");
    other->trigger(kaAnimationManager::TriggerBegin);
    EXPECT_EQ(log, "b ");
}

/// A name may be one that all keys share or one of its own.
TEST(ObjectName, KeepsItsTextWhenItIsCopiedMovedAndAssigned) {
    const std::string texts[] = {"", "Unnamed", "Point", "OutTangent", "left foot", std::string(10000, 'x')};
    EXPECT_EQ(kaObjectName().text(), "Unnamed");
    for (const std::string& text : texts) {
        for (const std::string& former : texts) {
            auto source = std::make_unique<kaObjectName>(text);
            kaObjectName copy(*source);
            kaObjectName assigned(former);
            assigned = *source;
            kaObjectName moved(std::move(*source));
            source.reset();
            EXPECT_EQ(copy.text(), text);
            EXPECT_EQ(assigned.text(), text);
            EXPECT_EQ(moved.text(), text);
            copy = kaObjectName(former);
            EXPECT_EQ(copy.text(), former);
            EXPECT_EQ(moved.text(), text);
        }
    }
}

} // namespace
