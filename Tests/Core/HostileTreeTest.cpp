#include "Builders.h"
#include "CapturedOutput.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaAnimationField.h"
#include "kaAnimationManager.h"

#include <cmath>
#include <limits>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Spots = std::vector<Spot>;
using Object = kaAnimationObject;

constexpr kaUID UNKNOWN = 424242;

/// What a host may do wrong must neither crash nor hang; where a rule says what comes of it, that is checked.
class HostileTree : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationController* controller = kaAnimationController::the();

    /// Every operation of the family and of sampling, on one object.
    void useEverything(Object* object) {
        const CapturedOutput quiet;
        for (bool tellParent : {false, true}) {
            object->move(1.0F, tellParent);
            object->moveBegin(-10.0F, tellParent);
            object->moveEnd(90.0F, tellParent);
            object->trimBegin(-5.0F, tellParent);
            object->trimEnd(80.0F, tellParent);
        }
        object->flip();
        object->triggerLoop(3.0F);
        for (bool flag : {false, true}) {
            object->setActive(flag);
            object->setRepeating(flag);
            object->setMotionBlur(flag);
            object->setSelected(flag);
            object->setLocked(flag);
        }
        object->updateBy(object, Object::MOVE_OBJECT, true);
        object->updateAll(object->getChildIDs(), Object::ADD_OBJECT, true);
        object->updateBounds();
        object->getObjects();
        object->getCurves();
        object->getSequencesRecursive();
        controller->evaluateObject(object, 3.0F, false);
        controller->evaluateObject(object, 3.5F, true);
    }
};

TEST_F(HostileTree, AContainerDoesNotTakeItself) {
    kaAnimationStreak* track = manager->createStreak(0);
    EXPECT_EQ(track->addObject(track), nullptr);
    EXPECT_FALSE(track->insertObject(track));
    kaAnimationStrip* clip = manager->createStrip(0);
    EXPECT_EQ(clip->addObject(clip), nullptr);
    EXPECT_EQ(clip->insertObject(clip), nullptr);
    EXPECT_FALSE(track->hasChildren());
    EXPECT_FALSE(clip->hasChildren());
    EXPECT_EQ(track->getParent(), 0ULL);
    EXPECT_EQ(manager->getObjects().size(), 2U) << "nothing was made for it either";
}

TEST_F(HostileTree, AContainerDoesNotTakeItsAncestors) {
    kaAnimationStreak* inner = manager->createStreak(0);
    kaAnimationStrip* clip = makeClip({inner});
    kaAnimationStreak* outer = makeTrack({clip});
    const std::size_t count = manager->getObjects().size();
    EXPECT_EQ(inner->addObject(clip), nullptr);
    EXPECT_EQ(inner->addObject(outer), nullptr);
    EXPECT_FALSE(inner->insertObject(clip));
    EXPECT_EQ(clip->addObject(outer), nullptr);
    EXPECT_FALSE(inner->hasChildren());
    EXPECT_EQ(clip->getChildCount(), 1U);
    EXPECT_EQ(clip->getParent(), outer->getId());
    EXPECT_EQ(outer->getParent(), 0ULL);
    EXPECT_EQ(manager->getObjects().size(), count);
}

TEST_F(HostileTree, AnAncestorMovedIntoItsDescendantsTrackStaysWhereItIs) {
    kaAnimationStreak* inner = manager->createStreak(0);
    kaAnimationStrip* clip = makeClip({inner});
    kaAnimationStreak* outer = makeTrack({clip});
    manager->moveObjectToStreak(clip, inner);
    EXPECT_EQ(inner->getChildCount(), 0U);
    EXPECT_EQ(outer->getObjects().size() + (clip->getParent() == 0 ? 1 : 0), 1U) << "in its track or nowhere";
}

TEST_F(HostileTree, AListedChildWithoutParentIdIsNoWayAroundThat) {
    kaAnimationStreak* inner = manager->createStreak(0);
    kaAnimationStrip* clip = makeClip({inner});
    inner->setParent(0);
    inner->addObject(clip);
    for (Object* object : {static_cast<Object*>(inner), static_cast<Object*>(clip)})
        useEverything(object);
    manager->destroyStrip(clip);
}

