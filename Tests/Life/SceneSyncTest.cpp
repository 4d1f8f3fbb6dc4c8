#include "LifeFixture.h"

namespace {

using namespace ka_test;

/// One object of every kind and place that the sweep tells apart.
struct Population {
    kaUID looseKey;
    kaUID looseCurve;
    kaUID keyOfLooseCurve;
    kaUID looseBlock;
    kaUID curveOfLooseBlock;
    kaUID looseSequence;
    kaUID looseTrack;
    kaUID blockInTrack;
    kaUID internalBlock;
    kaUID clip;
    kaUID trackInClip;
    kaUID blockInClip;

    std::vector<kaUID> swept() const {
        return {looseKey,          looseCurve,    keyOfLooseCurve, looseBlock,
                curveOfLooseBlock, looseSequence, looseTrack,      blockInTrack};
    }
    std::vector<kaUID> kept() const { return {internalBlock, clip, trackInClip, blockInClip}; }
};

class SceneSync : public LifeFixture {
  protected:
    static Population populate() {
        Population all{};
        all.looseKey = makeKey(stepKey(1.0F, 1.0F))->getId();
        kaAnimationCurve2D* curve = makeCurve(std::vector<Spot>{{0.0F, 0.0F}});
        all.looseCurve = curve->getId();
        all.keyOfLooseCurve = curve->getChildIDs().front();
        kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
        all.looseBlock = block->getId();
        all.curveOfLooseBlock = block->getChildIDs().front();
        all.looseSequence = makeSequence("doors", 0.0F, 1.0F)->getId();
        kaAnimationUnit* inTrack = makeBlock(0.0F, 10.0F);
        all.blockInTrack = inTrack->getId();
        all.looseTrack = makeTrack({inTrack})->getId();
        kaAnimationUnit* internal = makeBlock(0.0F, 10.0F);
        internal->setInternal(true);
        all.internalBlock = internal->getId();
        kaAnimationUnit* inClip = makeBlock(0.0F, 10.0F);
        all.blockInClip = inClip->getId();
        kaAnimationStreak* track = makeTrack({inClip});
        all.trackInClip = track->getId();
        all.clip = makeClip({track})->getId();
        return all;
    }

    static void expectRegistered(const std::vector<kaUID>& ids, bool expected) {
        for (std::size_t i = 0; i < ids.size(); ++i)
            EXPECT_EQ(isRegistered(ids[i]), expected) << "entry " << i;
    }

