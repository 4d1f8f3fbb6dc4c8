#include "MotionTesting.h"
#include "ProgramRun.h"
#include "RunningProgram.h"
#include "play/PlayClock.h"

#include <algorithm>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

constexpr const char* currentFrame = "currentFrameChanged";
constexpr const char* wholeFrame = "currentFullFrameChanged";
constexpr const char* finished = "finishedPlayingGlobal";

/// One joint that is moved for 0.8 s, 20 frames, a key each.
std::string slide() {
    std::string text = "HIERARCHY ROOT slide\n{ OFFSET 0 0 0 CHANNELS 1 Xposition }\nMOTION\nFrames: 21\n"
                       "Frame Time: 0.04\n";
    for (int i = 0; i <= 20; ++i)
        text += std::to_string(i) + "\n";
    return text;
}

/// A clip of ten frames with an event at its third, and blocks that cannot play.
constexpr const char* show = R"(<!DOCTYPE ORVA>
<AnimationPool objects="9">
 <point id="11" typeID="1" tangentType="2" tangentLengthMode="64">
  <position>0 0</position><inTangent>-1 0</inTangent><outTangent>5 0</outTangent>
 </point>
 <point id="12" typeID="1" tangentType="2" tangentLengthMode="64">
  <position>10 8</position><inTangent>5 8</inTangent><outTangent>15 8</outTangent>
 </point>
 <curve id="21" typeID="2" name="swing" active="1"><point id="11"/><point id="12"/></curve>
 <block id="31" typeID="3" name="door" active="1"><block id="21"/></block>
 <block id="32" typeID="3" name="empty" active="1"/>
 <block id="33" typeID="3" name="off" active="0"/>
 <field id="61" typeID="6" name="door opens" active="1" begin="3" end="3.5"/>
 <track id="41" typeID="4" name="track" number="0" active="1"><obj id="31"/><obj id="61"/></track>
 <clip id="51" typeID="5" name="show" active="1"><track id="41"/></clip>
</AnimationPool>
)";

class PlayTest : public ::testing::Test {
  protected:
    void SetUp() override {
        _folder.put("slide.bvh", slide());
        _folder.put("walk.bvh", shortCapture(97));
    }

    ProgramRun play(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "play");
        return runKaAnim(arguments, _folder.at(""));
    }

    /// The messages of a run with `--format json`.
    std::vector<json> messages(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--format", "json"});
        const ProgramRun run = play(std::move(arguments));
        EXPECT_EQ(run.code, 0) << run.messages;
        return linesOf(run.output);
    }

    static std::vector<json> linesOf(const std::string& output) {
        EXPECT_TRUE(output.empty() || output.back() == '\n');
        std::vector<json> lines;
        std::istringstream text(output);
        for (std::string line; std::getline(text, line);)
            lines.push_back(json::parse(line));
        return lines;
    }

    /// The frames of the messages of one name.
    static std::vector<double> framesOf(const std::vector<json>& lines, const std::string& name) {
        std::vector<double> frames;
        for (const json& line : lines)
            if (line["message"] == name)
                frames.push_back(line["frame"]);
        return frames;
    }

    TemporaryFolder _folder;
};

/// What a host is told when the timeline shows these frames one after the other, by the rules of playback:
/// every frame, then its whole part where that is another one than before.
std::vector<std::pair<std::string, double>> expectedMessages(const std::vector<double>& frames) {
    std::vector<std::pair<std::string, double>> expected;
    double whole = 0; // before anything has played
    for (const double frame : frames) {
        expected.emplace_back(currentFrame, frame);
        if (std::floor(frame) != whole) {
            whole = std::floor(frame);
            expected.emplace_back(wholeFrame, whole);
        }
    }
    return expected;
}

void expectMessages(const std::vector<json>& lines, const std::vector<double>& frames, bool ends) {
    const auto expected = expectedMessages(frames);
    ASSERT_EQ(lines.size(), expected.size() + (ends ? 1U : 0U));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(lines[i]["message"], expected[i].first) << "message " << i;
        // Frames are floats, and ten thousand frames in they are a thousandth of a frame apart.
        ASSERT_NEAR(lines[i]["frame"].get<double>(), expected[i].second, 2e-3) << "message " << i;
        ASSERT_EQ(lines[i]["frame"].is_number_integer(), expected[i].first == wholeFrame);
        ASSERT_EQ(lines[i].value("sender", 0), expected[i].first == wholeFrame ? 0 : 3);
    }
    if (ends) {
        EXPECT_EQ(lines.back(), (json{{"message", finished}, {"finished", true}}));
    }
}

