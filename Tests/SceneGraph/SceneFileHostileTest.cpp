#include "SceneFiles.h"

#include <OpenSG/OSGFieldContainerFactory.h>
#include <OpenSG/OSGLoader.h>
#include <OpenSG/OSGNode.h>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace {

using ka_test::readBody;
using ka_test::ReadScene;
using ka_test::readScene;

/// Containers that exist, to see that a refused file leaves none behind.
std::size_t living() {
    std::size_t count = 0;
    for (const osg::FieldContainerPtr& slot : osg::FieldContainerStore::the())
        count += slot != osg::NullFC ? 1U : 0U;
    return count;
}

struct RefusalRow {
    const char* name;
    const char* body;
    const char* report;
};

class Refusal : public testing::TestWithParam<RefusalRow> {};

TEST_P(Refusal, SaysWhereAndLeavesNothingBehind) {
    osg::FieldContainerFactory::the();
    const std::size_t before = living();
    const ReadScene read = readBody(GetParam().body);
    EXPECT_TRUE(read.root == osg::NullFC);
    EXPECT_EQ(std::string("test.osg:") + GetParam().report + "\n", read.report());
    EXPECT_EQ(before, living());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Refusal,
    testing::Values(
        RefusalRow{"cut_off_in_a_body", "Node {\n core Group {",
                   "3: refused: the end of the file where a field name or } should stand, in the \"Group\" "
                   "of line 3"},
        RefusalRow{
            "cut_off_in_a_list", "Node { children [ Node { } ",
            "2: refused: the end of the file where a container should stand, in the \"Node\" of line 2"},
        RefusalRow{"cut_off_in_numbers", "Node { attachments AnimAttachment { objectIDs [ 1 2",
                   "2: refused: the end of the file where a value should stand, in the \"AnimAttachment\" of "
                   "line 2"},
        RefusalRow{
            "cut_off_in_a_string", "Node { attachments Name { name \"abc",
            "2: refused: a string that does not end where a value should stand, in the \"Name\" of line 2"},
        RefusalRow{
            "cut_off_in_an_escape", "Node { attachments Name { name \"abc\\",
            "2: refused: a string that does not end where a value should stand, in the \"Name\" of line 2"},
        RefusalRow{"cut_off_after_def", "DEF",
                   "2: refused: the end of the file where the name after DEF should stand"},
        RefusalRow{"cut_off_after_a_name", "DEF a",
                   "2: refused: the end of the file where the type after DEF \"a\" should stand"},
        RefusalRow{"cut_off_after_use", "USE",
                   "2: refused: the end of the file where the name after USE should stand"},
        RefusalRow{"cut_off_after_a_type", "Node",
                   "2: refused: the end of the file where { after \"Node\" should stand"},
        RefusalRow{"closing_brace_alone", "}", "2: refused: \"}\" where a container should stand"},
        RefusalRow{"one_brace_too_many", "Node { } }", "2: refused: \"}\" where a container should stand"},
        RefusalRow{"wrong_bracket", "Node { children [ } ]",
                   "2: refused: \"}\" where a container should stand, in the \"Node\" of line 2"},
        RefusalRow{"bracket_in_a_body", "Node { ] }",
                   "2: refused: \"]\" where a field name or } should stand, in the \"Node\" of line 2"},
        RefusalRow{"number_on_top", "5", "2: refused: \"5\" where a container should stand"},
        RefusalRow{"string_on_top", "\"5\"", "2: refused: the string \"5\" where a container should stand"},
        RefusalRow{"word_on_top", "ROUTE a.b TO c.d",
                   "2: refused: \"a\" where { after \"ROUTE\" should stand"},
        RefusalRow{"stray_character", "Node { 'a' }",
                   "2: refused: \"'\" where a field name or } should stand, in the \"Node\" of line 2"},
        RefusalRow{"control_character", "Node { \x01 }",
                   "2: refused: \"\\x01\" where a field name or } should stand, in the \"Node\" of line 2"},
        RefusalRow{"list_in_a_list", "Node { speed [ [ 1 ] ] }",
                   "2: error: a Node has no field \"speed\"; its value is passed over\n"
                   "test.osg:2: refused: \"[\" where a value or ] should stand, in the \"Node\" of line 2"}),
    [](const auto& row) { return std::string(row.param.name); });