    static void sweepWith(const osg::NodePtr& root) {
        kaAnimationManager::setSceneRootNode(root);
        manager().destroyUnreferencedObjectsAndFields();
    }
};

TEST_F(SceneSync, WithoutSceneEverythingTopLevelGoesButClipsAndInternalObjects) {
    const Population all = populate();
    const kaUID field = makeField("visible", 0)->getId();
    manager().destroyUnreferencedObjectsAndFields();
    expectRegistered(all.swept(), false);
    expectRegistered(all.kept(), true);
    EXPECT_FALSE(isFieldRegistered(field));
    EXPECT_TRUE(manager().getFields().empty());
}

TEST_F(SceneSync, WithoutSceneTheObjectsOfTheLastMarkingCount) {
    const osg::NodePtr node = scene.addTransform("box");
    kaAnimationUnit* marked = makeBlock(0.0F, 10.0F);
    kaAnimationUnit* unmarked = makeBlock(0.0F, 10.0F);
    listObject(node, marked->getId());
    const std::vector<kaUID> ids{marked->getId(), unmarked->getId()};
    kaAnimationManager::setSceneRootNode(scene.root());
    manager().updateActualSceneObjectsAndFields();
    attachmentOf(node)->getObjectIDs().clear();
    sweepWith(osg::NullFC);
    EXPECT_TRUE(isRegistered(ids[0]));
    EXPECT_FALSE(isRegistered(ids[1]));
}

TEST_F(SceneSync, MarkingForgetsWhatWasMarkedBefore) {
    const osg::NodePtr node = scene.addTransform("box");
    const kaUID block = makeBlock(0.0F, 10.0F)->getId();
    listObject(node, block);
    kaAnimationManager::setSceneRootNode(scene.root());
    manager().updateActualSceneObjectsAndFields();
    attachmentOf(node)->getObjectIDs().clear();
    sweepWith(scene.root());
    EXPECT_FALSE(isRegistered(block));
}

TEST_F(SceneSync, MarkingAloneDestroysNothing) {
    const Population all = populate();
    kaAnimationManager::setSceneRootNode(scene.root());
    manager().updateActualSceneObjectsAndFields();
    expectRegistered(all.swept(), true);
    expectRegistered(all.kept(), true);
}

TEST_F(SceneSync, FieldThatWasOnceListedSurvivesItsNode) {
    const osg::NodePtr node = scene.addTransform("box");
    const kaUID once = makeField("visible", 0)->getId();
    const kaUID never = makeField("visible", 0)->getId();
    listField(node, once);
    sweepWith(scene.root());
    EXPECT_TRUE(isFieldRegistered(once));
    EXPECT_FALSE(isFieldRegistered(never));
    scene.destroy(node);
    sweepWith(scene.root());
    sweepWith(osg::NullFC);
    EXPECT_TRUE(isFieldRegistered(once));
}

TEST_F(SceneSync, UnlistedClipStaysAndUnlistedBlockGoes) {
    const Population all = populate();
    sweepWith(scene.root());
    EXPECT_TRUE(isRegistered(all.clip));
    EXPECT_FALSE(isRegistered(all.looseBlock));
}

TEST_F(SceneSync, UnlistedTrackGoesWithBlocksThatANodeStillLists) {
    const osg::NodePtr node = scene.addTransform("box");
    const Population all = populate();
    listObject(node, all.blockInTrack);
    sweepWith(scene.root());
    EXPECT_FALSE(isRegistered(all.looseTrack));
    EXPECT_FALSE(isRegistered(all.blockInTrack));
}

TEST_F(SceneSync, ListedObjectsStayWithAllTheyContain) {
    const osg::NodePtr node = scene.addTransform("box");
    const Population all = populate();
    listObject(node, all.looseTrack);
    listObject(node, all.looseCurve);
    sweepWith(scene.root());
    expectRegistered({all.looseTrack, all.blockInTrack, all.looseCurve, all.keyOfLooseCurve}, true);
    expectRegistered({all.looseBlock, all.looseKey, all.looseSequence}, false);
}

TEST_F(SceneSync, SecondListsCountAsTheFirst) {
    const osg::NodePtr node = scene.addTransform("box");
    const kaUID block = makeBlock(0.0F, 10.0F)->getId();
    const kaUID field = makeField("visible", 0)->getId();
    attachmentOf(node)->getSecondObjectIDs().push_back(block);
    attachmentOf(node)->getSecondFieldIDs().push_back(field);
    sweepWith(scene.root());
    EXPECT_TRUE(isRegistered(block));
    EXPECT_TRUE(isFieldRegistered(field));
}

TEST_F(SceneSync, NodesBelowNodesWithoutAttachmentAreMarkedToo) {
    const osg::NodePtr plain = scene.addTransform("plain");
    const osg::NodePtr deep = scene.addTransform("deep", plain);
    const kaUID block = makeBlock(0.0F, 10.0F)->getId();
    listObject(deep, block);
    sweepWith(scene.root());
    EXPECT_TRUE(isRegistered(block));
}

TEST_F(SceneSync, CollectingANullNodeGoesOn) {
    EXPECT_EQ(kaAnimationManager::collectActualObjectsAndFields(osg::NodePtr()), osg::Action::Continue);
    EXPECT_EQ(kaAnimationManager::collectActualObjectsAndFields(scene.root()), osg::Action::Continue);
}

TEST_F(SceneSync, CollectingOneNodeAddsToTheMarking) {
    const osg::NodePtr node = scene.addTransform("box");
    const kaUID block = makeBlock(0.0F, 10.0F)->getId();
    listObject(node, block);
    kaAnimationManager::collectActualObjectsAndFields(node);
    sweepWith(osg::NullFC);
    EXPECT_TRUE(isRegistered(block));
}

/// A host has cut the child loose without telling the track: both are candidates, and one takes the other
/// along.
class CandidateInsideACandidate : public SceneSync, public testing::WithParamInterface<bool> {};

TEST_P(CandidateInsideACandidate, IsDestroyedOnce) {
    const bool trackFirst = GetParam();
    const kaUID low = 4001;
    const kaUID high = 4002;
    kaAnimationStreak* track = manager().createStreak(trackFirst ? low : high);
    kaAnimationUnit* block = manager().createUnit(trackFirst ? high : low);
    track->addObject(block);
    block->setParent(0);
    sweepWith(osg::NullFC);
    EXPECT_FALSE(isRegistered(low));
    EXPECT_FALSE(isRegistered(high));
}

INSTANTIATE_TEST_SUITE_P(InIdOrder, CandidateInsideACandidate, testing::Bool(), [](const auto& row) {
    return std::string(row.param ? "container_first" : "child_first");
});

TEST_F(SceneSync, CopiesThatWaitForPastingAreSweptLikeAnythingElse) {
    ASSERT_TRUE(manager().copy(makeBlock(0.0F, 10.0F)));
    ASSERT_EQ(manager().getCopyBuffer().size(), 1U);
    sweepWith(osg::NullFC);
    EXPECT_TRUE(manager().getCopyBuffer().empty());
    const osg::NodePtr node = scene.addTransform("box");
    EXPECT_TRUE(manager().paste(node, true));
    EXPECT_TRUE(kaAnimationUtils::getAnimationObjects(node).empty());
}

class NodeObjects : public SceneSync {
  protected:
    /// A node that lists a block and a field.
    struct Animated {
        osg::NodePtr node;
        kaUID block;
        kaUID field;
    };
    Animated animate(const osg::NodePtr& node) {
        const Animated animated{node, makeBlock(0.0F, 10.0F)->getId(), makeField("visible", 0)->getId()};
        manager().getUnit(animated.block)->setNodeID(node.getFieldContainerId());
        listObject(node, animated.block);
        listField(node, animated.field);
        return animated;
    }
    static bool isGone(const Animated& animated) {
        return !isRegistered(animated.block) && !isFieldRegistered(animated.field);
    }
    static bool isThere(const Animated& animated) {
        return isRegistered(animated.block) && isFieldRegistered(animated.field);
    }
};

TEST_F(NodeObjects, OfANullNodeAreNone) {
    const Animated animated = animate(scene.addTransform("box"));
    manager().destroyNodeObjects(osg::NodePtr(), true);
    EXPECT_TRUE(isThere(animated));
}

TEST_F(NodeObjects, GoAndTheAttachmentStaysWithItsFieldIds) {
    const Animated animated = animate(scene.addTransform("box"));
    manager().destroyNodeObjects(animated.node, false);
    EXPECT_TRUE(isGone(animated));
    EXPECT_NE(kaAnimationUtils::getAnimationAttachment(animated.node), osg::NullFC);
    EXPECT_EQ(listedObjects(animated.node), std::vector<kaUID>{});
    EXPECT_EQ(listedFields(animated.node), std::vector<kaUID>{animated.field});
}

TEST_F(NodeObjects, OfTracksStayListedThoughTheyAreGone) {
    const osg::NodePtr node = scene.addTransform("box");
    const kaUID track = makeTrack({})->getId();
    listObject(node, track);
    manager().destroyNodeObjects(node, false);
    EXPECT_FALSE(isRegistered(track));
    EXPECT_EQ(listedObjects(node), std::vector<kaUID>{track});
}

TEST_F(NodeObjects, BelowStayUnlessAsked) {
    const Animated above = animate(scene.addTransform("above"));
    const Animated below = animate(scene.addTransform("below", above.node));
    manager().destroyNodeObjects(above.node, false);
    EXPECT_TRUE(isGone(above));
    EXPECT_TRUE(isThere(below));
}

TEST_F(NodeObjects, OfAWholeSubtreeGo) {
    const Animated top = animate(scene.addTransform("top"));
    const Animated left = animate(scene.addTransform("left", top.node));
    const Animated right = animate(scene.addTransform("right", top.node));
    const Animated deep = animate(scene.addTransform("deep", right.node));
    const Animated beside = animate(scene.addTransform("beside"));
    manager().destroyNodeObjects(top.node, true);
    for (const Animated* animated : {&top, &left, &right, &deep})
        EXPECT_TRUE(isGone(*animated));
    EXPECT_TRUE(isThere(beside));
}

TEST_F(NodeObjects, BelowANodeWithoutAttachmentStay) {
    const osg::NodePtr plain = scene.addTransform("plain");
    const Animated child = animate(scene.addTransform("child", plain));
    manager().destroyNodeObjects(plain, true);
    EXPECT_TRUE(isThere(child));
}

TEST_F(NodeObjects, BelowANodeWithoutAttachmentStayWhereTheDescentMeetsIt) {
    const Animated top = animate(scene.addTransform("top"));
    const osg::NodePtr plain = scene.addTransform("plain", top.node);
    const Animated hidden = animate(scene.addTransform("hidden", plain));
    const Animated beside = animate(scene.addTransform("beside", top.node));
    manager().destroyNodeObjects(top.node, true);
    EXPECT_TRUE(isGone(top));
    EXPECT_TRUE(isThere(hidden));
    EXPECT_TRUE(isGone(beside));
}

TEST_F(NodeObjects, ListedTwiceGoOnce) {
    const Animated animated = animate(scene.addTransform("box"));
    const kaUID track = makeTrack({})->getId();
    for (int i = 0; i < 2; ++i) {
        listObject(animated.node, track);
        listObject(animated.node, animated.block);
        listField(animated.node, animated.field);
    }
    manager().destroyNodeObjects(animated.node, false);
    EXPECT_TRUE(isGone(animated));
    EXPECT_FALSE(isRegistered(track));
}

TEST_F(NodeObjects, OfAChainTooDeepForAnyStackGo) {
    constexpr int Depth = 100000;
    osg::NodePtr node = scene.addTransform("chain");
    const osg::NodePtr top = node;
    for (int i = 0; i < Depth; ++i) {
        attachmentOf(node);
        node = scene.addTransform("", node);
    }
    const Animated last = animate(node);
    manager().destroyNodeObjects(top, true);
    EXPECT_TRUE(isGone(last));
}

} // namespace
