#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationManager.h"

#include <memory>

using namespace ka_test;
using testing::ElementsAre;

namespace {

using Point = kaControlPoint2D;

class ControlPoint : public RegistryFixture {
  protected:
    kaAnimationManager* manager = kaAnimationManager::the();
};

void expectAt(const Point* point, float x, float y) {
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->getPosition()[0], x);
    EXPECT_EQ(point->getPosition()[1], y);
}

TEST_F(ControlPoint, IsBornWithTheTabledDefaults) {
    Point* key = manager->createPoint2D(3.0F, 4.0F, 0);
    EXPECT_EQ(key->getTypeID(), 1U);
    EXPECT_EQ(key->getName(), "Point");
    expectAt(key, 3, 4);
    EXPECT_EQ(key->getTangentType(), 4U);
    EXPECT_EQ(key->getTangentLengthMode(), 64U);
    EXPECT_FALSE(key->isTangent());
    EXPECT_EQ(key->getParent(), 0ULL);
    EXPECT_THAT(key->getChildIDs(), ElementsAre(key->getId()));
    for (const osg::Pnt2f& saved :
         {key->getSavedPosition(), key->getSavedInTangent(), key->getSavedOutTangent()}) {
        EXPECT_EQ(saved[0], 0.0F);
        EXPECT_EQ(saved[1], 0.0F);
    }
    expectAt(manager->createPoint2D(0), 0, 0);
}

TEST_F(ControlPoint, HasTwoUnregisteredHandlesOnItself) {
    Point* key = manager->createPoint2D(3.0F, 4.0F, 0);
    const Point* handles[] = {key->getInTangent(), key->getOutTangent()};
    const char* names[] = {"InTangent", "OutTangent"};
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(names[i]);
        expectAt(handles[i], 3, 4);
        EXPECT_EQ(handles[i]->getName(), names[i]);
        EXPECT_TRUE(handles[i]->isTangent());
        EXPECT_EQ(handles[i]->getParent(), key->getId());
        EXPECT_EQ(handles[i]->getInTangent(), nullptr);
        EXPECT_EQ(handles[i]->getOutTangent(), nullptr);
        EXPECT_EQ(manager->getObject(handles[i]->getId()), nullptr);
        EXPECT_THAT(handles[i]->getChildIDs(), ElementsAre(handles[i]->getId()));
    }
    EXPECT_EQ(manager->getObjects().size(), 1U);
}

TEST_F(ControlPoint, DrawsItsOwnIdThenTheInHandlesThenTheOutHandles) {
    IdSequence ids;
    const Point* key = manager->createPoint2D(0);
    EXPECT_EQ(key->getId(), ids.next());
    EXPECT_EQ(key->getInTangent()->getId(), ids.next());
    EXPECT_EQ(key->getOutTangent()->getId(), ids.next());
}

TEST_F(ControlPoint, WithAGivenIdDrawsForItsHandlesOnly) {
    IdSequence ids;
    const Point* key = manager->createPoint2D(77);
    EXPECT_EQ(key->getId(), 77ULL);
    EXPECT_EQ(key->getInTangent()->getId(), ids.next());
    EXPECT_EQ(key->getOutTangent()->getId(), ids.next());
}

TEST_F(ControlPoint, MadeAsAHandleHasNoHandles) {
    IdSequence ids;
    const Point handle(1.0F, 2.0F, "mine", 0, true);
    EXPECT_EQ(handle.getId(), ids.next());
    EXPECT_TRUE(handle.isTangent());
    EXPECT_EQ(handle.getInTangent(), nullptr);
    EXPECT_EQ(handle.getOutTangent(), nullptr);
    EXPECT_EQ(handle.getName(), "mine");
    EXPECT_EQ(manager->createUID(), ids.next());
}

TEST_F(ControlPoint, ReadsAndWritesItsPositionAsExtent) {
    Point* key = manager->createPoint2D(3.0F, 4.0F, 0);
    key->setBegin(5.0F);
    expectAt(key, 5, 4);
    key->setEnd(6.0F);
    expectAt(key, 6, 4);
    key->setMaximum(7.0F);
    expectAt(key, 6, 7);
    key->setMinimum(8.0F);
    expectAt(key, 6, 8);
    const kaAnimationObject* base = key;
    EXPECT_EQ(base->getBegin(), 6.0F);
    EXPECT_EQ(base->getEnd(), 6.0F);
    EXPECT_EQ(base->getMaximum(), 8.0F);
    EXPECT_EQ(base->getMinimum(), 8.0F);
}

