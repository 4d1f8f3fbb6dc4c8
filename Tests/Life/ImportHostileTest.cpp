#include "ImportFixture.h"
#include "SmallStack.h"

namespace {

using namespace ka_test;
using testing::IsEmpty;
using testing::SizeIs;

/// Older scenes that nobody made on purpose, or somebody did.
class ImportHostile : public ImportFixture {
  protected:
    const kaImportReport& importWith(const osg::AnimationClipPtr& clip) {
        ka_older::attachmentOf(scene.root())->addClip(clip);
        return import();
    }
    const kaImportReport& import() {
        manager().importORVAAnimations(scene.root(), node, 1);
        return kaAnimationManager::getImportReport();
    }
    static std::size_t countOf(unsigned int type) { return all<kaAnimationObject>(type).size(); }

    static std::size_t leftOutFor(const kaImportReport& report, kaImportReport::Reason reason) {
        std::size_t count = 0;
        for (const kaImportReport::LeftOut& entry : report.leftOut)
            count += entry.reason == reason ? 1 : 0;
        return count;
    }
    static bool isTopLevel(const kaAnimationObject& object) { return object.getParent() == 0; }
};

using Reason = kaImportReport::Reason;

TEST_F(ImportHostile, AClipThatHoldsItselfIsImportedOnce) {
    const osg::AnimationClipPtr clip = ka_older::makeClip("ring", {});
    clip->getEntries().push_back(clip);
    const kaImportReport& report = importWith(clip);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), 1U);
    EXPECT_EQ(leftOutFor(report, Reason::Ring), 1U);
}

TEST_F(ImportHostile, ARingThroughClipsAndTracksIsImportedOnceAround) {
    const osg::AnimationTrackPtr innerTrack = ka_older::makeTrack({});
    const osg::AnimationClipPtr inner = ka_older::makeClip("inner", {innerTrack});
    const osg::AnimationTrackPtr outerTrack = ka_older::makeTrack({});
    const osg::AnimationClipPtr outer = ka_older::makeClip("outer", {outerTrack});
    outerTrack->addEntry(inner);
    innerTrack->addEntry(outer); // a ring that counts itself: it stays until the library ends
    importWith(outer);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), 2U);
    EXPECT_EQ(countOf(KA_TYPE_STREAK), 2U);
    ASSERT_THAT(manager().getSceneStrips(), SizeIs(1));
    EXPECT_EQ(manager().getSceneStrips().front()->getName(), "outer");
}

TEST_F(ImportHostile, AClipThatIsListedTwiceIsImportedTwice) {
    const osg::AnimationClipPtr shared = ka_older::makeClip("shared", {});
    const osg::AnimationClipPtr outer = ka_older::makeClip("outer", {});
    outer->addEntry(shared);
    outer->addEntry(shared);
    const kaImportReport& report = importWith(outer);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), 3U);
    EXPECT_EQ(report.leftOutCount, 0U);
}

/// Clips that each hold the next one twice double at every level.
TEST_F(ImportHostile, RepeatsThatMultiplyWithoutEndAreCutOff) {
    osg::AnimationClipPtr clip = ka_older::makeClip("innermost", {});
    for (int level = 0; level < 100; ++level) {
        const osg::AnimationClipPtr outer = ka_older::makeClip("level", {});
        outer->addEntry(clip);
        outer->addEntry(clip);
        clip = outer;
    }
    const kaImportReport& report = importWith(clip);
    EXPECT_GT(report.leftOutCount, 0U);
    EXPECT_LT(manager().getObjects().size(), 3000000U);
    ASSERT_THAT(manager().getSceneStrips(), SizeIs(1)) << "all that was made hangs together";
}

/// A short file: a block that lists one curve again and again, in a list that names the block again and
/// again.
TEST_F(ImportHostile, RepeatedCurvesOfRepeatedBlocksAreCutOff) {
    constexpr int Times = 2000;
    const osg::AnimationCurvePtr curve = turning(node);
    const osg::AnimationBlockPtr block = ka_older::makeBlock("block", {});
    const auto attachment = ka_older::attachmentOf(node);
    for (int i = 0; i < Times; ++i) {
        block->getCurves().push_back(curve);
        attachment->getBlocks().push_back(block);
    }
    const kaImportReport& report = import();
    EXPECT_GE(report.blocks, 2U);
    EXPECT_LT(report.blocks, static_cast<std::size_t>(Times));
    EXPECT_GT(report.leftOutCount, report.leftOut.size()) << "the list of what was left out is bounded";
    EXPECT_THAT(report.leftOut, SizeIs(kaImportReport::MaximumListed));
}

