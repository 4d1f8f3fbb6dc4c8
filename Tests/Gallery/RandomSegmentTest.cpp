#include "RegistryFixture.h"
#include "SegmentSupport.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace ka_test;

namespace {

constexpr int SEGMENTS = 1000000;

float narrow(double value) {
    return static_cast<float>(value);
}

/// Handles mostly within the segment, some astray, some on its ends or on their keys.
double share(Random& random) {
    if (random.chance(0.15))
        return random.chance(0.5) ? 0.0 : 1.0;
    return random.chance(0.8) ? random.unit() : random.between(-2.0, 3.0);
}

SegmentCase randomSegment(Random& random) {
    const double magnitudes[] = {0.0, 1.0, 100.0, 1e4, 1e6};
    const double x0 = random.between(-1, 1) * magnitudes[random.next() % 5];
    const double span = std::pow(10.0, random.between(-1.0, 3.0));
    const auto value = [&] { return narrow(random.between(-10.0, 10.0)); };
    SegmentCase segment;
    segment.left.key = {narrow(x0), value()};
    segment.right.key = {narrow(x0 + span), value()};
    segment.left.out = {narrow(x0 + span * share(random)), value()};
    segment.right.in = {narrow(x0 + span * share(random)), value()};
    if (random.chance(0.05))
        segment.left.out = segment.left.key;
    if (random.chance(0.05))
        segment.right.in = segment.right.key;
    segment.left.in = segment.left.key;
    segment.right.out = segment.right.key;
    segment.frame = narrow(x0 + span * random.unit());
    if (segment.frame < segment.left.key.x || segment.frame >= segment.right.key.x)
        segment.frame = segment.left.key.x;
    return segment;
}

class RandomSegments : public RegistryFixture {};

TEST_F(RandomSegments, AreSampledToTheSameFloatAsThePlainFormula) {
    ModuleSegment module;
    Random random(1);
    int shown = 0;
    for (int i = 0; i < SEGMENTS && shown < 5; ++i) {
        const SegmentCase segment = randomSegment(random);
        if (segment.left.key.x == segment.right.key.x)
            continue;
        const Sample expected = referenceSegment(segment.left, segment.right, segment.frame);
        const Sample actual = module.sample(segment);
        if (!sameSample(actual, expected)) {
            ADD_FAILURE() << segment << "\n  gives " << actual << ", expected " << expected;
            ++shown;
        }
    }
}

TEST_F(RandomSegments, StayByTheTruthWhereTheFormulaIsWellConditioned) {
    Random random(2);
    ModuleSegment module;
    double worst = 0.0;
    SegmentCase worstSegment;
    int counted = 0;
    for (int i = 0; i < SEGMENTS / 5; ++i) {
        const SegmentCase segment = randomSegment(random);
        const bool distinct = segment.left.key.x < segment.right.key.x;
        if (!distinct || isStep(segment) || std::fabs(timePolynomial(segment.left, segment.right).a) < 1e-2 ||
            discriminant(segment) < 1e-5)
            continue;
        const Sample actual = module.sample(segment);
        ASSERT_TRUE(actual.written) << segment;
        const double error =
            errorAgainst(trueValues(segment.left, segment.right, segment.frame), actual.value);
        ++counted;
        if (error > worst) {
            worst = error;
            worstSegment = segment;
        }
    }
    EXPECT_GT(counted, SEGMENTS / 10);
    EXPECT_LT(worst, 1e-4) << worstSegment;
}

} // namespace