TEST_F(ControlPoint, SelectingOrDeselectingItDeselectsItsHandles) {
    for (bool selected : {true, false}) {
        Point* key = manager->createPoint2D(0);
        key->getInTangent()->setSelected(true);
        key->getOutTangent()->setSelected(true);
        key->setSelected(selected);
        EXPECT_EQ(key->isSelected(), selected);
        EXPECT_FALSE(key->getInTangent()->isSelected());
        EXPECT_FALSE(key->getOutTangent()->isSelected());
    }
}

TEST_F(ControlPoint, IgnoresRequestsToMoveTrimFlipAndLoop) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{3, 4}, {9, 1}});
    Point* key = curve->findPoint(3.0F);
    const Key before = keyOf(*key);
    key->move(5.0F, true);
    key->moveBegin(-5.0F, true);
    key->moveEnd(50.0F, true);
    key->trimBegin(1.0F, true);
    key->trimEnd(2.0F, true);
    key->flip();
    key->triggerLoop(3.0F);
    const Key after = keyOf(*key);
    EXPECT_EQ(after.key.x, before.key.x);
    EXPECT_EQ(after.key.y, before.key.y);
    EXPECT_EQ(after.in.x, before.in.x);
    EXPECT_EQ(after.out.x, before.out.x);
    EXPECT_FALSE(key->isFlipped());
    EXPECT_FALSE(key->isTrimmed());
    EXPECT_FALSE(key->isPlaying());
    EXPECT_EQ(curve->getBegin(), 3.0F);
}

TEST_F(ControlPoint, AddsAndRemovesNothing) {
    Point* key = manager->createPoint2D(0);
    Point* other = manager->createPoint2D(0);
    EXPECT_EQ(key->addObject(other), other);
    EXPECT_EQ(key->subObject(other, true), other);
    EXPECT_THAT(key->getChildIDs(), ElementsAre(key->getId()));
    EXPECT_EQ(manager->getObject(other->getId()), other);
}

TEST_F(ControlPoint, KeepsAnyTangentTypeAndLengthMode) {
    Point* key = manager->createPoint2D(0);
    key->setTangentType(12345);
    key->setTangentLengthMode(54321);
    EXPECT_EQ(key->getTangentType(), 12345U);
    EXPECT_EQ(key->getTangentLengthMode(), 54321U);
}

class ControlPointCopy : public ControlPoint {
  protected:
    Point* source = nullptr;

    void SetUp() override {
        ControlPoint::SetUp();
        source = manager->createPoint2D(3.0F, 4.0F, 500);
        source->setName("mine");
        source->setTangentType(Point::TANGENT_USER);
        source->setTangentLengthMode(Point::LENGTH_FIXED);
        source->setPosition(3.0F, 4.0F);
        place(*source->getInTangent(), {1, 5});
        place(*source->getOutTangent(), {6, 2});
        source->setSavedPosition({30, 40});
        source->setSavedInTangent({10, 50});
        source->setSavedOutTangent({60, 20});
        kaAnimationManager::random(99);
    }
};

TEST_F(ControlPointCopy, TakesPositionsTypesAndName) {
    source->setLocked(true);
    source->setSelected(true);
    const Point* copy = manager->duplicatePoint2D(source);
    expectAt(copy, 3, 4);
    expectAt(copy->getInTangent(), 1, 5);
    expectAt(copy->getOutTangent(), 6, 2);
    EXPECT_EQ(copy->getSavedPosition()[0], 30.0F);
    EXPECT_EQ(copy->getSavedInTangent()[1], 50.0F);
    EXPECT_EQ(copy->getSavedOutTangent()[0], 60.0F);
    EXPECT_EQ(copy->getTangentType(), 16U);
    EXPECT_EQ(copy->getTangentLengthMode(), 32U);
    EXPECT_EQ(copy->getName(), "mine");
    EXPECT_TRUE(copy->isLocked());
    EXPECT_TRUE(copy->isSelected());
    EXPECT_THAT(copy->getChildIDs(), ElementsAre(copy->getId()));
}

TEST_F(ControlPointCopy, DrawsItsOwnIdThenTheHandlesAndRegistersAllThree) {
    IdSequence ids(99);
    const Point* copy = manager->duplicatePoint2D(source);
    EXPECT_EQ(copy->getId(), ids.next());
    EXPECT_EQ(copy->getInTangent()->getId(), ids.next());
    EXPECT_EQ(copy->getOutTangent()->getId(), ids.next());
    EXPECT_EQ(manager->getObject(copy->getId()), copy);
    EXPECT_EQ(manager->getObject(copy->getInTangent()->getId()), copy->getInTangent());
    EXPECT_EQ(manager->getObject(copy->getOutTangent()->getId()), copy->getOutTangent());
    EXPECT_EQ(manager->getObjects().size(), 4U);
}