TEST_F(PlayTest, TenThousandTicksOfACaptureTellEverythingInOrder) {
    // 97 frames of 1/120 s; frames of the animation are 1/25 s.
    const double length = 96 * .0083333 * 25;
    std::vector<double> frames;
    for (int tick = 0; tick < 10000; ++tick)
        frames.push_back(tick - length * std::floor(tick / length));
    expectMessages(messages({"walk.bvh", "--frames", "10000", "--repeat"}), frames, false);
}

TEST_F(PlayTest, TellsEachFrameOnceAndTheEndLast) {
    std::vector<double> frames;
    for (int tick = 0; tick <= 21; ++tick)
        frames.push_back(tick); // 21 is the first beyond the end
    expectMessages(messages({"slide.bvh", "--frames", "1000"}), frames, true);
}

TEST_F(PlayTest, GoesBackwardsFasterSlowerAndInAPart) {
    struct Case {
        std::vector<std::string> options;
        std::vector<double> frames;
        bool ends;
    };
    const Case cases[] = {
        {{"--reverse", "--frames", "4"}, {20, 19, 18, 17}, false},
        {{"--reverse", "--from", "17", "--frames", "9"}, {20, 19, 18, 17, 16}, true},
        {{"--speed", "4", "--frames", "9"}, {0, 4, 8, 12, 16, 20, 24}, true},
        {{"--speed", "0.25", "--frames", "6"}, {0, 0.25, 0.5, 0.75, 1, 1.25}, false},
        {{"--from", "5", "--to", "7", "--frames", "9"}, {5, 6, 7, 8}, true},
        {{"--from", "5", "--to", "8", "--repeat", "--frames", "8"}, {5, 6, 7, 5, 6, 7, 5, 6}, false},
        {{"--from", "5", "--to", "8", "--repeat", "--reverse", "--frames", "5"}, {5, 7, 6, 5, 7}, false},
        {{"--from", "-2", "--to", "0", "--frames", "9"}, {-2, -1, 0, 1}, true},
        {{"--fps", "50", "--from", "38", "--frames", "9"}, {38, 39, 40, 41}, true},
    };
    for (const Case& each : cases) {
        std::vector<std::string> arguments{"slide.bvh"};
        arguments.insert(arguments.end(), each.options.begin(), each.options.end());
        SCOPED_TRACE(::testing::PrintToString(each.options));
        expectMessages(messages(arguments), each.frames, each.ends);
    }
}

TEST_F(PlayTest, EveryWholeFrameIsReachedForwardsAndBackwards) {
    // Single precision makes a plain quotient of ticks and rate stop just short of some of them.
    for (const char* rate : {"25", "24", "29.97", "30", "60"}) {
        for (const bool reverse : {false, true}) {
            std::vector<std::string> arguments{"slide.bvh", "--fps", rate,       "--from", "0",
                                               "--to",      "2000",  "--frames", "2000"};
            if (reverse)
                arguments.emplace_back("--reverse");
            const auto whole = framesOf(messages(arguments), wholeFrame);
            ASSERT_GE(whole.size(), 1999U) << rate;
            for (std::size_t i = 1; i < whole.size(); ++i)
                ASSERT_EQ(whole[i] - whole[i - 1], reverse ? -1 : 1) << rate << " frame " << whole[i];
        }
    }
}

TEST_F(PlayTest, VerboseNamesEachWholeFrameAndEachMessage) {
    EXPECT_EQ(play({"slide.bvh", "--to", "1", "--frames", "9", "--verbose"}).output,
              "currentFrameChanged frame=0 sender=3\n"
              "frame 0\n"
              "currentFrameChanged frame=1 sender=3\n"
              "currentFullFrameChanged frame=1\n"
              "frame 1\n"
              "currentFrameChanged frame=2 sender=3\n"
              "currentFullFrameChanged frame=2\n"
              "finishedPlayingGlobal finished=true\n"
              "frame 2\n");
}

