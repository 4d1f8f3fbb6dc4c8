#include "base/Text.h"

#include "DecimalComma.h"

#include <cmath>
#include <gtest/gtest.h>

namespace ka::tools {
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
} // namespace ka::tools
