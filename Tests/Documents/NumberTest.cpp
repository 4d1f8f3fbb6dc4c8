#include "kaAnimationXmlNumber.h"

#include <QString>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

using kaAnimationXmlNumber::parse;
using kaAnimationXmlNumber::take;
using kaAnimationXmlNumber::Text;

namespace {

std::string textOf(const Text& text) {
    return std::string(std::string_view(text));
}

float randomFloat(std::mt19937& random) {
    const std::uint32_t bits = random();
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Stream extraction in the "C" locale with the value left alone where it fails.
template <class Number>
Number extracted(const std::string& text, Number otherwise) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number value{};
    return stream >> value ? value : otherwise;
}

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

} // namespace

TEST(NumberText, SingleFloatsHaveSixSignificantDigits) {
    EXPECT_EQ(textOf(Text(0.0F)), "0");
    EXPECT_EQ(textOf(Text(-0.0F)), "0");
    EXPECT_EQ(textOf(Text(0.1F)), "0.1");
    EXPECT_EQ(textOf(Text(0.5F)), "0.5");
    EXPECT_EQ(textOf(Text(100.0F)), "100");
    EXPECT_EQ(textOf(Text(1e6F)), "1e+06");
    EXPECT_EQ(textOf(Text(-2.5e-5F)), "-2.5e-05");
    EXPECT_EQ(textOf(Text(NotANumber)), "nan");
    EXPECT_EQ(textOf(Text(-NotANumber)), "nan");
    EXPECT_EQ(textOf(Text(Infinity)), "inf");
    EXPECT_EQ(textOf(Text(-Infinity)), "-inf");
}

TEST(NumberText, SingleFloatsAreWhatSetNumGives) {
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        const float value = randomFloat(random);
        ASSERT_EQ(textOf(Text(value)), QString().setNum(static_cast<double>(value), 'g', 6).toStdString());
    }
}

TEST(NumberText, CoordinatesHaveSixDecimals) {
    EXPECT_EQ(textOf(Text(12.0F, 0.5F)), "12.000000 0.500000");
    EXPECT_EQ(textOf(Text(0.1F, -25.0F)), "0.100000 -25.000000");
    EXPECT_EQ(textOf(Text(Infinity, -Infinity)), "inf -inf");
    EXPECT_EQ(textOf(Text(NotANumber, -NotANumber)), "nan nan");
}

TEST(NumberText, TheLongestCoordinatesFit) {
    const float largest = std::numeric_limits<float>::max();
    const std::string digits = "340282346638528859811704183484516925440.000000";
    EXPECT_EQ(textOf(Text(-largest, -largest)), "-" + digits + " -" + digits);
}

TEST(NumberText, CoordinatesAreWhatPrintfGivesInTheCLocale) {
    std::mt19937 random(2);
    for (int i = 0; i < 100000; ++i) {
        const float value = randomFloat(random);
        if (std::isnan(value))
            continue;
        std::ostringstream printed; // formats as printf does, in its own locale
        printed.imbue(std::locale::classic());
        printed << std::fixed << std::setprecision(6) << static_cast<double>(value) << " 0.000000";
        ASSERT_EQ(textOf(Text(value, 0.0F)), printed.str());
    }
}

TEST(NumberText, IdsAreDecimal) {
    EXPECT_EQ(textOf(Text(0ULL)), "0");
    EXPECT_EQ(textOf(Text(18446744073709551615ULL)), "18446744073709551615");
}

struct FloatRow {
    const char* name;
    const char* text;
    float expected; ///< 7 stands for "does not parse"
};

class FloatParsing : public testing::TestWithParam<FloatRow> {};

