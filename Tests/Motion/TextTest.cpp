#include "DecimalComma.h"

#include <cmath>
#include <gtest/gtest.h>
#include <kaMotion/Text.h>

namespace ka::motion {
namespace {

TEST(FormatNumber, PrintsNineDigitsAsCDoes) {
    EXPECT_EQ(formatNumber(0.1), "0.1");
    EXPECT_EQ(formatNumber(1.0 / 3.0), "0.333333333");
    EXPECT_EQ(formatNumber(123456789012.0), "1.23456789e+11");
    EXPECT_EQ(formatNumber(-0.0), "-0");
    EXPECT_EQ(formatNumber(1e-7), "1e-07");
}

TEST(FormatNumber, NineDigitsGiveBackEveryFloat) {
    for (float value : {0.1F, 16777217.0F, 1e-38F, 3.4028235e38F, -2.7182817F})
        EXPECT_EQ(static_cast<float>(parseNumber(formatNumber(static_cast<double>(value))).value()), value);
}

TEST(FormatNumber, IgnoresTheLocale) {
    const ka_test::DecimalComma comma;
    EXPECT_EQ(formatNumber(1.5), "1.5");
    EXPECT_EQ(parseNumber("1.5"), 1.5);
    EXPECT_EQ(parseNumber("1,5"), std::nullopt);
}

TEST(ParseNumber, TakesOnlyAWholeNumber) {
    EXPECT_EQ(parseNumber(".0083333"), 0.0083333);
    EXPECT_EQ(parseNumber("+4"), 4.0);
    EXPECT_EQ(parseNumber("-1e3"), -1000.0);
    for (const char* bad : {"", " ", "+", "+-4", "4x", "0x10", "1 2", "--1", "1e"})
        EXPECT_EQ(parseNumber(bad), std::nullopt) << bad;
}

TEST(ParseNumber, KeepsWhatIsNotFiniteForTheCallerToJudge) {
    EXPECT_TRUE(std::isnan(parseNumber("nan").value()));
    EXPECT_TRUE(std::isinf(parseNumber("-inf").value()));
}

TEST(ParseNumber, RefusesWhatADoubleCannotHoldButTakesWhatIsNearZero) {
    EXPECT_EQ(parseNumber("1e999"), std::nullopt);
    EXPECT_EQ(parseNumber("1e-999"), 0.0);
}

TEST(Shortened, LeavesTheDigitsThatAFloatHas) {
    EXPECT_EQ(shortened(static_cast<double>(0.1F)), 0.100000001);
    EXPECT_TRUE(std::isnan(shortened(std::nan(""))));
}

TEST(OneLine, MakesTextOfUnknownOriginFitForAMessage) {
    EXPECT_EQ(oneLine("a\nb\r\n\tc\x1b[31m"), "a b c [31m");
    EXPECT_EQ(oneLine("abcdef", 3), "abc...");
    EXPECT_EQ(oneLine("tail\n"), "tail");
    EXPECT_EQ(oneLine("\n\n"), "");
    EXPECT_EQ(oneLine(std::string("a\0b", 3)), "a b");
}

TEST(OneLine, LeavesNothingThatATerminalObeysOrThatTurnsTextAround) {
    const struct {
        const char *text, *printed;
    } rows[] = {{"a\xC2\x9B"
                 "31mb",
                 "a 31mb"}, // CSI as one character of C1
                {"a\xC2\x85"
                 "b\xE2\x80\xA8"
                 "c\xE2\x80\xA9"
                 "d",
                 "a b c d"}, // other ends of a line
                {"a\xE2\x80\xAE"
                 "gnp.exe\xE2\x80\xAC",
                 "a gnp.exe"}, // an override and its end
                {"a\xE2\x81\xA6"
                 "b\xE2\x81\xA9",
                 "a b"}, // an isolate and its end
                {"\xD8\x9C"
                 "a\xE2\x80\x8E\xE2\x80\x8F"
                 "b",
                 "a b"}, // marks of direction
                {"\xEF\xBB\xBF"
                 "a",
                 "a"}, // a byte order mark
                {"\xF3\xA0\x80\x81"
                 "a",
                 "a"}, // a tag
                {"Gr\xC3\xBC\xC3\x9F"
                 "e",
                 "Gr\xC3\xBC\xC3\x9F"
                 "e"},
                {"\xD7\xA9\xD7\x9C", "\xD7\xA9\xD7\x9C"}}; // letters that run to the left
    for (const auto& row : rows)
        EXPECT_EQ(oneLine(row.text), row.printed);
}

TEST(OneLine, MarksBytesThatAreNoUtf8) {
    const std::string replaced = "\xEF\xBF\xBD";
    EXPECT_EQ(oneLine("a\xE9z"), "a" + replaced + "z");
    EXPECT_EQ(oneLine("a\x9B"
                      "31m"),
              "a" + replaced + "31m"); // CSI as a byte of its own
    EXPECT_EQ(oneLine("cut\xE2\x82"), "cut" + replaced + replaced);
    EXPECT_EQ(oneLine("\xC0\x8A").find('\n'), std::string::npos); // a line end spelled too long
}

TEST(OneLine, CutsBetweenCharacters) {
    const std::string umlauts = "\xC3\xA4\xC3\xB6\xC3\xBC"; // 2 bytes each
    EXPECT_EQ(oneLine(umlauts, 6), umlauts);
    EXPECT_EQ(oneLine(umlauts, 5), umlauts.substr(0, 4) + "...");
    EXPECT_EQ(oneLine(umlauts + "x", 6), umlauts + "...");
    const std::string accented = "abcde\xCC\x81"; // an accent of its own
    EXPECT_EQ(oneLine(accented + "fgh", 5), "abcd...");
    EXPECT_EQ(oneLine(accented + "fgh", 7), accented + "...");
    const std::string flags = "ab\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA\xF0\x9F\x87\xAB\xF0\x9F\x87\xB7";
    EXPECT_EQ(oneLine(flags, 14), flags.substr(0, 10) + "...");
    const std::string family = "abcd\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7"; // two, joined
    EXPECT_EQ(oneLine(family + "ef", 12), "abcd...");
    // A heap of accents is cut somewhere.
    std::string heap = "a";
    for (int i = 0; i < 300; ++i)
        heap += "\xCC\x81";
    EXPECT_EQ(oneLine(heap, 101), heap.substr(0, 101) + "...");
}

TEST(OneLine, EveryCutLeavesWholeCharacters) {
    std::string text;
    for (int i = 0; i < 40; ++i)
        text += "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xAC";
    for (std::size_t limit = 0; limit < text.size(); ++limit) {
        const std::string line = oneLine(text, limit);
        ASSERT_LE(line.size(), limit + 3);
        EXPECT_EQ(line.find("\xEF\xBF\xBD"), std::string::npos) << limit;
        EXPECT_EQ(text.rfind(line.substr(0, line.size() - 3), 0), 0U) << limit;
        EXPECT_GT(line.size() + 1, limit) << limit; // no more is cut than has to be
    }
}

TEST(Latin1, ReplacesWhatItLacksAndSaysSo) {
    bool lossy = false;
    EXPECT_EQ(latin1FromUtf8("Caf\xC3\xA9", lossy), "Caf\xE9");
    EXPECT_FALSE(lossy);
    EXPECT_EQ(latin1FromUtf8("\xE9\xAA\xA8", lossy), "?"); // a bone, in Chinese
    EXPECT_TRUE(lossy);
    EXPECT_EQ(utf8FromLatin1("Caf\xE9"), "Caf\xC3\xA9");
}

TEST(ExtensionOf, IsTheLastSuffixInLowerCase) {
    EXPECT_EQ(extensionOf("/a.b/walk.BVH"), "bvh");
    EXPECT_EQ(extensionOf("mesh.tar.gz"), "gz");
    EXPECT_EQ(extensionOf("/a.b/none"), "");
    EXPECT_EQ(extensionOf(".bvh"), "");
}

} // namespace
} // namespace ka::motion