/// Put into a second clip, a track stays in the list of the first and names the second as its parent.
TEST_F(HostileTree, ATrackInTwoListsTakesNoneOfThoseThatListIt) {
    kaAnimationStreak* track = manager->createStreak(0);
    kaAnimationStrip* first = makeClip({track});
    kaAnimationStreak* above = makeTrack({first});
    kaAnimationStrip* second = makeClip({track});
    ASSERT_EQ(first->getObjects().front(), track);
    ASSERT_EQ(track->getParent(), second->getId());
    const std::size_t count = manager->getObjects().size();
    EXPECT_EQ(track->addObject(first), nullptr);
    EXPECT_EQ(track->addObject(above), nullptr) << "which holds the first clip";
    EXPECT_FALSE(track->insertObject(first));
    EXPECT_FALSE(manager->moveObjectToStreak(first, track));
    EXPECT_THAT(track->getChildIDs(), IsEmpty());
    EXPECT_EQ(first->getParent(), above->getId());
    EXPECT_EQ(manager->getObjects().size(), count);
}

TEST_F(HostileTree, AClipGoesIntoAnotherClipOnNoTrackThatItHolds) {
    kaAnimationStreak* track = manager->createStreak(0);
    kaAnimationStrip* first = makeClip({track});
    kaAnimationStrip* second = makeClip({track});
    kaAnimationStreak* taker = second->insertObject(first);
    ASSERT_NE(taker, nullptr);
    EXPECT_NE(taker, track) << "a new one";
    EXPECT_THAT(track->getChildIDs(), IsEmpty());
    EXPECT_EQ(taker->getObjects().front(), first);
}

TEST_F(HostileTree, AVeryDeepTreeIsTakenByNobody) {
    std::vector<kaAnimationStreak*> tracks;
    for (int i = 0; i < 200000; ++i)
        tracks.push_back(manager->createStreak(0));
    for (std::size_t i = 1; i < tracks.size(); ++i)
        tracks[i - 1]->setChildIDs({tracks[i]->getId()});
    kaAnimationStreak* taker = manager->createStreak(0);
    EXPECT_EQ(taker->addObject(tracks.front()), nullptr);
    EXPECT_FALSE(taker->hasChildren());
}

TEST_F(HostileTree, ParentsInACircleComeToAnEnd) {
    kaAnimationStreak* a = makeTrack({makeSequence("a", 0, 10)});
    kaAnimationStreak* b = makeTrack({makeSequence("b", 5, 20)});
    kaAnimationStreak* c = makeTrack({makeSequence("c", 7, 9)});
    a->setParent(b->getId());
    b->setParent(c->getId());
    c->setParent(a->getId());
    makeBlock(0, 1)->setParent(a->getId());
    for (kaAnimationStreak* track : {a, b, c})
        useEverything(track);
    kaAnimationSequence* sequence = makeSequence("late", 50, 60);
    const bool taken = a->addObject(sequence) != nullptr; // a ring has no depth, so it may be refused
    for (const kaAnimationStreak* track : {a, b, c})
        EXPECT_EQ(track->getSequenceIDs().count(sequence->getId()), taken ? 1U : 0U)
            << "all or none hear of it";
    manager->destroyStreak(b);
    useEverything(a);
}

TEST_F(HostileTree, AnObjectThatIsItsOwnParentComesToAnEnd) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    curve->setParent(curve->getId());
    useEverything(curve);
    kaAnimationStreak* track = makeTrack({makeSequence("a", 0, 10)});
    track->setParent(track->getId());
    useEverything(track);
    manager->destroyCurve2D(curve);
    manager->destroyStreak(track);
}

TEST_F(HostileTree, ChildrenInACircleComeToAnEnd) {
    kaAnimationStreak* a = manager->createStreak(0);
    kaAnimationStreak* b = manager->createStreak(0);
    kaAnimationStrip* c = manager->createStrip(0);
    kaAnimationUnit* block = makeBlock(0, 10);
    a->setChildIDs({b->getId(), block->getId()});
    b->setChildIDs({c->getId(), a->getId(), b->getId()});
    c->setChildIDs({a->getId(), b->getId(), c->getId()});
    for (Object* object : {static_cast<Object*>(a), static_cast<Object*>(b), static_cast<Object*>(c)})
        useEverything(object);
    manager->destroyStreak(b);
    EXPECT_THAT(manager->getObjects(), IsEmpty());
}

