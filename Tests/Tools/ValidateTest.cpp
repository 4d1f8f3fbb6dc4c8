#include "MotionTesting.h"
#include "ProgramRun.h"
#include "kaAnimationTypes.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <numeric>

namespace ka::tools::testing {

using namespace motion::testing;
namespace {

using ::testing::HasSubstr;

const std::string flags = R"( active="1" repeating="0" flipped="0" motionBlur="0")";

std::string field(const std::string& id, const std::string& more = "") {
    return "<field id=\"" + id +
           R"(" typeID="-1" fcID="412" name="translation" attribute="translationX" value="0" valuePos="0" dirty="0")" +
           more + "/>";
}

/// A key whose handles were set by hand.
std::string key(const std::string& id, const std::string& at, const std::string& in, const std::string& out) {
    return "<point id=\"" + id + R"(" typeID="1" tangentType="16" tangentLengthMode="64"><position>)" + at +
           "</position><inTangent>" + in + "</inTangent><outTangent>" + out + "</outTangent></point>";
}

std::string list(const std::string& tag, const std::vector<std::string>& ids) {
    std::string text;
    for (const std::string& id : ids)
        text += "<" + tag + " id=\"" + id + "\"/>";
    return text;
}

std::string curve(const std::string& id, const std::vector<std::string>& points,
                  const std::string& field = "7") {
    return "<curve id=\"" + id + R"(" typeID="2" name="translationX" field=")" + field + "\"" + flags +
           R"( parentNodeID="412">)" + list("point", points) + "</curve>";
}

std::string block(const std::string& id, const std::vector<std::string>& curves) {
    return "<block id=\"" + id + R"(" typeID="3" name="Block")" + flags + ">" + list("block", curves) +
           "</block>";
}

std::string track(const std::string& id, const std::vector<std::string>& objects) {
    return "<track id=\"" + id + R"(" typeID="4" name="Track" number="0")" + flags + ">" +
           list("obj", objects) + "</track>";
}

std::string clip(const std::string& id, const std::vector<std::string>& tracks) {
    return "<clip id=\"" + id + R"(" typeID="5" name="Clip")" + flags + ">" + list("track", tracks) +
           "</clip>";
}

std::string sequence(const std::string& id, const std::string& range) {
    return "<field id=\"" + id + R"(" typeID="6" name="Steps" active="1" )" + range + "/>";
}

using Lines = std::vector<std::string>;

/// Nothing is wrong with it. Its first element stands on line 3.
Lines soundElements() {
    return {field("7"),
            key("11", "0.000000 0.000000", "-5.000000 0.000000", "5.000000 0.000000"),
            key("12", "25.000000 10.000000", "20.000000 10.000000", "30.000000 10.000000"),
            curve("21", {"11", "12"}),
            block("31", {"21"}),
            sequence("35", R"(begin="3" end="4.5")"),
            track("41", {"31", "35"}),
            clip("51", {"41"})};
}

std::string document(const Lines& elements, const std::string& count) {
    std::string text = "<!DOCTYPE ORVA>\n<AnimationPool" + count + ">\n";
    for (const std::string& element : elements)
        text += element + "\n";
    return text + "</AnimationPool>\n";
}

std::string document(const Lines& elements) {
    return document(elements, " objects=\"" + std::to_string(elements.size()) + "\"");
}

class ValidateTest : public ::testing::Test {
  protected:
    ProgramRun validate(const std::string& text, const std::vector<std::string>& more = {}) const {
        _folder.put("d.xml", text);
        std::vector<std::string> arguments{"validate", "d.xml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runKaAnim(arguments, _folder.at(""));
    }

    void expectFindings(const std::string& text, const Lines& lines) const {
        const ProgramRun run = validate(text);
        std::string expected;
        for (const std::string& line : lines)
            expected += "d.xml:" + line + "\n";
        EXPECT_EQ(run.output, expected);
        EXPECT_EQ(run.code, lines.empty() ? 0 : 1) << run.messages;
    }

    TemporaryFolder _folder;
};

TEST_F(ValidateTest, NothingIsWrongWithASoundDocument) {
    const ProgramRun run = validate(document(soundElements()));
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.messages, "ka-anim: 8 elements, nothing wrong\n");
    expectFindings("<AnimationPool objects=\"0\"/>", {});
}

