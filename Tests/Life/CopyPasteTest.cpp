#include "LifeFixture.h"

#include <OpenSG/OSGSwitch.h>
#include <gmock/gmock.h>

namespace {

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// What the host was told, in order, and what it does when it is told.
std::vector<bool> told;
void (*whenTold)(bool) = nullptr;

void onPaste(bool filled) {
    told.push_back(filled);
    if (whenTold)
        whenTold(filled);
}

class CopyPaste : public LifeFixture {
  protected:
    void SetUp() override {
        LifeFixture::SetUp();
        told.clear();
        whenTold = nullptr;
        kaAnimationManager::setUpdatePasteCB(onPaste);
    }
    void TearDown() override {
        whenTold = nullptr;
        LifeFixture::TearDown();
    }

    static std::vector<kaAnimationObject*> buffer() { return manager().getCopyBuffer(); }

    static std::vector<kaUID> bufferIDs() {
        std::vector<kaUID> ids;
        for (const kaAnimationObject* object : buffer())
            ids.push_back(object->getId());
        return ids;
    }

    static void fillBuffer() {
        ASSERT_TRUE(manager().copy(makeBlock(0.0F, 10.0F)));
        told.clear();
    }

    /// A transform node with the given fields and one block of curves on them.
    osg::NodePtr addAnimated(const std::string& name, const std::vector<std::string>& attributes) {
        const osg::NodePtr node = scene.addTransform(name);
        std::vector<kaAnimationCurve2D*> curves;
        for (const std::string& attribute : attributes) {
            kaAnimationField* field = makeField(attribute, node->getCore().getFieldContainerId());
            listField(node, field->getId());
            curves.push_back(makeBoundCurve(field));
        }
        kaAnimationUnit* unit = makeBlock(curves);
        unit->setNodeID(node.getFieldContainerId());
        listObject(node, unit->getId());
        return node;
    }
};

TEST_F(CopyPaste, ClearingAnEmptyBufferTellsNobody) {
    manager().clearCopyBuffer(true);
    manager().clearCopyBuffer(false);
    manager().terminate();
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(CopyPaste, ClearingDestroysTheCopies) {
    fillBuffer();
    const kaUID copy = buffer().front()->getId();
    manager().clearCopyBuffer(true);
    EXPECT_FALSE(isRegistered(copy));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, ClearingWithoutDestroyingOnlyDropsTheCopies) {
    fillBuffer();
    const kaUID copy = buffer().front()->getId();
    manager().clearCopyBuffer(false);
    EXPECT_TRUE(isRegistered(copy));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, TerminatingClears) {
    fillBuffer();
    const kaUID copy = buffer().front()->getId();
    manager().terminate();
    EXPECT_FALSE(isRegistered(copy));
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, NothingHappensForNull) {
    fillBuffer();
    EXPECT_FALSE(manager().copy(static_cast<kaAnimationObject*>(nullptr)));
    EXPECT_FALSE(manager().copy(osg::NodePtr()));
    EXPECT_FALSE(manager().paste(osg::NodePtr(), true));
    EXPECT_THAT(buffer(), SizeIs(1));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(CopyPaste, EveryKindButSequencesIsCopied) {
    kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{1.0F, 2.0F}});
    const std::vector<kaAnimationObject*> sources{makeKey(stepKey(3.0F, 4.0F)), curve, makeBlock(0.0F, 5.0F),
                                                  makeTrack({makeBlock(1.0F, 6.0F)}),
                                                  makeClip({makeTrack({})})};
    for (kaAnimationObject* source : sources) {
        ASSERT_TRUE(manager().copy(source));
        ASSERT_THAT(buffer(), SizeIs(1));
        const kaAnimationObject* copy = buffer().front();
        EXPECT_EQ(copy->getTypeID(), source->getTypeID());
        EXPECT_NE(copy->getId(), source->getId());
        EXPECT_EQ(manager().getObject(copy->getId()), copy);
        EXPECT_EQ(copy->getChildCount(), source->getChildCount());
    }
    // Empty at first, then emptied and filled with each copy.
    EXPECT_THAT(told, ElementsAre(true, false, true, false, true, false, true, false, true));
}

TEST_F(CopyPaste, CopyingASequenceEmptiesTheBuffer) {
    fillBuffer();
    const kaUID former = buffer().front()->getId();
    EXPECT_FALSE(manager().copy(makeSequence("bell", 0.0F, 1.0F)));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_FALSE(isRegistered(former));
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, CopyingASequenceIntoAnEmptyBufferTellsNobody) {
    EXPECT_FALSE(manager().copy(makeSequence("bell", 0.0F, 1.0F)));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(CopyPaste, OfAListOnlyWhatCanBeCopiedIsKeptInOrder) {
    kaAnimationUnit* first = makeBlock(0.0F, 1.0F);
    first->setName("first");
    kaAnimationStreak* second = makeTrack({});
    second->setName("second");
    EXPECT_TRUE(manager().copy({nullptr, first, makeSequence("bell", 0.0F, 1.0F), second, nullptr}));
    ASSERT_THAT(buffer(), SizeIs(2));
    EXPECT_EQ(buffer()[0]->getName(), "first");
    EXPECT_EQ(buffer()[1]->getName(), "second");
    EXPECT_THAT(told, ElementsAre(true));
}

TEST_F(CopyPaste, AListWithNothingToCopyEmptiesTheBuffer) {
    fillBuffer();
    EXPECT_FALSE(manager().copy({nullptr, makeSequence("bell", 0.0F, 1.0F)}));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, ANodeIsCopiedByWhatItLists) {
    const osg::NodePtr node = addAnimated("box", {"scaleX", "scaleY"});
    listObject(node, makeTrack({})->getId());
    EXPECT_TRUE(manager().copy(node));
    ASSERT_THAT(buffer(), SizeIs(2));
    EXPECT_EQ(buffer()[0]->getTypeID(), KA_TYPE_UNIT);
    EXPECT_EQ(buffer()[0]->getCurves().size(), 2U);
    EXPECT_EQ(buffer()[1]->getTypeID(), KA_TYPE_STREAK);
    EXPECT_THAT(listedObjects(node), SizeIs(2)) << "copies belong to no node";
}

TEST_F(CopyPaste, ANodeWithoutObjectsLeavesTheBufferAlone) {
    fillBuffer();
    const osg::NodePtr node = scene.addTransform("box");
    EXPECT_FALSE(manager().copy(node));
    EXPECT_THAT(buffer(), SizeIs(1));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(CopyPaste, WhatIsInTheBufferItselfIsGoneBeforeItCouldBeCopied) {
    fillBuffer();
    EXPECT_FALSE(manager().copy(buffer().front()));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, APartOfWhatIsInTheBufferIsGoneBeforeItCouldBeCopied) {
    fillBuffer();
    EXPECT_FALSE(manager().copy(buffer().front()->getObjects().front()));
    EXPECT_THAT(buffer(), IsEmpty());
}

TEST_F(CopyPaste, OfAListThatTouchesTheBufferWhatIsStillThereIsCopied) {
    fillBuffer();
    kaAnimationUnit* outside = makeBlock(0.0F, 1.0F);
    outside->setName("outside");
    EXPECT_TRUE(manager().copy({buffer().front(), outside}));
    ASSERT_THAT(buffer(), SizeIs(1));
    EXPECT_EQ(buffer().front()->getName(), "outside");
    EXPECT_THAT(told, ElementsAre(false, true));
}

TEST_F(CopyPaste, AnObjectThatIsDestroyedLeavesTheBuffer) {
    EXPECT_TRUE(manager().copy({makeBlock(0.0F, 1.0F), makeBlock(2.0F, 3.0F), makeBlock(4.0F, 5.0F)}));
    const std::vector<kaUID> ids = bufferIDs();
    manager().destroyObject(buffer()[1]);
    EXPECT_THAT(bufferIDs(), ElementsAre(ids[0], ids[2]));
}

TEST_F(CopyPaste, ABufferWhoseObjectsAreAllGoneStillEmptiesOnce) {
    fillBuffer();
    manager().destroyObject(buffer().front());
    EXPECT_THAT(told, IsEmpty());
    manager().clearCopyBuffer(true);
    manager().clearCopyBuffer(true);
    EXPECT_THAT(told, ElementsAre(false));
}

/// Written directly, so that the registry does not hear of it.
class CopyPasteOfARewrittenId : public CopyPaste {
  protected:
    void SetUp() override {
        CopyPaste::SetUp();
        fillBuffer();
        copy = buffer().front();
        former = copy->getId();
    }

    static constexpr kaUID UNKNOWN = 424242;
    kaAnimationObject* copy = nullptr;
    kaUID former = 0;
};

TEST_F(CopyPasteOfARewrittenId, ClearingDestroysTheCopy) {
    const kaUID curve = copy->getChildIDs().front();
    copy->setId(UNKNOWN);
    manager().clearCopyBuffer(true);
    EXPECT_FALSE(isRegistered(former));
    EXPECT_FALSE(isRegistered(curve)) << "what it lists goes with it";
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPasteOfARewrittenId, ClearingFreesNobodyElseWhoHasThatId) {
    kaAnimationStreak* other = makeTrack({});
    copy->setId(other->getId());
    manager().clearCopyBuffer(true);
    EXPECT_FALSE(isRegistered(former));
    EXPECT_FALSE(other->hasChildren()) << "still there, though its entry went with the id";
    manager().destroyStreak(other);
}

TEST_F(CopyPasteOfARewrittenId, PastingListsTheNewId) {
    const osg::NodePtr node = scene.addTransform("box");
    copy->setId(UNKNOWN);
    EXPECT_TRUE(manager().paste(node, true));
    EXPECT_THAT(listedObjects(node), ElementsAre(UNKNOWN));
    EXPECT_EQ(static_cast<kaAnimationUnit*>(copy)->getNodeID(), node.getFieldContainerId());
    manager().destroyObject(copy);
}

TEST_F(CopyPasteOfARewrittenId, TheCopyIsGoneBeforeItCouldBeCopied) {
    copy->setId(UNKNOWN);
    EXPECT_FALSE(manager().copy(copy));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_FALSE(isRegistered(former));
}

TEST_F(CopyPaste, ClearingFreesWhatOneCopyTakesAlongOnce) {
    ASSERT_TRUE(manager().copy({makeTrack({}), makeTrack({}), makeTrack({})}));
    const std::vector<kaUID> ids = bufferIDs();
    buffer()[0]->setChildIDs({ids[1], ids[2]});
    manager().clearCopyBuffer(true);
    for (kaUID id : ids)
        EXPECT_FALSE(isRegistered(id));
}

TEST_F(CopyPaste, PastingHandsTheCopiesToTheNodeAndConsumesTheBuffer) {
    const osg::NodePtr from = addAnimated("from", {"scaleX", "scaleY"});
    const osg::NodePtr to = addAnimated("to", {"scaleY", "scaleX"});
    const std::vector<kaUID> fields = listedFields(to);
    ASSERT_TRUE(manager().copy(from));
    const kaUID copy = buffer().front()->getId();
    told.clear();
    EXPECT_TRUE(manager().paste(to, false));
    EXPECT_THAT(buffer(), IsEmpty());
    EXPECT_THAT(told, ElementsAre(false));
    ASSERT_THAT(listedObjects(to), SizeIs(2));
    EXPECT_EQ(listedObjects(to).back(), copy);
    std::map<std::string, kaUID> fieldsOfCopies;
    for (const kaAnimationCurve2D* curve : manager().getUnit(copy)->getCurves())
        fieldsOfCopies[manager().getField(curve->getField())->attribute] = curve->getField();
    EXPECT_EQ(fieldsOfCopies, (std::map<std::string, kaUID>{{"scaleX", fields[1]}, {"scaleY", fields[0]}}));

    EXPECT_TRUE(manager().paste(to, false)) << "the buffer is empty";
    EXPECT_THAT(listedObjects(to), SizeIs(2));
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, ARefusedPasteChangesNothing) {
    const osg::NodePtr from = addAnimated("from", {"scaleX"});
    const osg::NodePtr other = scene.add<osg::Switch>("other");
    ASSERT_TRUE(manager().copy(from));
    told.clear();
    const std::vector<kaUID> before = bufferIDs();
    const kaUID field = buffer().front()->getCurves().front()->getField();
    EXPECT_FALSE(manager().paste(other, false));
    EXPECT_EQ(bufferIDs(), before);
    EXPECT_EQ(buffer().front()->getCurves().front()->getField(), field);
    EXPECT_EQ(kaAnimationUtils::getAnimationAttachment(other), osg::NullFC);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(CopyPaste, AForcedPasteOntoAnotherKindOfNodeKeepsTheFields) {
    const osg::NodePtr from = addAnimated("from", {"scaleX"});
    const osg::NodePtr other = scene.add<osg::Switch>("other");
    ASSERT_TRUE(manager().copy(from));
    kaAnimationObject* copy = buffer().front();
    told.clear();
    EXPECT_TRUE(manager().paste(other, true));
    EXPECT_THAT(listedObjects(other), ElementsAre(copy->getId()));
    EXPECT_EQ(copy->getCurves().front()->getField(), listedFields(from).front());
    EXPECT_THAT(told, ElementsAre(false));
}

TEST_F(CopyPaste, ADuplicateOfAPastedBlockGoesToTheTarget) {
    const osg::NodePtr from = addAnimated("from", {"scaleX"});
    const osg::NodePtr to = addAnimated("to", {"scaleX"});
    ASSERT_TRUE(manager().copy(from));
    const kaUID copy = buffer().front()->getId();
    ASSERT_TRUE(manager().paste(to, false));
    EXPECT_EQ(manager().getUnit(copy)->getNodeID(), to.getFieldContainerId());
    const kaUID second = manager().duplicateUnit(manager().getUnit(copy), true)->getId();
    EXPECT_EQ(listedObjects(to).back(), second);
}

TEST_F(CopyPaste, AHostThatCopiesAgainWhenToldKeepsWhatItCopied) {
    fillBuffer();
    whenTold = [](bool filled) {
        if (!filled) {
            whenTold = nullptr;
            manager().copy(makeBlock(20.0F, 30.0F));
        }
    };
    manager().clearCopyBuffer(true);
    ASSERT_THAT(buffer(), SizeIs(1));
    EXPECT_EQ(buffer().front()->getBegin(), 20.0F);
}

TEST_F(CopyPaste, AHostThatDestroysEverythingWhenToldLeavesNothingToCopy) {
    fillBuffer();
    kaAnimationUnit* source = makeBlock(0.0F, 1.0F);
    whenTold = [](bool) {
        for (const auto& entry : manager().getObjects())
            manager().destroyObject(manager().getObject(entry.first));
    };
    EXPECT_FALSE(manager().copy(source));
    EXPECT_THAT(buffer(), IsEmpty());
}

TEST_F(CopyPaste, AHostThatCopiesWhileACopyIsMadeGetsTheLaterOne) {
    fillBuffer();
    kaAnimationUnit* source = makeBlock(40.0F, 50.0F);
    whenTold = [](bool) {
        whenTold = nullptr;
        manager().copy(makeBlock(20.0F, 30.0F));
    };
    EXPECT_TRUE(manager().copy(source));
    ASSERT_THAT(buffer(), SizeIs(1));
    EXPECT_EQ(buffer().front()->getBegin(), 40.0F);
}

} // namespace