/// What an honest scene shares grows with the scene: the bound on repeats does, too.
TEST_F(ImportHostile, ALongCurveInSeveralBlocksIsImportedForEach) {
    constexpr unsigned int Keys = 60000;
    std::vector<ka_older::Key> keys;
    for (unsigned int i = 0; i < Keys; ++i)
        keys.push_back({{static_cast<float>(i), static_cast<float>(i % 7)}, ka_older::Collapsed});
    const osg::AnimationCurvePtr curve = ka_older::makeCurve("rotateX", keys, node);
    for (const char* name : {"walk", "run", "rest"})
        ka_older::attachmentOf(node)->addBlock(ka_older::makeBlock(name, {curve}, node));
    const kaImportReport& report = import();
    EXPECT_EQ(report.blocks, 3U);
    EXPECT_EQ(report.curves, 3U);
    EXPECT_EQ(report.keys, 3U * Keys);
    EXPECT_EQ(report.leftOutCount, 0U);
}

/// The bound is that of the whole scene, wherever in it the repeats stand: here what is shared comes first.
TEST_F(ImportHostile, WhatIsSharedAtTheFrontMayCountOnWhatComesLater) {
    constexpr unsigned int Times = 400;
    const std::vector<ka_older::Key> keys(500, {{1.0F, 1.0F}, ka_older::Collapsed});
    const auto attachment = ka_older::attachmentOf(node);
    const osg::AnimationCurvePtr shared = ka_older::makeCurve("rotateX", {{{0.0F, 1.0F}}}, node);
    shared->getPoints().clear();
    for (int i = 0; i < 500; ++i)
        shared->getPoints().push_back(
            ka_older::makePoint({{static_cast<float>(i), 1.0F}, ka_older::Collapsed}));
    for (unsigned int i = 0; i < Times; ++i)
        attachment->addBlock(ka_older::makeBlock("take", {shared}, node));
    for (int i = 0; i < 20; ++i)
        attachment->addBlock(ka_older::makeBlock("long", {ka_older::makeCurve("rotateY", keys, node)}, node));
    const kaImportReport& report = import();
    EXPECT_EQ(report.blocks, Times + 20U);
    EXPECT_EQ(report.leftOutCount, 0U);
}

/// A curve that is dropped is named by what it animates, whatever it is called itself.
TEST_F(ImportHostile, ADroppedCurveIsNamedByItsAttribute) {
    constexpr int Times = 50000;
    const osg::AnimationCurvePtr curve = turning(node);
    curve->setName("Curve 17");
    const osg::AnimationBlockPtr block = ka_older::makeBlock("block", {});
    for (int i = 0; i < Times; ++i)
        block->getCurves().push_back(curve);
    ka_older::attachmentOf(node)->addBlock(block);
    const kaImportReport& report = import();
    EXPECT_GT(report.leftOutCount, 0U);
    for (const kaImportReport::LeftOut& entry : report.leftOut) {
        ASSERT_EQ(entry.kind, "curve");
        ASSERT_EQ(entry.name, "rotateX");
        ASSERT_EQ(entry.reason, Reason::TooManyRepeats);
    }
}

TEST_F(ImportHostile, ClipsNestedBeyondAllMeasureAreImportedAsDeepAsObjectsMayBe) {
    constexpr int Levels = 100000;
    osg::AnimationClipPtr clip = ka_older::makeClip("0", {});
    for (int level = 1; level < Levels; ++level) {
        const osg::AnimationTrackPtr track = ka_older::makeTrack({});
        track->addEntry(clip);
        clip = ka_older::makeClip(std::to_string(level), {track});
    }
    const kaImportReport& report = importWith(clip);
    EXPECT_EQ(leftOutFor(report, Reason::TooDeep), 1U);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), KA_MAX_DEPTH / 2);
    EXPECT_EQ(countOf(KA_TYPE_STREAK), KA_MAX_DEPTH / 2);
    ASSERT_THAT(manager().getSceneStrips(), SizeIs(1));
    EXPECT_EQ(manager().getSceneStrips().front()->getName(), std::to_string(Levels - 1));
    for (kaAnimationStreak* track : all<kaAnimationStreak>(KA_TYPE_STREAK))
        EXPECT_FALSE(isTopLevel(*track));
}

/// Importing is recursive, as far as objects may be deep.
TEST_F(ImportHostile, TheDeepestClipsAreImportedOnAStackOfAMegabyte) {
    osg::AnimationClipPtr clip = ka_older::makeClip("0", {});
    for (unsigned int level = 1; level < KA_MAX_DEPTH; ++level) {
        const osg::AnimationTrackPtr track = ka_older::makeTrack({});
        track->addEntry(clip);
        clip = ka_older::makeClip(std::to_string(level), {track});
    }
#ifdef KA_WATCHED_MEMORY
    constexpr std::size_t Stack = std::size_t{32} << 20; // what watches memory stands on the stack as well
#else
    constexpr std::size_t Stack = std::size_t{1} << 20;
#endif
    onSmallStack([&] { importWith(clip); }, Stack);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), KA_MAX_DEPTH / 2);
}