/// One element of the sound document in another form, and what that gives.
struct Damage {
    const char* name;
    std::size_t place; ///< of the element; one past the last appends
    std::string element;
    Lines findings;
};

class DamageTest : public ValidateTest, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamageTest, IsFoundWithItsLine) {
    Lines elements = soundElements();
    elements.resize(std::max(elements.size(), GetParam().place + 1));
    elements[GetParam().place] = GetParam().element;
    expectFindings(document(elements), GetParam().findings);
}

const Damage damages[] = {
    {"AnIdThatDoesNotParse",
     7,
     clip("x5", {"41"}),
     {"10: clip x5: id \"x5\" is not an unsigned number of 64 bits"}},
    {"AnIdWithATail", 7, clip("51a", {"41"}), {"10: clip 51a: id \"51a\" is read as \"51\""}},
    {"NoId", 7, clip("", {"41"}), {"10: clip: no id: loading draws one, and no reference reaches it"}},
    {"TheIdZero",
     7,
     clip("0", {"41"}),
     {"10: clip 0: 0 is no id: loading draws one, and no reference reaches it"}},
    {"AnIdThatStandsTwice",
     7,
     clip("7", {"41"}),
     {"10: clip 7: the id belongs to field 7 (line 3): loading draws another, and references reach the "
      "first"}},
    {"AValueBeyondAFloat",
     0,
     "<field id=\"7\" typeID=\"-1\" value=\"1e39\"/>",
     {"3: field 7: value \"1e39\" is not a number within the range of a float"}},
    {"AValueThatIsNoNumber",
     0,
     "<field id=\"7\" typeID=\"-1\" value=\"nan\" valuePos=\"-1\" fcID=\"4294967296\" dirty=\"2\"/>",
     {"3: field 7: value \"nan\" is not a number within the range of a float",
      "3: field 7: valuePos \"-1\" is read as \"4294967295\"",
      "3: field 7: fcID \"4294967296\" is not an unsigned number of 32 bits",
      "3: field 7: dirty 2 stands for nothing"}},
    {"ANameOutsideLatin1",
     0,
     "<field id=\"7\" typeID=\"-1\" name=\"&#x416;\" attribute=\"caf\xC3\xA9\"/>",
     {"3: field 7: name \"\xD0\x96\" has characters outside Latin-1, which become '?'"}},
    {"AnAttributeThatNobodyKnows",
     5,
     sequence("35", "speed=\"2\""),
     {"8: sequence 35: no reader knows the attribute \"speed\""}},
    {"AnAttributeThatStandsTwice",
     5,
     sequence("35", "begin=\"3\" begin=\"4\" end=\"5\""),
     {"8: sequence 35: the attribute \"begin\" stands twice"}},
    {"AttributesThatStandManyTimesAmongOthers",
     5,
     sequence("35", "c=\"1\" begin=\"3\" a=\"1\" end=\"5\" c=\"1\" b=\"1\" begin=\"4\" c=\"1\""),
     {"8: sequence 35: no reader knows the attribute \"c\"",
      "8: sequence 35: no reader knows the attribute \"a\"",
      "8: sequence 35: the attribute \"c\" stands twice",
      "8: sequence 35: no reader knows the attribute \"c\"",
      "8: sequence 35: no reader knows the attribute \"b\"",
      "8: sequence 35: the attribute \"begin\" stands twice",
      "8: sequence 35: the attribute \"c\" stands twice",
      "8: sequence 35: no reader knows the attribute \"c\""}},
    {"ASequenceThatEndsBeforeItBegins",
     5,
     sequence("35", R"(begin="3" end="2")"),
     {"8: sequence 35: ends before it begins"}},
    {"TangentsThatStandForNothing",
     1,
     R"(<point id="11" typeID="1" tangentType="3" tangentLengthMode="5"><position>0 0</position>)"
     "<inTangent>0 0</inTangent><outTangent>0 0</outTangent></point>",
     {"4: point 11: tangentType 3 stands for nothing", "4: point 11: tangentLengthMode 5 stands for nothing",
      "4: point 11: no value at frame 0 between frames 0 and 25 of curve 21"}},
    {"APlaceThatIsNone",
     1,
     key("11", "0", "-5 0 1", "5.0,0"),
     {"4: point 11: <position> \"0\" is not two numbers within the range of a float",
      "4: point 11: <inTangent> \"-5 0 1\" is not two numbers within the range of a float",
      "4: point 11: <outTangent> \"5.0,0\" is not two numbers within the range of a float"}},
    {"PlacesMissingAndTwice",
     1,
     R"(<point id="11" typeID="1" tangentType="2"><position>1 1</position><position>0 0</position></point>)",
     {"4: point 11: <position> stands twice: the last one counts",
      "4: point 11: no <inTangent>: loading puts it at 0 0",
      "4: point 11: no <outTangent>: loading puts it at 0 0"}},
    {"AnUnknownTag", 8, "<bloc id=\"61\" typeID=\"3\"/>", {"11: block 61: unknown tag <bloc>"}},
    {"ATagAtOddsWithItsType",
     8,
     "<clip id=\"61\" typeID=\"3\"/>",
     {"11: block 61: tagged <clip>, but typeID 3 makes it a block"}},
    {"NoType", 8, "<block id=\"61\"/>", {"11: element 61: <block> without typeID is passed over"}},
    {"ATypeThatStandsForNothing",
     8,
     "<block id=\"61\" typeID=\"9\"/>",
     {"11: element 61: typeID \"9\" stands for nothing: the element is passed over"}},
    {"ABareCurve",
     8,
     "<curve/>",
     {"11: element: a curve that had lost its field when it was saved: loading drops it"}},
    {"ElementsTooDeep",
     4,
     R"(<block id="31" typeID="3"><block id="21"><b><c/></b></block></block>)",
     {"7: block 31: <b> is passed over: nothing stands this deep"}},
    {"AReferenceWithAnotherTag",
     7,
     R"(<clip id="51" typeID="5"><obj id="41"/></clip>)",
     {"10: clip 51: unknown tag <obj> in a clip"}},
    {"AReferenceWithoutId",
     7,
     R"(<clip id="51" typeID="5"><track/></clip>)",
     {"10: clip 51: a reference without an id"}},
    {"ADanglingReference",
     7,
     clip("51", {"41", "99"}),
     {"10: clip 51: dangling reference: there is nothing with the id 99"}},
    {"ARepeatedReference",
     7,
     clip("51", {"41", "41"}),
     {"10: clip 51: repeated reference: 41 is listed twice"}},
    {"AChildOfTwo",
     8,
     clip("52", {"41"}),
     {"11: clip 52: repeated reference: track 41 stands in clip 51 (line 10) already"}},
    {"AChildThatIsNotTaken",
     4,
     block("31", {"21", "11", "7"}),
     {"7: block 31: a block does not take point 11 (line 4)",
      "7: block 31: a block does not take field 7 (line 3)"}},
    {"AContainerWithinItself",
     6,
     track("41", {"31", "35", "41"}),
     {"9: track 41: contains itself: track 41 > track 41"}},
    {"AContainerWithinItsOwnChild",
     6,
     track("41", {"31", "35", "51"}),
     {"10: clip 51: contains itself: track 41 > clip 51 > track 41"}},
    {"ACurveWithoutAField",
     3,
     curve("21", {"11", "12"}, "0"),
     {"6: curve 21: no field: the curve moves nothing, and saving drops it"}},
    {"ACurveWithAFieldThatIsNotThere",
     3,
     curve("21", {"11", "12"}, "8"),
     {"6: curve 21: dangling reference: there is no field 8"}},
    {"ACurveWithAFieldThatIsNone",
     3,
     curve("21", {"11", "12"}, "12"),
     {"6: curve 21: point 12 (line 5) is no field"}},
    {"TwoKeysAtOneFrame",
     2,
     key("12", "0.000000 10.000000", "0 10", "0 10"),
     {"4: point 11: no value at frame 0: the only key of curve 21",
      "5: point 12: stands at frame 0 like point 11 (line 4) of curve 21: only one of them counts"}},
    {"AHandleThatLeadsBack",
     1,
     key("11", "0 0", "-5 0", "-1 0"),
     {"4: point 11: handles turn back in time between frames 0 and 25 of curve 21"}},
    {"HandlesThatOvertakeEachOther",
     2,
     key("12", "25.000000 10.000000", "-30.000000 10.000000", "30.000000 10.000000"),
     {"4: point 11: handles turn back in time between frames 0 and 25 of curve 21",
      "4: point 11: no value at frame 0.496855378 between frames 0 and 25 of curve 21"}},
};