TEST_F(HostileTree, ChildrenInACircleCanBeCopied) {
    kaAnimationStreak* a = manager->createStreak(0);
    kaAnimationStreak* b = manager->createStreak(0);
    a->setChildIDs({b->getId()});
    b->setChildIDs({a->getId()});
    const kaAnimationStreak* copy = manager->duplicateStreak(a);
    EXPECT_NE(copy, nullptr);
    kaAnimationUnit* block = manager->createUnit(0);
    block->setChildIDs({block->getId(), a->getId()});
    EXPECT_NE(manager->duplicateUnit(block, false), nullptr);
    EXPECT_TRUE(manager->copy(a));
}

TEST_F(HostileTree, AKeyThatListsItsCurveComesToAnEnd) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}, {20, 0}});
    kaControlPoint2D* key = curve->findPoint(10.0F);
    key->setChildIDs({curve->getId(), key->getId()});
    useEverything(curve);
    useEverything(key);
    EXPECT_NE(manager->duplicateCurve2D(curve), nullptr);
    manager->destroyPoint2D(key); // and the curve with it
}

TEST_F(HostileTree, AnUnlimitedDepthIsRefusedOrHandled) {
    kaAnimationStreak* top = manager->createStreak(0);
    kaAnimationStreak* bottom = top;
    for (int i = 0; i < 2000; ++i) {
        kaAnimationStreak* next = manager->createStreak(0);
        if (bottom->addObject(next))
            bottom = next;
    }
    bottom->addObject(makeSequence("deep", 0, 10));
    useEverything(top);
    useEverything(bottom);
    EXPECT_NE(manager->duplicateStreak(top), nullptr);
    manager->destroyStreak(top);
}

TEST_F(HostileTree, AVeryDeepListWrittenDirectlyIsHandled) {
    std::vector<kaAnimationStreak*> tracks;
    for (int i = 0; i < 50000; ++i)
        tracks.push_back(manager->createStreak(0));
    for (std::size_t i = 1; i < tracks.size(); ++i) {
        tracks[i - 1]->setChildIDs({tracks[i]->getId()});
        tracks[i]->setParent(tracks[i - 1]->getId());
    }
    tracks.back()->addObject(makeSequence("deep", 0, 10));
    useEverything(tracks.front());
    useEverything(tracks.back());
    manager->duplicateStreak(tracks.front());
    const kaUID deepest = tracks.back()->getId();
    manager->destroyStreak(tracks.front());
    EXPECT_EQ(manager->getObject(deepest), nullptr);
}

TEST_F(HostileTree, ListsOfUnknownAndRepeatedIdsAreSkippedOver) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    const kaUID key = curve->getChildIDs()[1];
    curve->setChildIDs({UNKNOWN, key, 0, key, curve->getChildIDs()[0], UNKNOWN, 0});
    useEverything(curve);
    EXPECT_EQ(curve->getChildCount(), 7U);
    EXPECT_EQ(curve->getPoints().size(), 2U);
    manager->duplicateCurve2D(curve);
    curve->setSelected(true);
    curve->deleteSelectedPoints(true, false);
    manager->destroyCurve2D(curve);
    EXPECT_EQ(manager->getPoint2D(key), nullptr);
}

TEST_F(HostileTree, ChildrenOfTheWrongKindAreSkippedOver) {
    Object* const all[] = {manager->createPoint2D(0), makeCurve(Spots{{0, 0}, {10, 5}}),
                           manager->createUnit(0),    manager->createStreak(0),
                           manager->createStrip(0),   manager->createSequence("s", 0)};
    std::vector<kaUID> ids;
    for (const Object* object : all)
        ids.push_back(object->getId());
    for (Object* object : all) {
        std::vector<kaUID> others;
        for (kaUID id : ids)
            if (id != object->getId())
                others.push_back(id);
        object->setChildIDs(others);
        object->setCurveIDs({ids.begin(), ids.end()});
        object->setSequenceIDs({ids.begin(), ids.end()});
        useEverything(object);
        object->setChildIDs({});
    }
}

TEST_F(HostileTree, NumbersThatAreNoneAreCarriedAlong) {
    const float wild[] = {NAN, INFINITY, -INFINITY, std::numeric_limits<float>::max(), -1e38F, 1e-45F};
    for (float x : wild) {
        kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}, {x, x}, {20, x}});
        kaAnimationStreak* track = makeTrack({makeBlock({curve})});
        curve->setSelected(true);
        curve->moveSelectedPoints({x, x}, true, true, true, false);
        curve->moveSelectedPointsTo({x, 1}, false, false, true);
        curve->move(x, true);
        track->moveBegin(x, true);
        track->moveEnd(x, true);
        useEverything(track);
        useEverything(curve);
        manager->createCurvePoint(curve, x, x, true, true, true);
        manager->createCurvePoint(curve, x, true);
        float value = 0.0F;
        controller->computeCurveValue(curve, x, value);
        controller->evaluateCurves({curve}, x, x, x, false);
        manager->destroyStreak(track);
    }
    EXPECT_THAT(manager->getObjects(), IsEmpty());
}

