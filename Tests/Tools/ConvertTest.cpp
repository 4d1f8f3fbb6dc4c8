#include "MotionTesting.h"
#include "ProgramRun.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Project.h>
#include <kaMotion/Text.h>
#include <nlohmann/json.hpp>
#include <regex>

namespace ka::tools::testing {

using namespace motion;
using namespace motion::testing;
namespace {

using ::testing::HasSubstr;
using Json = nlohmann::json;

class ConvertTest : public ::testing::Test {
  protected:
    ProgramRun run(const std::vector<std::string>& arguments) const {
        return runKaAnim(arguments, _folder.at(""));
    }

    /// Converts to `name`.osg and `name`.xml.
    void convert(std::vector<std::string> from, const std::string& name) const {
        from.insert(from.begin(), "convert");
        for (const std::string& word :
             {std::string("-o"), name + ".osg", std::string("--animation"), name + ".xml"})
            from.push_back(word);
        const ProgramRun result = run(from);
        EXPECT_EQ(result.code, 0) << result.messages;
        EXPECT_EQ(result.output, "");
    }

    std::string bytes(const std::string& name) const { return contentOf(_folder.at(name)); }

    TemporaryFolder _folder;
};

/// The numbers of containers, which each process gives anew.
std::string withoutContainers(const std::string& document) {
    return std::regex_replace(document, std::regex(R"rx( (fcID|parentNodeID)="\d+")rx"), "");
}

void expectNear(const Json& saved, const std::array<float, 3>& before, double tolerance, double frame) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(saved[i].get<double>(), static_cast<double>(before[i]), tolerance) << "frame " << frame;
}

class SavedWalk : public ConvertTest {
  protected:
    void SetUp() override {
        _folder.put("walk.bvh", shortCapture(31)); // a little over six frames
        convert({"walk.bvh"}, "one");
    }
};

/// What a user does: import, save, and look at it again and again in new processes.
TEST_F(SavedWalk, IsValidAndPosesAsBeforeInNewProcesses) {
    const ProgramRun check = run({"validate", "one.xml", "--scene", "one.osg"});
    EXPECT_EQ(check.code, 0) << check.output.substr(0, 2000);
    const auto counts =
        Json::parse(run({"info", "one.osg", "--animation", "one.xml", "--format", "json"}).output)["counts"];
    const Project model({_folder.at("walk.bvh"), "", {}, {}});
    EXPECT_EQ(counts["clips"], model.report().clips);
    EXPECT_EQ(counts["blocks"], model.report().blocks);
    EXPECT_EQ(counts["curves"], model.report().curves);
    EXPECT_EQ(counts["keys"], model.report().keys);
    // Six decimals of a frame, on segments that turn by some hundred degrees a frame.
    constexpr double tolerance = 1e-3;
#ifdef KA_WATCHED_MEMORY
    constexpr int poseCount = 10; // each is a process, which starts slowly here
#else
    constexpr int poseCount = 50;
#endif
    for (int i = 0; i < poseCount; ++i) {
        const double frame = 6.0 * i / poseCount;
        evaluate(model.playable(""), static_cast<float>(frame));
        const std::vector<NodePose> poses = readPose(model.placedNodes());
        const auto saved =
            Json::parse(run({"pose", "one.osg", "--animation", "one.xml", "--frame", formatNumber(frame)})
                            .output)["nodes"];
        ASSERT_EQ(saved.size(), poses.size());
        for (std::size_t node = 0; node < poses.size(); ++node) {
            EXPECT_EQ(saved[node]["name"], poses[node].name);
            expectNear(saved[node]["translation"], poses[node].translation, tolerance, frame);
            expectNear(saved[node]["rotation"], poses[node].rotation, tolerance, frame);
            expectNear(saved[node]["scale"], poses[node].scale, tolerance, frame);
            expectNear(saved[node]["position"], poses[node].position, tolerance, frame);
        }
    }
}

TEST_F(SavedWalk, SavedAgainItIsTheSameByteForByte) {
    convert({"one.osg", "one.xml"}, "two");
    convert({"two.osg", "two.xml"}, "three");
    EXPECT_EQ(bytes("one.osg"), bytes("two.osg"));
    EXPECT_EQ(bytes("two.osg"), bytes("three.osg"));
    EXPECT_EQ(withoutContainers(bytes("one.xml")), withoutContainers(bytes("two.xml")));
    EXPECT_EQ(bytes("two.xml"), bytes("three.xml"));
}

TEST_F(SavedWalk, ADocumentByItselfIsTheSameByteForByteToo) {
    EXPECT_EQ(run({"convert", "one.xml", "--animation", "two.xml"}).code, 0);
    EXPECT_EQ(run({"convert", "two.xml", "--animation", "three.xml"}).code, 0);
    EXPECT_EQ(withoutContainers(bytes("one.xml")), withoutContainers(bytes("two.xml")));
    EXPECT_EQ(bytes("two.xml"), bytes("three.xml"));
}

TEST_F(SavedWalk, EveryCommandTakesASceneADocumentOrBoth) {
    const std::vector<std::string> both{"one.osg", "--animation", "one.xml"};
    const auto with = [&](std::vector<std::string> words, const std::vector<std::string>& more) {
        words.insert(words.begin() + 1, both.begin(), both.end());
        words.insert(words.end(), more.begin(), more.end());
        return run(words);
    };
    const std::vector<std::string> range{"--curve", "Hips.translationX", "--to", "5"};
    const auto sampled = [&](std::vector<std::string> words) {
        words.insert(words.end(), range.begin(), range.end());
        return run(words).output;
    };
    const std::string both5 = sampled({"sample", "one.osg", "--animation", "one.xml"});
    EXPECT_EQ(std::count(both5.begin(), both5.end(), '\n'), 7);
    // Without the scene there is no node to name.
    const std::string alone = run({"sample", "one.xml", "--curve", "translationX", "--to", "5"}).output;
    EXPECT_EQ(std::regex_replace(both5, std::regex(",Hips,"), ",,"), alone);
    EXPECT_EQ(run({"sample", "one.osg"}).output, "curve,frame,value,clip,node,attribute,unit\n");
    EXPECT_EQ(Json::parse(with({"pose"}, {"--frame", "3"}).output)["nodes"].size(), 38U);
    EXPECT_EQ(Json::parse(run({"pose", "one.osg", "--frame", "3"}).output)["nodes"].size(), 38U);
    EXPECT_EQ(Json::parse(run({"pose", "one.xml", "--frame", "3"}).output)["nodes"].size(), 0U);
    EXPECT_EQ(with({"plot"}, {"-o", "a.png"}).code, 0);
    EXPECT_EQ(run({"plot", "one.xml", "-o", "b.png"}).code, 0);
    EXPECT_EQ(with({"render"}, {"-o", "c.png"}).code, 0);
    EXPECT_EQ(run({"render", "one.osg", "-o", "d.png"}).code, 0);
    const ProgramRun noFigure = run({"render", "one.xml", "-o", "e.png"});
    EXPECT_EQ(noFigure.code, 3);
    EXPECT_TRUE(noFigure.isOneLine()) << noFigure.messages;
}

TEST_F(SavedWalk, WithoutADocumentToWriteItSaysThatTheAnimationIsLeftOut) {
    const ProgramRun result = run({"convert", "walk.bvh", "-o", "two.osg"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.messages,
              "ka-anim: wrote two.osg\n"
              "ka-anim: the animation was not written: name a document for it with --animation\n");
    EXPECT_EQ(bytes("two.osg"), bytes("one.osg"));
}

TEST_F(SavedWalk, MistakesAndFailuresLeaveEveryFileAsItWas) {
    const auto fails = [this](const std::vector<std::string>& arguments, int code, const std::string& part) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.code, code) << result.messages;
        EXPECT_TRUE(result.isOneLine()) << result.messages;
        EXPECT_THAT(result.messages, HasSubstr(part));
    };
    const std::string scene = bytes("one.osg"), document = bytes("one.xml");
    fails({"convert", "one.osg"}, 2, "nothing to write");
    fails({"convert", "one.osg", "-o", "one.xml"}, 2, ".osg files, not one.xml");
    fails({"convert", "one.osg", "-o", "one.osg", "--animation", "./one.osg"}, 2,
          ".xml files, not ./one.osg");
    fails({"convert", "walk.bvh", "one.xml", "-o", "one.osg"}, 2, "animation document");
    fails({"convert", "none.xml", "--animation", "one.xml"}, 3, "none.xml: no such file");
    _folder.put("broken.xml", "<AnimationPool>\n<field</AnimationPool>");
    fails({"convert", "broken.xml", "--animation", "one.xml"}, 3, "broken.xml");
    // The second file fails: the first one stays too.
    std::filesystem::create_symlink("/dev/full", _folder.at("full.xml"));
    fails({"convert", "walk.bvh", "-o", "one.osg", "--animation", "full.xml"}, 4, "full.xml");
    fails({"convert", "walk.bvh", "-o", "none/one.osg", "--animation", "one.xml"}, 4, "none");
    EXPECT_EQ(bytes("one.osg"), scene);
    EXPECT_EQ(bytes("one.xml"), document);
}

TEST_F(SavedWalk, ItMayReplaceWhatItReads) {
    const std::string scene = bytes("one.osg"), document = bytes("one.xml");
    convert({"one.osg", "one.xml"}, "one");
    EXPECT_EQ(bytes("one.osg"), scene);
    EXPECT_EQ(withoutContainers(bytes("one.xml")), withoutContainers(document));
}

TEST_F(ConvertTest, NamesInLatin1SurviveAndOthersAreMarked) {
    _folder.put(
        "d.xml",
        "<AnimationPool objects=\"1\"><clip id=\"5\" typeID=\"5\" name=\"caf\xE9\"/></AnimationPool>");
    EXPECT_EQ(run({"convert", "d.xml", "--animation", "e.xml"}).code, 0);
    EXPECT_THAT(bytes("e.xml"), HasSubstr("name=\"caf\xE9\""));
    EXPECT_THAT(run({"info", "e.xml"}).output, HasSubstr("caf\xC3\xA9"));
}

} // namespace
} // namespace ka::tools::testing
