#include "TimeFixture.h"

#include <gmock/gmock.h>

using namespace ka_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Which ends of which objects were announced, in order.
std::vector<std::string> heard;

template <int Mark>
void note() {
    heard.push_back(std::to_string(Mark));
}

class TriggerLoop : public TimeFixture {
  protected:
    void SetUp() override {
        TimeFixture::SetUp();
        heard.clear();
    }
};

using Make = kaAnimationObject* (*)();

struct KindRow {
    const char* name;
    Make make; ///< over [10, 20]
};

class TriggerLoopOf : public TriggerLoop, public testing::WithParamInterface<KindRow> {};

TEST_P(TriggerLoopOf, StartsAtTheBeginAndEndsAfterTheEnd) {
    Object* object = GetParam().make();
    manager->createConnection(object, Manager::TriggerBegin, &note<0>);
    manager->createConnection(object, Manager::TriggerEnd, &note<1>);
    const auto at = [&](float frame) {
        heard.clear();
        object->triggerLoop(frame);
        return heard;
    };
    EXPECT_THAT(at(9.5F), IsEmpty());
    EXPECT_FALSE(object->isPlaying());
    EXPECT_THAT(at(10.0F), ElementsAre("0"));
    EXPECT_TRUE(object->isPlaying());
    EXPECT_THAT(at(15.0F), IsEmpty());
    EXPECT_THAT(at(20.0F), IsEmpty()) << "the end itself still plays";
    EXPECT_THAT(at(20.5F), ElementsAre("1"));
    EXPECT_FALSE(object->isPlaying());
    EXPECT_THAT(at(30.0F), ElementsAre("0", "1")) << "beyond the end each call starts and ends it";
}

TEST_P(TriggerLoopOf, GoesByTheCustomRangeWhileItIsUsed) {
    Object* object = GetParam().make();
    object->setCustomBegin(100.0F);
    object->setCustomEnd(110.0F);
    object->setUseCustomRange(true);
    object->triggerLoop(15.0F);
    EXPECT_FALSE(object->isPlaying());
    object->triggerLoop(105.0F);
    EXPECT_TRUE(object->isPlaying());
    object->triggerLoop(111.0F);
    EXPECT_FALSE(object->isPlaying());
}

kaAnimationObject* makeSpanned() {
    return makeSequence("s", 10.0F, 20.0F);
}
kaAnimationObject* makeSpannedBlock() {
    return makeBlock(10.0F, 20.0F);
}
kaAnimationObject* makeSpannedTrack() {
    return makeTrack({makeBlock(10.0F, 20.0F)});
}
kaAnimationObject* makeSpannedClip() {
    return makeClip({makeBlock(10.0F, 20.0F)});
}
kaAnimationObject* makeSpannedCurve() {
    return makeCurve(std::vector<Spot>{{10.0F, 0.0F}, {20.0F, 1.0F}});
}

INSTANTIATE_TEST_SUITE_P(Kinds, TriggerLoopOf,
                         testing::Values(KindRow{"curve", &makeSpannedCurve},
                                         KindRow{"block", &makeSpannedBlock},
                                         KindRow{"track", &makeSpannedTrack},
                                         KindRow{"clip", &makeSpannedClip},
                                         KindRow{"sequence", &makeSpanned}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(TriggerLoop, DoesNothingForAContainerWithoutChildren) {
    for (Object* object :
         std::vector<Object*>{manager->createUnit(0), manager->createStreak(0), manager->createStrip(0)}) {
        object->setBegin(0.0F);
        object->setEnd(10.0F);
        manager->createConnection(object, Manager::TriggerBegin, &note<0>);
        object->triggerLoop(5.0F);
        EXPECT_FALSE(object->isPlaying());
    }
    EXPECT_THAT(heard, IsEmpty());
}

TEST_F(TriggerLoop, DescendsFromClipToTrackToBlockButNotToCurves) {
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    kaAnimationUnit* later = makeBlock(20.0F, 30.0F);
    kaAnimationSequence* sequence = makeSequence("s", 4.0F, 40.0F);
    kaAnimationStreak* track = makeTrack({block, later, sequence});
    kaAnimationStrip* clip = makeClip({track});
    manager->createConnection(clip, Manager::TriggerBegin, &note<0>);
    manager->createConnection(track, Manager::TriggerBegin, &note<1>);
    manager->createConnection(block, Manager::TriggerBegin, &note<2>);
    manager->createConnection(sequence, Manager::TriggerBegin, &note<3>);
    clip->triggerLoop(5.0F);
    EXPECT_THAT(heard, ElementsAre("0", "1", "2", "3"))
        << "the container before its children, those by begin";
    EXPECT_FALSE(later->isPlaying());
    EXPECT_FALSE(curveOf(block)->isPlaying());
}

TEST_F(TriggerLoop, IsNotPlayingYetWhileItsStartIsAnnounced) {
    static bool playing = true;
    static kaUID id = 0;
    kaAnimationUnit* block = makeBlock(0.0F, 10.0F);
    id = block->getId();
    manager->createConnection(block, Manager::TriggerBegin,
                              [] { playing = Manager::the()->getUnit(id)->isPlaying(); });
    block->triggerLoop(5.0F);
    EXPECT_FALSE(playing);
    EXPECT_TRUE(block->isPlaying());
}

} // namespace