TEST_F(HostileTree, AHandleAddedToItsOwnKeysCurveIsFreedOnce) {
    kaControlPoint2D* copy = manager->duplicatePoint2D(manager->createPoint2D(5.0F, 5.0F, 0));
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}});
    place(*copy->getInTangent(), {3, 3});
    curve->addObject(copy);
    curve->addObject(copy->getInTangent());
    useEverything(curve);
    manager->destroyCurve2D(curve);
    EXPECT_EQ(manager->getObjects().size(), 1U) << "the source";
}

TEST_F(HostileTree, AnUnregisteredHandleAddedToACurveIsAnUnknownId) {
    kaControlPoint2D* key = manager->createPoint2D(5.0F, 5.0F, 0);
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {9, 9}});
    EXPECT_EQ(curve->addObject(key->getInTangent()), key->getInTangent());
    EXPECT_EQ(curve->getChildCount(), 3U);
    EXPECT_EQ(curve->getPoints().size(), 2U);
    manager->destroyPoint2D(key);
    useEverything(curve);
}

TEST_F(HostileTree, TheHandleOfTheKeyThatGivesWayForItGoesWithThatKey) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{5, 1}});
    Object* handle = curve->findPoint(5.0F)->getOutTangent();
    ASSERT_EQ(handle->getBegin(), 5.0F) << "a key alone has its handles on itself";
    EXPECT_EQ(curve->addObject(handle), nullptr);
    EXPECT_THAT(curve->getChildIDs(), IsEmpty());
}

TEST_F(HostileTree, AnObjectThatTakesItsOwnIdsAwayTakesThemFromItsAncestorsToo) {
    kaAnimationStreak* track = manager->createStreak(0);
    kaAnimationStrip* clip = manager->createStrip(0);
    clip->addObject(track);
    clip->setSequenceIDs({1, 2, 3, 4});
    track->setSequenceIDs({2, 3, 4});
    track->updateAll({track->getId()}, Object::SUB_OBJECT, true);
    EXPECT_THAT(track->getSequenceIDs(), IsEmpty());
    EXPECT_THAT(clip->getSequenceIDs(), ElementsAre(1));
}

TEST_F(HostileTree, IdZeroNamesNoParent) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}});
    manager->setID(0, curve);
    ASSERT_EQ(curve->getId(), 0U);
    kaControlPoint2D* key = curve->findPoint(10.0F);
    key->setParent(0);
    EXPECT_FALSE(key->computeTangents());
    manager->destroyPoint2D(key);
    EXPECT_EQ(curve->getChildCount(), 2U) << "its entry stays, unknown";
}

TEST_F(HostileTree, AnIdWrittenByTheHostLeavesNoEntryBehind) {
    kaAnimationStreak* track = manager->createStreak(0);
    Object* other = manager->createStreak(0);
    const kaUID former = track->getId();
    track->setId(other->getId());
    manager->setID(other->getId(), track);
    EXPECT_EQ(manager->getObject(former), nullptr);
    EXPECT_EQ(manager->getObject(track->getId()), track);
    manager->destroyStreak(track);
    EXPECT_THAT(manager->getObjects(), IsEmpty()) << "the id was the other track's, whose entry went";
    manager->destroyObject(other);
}

TEST_F(HostileTree, ASelectedKeyWithTheIdOfAnotherIsDeletedItself) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}, {10, 5}, {20, 1}});
    const std::vector<kaUID> ids = curve->getChildIDs();
    kaControlPoint2D* key = manager->getPoint2D(ids[0]);
    kaControlPoint2D* namesake = manager->getPoint2D(ids[1]);
    key->setId(ids[1]);
    key->setSelected(true);
    EXPECT_EQ(curve->deleteSelectedPoints(false, false), curve);
    EXPECT_EQ(manager->getObject(ids[0]), nullptr) << "where the key was entered";
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(ids[0], ids[2])) << "the entry of its own id is gone";
    EXPECT_EQ(namesake->getBegin(), 10.0F) << "still there, though its entry went with the id";
    manager->destroyPoint2D(namesake);
}