TEST_P(FloatParsing, FollowsStreamExtraction) {
    EXPECT_EQ(parse(GetParam().text, 7.0F), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, FloatParsing,
    testing::Values(
        FloatRow{"plain", "1.5", 1.5F}, FloatRow{"empty", "", 7.0F}, FloatRow{"blank", "  \t\n", 7.0F},
        FloatRow{"space_before", " \t\n\v\f\r2", 2.0F}, FloatRow{"text_after", "2.5mm", 2.5F},
        FloatRow{"second_point", "1.5.7", 1.5F}, FloatRow{"decimal_comma", "1,5", 1.0F},
        FloatRow{"plus", "+3", 3.0F}, FloatRow{"two_signs", "+-3", 7.0F}, FloatRow{"sign_alone", "-", 7.0F},
        FloatRow{"point_alone", ".", 7.0F}, FloatRow{"leading_point", ".5", 0.5F},
        FloatRow{"trailing_point", "5.", 5.0F}, FloatRow{"exponent", "-2.5e-05", -2.5e-5F},
        FloatRow{"capital_exponent", "1E+2x", 100.0F}, FloatRow{"exponent_without_digits", "1e", 7.0F},
        FloatRow{"hexadecimal", "0x10", 0.0F}, FloatRow{"not_a_number", "nan", 7.0F},
        FloatRow{"infinite", "inf", 7.0F}, FloatRow{"infinity_in_full", "-infinity", 7.0F},
        FloatRow{"too_large", "1e50", 7.0F}, FloatRow{"far_too_large", "-1e99999999999999999999", 7.0F},
        FloatRow{"too_small", "1e-50", 0.0F}, FloatRow{"far_too_small", "1e-99999999999999999999", 0.0F},
        FloatRow{"zeros_after_point", "0.0000000000000000000000000000000000000000000000000000001", 0.0F},
        FloatRow{"large_with_negative_exponent", "1000000000000000000000000000000000000000000000e-2", 7.0F},
        FloatRow{"zero_with_exponent", "0e99999", 0.0F}, FloatRow{"word", "off", 7.0F}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(NumberParsing, AgreesWithAStreamOnAnyText) {
    std::mt19937 random(3);
    const std::string letters = " +-0123456789012345678901234567890.eEx";
    for (int i = 0; i < 200000; ++i) {
        std::string text;
        for (std::size_t length = random() % 10; text.size() < length;)
            text += letters[random() % letters.size()];
        const float expected = extracted(text, 7.0F);
        ASSERT_EQ(parse(text, 7.0F), std::isinf(expected) ? 7.0F : expected) << '"' << text << '"';
        ASSERT_EQ(parse(text, 7), extracted(text, 7)) << '"' << text << '"';
        ASSERT_EQ(parse(text, 7U), extracted(text, 7U)) << '"' << text << '"';
        ASSERT_EQ(parse(text, 7ULL), extracted(text, 7ULL)) << '"' << text << '"';
    }
}

TEST(NumberParsing, ReadsWrittenFloatsBackAsTheSameText) {
    std::mt19937 random(4);
    for (int i = 0; i < 100000; ++i) {
        const float value = randomFloat(random);
        if (!std::isfinite(value))
            continue;
        const std::string written = textOf(Text(value));
        const float read = parse(written, 7.0F);
        if (std::fabs(value) < 3.40282e38F) {
            ASSERT_EQ(textOf(Text(read)), written);
        }
    }
}

TEST(NumberParsing, ANumberBeyondItsTypeIsNone) {
    EXPECT_EQ(parse("4294967295", 7U), 4294967295U);
    EXPECT_EQ(parse("4294967296", 7U), 7U);
    EXPECT_EQ(parse("+1", 7U), 1U);
    EXPECT_EQ(parse("010", 7U), 10U);
    EXPECT_EQ(parse("18446744073709551615", 7ULL), 18446744073709551615ULL);
    EXPECT_EQ(parse("18446744073709551616", 7ULL), 7ULL);
    EXPECT_EQ(parse("-2147483648", 7), std::numeric_limits<int>::min());
    EXPECT_EQ(parse("2147483648", 7), 7);
}

/// As streams have it: what stands behind the sign counts down from 2 to the power of the type's bits.
TEST(NumberParsing, AnUnsignedTakesANegativeTextRoundItsEnd) {
    EXPECT_EQ(parse("-1", 7U), 4294967295U);
    EXPECT_EQ(parse(" -2 ", 7U), 4294967294U);
    EXPECT_EQ(parse("-0", 7U), 0U);
    EXPECT_EQ(parse("-4294967295", 7U), 1U);
    EXPECT_EQ(parse("-4294967296", 7U), 7U);
    EXPECT_EQ(parse("-1", 7ULL), 18446744073709551615ULL);
    EXPECT_EQ(parse("-18446744073709551615", 7ULL), 1ULL);
    EXPECT_EQ(parse("-18446744073709551616", 7ULL), 7ULL);
    for (const char* none : {"-", "--1", "-+1", "- 1", "-x"})
        EXPECT_EQ(parse(none, 7U), 7U) << none;
}

TEST(NumberParsing, TakesOneNumberAfterTheOther) {
    std::string_view text = " 1.5\n-2 rest";
    float x = 0.0F;
    float y = 0.0F;
    EXPECT_TRUE(take(text, x));
    EXPECT_TRUE(take(text, y));
    EXPECT_EQ(x, 1.5F);
    EXPECT_EQ(y, -2.0F);
    EXPECT_FALSE(take(text, x));
    EXPECT_EQ(x, 1.5F);
}