TEST_F(ControlPointCopy, OfAHandleIsNoHandle) {
    const Point* copy = manager->duplicatePoint2D(source->getInTangent());
    EXPECT_FALSE(copy->isTangent());
    EXPECT_EQ(copy->getName(), "InTangent");
    EXPECT_EQ(copy->getInTangent(), nullptr);
    EXPECT_EQ(copy->getParent(), source->getId()) << "the source's parent, which is registered";
}

TEST_F(ControlPointCopy, TakesTheParentIdOnlyOfARegisteredParent) {
    source->setParent(manager->createCurve2D(0ULL)->getId());
    EXPECT_EQ(manager->duplicatePoint2D(source)->getParent(), source->getParent());
    source->setParent(987654321);
    EXPECT_EQ(manager->duplicatePoint2D(source)->getParent(), 0ULL);
}

TEST_F(ControlPointCopy, OfAKeyWithoutHandlesHasNone) {
    manager->destroyPoint2D(source->getOutTangent());
    const Point* copy = manager->duplicatePoint2D(source);
    EXPECT_NE(copy->getInTangent(), nullptr);
    EXPECT_EQ(copy->getOutTangent(), nullptr);
}

/// The three parts of a key can be freed in any order; whoever is freed first is forgotten by the others.
class FreeingAKey : public ControlPoint {
  protected:
    enum Part { KEY, IN, OUT };

    static Point* partOf(Point* key, Part part) {
        return part == KEY ? key : part == IN ? key->getInTangent() : key->getOutTangent();
    }
    void destroy(Point* point, bool asObject) {
        if (asObject)
            manager->destroyObject(point);
        else
            manager->destroyPoint2D(point);
    }
};

TEST_F(FreeingAKey, WorksInEveryOrder) {
    const std::vector<std::vector<Part>> orders = {
        {KEY}, {IN, KEY}, {OUT, KEY}, {IN, OUT, KEY}, {OUT, IN, KEY}};
    for (bool copied : {false, true})
        for (bool asObject : {false, true})
            for (const std::vector<Part>& order : orders) {
                Point* source = manager->createPoint2D(1.0F, 2.0F, 0);
                Point* key = copied ? manager->duplicatePoint2D(source) : source;
                for (Part part : order) {
                    destroy(partOf(key, part), asObject);
                    if (part == IN) {
                        EXPECT_EQ(key->getInTangent(), nullptr);
                    }
                    if (part == OUT) {
                        EXPECT_EQ(key->getOutTangent(), nullptr);
                    }
                }
                if (copied)
                    manager->destroyPoint2D(source);
                EXPECT_TRUE(manager->getObjects().empty())
                    << "copied " << copied << " as object " << asObject;
            }
}

TEST_F(FreeingAKey, TakesCopiedHandlesOutOfTheRegistry) {
    Point* copy = manager->duplicatePoint2D(manager->createPoint2D(0));
    const kaUID in = copy->getInTangent()->getId();
    const kaUID out = copy->getOutTangent()->getId();
    manager->destroyPoint2D(copy);
    EXPECT_EQ(manager->getObject(in), nullptr);
    EXPECT_EQ(manager->getObject(out), nullptr);
}

TEST_F(FreeingAKey, InACurveLeavesTheOthers) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {5, 5}, {10, 0}});
    manager->destroyPoint2D(curve->findPoint(10.0F));
    EXPECT_EQ(curve->getChildCount(), 2U);
    EXPECT_EQ(curve->getEnd(), 5.0F);
    EXPECT_EQ(curve->getMaximum(), 5.0F);
}

TEST_F(FreeingAKey, TellsItsParentOnlyWhenThatIsACurve) {
    kaAnimationStreak* track = manager->createStreak(0);
    Point* key = manager->createPoint2D(5.0F, 1.0F, 0);
    track->addObject(key);
    const kaUID id = key->getId();
    manager->destroyPoint2D(key);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(id)) << "typed destruction leaves a track's list alone";
    Point* other = manager->createPoint2D(6.0F, 1.0F, 0);
    track->addObject(other);
    manager->destroyObject(other);
    EXPECT_THAT(track->getChildIDs(), ElementsAre(id));
}

TEST_F(FreeingAKey, ThatIsACopiedHandleInACurveLeavesItsIdThere) {
    Point* copy = manager->duplicatePoint2D(manager->createPoint2D(1.0F, 1.0F, 0));
    Point* handle = copy->getInTangent();
    const kaUID id = handle->getId();
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0, 0}, {9, 9}});
    ASSERT_EQ(curve->addObject(handle), handle);
    manager->destroyPoint2D(copy);
    EXPECT_EQ(manager->getObject(id), nullptr);
    EXPECT_EQ(curve->getChildCount(), 3U) << "a handle leaves with its key, without a word to anyone";
    EXPECT_EQ(curve->getPoints().size(), 2U);
}

} // namespace
