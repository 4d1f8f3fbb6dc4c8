#include "check/Deviation.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace ka::motion {
namespace {

/// Straight from 0 to 10 over ten frames, then back to 0 over ten more.
std::vector<PlainKey> roof() {
    return {{0, 0, 0, 0, 5, 5}, {10, 10, 5, 5, 15, 5}, {20, 0, 15, 5, 20, 0}};
}

std::optional<double> roofAt(double frame) {
    return frame <= 10 ? std::max(frame, 0.0) : std::max(20 - frame, 0.0);
}

TEST(Judge, FindsNothingWrongWithWhatIsAsItWasMeant) {
    const CurveJudgement judgement = judge(roof(), roofAt);
    EXPECT_FALSE(judgement.fault);
    EXPECT_EQ(judgement.worst, 0.0);
}

TEST(Judge, NamesTheWorstFrameAndBothValues) {
    std::vector<PlainKey> keys = roof();
    keys[1].outY += 1.0F; // the middle of the second segment moves by 3/8
    const CurveJudgement judgement = judge(keys, roofAt);
    ASSERT_TRUE(judgement.fault);
    EXPECT_GT(judgement.fault->frame, 10);
    EXPECT_LT(judgement.fault->frame, 20);
    EXPECT_NEAR(judgement.worst, 4.0 / 9.0, 0.03); // the weight of one handle is 4/9 at the most
    EXPECT_NE(judgement.fault->text().find(" instead of "), std::string::npos);
    keys = roof();
    keys[2].y = 0.5F;
    const CurveJudgement last = judge(keys, roofAt);
    ASSERT_TRUE(last.fault);
    EXPECT_EQ(last.fault->text(), "0.5 instead of 0 at frame 20");
}

TEST(Judge, AllowsWhatTheDigitsOfADocumentMove) {
    std::vector<PlainKey> keys = roof();
    keys[1].x += 1e-6F;
    keys[0].outY += 1e-6F;
    EXPECT_FALSE(judge(keys, roofAt).fault);
    // Where a curve is steep a frame that is off by so little is off by much.
    const std::vector<PlainKey> steep{{0, 0, 0, 0, 1e-5F, 500}, {2e-5F, 1000, 1e-5F, 500, 2e-5F, 1000}};
    EXPECT_FALSE(judge(steep, [](double frame) {
                     return std::optional<double>(std::clamp((frame + 5e-7) * 5e7, 0.0, 1000.0));
                 }).fault);
    keys[1].x = 10.01F;
    EXPECT_TRUE(judge(keys, roofAt).fault);
}

TEST(Judge, AllowsAJumpToStandOneStepBesideItsFrame) {
    const std::vector<PlainKey> steps{{0, 1, 0, 1, 0, 1}, {10, 5, 10, 5, 10, 5}, {20, 5, 20, 5, 20, 5}};
    EXPECT_FALSE(judge(steps, [](double frame) {
                     return std::optional<double>(frame < 10.0000005 ? 1.0 : 5.0);
                 }).fault);
    EXPECT_TRUE(
        judge(steps, [](double frame) { return std::optional<double>(frame < 10.01 ? 1.0 : 5.0); }).fault);
}

TEST(Judge, TakesAMissingValueForTheWorst) {
    std::vector<PlainKey> keys = roof();
    keys[2].y = 3.0F;
    keys[0].outX = keys[0].outY = 0.0F; // collapsed: the key's own frame has no value
    const CurveJudgement judgement = judge(keys, roofAt);
    ASSERT_TRUE(judgement.fault);
    EXPECT_EQ(judgement.fault->text(), "no value at frame 0");
    EXPECT_EQ(judge({{7, 1, 7, 1, 7, 1}}, roofAt).fault->text(), "no value at frame 7");
    // Where none is meant, none is missed.
    EXPECT_FALSE(judge({{7, 1, 7, 1, 7, 1}}, [](double) { return std::optional<double>(); }).fault);
}

} // namespace
} // namespace ka::motion
