#include "MotionTesting.h"
#include "ProgramRun.h"
#include "readers/BvhReader.h"

#include <gmock/gmock.h>
#include <kaMotion/KeyBudget.h>

namespace ka::tools {

using namespace motion;
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr std::size_t keysOfOneMegabyte = 1638; // 1024 * 1024 / 640

std::string capture(std::size_t frames, const std::function<int(std::size_t)>& value) {
    std::string text =
        "HIERARCHY\nROOT r\n{\nOFFSET 0 0 0\nCHANNELS 3 Zrotation Yrotation Xrotation\n}\nMOTION\nFrames: " +
        std::to_string(frames) + "\nFrame Time: 0.1\n";
    for (std::size_t i = 0; i < frames; ++i)
        text += std::to_string(value(i)) + " 0 0\n";
    return text;
}

std::vector<std::size_t> framesKept(const std::string& text, KeyBudget budget) {
    std::vector<std::size_t> frames;
    const Motion motion = readBvh(text, "a.bvh", "a", budget);
    for (const MotionKey<3>& key : motion.takes.at(0).tracks.at(0).angles.keys)
        frames.push_back(static_cast<std::size_t>(key.time * 10 + 0.5));
    return frames;
}

TEST(KeyBudget, KeepsEveryKeyOfWhatFits) {
    const std::string still = capture(keysOfOneMegabyte / 3, [](std::size_t) { return 0; });
    EXPECT_EQ(framesKept(still, KeyBudget(1)).size(), keysOfOneMegabyte / 3);
}

TEST(KeyBudget, ThinsRunsOfEqualValuesOfWhatDoesNot) {
    const std::string still = capture(1000, [](std::size_t) { return 7; });
    EXPECT_THAT(framesKept(still, KeyBudget(1)), ElementsAre(0, 999));
    const std::string once = capture(1000, [](std::size_t frame) { return frame == 500 ? 1 : 0; });
    EXPECT_THAT(framesKept(once, KeyBudget(1)), ElementsAre(0, 499, 500, 501, 999));
}

TEST(KeyBudget, RefusesWhatIsTooMuchEvenThen) {
    const std::string moving = capture(1000, [](std::size_t frame) { return static_cast<int>(frame % 2); });
    EXPECT_EQ(testing::failureOf([&] { framesKept(moving, KeyBudget(1)); }),
              "its 3000 keys would take about 1 MB, --reader-memory allows 1");
    EXPECT_EQ(framesKept(moving, KeyBudget()).size(), 1000U);
}

TEST(KeyBudget, KeepsCubicKeysThatLeaveTheirValue) {
    KeyBudget budget(1);
    budget.expect(1000);
    MotionChannel<3> channel;
    for (int i = 0; i < 5; ++i)
        budget.add(channel, {0.1 * i, {1, 2, 3}, {}, {0, 0.5, 0}});
    EXPECT_EQ(channel.keys.size(), 5U);
}

TEST(KeyBudget, LeavesKeysWhoseTimeDoesNotIncreaseToTheCheck) {
    KeyBudget budget(1);
    budget.expect(1000);
    MotionChannel<4> channel;
    for (const double time : {0.0, 1.0, 1.0, 0.5})
        budget.add(channel, {time, {0, 0, 0, 1}, {}, {}});
    EXPECT_EQ(channel.keys.size(), 4U);
}

TEST(KeyBudget, StatedCountsCannotOverflow) {
    KeyBudget budget(1);
    budget.expect(std::numeric_limits<std::size_t>::max());
    budget.expect(5);
    EXPECT_TRUE(budget.thins());
}

TEST(KeyBudget, CountsNodesAndBlocksToo) {
    Motion motion;
    motion.nodes.resize(1000);
    EXPECT_EQ(testing::failureOf([&] { KeyBudget(1).check(motion); }),
              "what it holds would take about 1 MB, --reader-memory allows 1");
    EXPECT_EQ(testing::failureOf([&] { KeyBudget(2).check(motion); }), "no failure");
}

TEST(KeyBudget, HoldsForTheProgram) {
    const testing::TemporaryFolder folder;
    const auto import = [&](const std::string& text) {
        return testing::runKaAnim({"import", folder.put("a.bvh", text), "--reader-memory", "16"});
    };
    const testing::ProgramRun still = import(capture(100000, [](std::size_t) { return 0; }));
    EXPECT_EQ(still.code, 0) << still.messages;
    EXPECT_THAT(still.messages, HasSubstr(" 6 keys"));
    const testing::ProgramRun moving =
        import(capture(100000, [](std::size_t frame) { return static_cast<int>(frame % 2); }));
    EXPECT_EQ(moving.code, 3);
    EXPECT_TRUE(moving.isOneLine()) << moving.messages;
    EXPECT_THAT(moving.messages,
                HasSubstr("a.bvh: its 300000 keys would take about 183 MB, --reader-memory allows 16"));
}

} // namespace
} // namespace ka::tools