const char* const EXAMPLE =
    "#OSG V1.0 \n"
    "DEF Scene Node { core Group { } children [\n"
    "  DEF Arm Node { core DEF ArmCore Transform { matrix 1 0 0 5, 0 1 0 0, 0 0 1 0, 0 0 0 1 }\n"
    "    children [ Node { core PointLight { diffuse 1 0.5 0 1 beacon USE Arm } } ] }\n"
    "  Node { core USE ArmCore attachments [ Name { name \"se\\\"cond\" } 3 AnimAttachment {\n"
    "    objectIDs [ 1, 2, 0xFF ] } ] volume 1 2 3 4 travMask 0 } ] }\n";

TEST(Hostile, EveryBeginningOfAFileIsReadOrRefused) {
    const std::string text = EXAMPLE;
    osg::FieldContainerFactory::the();
    const std::size_t before = living();
    for (std::size_t length = 0; length < text.size(); ++length) {
        const ReadScene read = readScene(text.substr(0, length));
        const bool isWhole = text.find_first_not_of(" \n", length) == std::string::npos;
        const bool isOnlyHeader = length <= text.find("DEF Scene");
        EXPECT_EQ(isWhole || isOnlyHeader, read.root != osg::NullFC) << length;
    }
    EXPECT_EQ(before, living());
}

TEST(Hostile, EveryChangedByteIsReadOrRefused) {
    const std::string text = EXAMPLE;
    osg::FieldContainerFactory::the();
    const std::size_t before = living();
    for (std::size_t place = 0; place < text.size(); ++place) {
        for (const char byte : {'\0', '{', '}', '[', ']', '"', '9', 'A', '\xff'}) {
            std::string changed = text;
            changed[place] = byte;
            const ReadScene read = readScene(changed);
            if (read.root != osg::NullFC) {
                EXPECT_EQ(ka_test::writeScene(read.root),
                          ka_test::writeScene(readScene(ka_test::writeScene(read.root)).root));
            }
        }
    }
    EXPECT_EQ(before, living());
}

TEST(Hostile, RandomTokensAreReadOrRefusedAndWhatIsReadIsStable) {
    const char* const tokens[] = {"Node",
                                  "Group",
                                  "Transform3D",
                                  "{",
                                  "}",
                                  "[",
                                  "]",
                                  "DEF",
                                  "USE",
                                  "a",
                                  "b",
                                  "core",
                                  "children",
                                  "1",
                                  "-2.5e3",
                                  "\"x\"",
                                  "NULL",
                                  "TRUE",
                                  "travMask",
                                  "Name",
                                  "name",
                                  "attachments",
                                  "AnimAttachment",
                                  "objectIDs",
                                  "PointLight",
                                  "beacon",
                                  "translation",
                                  "AnimationCurve",
                                  "fallback",
                                  "points"};
    std::mt19937 random(17);
    osg::FieldContainerFactory::the();
    const std::size_t before = living();
    for (int round = 0; round < 3000; ++round) {
        std::string text = "#OSG V1.0 \n";
        // Mostly well-formed beginnings, so that some get far.
        for (int i = static_cast<int>(random() % 40U); i > 0; --i) {
            text += tokens[random() % std::size(tokens)];
            text += ' ';
        }
        const ReadScene read = readScene(text);
        if (read.root == osg::NullFC)
            continue;
        const std::string written = ka_test::writeScene(read.root);
        const ReadScene again = readScene(written);
        ASSERT_EQ("", again.report()) << text << written;
        ASSERT_EQ(written, ka_test::writeScene(again.root)) << text;
    }
    EXPECT_EQ(before, living());
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string result;
    result.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        result += text;
    return result;
}

TEST(Hostile, DeepNestingIsLimited) {
    const auto nested = [](std::size_t levels) {
        return repeated("Node{children[", levels) + repeated("]}", levels);
    };
    const ReadScene deep = readBody(nested(10000));
    EXPECT_EQ("", deep.report());
    EXPECT_TRUE(deep.root != osg::NullFC);
    const ReadScene tooDeep = readBody(nested(200001));
    EXPECT_EQ("test.osg:2: refused: containers stand more than 200000 levels deep in one another\n",
              tooDeep.report());
    const ReadScene open = readBody(repeated("a{b ", 500000));
    EXPECT_TRUE(open.root == osg::NullFC);

    osg::OSGLoader loader;
    loader.setDepthLimit(3);
    std::istringstream allowed("#OSG V1.0 \n" + nested(3));
    EXPECT_TRUE(loader.scanStream(allowed));
    std::istringstream refused("#OSG V1.0 \n" + nested(4));
    EXPECT_FALSE(loader.scanStream(refused));
}