TEST_F(PlayTest, WithoutVerboseOneLineSaysWhatHappened) {
    const ProgramRun run = play({"slide.bvh", "--frames", "100"});
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.messages, "ka-anim: finished at frame 21 after 22 ticks, 22 currentFrameChanged, 21 "
                            "currentFullFrameChanged, 1 finishedPlayingGlobal\n");
    EXPECT_THAT(play({"slide.bvh", "--frames", "5"}).messages, HasSubstr("stopped at frame 4 after 5 ticks"));
}

TEST_F(PlayTest, AnObjectByItselfPlaysWithoutTheTimeline) {
    // A player that plays one object sends no message of its own.
    const ProgramRun forwards =
        play({"slide.bvh", "--object", "slide", "--frames", "100", "--from", "3", "--to", "5", "--verbose"});
    EXPECT_EQ(forwards.output, "frame 3\nframe 4\nframe 5\nframe 6\n");
    EXPECT_THAT(forwards.messages, HasSubstr("finished at frame 6 after 4 ticks"));
    const ProgramRun backwards = play({"slide.bvh", "--object", "slide", "--frames", "100", "--from", "3",
                                       "--to", "5", "--verbose", "--reverse"});
    EXPECT_EQ(backwards.output, "frame 5\nframe 4\nframe 3\nframe 2\n");
    EXPECT_THAT(play({"slide.bvh", "--object", "slide", "--frames", "100", "--repeat"}).messages,
                HasSubstr("stopped at frame"));
    EXPECT_EQ(play({"slide.bvh", "--object", "slide", "--frames", "9", "--format", "json"}).output, "");
}

TEST_F(PlayTest, TellsWhichSequencesFire) {
    _folder.put("show.xml", show);
    EXPECT_THAT(play({"show.xml", "--frames", "100", "--verbose"}).output,
                HasSubstr("currentFullFrameChanged frame=3\nsequence door opens\nframe 3\n"));
    std::vector<std::size_t> fired;
    const std::vector<json> lines = messages({"show.xml", "--frames", "100"});
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i] == json{{"sequence", "door opens"}})
            fired.push_back(i);
    // Frame 0 takes one message, frames 1 to 3 two each.
    EXPECT_THAT(fired, ElementsAre(7));
    EXPECT_EQ(play({"show.xml", "--object", "show", "--frames", "5", "--verbose"}).output,
              "frame 0\nframe 1\nframe 2\nsequence door opens\nframe 3\nframe 4\n");
}

TEST_F(PlayTest, RefusesWhatWouldPlayForeverWithoutMovingOn) {
    _folder.put("show.xml", show);
    const ProgramRun empty = play({"show.xml", "--object", "empty"});
    EXPECT_EQ(empty.code, 2);
    EXPECT_EQ(empty.messages, "ka-anim: 'empty' holds nothing to play\n");
    EXPECT_EQ(play({"show.xml", "--object", "off"}).messages, "ka-anim: 'off' is not active\n");
    // A curve has no run of its own and plays on the timeline.
    EXPECT_THAT(play({"show.xml", "--object", "swing", "--frames", "100"}).messages,
                HasSubstr("finished at frame 11 after 12 ticks, 12 currentFrameChanged"));
}

TEST_F(PlayTest, TheSameRunGivesTheSameBytes) {
    const std::vector<std::string> arguments{"walk.bvh", "--frames", "200", "--verbose", "--repeat"};
    EXPECT_EQ(play(arguments).output, play(arguments).output);
}

TEST_F(PlayTest, MistakesGetOneLineAndCodeTwo) {
    const std::pair<std::vector<std::string>, const char*> mistakes[] = {
        {{"slide.bvh", "--frames", "0"}, "--frames"},
        {{"slide.bvh", "--frames", "many"}, "--frames"},
        {{"slide.bvh", "--speed", "0"}, "above zero"},
        {{"slide.bvh", "--speed", "-1"}, "above zero"},
        {{"slide.bvh", "--from", "nan"}, "not a finite number"},
        {{"slide.bvh", "--from", "9", "--to", "9"}, "there is nothing to play from frame 9 to frame 9"},
        {{"slide.bvh", "--from", "21"}, "there is nothing to play from frame 21 to frame 20"},
        {{"slide.bvh", "--object", "swim"}, "no animation is called 'swim'"},
        {{"slide.bvh", "--format", "xml"}, "xml"},
        {{"--frames", "1"}, "FILE"},
    };
    for (const auto& [arguments, part] : mistakes) {
        const ProgramRun run = play(arguments);
        EXPECT_EQ(run.code, 2) << run.messages;
        EXPECT_TRUE(run.isOneLine()) << run.messages;
        EXPECT_THAT(run.messages, HasSubstr(part));
        EXPECT_EQ(run.output, "");
    }
    EXPECT_EQ(play({"none.bvh"}).code, 3);
}

