#include "readers/BvhReader.h"

#include "MotionTesting.h"

#include <cmath>
#include <gmock/gmock.h>

namespace ka::motion {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string twoJoints = "HIERARCHY\n"
                              "ROOT Hips\n"
                              "{\n"
                              "  OFFSET 1 2 3\n"
                              "  CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
                              "  JOINT Left Arm\n"
                              "  {\n"
                              "    OFFSET 0 10 0\n"
                              "    CHANNELS 1 Yrotation\n"
                              "    End Site\n"
                              "    {\n"
                              "      OFFSET 0 5 0\n"
                              "    }\n"
                              "  }\n"
                              "}\n";

std::string withMotion(const std::string& motion) {
    return twoJoints + "MOTION\n" + motion;
}

Motion read(const std::string& text) {
    return readBvh(text, "walk.bvh", "walk");
}

std::string failure(const std::string& text) {
    return testing::failureOf([&] { read(text); });
}

TEST(BvhReader, ReadsHierarchyAndFrames) {
    const Motion motion = read(withMotion("Frames: 2\nFrame Time: .5\n10 20 30 1 2 3 4\n11 21 31 5 6 7 8\n"));
    ASSERT_EQ(motion.nodes.size(), 3U);
    EXPECT_EQ(motion.nodes[0].name, "Hips");
    EXPECT_EQ(motion.nodes[1].name, "Left Arm");
    EXPECT_EQ(motion.nodes[2].name, "Left Arm_End");
    EXPECT_EQ(motion.nodes[0].parent, MotionNode::noParent);
    EXPECT_EQ(motion.nodes[1].parent, 0);
    EXPECT_EQ(motion.nodes[2].parent, 1);
    EXPECT_THAT(motion.nodes[2].translation, ElementsAre(0, 5, 0));
    EXPECT_THAT(motion.nodes[0].order, ElementsAre(2, 0, 1));

    ASSERT_EQ(motion.takes.size(), 1U);
    EXPECT_EQ(motion.takes[0].name, "walk");
    ASSERT_EQ(motion.takes[0].tracks.size(), 2U);
    const MotionTrack& hips = motion.takes[0].tracks[0];
    EXPECT_EQ(hips.translation.keys[1].time, 0.5);
    EXPECT_THAT(hips.translation.keys[0].value, ElementsAre(10, 20, 30));
    EXPECT_THAT(hips.angles.keys[0].value, ElementsAre(2, 3, 1)); // the file lists Z, X, Y
    const MotionTrack& arm = motion.takes[0].tracks[1];
    EXPECT_TRUE(arm.translation.keys.empty());
    EXPECT_THAT(arm.angles.keys[1].value, ElementsAre(0, 8, 0));
}

TEST(BvhReader, APositionChannelReplacesTheOffsetOnItsAxisOnly) {
    const Motion motion =
        read("HIERARCHY ROOT a { OFFSET 1 2 3 CHANNELS 1 Yposition } MOTION Frames: 1 Frame Time: 1\n9\n");
    EXPECT_THAT(motion.takes[0].tracks[0].translation.keys[0].value, ElementsAre(1, 9, 3));
}

TEST(BvhReader, TakesSeveralRootsAndAnyCase) {
    const Motion motion =
        read("hierarchy\nroot a\n{\noffset 0 0 0\nchannels 0\n}\nROOT b\n{\nOFFSET 0 0 0\nCHANNELS 1 "
             "zROTATION\n}\nmotion\nframes:\t1\nframe time:\t1\n7\n");
    ASSERT_EQ(motion.nodes.size(), 2U);
    EXPECT_EQ(motion.nodes[1].parent, MotionNode::noParent);
    ASSERT_EQ(motion.takes[0].tracks.size(), 1U);
    EXPECT_EQ(motion.takes[0].tracks[0].node, 1U);
}

TEST(BvhReader, LeavesNumbersThatAreNotFiniteToTheCheck) {
    Motion motion = read(withMotion("Frames: 2\nFrame Time: 1\n0 0 0 nan 0 0 0\n0 0 0 1 0 0 0\n"));
    EXPECT_TRUE(std::isnan(motion.takes[0].tracks[0].angles.keys[0].value[2]));
    EXPECT_EQ(checkMotion(motion), 1U);
    EXPECT_EQ(motion.takes[0].tracks[0].angles.keys.size(), 1U);
    EXPECT_THAT(motion.notes, ElementsAre(HasSubstr("node 'Hips': rotation: dropped 1 key")));
}

TEST(BvhReader, NotesWhatFollowsTheLastFrame) {
    const Motion motion = read(withMotion("Frames: 1\nFrame Time: 1\n0 0 0 0 0 0 0\n1 1 1 1 1 1 1\n"));
    EXPECT_THAT(motion.notes, ElementsAre(HasSubstr("more than the 1 frames")));
}

TEST(BvhReader, SaysWhereAFileIsWrong) {
    struct Case {
        std::string text, message;
    };
    const std::string head = "Frames: 2\nFrame Time: 1\n";
    const Case cases[] = {
        {"", "walk.bvh:1:1: expected 'HIERARCHY', found the end"},
        {"hello", "walk.bvh:1:1: expected 'HIERARCHY', found 'hello'"},
        {"HIERARCHY\nJOINT a", "walk.bvh:2:1: expected 'ROOT', found 'JOINT'"},
        {"HIERARCHY\nROOT\n{", "walk.bvh:2:5: a joint without a name"},
        {"HIERARCHY\nROOT a\n{\n  OFFSET 1 x 3\n",
         "walk.bvh:4:12: expected a number of the offset, found 'x'"},
        {"HIERARCHY\nROOT a\n{\n  OFFSET 1 inf 3\n",
         "walk.bvh:4:12: expected a number of the offset, found 'inf'"},
        {"HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 7", "walk.bvh:2:25: a joint has 0 to 6 channels"},
        {"HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 2 Xrotation Xrotation",
         "walk.bvh:2:37: the same channel twice"},
        {"HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 1 Wrotation",
         "walk.bvh:2:27: expected a channel such as 'Xposition' or 'Zrotation', found 'Wrotation'"},
        {twoJoints, "walk.bvh:16:1: expected 'ROOT' or 'MOTION', found the end"},
        {withMotion("Frames: -1"), "walk.bvh:17:9: the number of frames is not a whole number"},
        {withMotion("Frames: 1.5"), "walk.bvh:17:9: the number of frames is not a whole number"},
        {withMotion("Frames: 2\nFrame Time: 0\n" + std::string(100, ' ')),
         "walk.bvh:18:13: the frame time is not above zero"},
        {withMotion(head + "1.50 2.50 3.50 4.50 5.50 6.50 7.50\n1 2 3\n"),
         "walk.bvh:20:6: frame 2 of 2 has 3 numbers, the joints have 7 channels"},
        {withMotion(head + "1 2 3 4 5 6 7 8\n1 2 3 4 5 6 7\n"),
         "walk.bvh:19:15: frame 1 has more than 7 numbers"},
        {withMotion(head + "1 2 3 4 5 6 seven\n1 2 3 4 5 6 7\n"),
         "walk.bvh:19:13: expected a number, found 'seven'"},
        {withMotion(head + "1 2 3 4 5 6 7,5\n1 2 3 4 5 6 7\n"),
         "walk.bvh:19:13: expected a number, found '7,5'"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(failure(c.text), c.message) << c.text;
}

TEST(BvhReader, AStatedCountCannotMakeItReserveMoreThanTheFileHolds) {
    EXPECT_THAT(failure(withMotion("Frames: 1000000000\nFrame Time: 1\n1 2 3 4 5 6 7\n")),
                HasSubstr("the file is too short for 1000000000 frames of 7 numbers"));
    EXPECT_THAT(failure(withMotion("Frames: 1e300\nFrame Time: 1\n")), HasSubstr("too short"));
    // Without channels a frame takes no room in the file; then it must take none here either.
    const Motion still =
        read("HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0 } MOTION Frames: 1e15 Frame Time: 1\n");
    EXPECT_TRUE(still.takes[0].tracks.empty());
}

TEST(BvhReader, RefusesJointsNestedBeyondTheLimit) {
    std::string text = "HIERARCHY\nROOT a\n{\nOFFSET 0 0 0\nCHANNELS 0\n";
    for (int i = 0; i < 100000; ++i)
        text += "JOINT a\n{\nOFFSET 0 0 0\nCHANNELS 0\n";
    EXPECT_THAT(failure(text), HasSubstr("joints are nested deeper than 500 levels"));
}

TEST(BvhReader, SurvivesEveryTruncationAndEveryChangedByte) {
    const std::string text = withMotion("Frames: 2\nFrame Time: 1\n1 2 3 4 5 6 7\n1 2 3 4 5 6 7\n");
    for (std::size_t length = 0; length < text.size(); ++length) {
        const std::string message = failure(text.substr(0, length));
        // Only the line end after the last number may be missing.
        const bool isComplete = length == text.size() - 1;
        EXPECT_EQ(message == "no failure", isComplete) << length << ": " << message;
    }
    for (std::size_t place = 0; place < text.size(); ++place)
        for (const char c : {'\0', '{', '}', '\n', '9', '-', 'e', '\xFF'}) {
            std::string changed = text;
            changed[place] = c;
            const std::string message = failure(changed);
            EXPECT_TRUE(message == "no failure" || message.rfind("walk.bvh:", 0) == 0) << message;
        }
}

} // namespace
} // namespace ka::motion