TEST(Hostile, LongFilesAreLimited) {
    osg::OSGLoader loader;
    loader.setFileName("long.osg");
    loader.setSizeLimit(100000);
    std::istringstream stream("#OSG V1.0 \n" + std::string(100000, ' '));
    EXPECT_FALSE(loader.scanStream(stream));
    ASSERT_EQ(1U, loader.getMessages().size());
    EXPECT_EQ("long.osg: refused: is longer than 100000 bytes", loader.getMessages()[0].toString());
}

TEST(Hostile, MessagesAreLimited) {
    const ReadScene read = readBody(repeated("Node { speed 1 }\n", 5000));
    EXPECT_EQ(5000U, read.root->getNChildren());
    ASSERT_EQ(1001U, read.messages.size());
    EXPECT_EQ("further messages are left out", read.messages.back().text);
    const ReadScene cut = readBody(repeated("Node { speed 1 }\n", 5000) + "{");
    EXPECT_EQ(osg::SceneFileMessage::Fatal, cut.messages.back().severity);
}

struct Volume {
    const char* name;
    std::string body;
};

/// Megabytes of one thing: a step that took longer the more there is of it would not come to an end here.
TEST(Hostile, MegabytesOfOneThingComeToAnEnd) {
    std::string chain;
    for (int i = 0; i < 30000; ++i) {
        const std::string number = std::to_string(i);
        chain += "DEF n" + std::to_string(i + 1) + " Node{children[USE n" + number + "]}";
    }
    // Each node below the last of a chain has a child of its own, so that a search for cycles would climb the
    // chain.
    std::string bushes = "DEF n0 Node{children[";
    for (int i = 0; i < 30000; ++i)
        bushes += "Node{children Node{}}";
    bushes += "]}";
    const Volume volumes[] = {
        {"zeros", std::string(3000000, '\0')},
        {"braces", std::string(3000000, '{')},
        {"digits", "Node { travMask " + std::string(3000000, '9') + " }"},
        {"word", std::string(3000000, 'x')},
        {"string", "Node { attachments Name { name \"" + std::string(3000000, '\\') + "\" } }"},
        {"comment", "#" + std::string(3000000, 'x')},
        {"nodes", repeated("Node{}", 100000)},
        {"shared_core", "DEF c Group{}" + repeated("Node{core USE c}", 100000)},
        {"shared_attachment", "Node{attachments DEF a Name{}}" + repeated("Node{attachments USE a}", 100000)},
        {"second_parents", "DEF c Node{} Node{children[" + repeated("USE c ", 100000) + "]}"},
        {"unknown_names", repeated("USE x ", 100000)},
        {"definitions", repeated("DEF x Node{}", 100000)},
        {"chain_and_bushes", bushes + chain},
        {"cores_again", "Node{" + repeated("core Group{}", 100000) + "}"},
        {"names_again", "Node{attachments[" + repeated("Name{}", 100000) + "]}"},
    };
    osg::FieldContainerFactory::the();
    const std::size_t before = living();
    for (const Volume& volume : volumes) {
        SCOPED_TRACE(volume.name);
        ReadScene read = readBody(volume.body);
        if (read.root != osg::NullFC)
            ka_test::writeScene(read.root);
    }
    EXPECT_EQ(before, living());
}

TEST(Hostile, ANullByteIsAFaultOutsideOfStringsAndAByteInside) {
    const ReadScene outside = readBody(std::string("Node { \0 }", 10));
    EXPECT_TRUE(outside.root == osg::NullFC);
    const ReadScene inside = readBody(std::string("Node { attachments Name { name \"a\0b\" } }", 40));
    EXPECT_EQ("", inside.report());
}

TEST(Hostile, OtherKindsOfFilesAreRefused) {
    std::istringstream stream("#OSG V1.0 \n");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(osg::SceneFileHandler::the().read(stream, "wrl") == osg::NullFC);
    EXPECT_NE("", testing::internal::GetCapturedStderr());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(osg::SceneFileHandler::the().read(testing::TempDir()) == osg::NullFC) << "a folder";
    testing::internal::GetCapturedStderr();
}

} // namespace