TEST_F(HostileTree, AKeyIsListedUnderTheIdThatTheHostWroteAndFoundByWhatTheRegistryKnows) {
    kaAnimationCurve2D* curve = makeCurve(Spots{{0, 0}});
    const kaUID first = curve->getChildIDs().front();
    kaControlPoint2D* key = manager->createPoint2D(10.0F, 1.0F, 0);
    const kaUID former = key->getId();

    key->setId(first);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(first)) << "that id is listed already";

    key->setId(UNKNOWN);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(first, UNKNOWN));
    EXPECT_EQ(curve->getObjects().size(), 1U) << "no object is registered as the other";
    EXPECT_EQ(curve->subObject(key, false), key);

    key->setId(former);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(first, former));
    EXPECT_EQ(curve->getObjects().size(), 2U);

    manager->setID(UNKNOWN, key);
    EXPECT_THAT(curve->getChildIDs(), ElementsAre(first, former)) << "the list keeps what it was given";
    EXPECT_EQ(curve->subObject(key, false), nullptr);
    EXPECT_EQ(curve->addObject(key), key);
    EXPECT_EQ(curve->getObjects().size(), 2U);
}

// The same for fields.

TEST_F(HostileTree, AFieldUnderAnotherIdThanItsOwnLeavesNoEntryBehind) {
    kaAnimationField* field = manager->createField(0);
    const kaUID former = field->getId();
    field->setId(UNKNOWN);
    EXPECT_EQ(manager->getField(former), field) << "until it goes";
    manager->destroyField(field);
    EXPECT_EQ(manager->getField(former), nullptr);
    EXPECT_THAT(manager->getFields(), IsEmpty());
    EXPECT_TRUE(manager->isIDUnique(former));
}

TEST_F(HostileTree, AFieldWithTheIdOfAnotherTakesThatEntryAlong) {
    kaAnimationField* field = manager->createField(0);
    kaAnimationField* other = manager->createField(0);
    field->setId(other->getId());
    manager->destroyField(field);
    EXPECT_THAT(manager->getFields(), IsEmpty());
    EXPECT_EQ(other->valuePos, 0U) << "it is still there";
    manager->destroyField(other);
}

TEST_F(HostileTree, AFieldIdGivenAfterTheHostWroteOneLeavesNoEntryBehind) {
    kaAnimationField* field = manager->createField(0);
    kaAnimationField* other = manager->createField(0);
    const kaUID former = field->getId();
    field->setId(other->getId());
    manager->setID(UNKNOWN, field);
    EXPECT_EQ(field->getId(), UNKNOWN);
    EXPECT_EQ(manager->getField(UNKNOWN), field);
    EXPECT_EQ(manager->getField(former), nullptr);
    EXPECT_EQ(manager->getFields().size(), 1U) << "the id was the other's, whose entry went";
    manager->destroyField(other);
    manager->destroyField(field);
    EXPECT_THAT(manager->getFields(), IsEmpty());
}

TEST_F(HostileTree, FieldsWithEachOthersIdsAllGo) {
    kaAnimationField* field = manager->createField(0);
    kaAnimationField* other = manager->createField(0);
    const kaUID former = field->getId();
    field->setId(other->getId());
    other->setId(former);
    manager->destroyAllFields();
    EXPECT_THAT(manager->getFields(), IsEmpty());
}

TEST_F(HostileTree, AnObjectUnderAnotherIdThanItsOwnIsDestroyedWithWhatItLists) {
    kaAnimationStreak* track = manager->createStreak(0);
    kaAnimationUnit* block = manager->createUnit(0ULL);
    track->addObject(block);
    track->setId(UNKNOWN);
    manager->destroyStreak(track);
    EXPECT_THAT(manager->getObjects(), IsEmpty());
}

TEST_F(HostileTree, ObjectsOfTheHostsOwnAreLeftToTheHost) {
    kaAnimationStreak* track = manager->createStreak(0);
    {
        kaAnimationUnit own("own", 0);
        EXPECT_EQ(track->addObject(&own), &own);
        useEverything(track);
        EXPECT_THAT(track->getObjects(), IsEmpty()) << "the registry does not know it";
    }
    useEverything(track);
}

} // namespace
