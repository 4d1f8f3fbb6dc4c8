#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <kaAnimationXmlNumber.h>
#include <kaMotion/DocumentNumber.h>
#include <random>

namespace ka::motion {
namespace {

float writtenAndRead(float value) {
    const kaAnimationXmlNumber::Text text(value, 0.0F);
    float read = NAN;
    std::string_view rest = text;
    EXPECT_TRUE(kaAnimationXmlNumber::take(rest, read));
    return read;
}

TEST(DocumentNumber, IsWhatWritingAndReadingGives) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> small(-20, 20), power(-30, 100);
    for (int i = 0; i < 200000; ++i) {
        const float value =
            i % 2 == 0 ? small(random) : std::ldexp(small(random), static_cast<int>(power(random)));
        const float read = writtenAndRead(value);
        ASSERT_EQ(documentFloat(static_cast<double>(value)), read) << value;
        ASSERT_EQ(writtenAndRead(read), read) << value;
    }
    // Digits that end in the middle between two: the writer rounds to the even one.
    EXPECT_EQ(documentFloat(0.0000005), 0.0F);
    for (const float half : {0.5F / 64 / 15625, 1.5F / 64 / 15625, 0.0078125F, 1.0000005F, 3.0000005F})
        EXPECT_EQ(documentFloat(static_cast<double>(half)), writtenAndRead(half)) << half;
    EXPECT_EQ(documentFloat(1e300), std::numeric_limits<float>::max());
    EXPECT_EQ(documentFloat(-1e300), -std::numeric_limits<float>::max());
}

TEST(DocumentNumber, NeighboursAreTheNextThatADocumentCanTell) {
    EXPECT_EQ(documentNeighbour(0.0F, 1), 1e-6F);
    EXPECT_EQ(documentNeighbour(4.0F, -2), 3.999998F);
    EXPECT_EQ(documentNeighbour(16.0F, 1), std::nextafter(16.0F, 17.0F));
    EXPECT_EQ(documentNeighbour(-100.0F, -3), writtenAndRead(documentNeighbour(-100.0F, -3)));
    std::mt19937 random(4);
    std::uniform_real_distribution<float> place(-40, 40);
    for (int i = 0; i < 20000; ++i) {
        const float at = documentFloat(static_cast<double>(place(random))), next = documentNeighbour(at, 1);
        EXPECT_GT(next, at);
        EXPECT_EQ(writtenAndRead(next), next);
        EXPECT_LT(next - at, 6e-6F);
    }
}

} // namespace
} // namespace ka::motion