std::string nameOf(const ::testing::TestParamInfo<Damage>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(One, DamageTest, ::testing::ValuesIn(damages), nameOf);

TEST_F(ValidateTest, HandlesThatLoadingPlacesAnewAreNotTakenFromTheFile) {
    Lines elements = soundElements();
    const auto computed = [](std::string point) { return point.replace(point.find("\"16\""), 4, "\"2\""); };
    elements[1] = computed(key("11", "0 0", "-5 0", "-40 0"));
    elements[2] = computed(key("12", "25 10", "-70 10", "30 10"));
    expectFindings(document(elements), {});
}

TEST_F(ValidateTest, ASegmentWithoutAValueIsToldWithTheFrame) {
    // Handles at 0 and 2 of 10 frames: at frame 2 the time polynomial is 0.4 t^3 + 0.6 t^2 - 0.2, reduced
    // with p = -0.75 and q = -0.25. Its discriminant is 0, and both roots of that case need the cube root of
    // a number below 0.
    Lines elements = soundElements();
    elements[1] = key("11", "0 0", "-5 0", "0 5");
    elements[2] = key("12", "10 10", "2 10", "15 10");
    expectFindings(document(elements),
                   {"4: point 11: no value at frame 2 between frames 0 and 10 of curve 21"});
}

TEST_F(ValidateTest, TheCountOfElementsMustAgree) {
    const Lines elements = soundElements();
    expectFindings(document(elements, " objects=\"7\""), {"2: objects is \"7\", but 8 elements follow"});
    expectFindings(document(elements, ""), {"2: no objects count: loading shows no progress"});
}

/// Tracks in tracks, the block of the sound document in the last.
class DeepChain : public ValidateTest {
  protected:
    static constexpr unsigned int Tracks = KA_MAX_DEPTH + 100;

    static std::string id(unsigned int level) { return std::to_string(10000 + level); }

    /// @return the lines of a document whose chain stands in the order of `levels`.
    static Lines chain(const std::vector<unsigned int>& levels) {
        Lines elements = soundElements();
        elements.resize(6);
        for (unsigned int level : levels)
            elements.push_back(track(id(level), {level + 1 < Tracks ? id(level + 1) : "31"}));
        return elements;
    }
};

TEST_F(DeepChain, FromTheOutsideInIsCutAtItsBottom) {
    std::vector<unsigned int> levels(Tracks);
    std::iota(levels.begin(), levels.end(), 0U);
    // The first track stands on line 9; the last that has room below it is on the last level but one.
    EXPECT_EQ(validate(document(chain(levels))).output,
              "d.xml:" + std::to_string(9 + KA_MAX_DEPTH - 1) + ": track " + id(KA_MAX_DEPTH - 1) +
                  ": nested deeper than 2048 levels: loading leaves track " + id(KA_MAX_DEPTH) + " out\n");
}

TEST_F(DeepChain, FromTheInsideOutIsCutAtItsTop) {
    std::vector<unsigned int> levels(Tracks);
    std::iota(levels.rbegin(), levels.rend(), 0U);
    // Below a track on top of the deepest tree: 2044 more tracks, the block, its curve, a key.
    const unsigned int lowest = Tracks - (KA_MAX_DEPTH - 3);
    EXPECT_EQ(validate(document(chain(levels))).output,
              "d.xml:" + std::to_string(9 + Tracks - lowest) + ": track " + id(lowest - 1) +
                  ": nested deeper than 2048 levels: loading leaves track " + id(lowest) + " out\n");
}

TEST_F(ValidateTest, WhatIsNotWellFormedIsAFindingWithItsPlace) {
    const ProgramRun cut = validate("<AnimationPool objects=\"0\">\n <field id=\"1\"\n");
    EXPECT_EQ(cut.code, 1);
    EXPECT_THAT(cut.output, ::testing::StartsWith("d.xml:3:"));
    EXPECT_THAT(cut.output, HasSubstr("not well-formed: "));
    EXPECT_THAT(validate("<!DOCTYPE a [<!ENTITY b \"c\">]><a/>").output, HasSubstr("declares an entity"));
}

TEST_F(ValidateTest, FilesThatCannotBeReadEndWithCodeThree) {
    _folder.put("empty.xml", "");
    for (const char* name : {"none.xml", "empty.xml", "."}) {
        const ProgramRun run = runKaAnim({"validate", name}, _folder.at(""));
        EXPECT_EQ(run.code, 3) << name;
        EXPECT_EQ(run.output, "") << name;
        EXPECT_TRUE(run.isOneLine()) << run.messages;
    }
    EXPECT_EQ(validate("\n").code, 1); // there is something to be wrong with
}

TEST_F(ValidateTest, JsonHoldsTheSame) {
    Lines elements = soundElements();
    elements.push_back(clip("52", {"99"}));
    const ProgramRun run = validate(document(elements), {"--format", "json"});
    EXPECT_EQ(run.code, 1);
    const auto result = nlohmann::json::parse(run.output);
    EXPECT_EQ(result["elements"], 9);
    ASSERT_EQ(result["findings"].size(), 1U);
    EXPECT_EQ(result["findings"][0], nlohmann::json::parse(R"({"line":11,"element":"clip","id":"52",
                  "message":"dangling reference: there is nothing with the id 99"})"));
    EXPECT_EQ(
        nlohmann::json::parse(validate(document(soundElements()), {"--format", "json"}).output)["findings"],
        nlohmann::json::array());
}

TEST_F(ValidateTest, ASceneMustKnowTheDocumentsFields) {
    const auto scene = [](const std::string& objects, const std::string& fields) {
        return "#OSG V1.0 \nDEF Arm Node { attachments [ AnimAttachment { objectIDs [" + objects +
               "] fieldIDs [" + fields + "] } ] core Transform3D { } }\n";
    };
    _folder.put("fits.osg", scene("31", "7"));
    _folder.put("other.osg", scene("99 7", "8"));
    EXPECT_EQ(validate(document(soundElements()), {"--scene", "fits.osg"}).output, "");
    EXPECT_EQ(validate(document(soundElements()), {"--scene", "other.osg"}).output,
              "d.xml:6: curve 21: no node of the scene lists its field 7: it moves nothing\n"
              "d.xml: node Arm: lists object 99, which the document does not have\n"
              "d.xml: node Arm: lists field 7 as an object\n"
              "d.xml: node Arm: lists field 8, which the document does not have\n");
}

/// Every one of them is read to its end.
TEST_F(ValidateTest, HostileDocumentsOnlyGiveFindings) {
    std::string chain, wide = "<clip id=\"1\" typeID=\"5\">";
    for (int i = 1; i < 50000; ++i) {
        chain += track(std::to_string(i), {std::to_string(i % 49999 + 1)});
        wide += "<track id=\"1\"/>";
    }
    for (const std::string& body :
         {chain, wide + "</clip>", std::string("<a><b><c><d/></c></b></a>"),
          "<point id=\"1\" typeID=\"1\"><position>" + std::string(1 << 20, '9') + "</position></point>",
          "<curve id=\"" + std::string(1 << 20, '1') + "\" typeID=\"2\"/>"}) {
        const ProgramRun run = validate("<AnimationPool>" + body + "</AnimationPool>");
        EXPECT_EQ(run.code, 1) << run.messages;
        EXPECT_THAT(run.messages, ::testing::EndsWith(" findings\n"));
    }
}

/// Loading leaves out what validate names.
TEST_F(DeepChain, IsReportedByWhoeverLoadsIt) {
    for (bool reversed : {false, true}) {
        std::vector<unsigned int> levels(Tracks);
        std::iota(levels.begin(), levels.end(), 0U);
        if (reversed)
            std::reverse(levels.begin(), levels.end());
        _folder.put("deep.xml", document(chain(levels)));
        const unsigned int cut = reversed ? Tracks - (KA_MAX_DEPTH - 3) : KA_MAX_DEPTH;
        const ProgramRun run = runKaAnim({"convert", "deep.xml", "--animation", "out.xml"}, _folder.at(""));
        EXPECT_THAT(run.messages, HasSubstr("track " + id(cut - 1) + ": track " + id(cut) +
                                            " is left out: nested deeper than 2048 levels\n"));
        EXPECT_THAT(runKaAnim({"validate", "out.xml"}, _folder.at("")).output,
                    ::testing::Not(HasSubstr("nested deeper")))
            << "what was written is read whole";
    }
}

} // namespace
} // namespace ka::tools::testing
