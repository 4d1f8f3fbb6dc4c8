#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationUtils.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

constexpr int SMALLEST = std::numeric_limits<int>::min();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

struct Rounding {
    const char* name;
    float value;
    int whole;
    bool isTrue;
};

class RoundingHalfAwayFromZero : public testing::TestWithParam<Rounding> {};

TEST_P(RoundingHalfAwayFromZero, GivesTheWholeNumber) {
    EXPECT_EQ(kaAnimationUtils::floatToInt(GetParam().value), GetParam().whole);
    EXPECT_EQ(kaAnimationUtils::floatToBool(GetParam().value), GetParam().isTrue);
}

INSTANTIATE_TEST_SUITE_P(
    Floats, RoundingHalfAwayFromZero,
    testing::Values(Rounding{"zero", 0.0F, 0, false}, Rounding{"minus_zero", -0.0F, 0, false},
                    Rounding{"half", 0.5F, 1, true}, Rounding{"minus_half", -0.5F, -1, false},
                    Rounding{"two_and_a_half", 2.5F, 3, true},
                    Rounding{"minus_two_and_a_half", -2.5F, -3, false},
                    Rounding{"just_below_a_half", 0.49999997F, 0, false},
                    Rounding{"below_a_half", 0.4F, 0, false}, Rounding{"minus_six_tenths", -0.6F, -1, false},
                    Rounding{"odd_without_room_for_a_half", 8388609.0F, 8388609, true},
                    Rounding{"largest_that_fits", 2147483520.0F, 2147483520, true},
                    Rounding{"smallest_that_fits", -2147483648.0F, SMALLEST, false},
                    Rounding{"two_to_the_31", 2147483648.0F, SMALLEST, true},
                    Rounding{"far_below", -1e20F, SMALLEST, false},
                    Rounding{"infinity", ENDLESS, SMALLEST, true},
                    Rounding{"minus_infinity", -ENDLESS, SMALLEST, false},
                    Rounding{"not_a_number", NOT_A_NUMBER, SMALLEST, false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Snap, GivesTheNearestWholeFrameAsFloat) {
    EXPECT_EQ(kaAnimationUtils::snap(1.49F), 1.0F);
    EXPECT_EQ(kaAnimationUtils::snap(1.5F), 2.0F);
    EXPECT_EQ(kaAnimationUtils::snap(-1.5F), -2.0F);
    EXPECT_EQ(kaAnimationUtils::snap(3e9F), 3e9F);
    EXPECT_EQ(kaAnimationUtils::snap(ENDLESS), ENDLESS);
    EXPECT_TRUE(std::isnan(kaAnimationUtils::snap(NOT_A_NUMBER)));
    EXPECT_FALSE(std::signbit(kaAnimationUtils::snap(-0.2F)));
}

TEST(Snap, RoundsTheChosenCoordinatesOfAPoint) {
    const osg::Pnt2f point(1.6F, -2.6F);
    EXPECT_EQ(kaAnimationUtils::snap(point, true, true), osg::Pnt2f(2.0F, -3.0F));
    EXPECT_EQ(kaAnimationUtils::snap(point, true, false), osg::Pnt2f(2.0F, -2.6F));
    EXPECT_EQ(kaAnimationUtils::snap(point, false, true), osg::Pnt2f(1.6F, -3.0F));
    EXPECT_EQ(kaAnimationUtils::snap(point, false, false), point);
}

TEST(ConvertTangentType, MapsTheOlderCodes) {
    const unsigned int expected[] = {2, 0, 1, 4, 2, 8, 16, 2, 2};
    for (unsigned int code = 0; code < 9; ++code)
        EXPECT_EQ(kaAnimationUtils::convertTangentType(code), expected[code]) << code;
    EXPECT_EQ(kaAnimationUtils::convertTangentType(4294967295U), 2U);
}

using SortingByExtent = ka_test::RegistryFixture;

TEST_F(SortingByExtent, ComparesBeginsAndEndsAndRefusesNull) {
    kaAnimationObject* early = ka_test::makeSequence("early", 1.0F, 9.0F);
    kaAnimationObject* late = ka_test::makeSequence("late", 2.0F, 5.0F);
    EXPECT_TRUE(kaAnimationUtils::sortBeginBased(early, late));
    EXPECT_FALSE(kaAnimationUtils::sortBeginBased(late, early));
    EXPECT_FALSE(kaAnimationUtils::sortBeginBased(early, early));
    EXPECT_TRUE(kaAnimationUtils::sortEndBased(late, early));
    EXPECT_FALSE(kaAnimationUtils::sortEndBased(early, late));
    for (auto* sort : {&kaAnimationUtils::sortBeginBased, &kaAnimationUtils::sortEndBased}) {
        EXPECT_FALSE(sort(nullptr, late));
        EXPECT_FALSE(sort(early, nullptr));
        EXPECT_FALSE(sort(nullptr, nullptr));
    }
}

} // namespace