/// Directly nested clips stand two levels apart: each gets a track of its own.
TEST_F(ImportHostile, DirectlyNestedClipsCountTheTracksBetweenThem) {
    constexpr unsigned int Levels = KA_MAX_DEPTH;
    osg::AnimationClipPtr clip = ka_older::makeClip("0", {});
    for (unsigned int level = 1; level < Levels; ++level) {
        const osg::AnimationClipPtr outer = ka_older::makeClip(std::to_string(level), {});
        outer->addEntry(clip);
        clip = outer;
    }
    importWith(clip);
    EXPECT_EQ(countOf(KA_TYPE_STRIP), KA_MAX_DEPTH / 2);
    EXPECT_EQ(countOf(KA_TYPE_STREAK), KA_MAX_DEPTH / 2 - 1);
    ASSERT_THAT(manager().getSceneStrips(), SizeIs(1));
}

/// A block needs two levels below itself for its curves and their keys.
TEST_F(ImportHostile, ABlockAtTheBottomIsImportedWholeOrNotAtAll) {
    for (unsigned int above : {KA_MAX_DEPTH - 4, KA_MAX_DEPTH - 2}) {
        osg::AnimationTrackPtr track = ka_older::makeTrack({ka_older::makeBlock("wave", {turning(node)})});
        osg::AnimationClipPtr clip = ka_older::makeClip("clip", {track});
        for (unsigned int level = 2; level < above; level += 2) {
            track = ka_older::makeTrack({});
            track->addEntry(clip);
            clip = ka_older::makeClip("clip", {track});
        }
        emptyModule();
        importWith(clip);
        const bool fits = above + 3 <= KA_MAX_DEPTH;
        EXPECT_EQ(countOf(KA_TYPE_UNIT), fits ? 1U : 0U) << above;
        EXPECT_EQ(countOf(KA_TYPE_CURVE), fits ? 1U : 0U) << above;
        EXPECT_EQ(countOf(KA_TYPE_POINT), fits ? 2U : 0U) << above;
        EXPECT_EQ(countOf(KA_TYPE_STREAK), above / 2) << above;
    }
}

TEST_F(ImportHostile, AParentAtTheBottomTakesNothingMore) {
    kaAnimationObject* parent = manager().createStrip(0);
    const kaUID top = parent->getId();
    for (unsigned int level = 1; level < KA_MAX_DEPTH; ++level) {
        kaAnimationObject* child = level % 2 == 1 ? static_cast<kaAnimationObject*>(manager().createStreak(0))
                                                  : static_cast<kaAnimationObject*>(manager().createStrip(0));
        ASSERT_NE(parent->addObject(child), nullptr);
        parent = child;
    }
    auto* track = static_cast<kaAnimationStreak*>(parent);
    const auto before = manager().getObjects().size();
    EXPECT_EQ(manager().importClip(ka_older::makeClip("clip", {}), track), nullptr);
    EXPECT_EQ(manager().importBlock(ka_older::makeBlock("wave", {}), track), nullptr);
    EXPECT_EQ(manager().importSequence(ka_older::makeSequence("doors", 0.0F, 1.0F), track), nullptr);
    EXPECT_EQ(manager().getObjects().size(), before);
    manager().destroyObject(manager().getObject(top));
}

TEST_F(ImportHostile, KeysOfAnyNumberAreTaken) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<ka_older::Key> keys{
        {{nan, nan}}, {{-inf, inf}}, {{0.0F, 1.0F}}, {{inf, -inf}}, {{1e30F, 1e30F}}};
    ka_older::attachmentOf(node)->addBlock(
        ka_older::makeBlock("wild", {ka_older::makeCurve("rotateX", keys, node)}, node));
    const kaImportReport& report = import();
    EXPECT_EQ(report.curves, 1U);
    EXPECT_EQ(report.keys, 5U);
}

TEST_F(ImportHostile, ASceneInARingIsVisitedOnce) {
    const osg::NodePtr above = scene.addTransform("above");
    const osg::NodePtr below = scene.addTransform("below", above);
    for (const osg::NodePtr& animated : {above, below})
        ka_older::attachmentOf(animated)->addBlock(
            ka_older::makeBlock("wave", {turning(animated)}, animated));
    auto* children = dynamic_cast<osg::MFNodePtr*>(below->getField("children"));
    ASSERT_NE(children, nullptr);
    children->push_back(above);
    manager().importORVAAnimations(above, node, 2);
    children->clear();
    EXPECT_EQ(countOf(KA_TYPE_UNIT), 2U);
}

} // namespace