TEST_F(PlayTest, AModelWithoutMotionEndsAtOnce) {
    _folder.put("still.bvh", "HIERARCHY ROOT a\n{ OFFSET 0 0 0 CHANNELS 0 }\nMOTION\nFrames: 0\nFrame "
                             "Time: 1\n");
    const ProgramRun run = play({"still.bvh"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.messages, HasSubstr("finished at frame 0 after 1 tick,"));
}

TEST_F(PlayTest, InterruptingItEndsTheOutputInOrder) {
    RunningProgram program({"play", "slide.bvh", "--repeat", "--format", "json"}, _folder.at(""),
                           RunningProgram::Streams::Pipe);
    program.readUntil([](const std::string& seen) { return std::count(seen.begin(), seen.end(), '\n') > 3; });
    program.interrupt();
    EXPECT_EQ(program.finish(), 0);
    const std::vector<json> lines = linesOf(program.seen());
    EXPECT_EQ(lines.front()["message"], currentFrame);
    EXPECT_EQ(lines.front()["frame"], 0);
}

TEST_F(PlayTest, OnATerminalOneLineTellsTheFrameUntilCtrlC) {
    RunningProgram program({"play", "slide.bvh", "--repeat"}, _folder.at(""),
                           RunningProgram::Streams::Terminal);
    // Behind the bar that tells of the building.
    const std::string start = "\rplaying: frame 0 (0 to 20)\033[K\rplaying: frame ";
    program.readUntil([&](const std::string& seen) { return seen.find(start) != seen.npos; });
    EXPECT_THAT(program.seen(), HasSubstr(start));
    EXPECT_THAT(program.seen(), Not(HasSubstr("\n"))); // it is one line so far
    program.type("\x03");
    EXPECT_EQ(program.finish(), 0);
    const std::size_t lineEnd = program.seen().find('\n');
    ASSERT_NE(lineEnd, std::string::npos) << program.seen();
    const std::string rest = program.seen().substr(lineEnd);
    EXPECT_THAT(rest, HasSubstr("ka-anim: stopped at frame "));
    EXPECT_THAT(rest, EndsWith("\n"));
}

TEST_F(PlayTest, LinesOnATerminalAreNotMixedWithTheLiveOne) {
    RunningProgram program({"play", "slide.bvh", "--frames", "5", "--verbose"}, _folder.at(""),
                           RunningProgram::Streams::Terminal);
    EXPECT_EQ(program.finish(), 0);
    EXPECT_THAT(program.seen(), HasSubstr("frame 4\r\n"));
    EXPECT_THAT(program.seen(), Not(HasSubstr("playing:")));
}

TEST(TimeOfRun, IsTheFirstFloatThatReachesTheFrame) {
    EXPECT_EQ(timeOfRun(0.0F, 25.0F, false), 0.0F);
    EXPECT_EQ(timeOfRun(50.0F, 25.0F, false), 2.0F);
    for (const float rate : {25.0F, 29.97F, 24.0F, 1e-3F, 1e6F}) {
        for (float frame = 7.25F; frame < 5000.0F; frame += 7.25F) {
            const float first = timeOfRun(frame, rate, false), last = timeOfRun(frame, rate, true);
            EXPECT_GE(first * rate, frame);
            EXPECT_LE(last * rate, frame);
            EXPECT_LT(std::nextafter(first, 0.0F) * rate, frame);
            EXPECT_GT(std::nextafter(last, std::numeric_limits<float>::infinity()) * rate, frame);
        }
    }
}

} // namespace
} // namespace ka::tools::testing
