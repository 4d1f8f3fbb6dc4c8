#include "DecimalComma.h"
#include "kaString.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using Values = std::vector<float>;

namespace {

constexpr float INF = std::numeric_limits<float>::infinity();

struct Row {
    const char* name;
    std::string text;
    Values expected;
};

class NumbersFromText : public testing::TestWithParam<Row> {};

std::string zeros(std::size_t count) {
    return std::string(count, '0');
}

std::uint32_t bitsOf(float value) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace

TEST_P(NumbersFromText, AreThoseAWriterMeant) {
    EXPECT_EQ(kaString::getValuesFromString(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, NumbersFromText,
    testing::Values(
        Row{"empty", "", {}}, Row{"only_separators", " ,\t\n, ", {}}, Row{"one", "1.5", {1.5F}},
        Row{"blanks", "1 2  3", {1, 2, 3}}, Row{"commas", "1,2, 3 ,4", {1, 2, 3, 4}},
        Row{"tabs_and_line_ends", "1\t2\n3\r\n4", {1, 2, 3, 4}}, Row{"leading_and_trailing", "  7 , ", {7}},
        Row{"exponents", "1.500000e+00 -2E-1 3e2", {1.5F, -0.2F, 300}},
        Row{"signs", "+1 -1 +.5 -.5", {1, -1, .5F, -.5F}}, Row{"no_digit_after_the_point", "3.", {3}},
        Row{"words_are_skipped", "TRUE 1 x 2", {1, 2}},
        Row{"a_number_with_a_tail_is_a_word", "12px 0x1F 1.2.3 4", {4}},
        Row{"two_signs_are_a_word", "+-1 --1 ++1 - + 5", {5}},
        Row{"infinities_keep_their_place", "inf 1 -inf", {INF, 1, -INF}},
        Row{"the_limits", "3.40282347e+38 1.17549435e-38 1e-45", {FLT_MAX, FLT_MIN, FLT_TRUE_MIN}},
        Row{"beyond_a_float", "1e39 -1e39", {FLT_MAX, -FLT_MAX}},
        Row{"below_a_float", "1e-60 -1e-60", {0.0F, -0.0F}},
        Row{"beyond_a_double", "1e400 -1e400 " + ("1" + zeros(400)), {FLT_MAX, -FLT_MAX, FLT_MAX}},
        Row{"below_a_double", "1e-400 -1e-400 0." + zeros(400) + "1", {0.0F, 0.0F, 0.0F}},
        Row{"an_exponent_beyond_an_int", "1e99999999999 1e-99999999999", {FLT_MAX, 0.0F}},
        Row{"small_digits_with_a_large_exponent", "0." + zeros(400) + "1e+800", {FLT_MAX}},
        Row{"large_digits_with_a_small_exponent", "1" + zeros(400) + "e-800", {0.0F}},
        Row{"a_zero_byte_ends_nothing", std::string("1\0 2", 4), {2}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(NumbersFromText, KeepANaNInItsPlace) {
    const Values values = kaString::getValuesFromString("1 nan -nan 2");
    ASSERT_EQ(values.size(), 4U);
    EXPECT_TRUE(std::isnan(values[1]));
    EXPECT_TRUE(std::isnan(values[2]));
    EXPECT_EQ(values[3], 2.0F);
}

TEST(NumbersFromText, KeepTheSignOfATinyNumber) {
    const Values values = kaString::getValuesFromString("-0 -1e-60 -1e-400");
    ASSERT_EQ(values.size(), 3U);
    for (const float value : values) {
        EXPECT_TRUE(value == 0.0F && std::signbit(value));
    }
}

TEST(TextFromNumbers, IsShortAndPartedByOneSpace) {
    EXPECT_EQ(kaString::createStringFromValues({}), "");
    EXPECT_EQ(kaString::createStringFromValues({0.1F}), "0.1");
    EXPECT_EQ(kaString::createStringFromValues({1, -2.5F, 0, 1e-7F}), "1 -2.5 0 1e-07");
    EXPECT_EQ(kaString::createStringFromValues({INF, -INF}), "inf -inf");
}

TEST(TextFromNumbers, WritesWholeNumbersWithoutExponent) {
    EXPECT_EQ(kaString::createStringFromValues({100000, -20000000}), "100000 -20000000");
    EXPECT_EQ(kaString::createStringFromValues({4294967296.0F}), "4294967296");
    EXPECT_EQ(kaString::createStringFromValues({1e20F}), "1e+20");
}

TEST(TextFromNumbers, ReadsBackBitForBit) {
    std::mt19937 random(1); // fixed: the same numbers on every run
    Values values{0.0F,         -0.0F,       FLT_MAX,      -FLT_MAX, FLT_MIN,
                  FLT_TRUE_MIN, 16777217.0F, 123456789.0F, 0.3F,     INF};
    while (values.size() < 20000) {
        const std::uint32_t bits = static_cast<std::uint32_t>(random());
        float value = 0.0F;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isnan(value)) {
            values.push_back(value);
        }
    }
    const Values again = kaString::getValuesFromString(kaString::createStringFromValues(values));
    ASSERT_EQ(again.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(bitsOf(again[i]), bitsOf(values[i])) << values[i];
    }
}

TEST(TextAndNumbers, AreTheSameUnderADecimalComma) {
    const ka_test::DecimalComma comma;
    EXPECT_EQ(kaString::getValuesFromString("1.5 2,5"), (Values{1.5F, 2, 5}));
    EXPECT_EQ(kaString::createStringFromValues({1.5F, 1234567.0F}), "1.5 1234567");
}
