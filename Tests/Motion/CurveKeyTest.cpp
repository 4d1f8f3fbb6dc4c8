#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <kaAnimationXmlNumber.h>
#include <kaMotion/CurveKey.h>
#include <kaSegmentPoints.h>
#include <random>

namespace ka::motion {
namespace {

/// The value of a Bézier segment at a frame: the parameter by bisection, which needs no formula for cubics.
long double sampled(const BezierKey& a, const BezierKey& b, long double frame) {
    const auto bezier = [](long double p0, long double p1, long double p2, long double p3, long double t) {
        const long double v = 1 - t;
        return v * v * v * p0 + 3 * v * v * t * p1 + 3 * v * t * t * p2 + t * t * t * p3;
    };
    long double low = 0, high = 1;
    for (int i = 0; i < 100; ++i) {
        const long double middle = (low + high) / 2;
        (bezier(a.frame, a.outFrame, b.inFrame, b.frame, middle) < frame ? low : high) = middle;
    }
    return bezier(a.value, a.outValue, b.inValue, b.value, low);
}

TEST(SegmentValue, FollowsItsShape) {
    CurveKey a{1, 10, 0, 0, SegmentShape::Step}, b{3, 20, 0, 0, SegmentShape::Step};
    EXPECT_EQ(segmentValue(a, b, 0.999), 10);
    EXPECT_EQ(segmentValue(a, b, 1.0), 20);
    a.toNext = SegmentShape::Straight;
    EXPECT_EQ(segmentValue(a, b, 0.25), 12.5);
    a.toNext = SegmentShape::Smooth;
    EXPECT_EQ(segmentValue(a, b, 0.5), 15); // flat at both ends: half way at half time
    a.outSlope = b.inSlope = 5;             // the slope of the chord makes it straight
    EXPECT_NEAR(segmentValue(a, b, 0.3), 13, 1e-12);
}

TEST(LayOutCurve, PutsBothHandlesOfAStraightSegmentAtItsMiddle) {
    const BezierCurve curve =
        layOutCurve({{0, 1, 0, 0, SegmentShape::Straight}, {2, 5, 0, 0, SegmentShape::Straight}}, 10);
    ASSERT_EQ(curve.keys.size(), 2U);
    EXPECT_EQ(curve.keys[1].frame, 20);
    EXPECT_EQ(curve.keys[0].outFrame, 10);
    EXPECT_EQ(curve.keys[0].outValue, 3);
    EXPECT_EQ(curve.keys[1].inFrame, 10);
    EXPECT_EQ(curve.keys[1].inValue, 3);
    // Outside of the curve there is nothing to point at.
    EXPECT_EQ(curve.keys[0].inFrame, 0);
    EXPECT_EQ(curve.keys[1].outFrame, 20);
}

TEST(LayOutCurve, LeavesTheHandlesOfAStepOnTheirKeys) {
    const BezierCurve curve =
        layOutCurve({{0, 1, 0, 0, SegmentShape::Step}, {2, 5, 0, 0, SegmentShape::Step}}, 25);
    EXPECT_EQ(curve.keys[0].outFrame, curve.keys[0].frame);
    EXPECT_EQ(curve.keys[0].outValue, curve.keys[0].value);
    EXPECT_EQ(curve.keys[1].inFrame, curve.keys[1].frame);
    EXPECT_EQ(curve.keys[1].inValue, curve.keys[1].value);
}

TEST(LayOutCurve, RepeatsASingleKey) {
    const BezierCurve curve = layOutCurve({{1, 7, 0, 0, SegmentShape::Straight}}, 25);
    ASSERT_EQ(curve.keys.size(), 2U);
    EXPECT_EQ(curve.keys[0].frame, 25);
    EXPECT_EQ(curve.keys[1].frame, 26);
    EXPECT_EQ(curve.keys[1].value, 7);
    const BezierCurve late = layOutCurve({{1e7, 7, 0, 0, SegmentShape::Straight}}, 25);
    EXPECT_GT(late.keys[1].frame, late.keys[0].frame);
    EXPECT_TRUE(layOutCurve({}, 25).keys.empty());
}

TEST(LayOutCurve, LeavesOutKeysThatAFloatCannotTellApart) {
    const BezierCurve curve = layOutCurve({{1000, 1, 0, 0, SegmentShape::Straight},
                                           {1000 + 1e-9, 2, 0, 0, SegmentShape::Straight},
                                           {1001, 3, 0, 0, SegmentShape::Straight}},
                                          25);
    ASSERT_EQ(curve.keys.size(), 2U);
    EXPECT_EQ(curve.merged, 1U);
    EXPECT_EQ(curve.keys[1].value, 3);
    EXPECT_EQ(curve.sources, (std::vector<std::size_t>{0, 2}));
}

/// The largest difference between the segment and the spline it was made from, relative to the spline's
/// range.
double relativeError(double start, double span, std::mt19937_64& random) {
    std::uniform_real_distribution<double> value(-10, 10), slope(-30, 30);
    const CurveKey a{start, value(random), 0, slope(random) / span, SegmentShape::Smooth};
    const CurveKey b{start + span, value(random), slope(random) / span, 0, SegmentShape::Smooth};
    const BezierCurve curve = layOutCurve({a, b}, 25);
    const BezierKey &first = curve.keys.at(0), &second = curve.keys.at(1);
    // The spline through the keys where the floats put them.
    const CurveKey c{first.frame / 25.0, first.value, 0, a.outSlope, SegmentShape::Smooth};
    const CurveKey d{second.frame / 25.0, second.value, b.inSlope, 0, SegmentShape::Smooth};
    double worst = 0, low = first.value, high = first.value;
    for (int step = 0; step <= 40; ++step) {
        const double u = step / 40.0, wanted = segmentValue(c, d, u);
        low = std::min(low, wanted);
        high = std::max(high, wanted);
        const long double frame = first.frame + (static_cast<long double>(second.frame) - first.frame) * u;
        worst = std::max(worst, std::abs(static_cast<double>(sampled(first, second, frame)) - wanted));
    }
    return worst / (high - low);
}

TEST(LayOutCurve, TakesWhatNoFloatCanHold) {
    const double huge = 3e38;
    for (const SegmentShape shape : {SegmentShape::Step, SegmentShape::Straight, SegmentShape::Smooth}) {
        const BezierCurve curve = layOutCurve(
            {{-huge, huge, 0, huge, shape}, {0, -huge, huge, -huge, shape}, {huge, huge, -huge, 0, shape}},
            25);
        ASSERT_EQ(curve.keys.size(), 3U);
        for (const BezierKey& key : curve.keys)
            for (const float part :
                 {key.frame, key.value, key.inFrame, key.inValue, key.outFrame, key.outValue})
                EXPECT_TRUE(std::isfinite(part));
    }
    EXPECT_EQ(
        layOutCurve({{2e38, 0, 0, 0, SegmentShape::Straight}, {huge, 1, 0, 0, SegmentShape::Straight}}, 25)
            .merged,
        1U);
}

TEST(LayOutCurve, KeepsASplineToAHundredThousandthOfItsRange) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> start(0, 40), span(1, 5);
    for (int i = 0; i < 3000; ++i)
        EXPECT_LT(relativeError(start(random), span(random), random), 1e-5);
}

TEST(LayOutCurve, KeepsASplineAsWellAsTheFloatsAroundItsHandlesAllow) {
    // Segments of half a frame to a frame, a thousand frames in: the handles move by 1/16384 of a frame at
    // the least.
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> start(30, 40), span(0.02, 0.04);
    for (int i = 0; i < 3000; ++i)
        EXPECT_LT(relativeError(start(random), span(random), random), 2e-4);
}

TEST(LayOutCurve, PutsTheHandlesAtTheThirdsWhereFloatsCan) {
    const BezierCurve curve =
        layOutCurve({{0, 0, 0, 0, SegmentShape::Smooth}, {1.2, 1, 0, 0, SegmentShape::Smooth}}, 25);
    EXPECT_EQ(curve.keys[0].outFrame, 10);
    EXPECT_EQ(curve.keys[1].inFrame, 20);
    EXPECT_NEAR(curve.keys[0].outValue, 0, 1e-7);
    EXPECT_NEAR(curve.keys[1].inValue, 1, 1e-7);
}

/// Number after number as a document gives it back.
BezierKey saved(const BezierKey& key) {
    BezierKey read;
    const auto pass = [](float x, float y, float& xRead, float& yRead) {
        const kaAnimationXmlNumber::Text text(x, y);
        std::string_view rest = text;
        EXPECT_TRUE(kaAnimationXmlNumber::take(rest, xRead) && kaAnimationXmlNumber::take(rest, yRead));
    };
    pass(key.frame, key.value, read.frame, read.value);
    pass(key.inFrame, key.inValue, read.inFrame, read.inValue);
    pass(key.outFrame, key.outValue, read.outFrame, read.outValue);
    return read;
}

/// Keys at places where six digits are coarser than floats are, where both are alike, and far beyond.
class SavedSegments : public ::testing::TestWithParam<double> {};

TEST_P(SavedSegments, HaveHandlesThatHoldOnTheDigitsOfADocument) {
    std::mt19937_64 random(6);
    std::uniform_real_distribution<double> start(0, GetParam()), span(0.001, 3);
    for (int i = 0; i < 5000; ++i) {
        const double t0 = start(random);
        const BezierCurve curve = layOutCurve(
            {{t0, 0, 0, 1, SegmentShape::Smooth}, {t0 + span(random), 1, 1, 0, SegmentShape::Smooth}}, 25);
        if (curve.keys.size() < 2 || curve.merged > 0)
            continue;
        const BezierKey first = saved(curve.keys[0]), second = saved(curve.keys[1]);
        const double x0 = first.frame, dx = second.frame - x0;
        const double a = (first.outFrame - x0) / dx, b = (second.inFrame - x0) / dx;
        const double A = 1 - 3 * b + 3 * a, B = 3 * (b - 2 * a), C = 3 * a;
        EXPECT_TRUE((A == 0 && B == 0) || A >= 1e-5) << t0;
        EXPECT_LE(B * B, A * C + 1e-30) << t0;
        EXPECT_GE(a, 0);
        EXPECT_LE(b, 1);
    }
}

TEST_P(SavedSegments, GiveTheValuesOfTheirSplineAtEveryFrame) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> start(0, GetParam()), span(0.04, 1), value(-90, 90),
        slope(-90, 90);
    for (int i = 0; i < 3000; ++i) {
        const double t0 = start(random), seconds = span(random);
        const CurveKey a{t0, value(random), 0, slope(random) / seconds, SegmentShape::Smooth};
        const CurveKey b{t0 + seconds, value(random), slope(random) / seconds, 0, SegmentShape::Smooth};
        const BezierCurve curve = layOutCurve({a, b}, 25);
        const BezierKey first = saved(curve.keys.at(0)), second = saved(curve.keys.at(1));
        // What a handle or key moved by half a step of the document, or of a float, can do at full slope.
        const double step =
            std::max(1e-6, static_cast<double>(std::nextafter(first.frame, 1e9F) - first.frame));
        const double allowed = 400 / (25 * seconds) * step + 1e-4;
        for (int part = 0; part <= 50; ++part) {
            const auto frame = static_cast<float>(
                first.frame + (static_cast<double>(second.frame) - first.frame) * part / 50.0);
            float sampledValue = 0;
            if (frame >= second.frame)
                continue;
            ASSERT_TRUE(kaSampleSegment({first.frame, first.value, first.outFrame, first.outValue,
                                         second.inFrame, second.inValue, second.frame, second.value},
                                        frame, sampledValue))
                << "frame " << frame << " of " << first.frame << " to " << second.frame;
            const double u = std::clamp((static_cast<double>(frame) / 25 - t0) / seconds, 0.0, 1.0);
            EXPECT_NEAR(static_cast<double>(sampledValue), segmentValue(a, b, u), allowed)
                << "frame " << frame << " of " << first.frame << " to " << second.frame;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(UpTo, SavedSegments, ::testing::Values(0.3, 0.7, 4.0, 40.0, 400.0));

/// The sixth of a second that a real walk begins with: its thirds need more digits than a document has.
TEST(LayOutCurve, ASegmentWhoseThirdsAreNoDecimalsStaysSmooth) {
    const CurveKey a{1.0 / 6.0, 10, 0, 0, SegmentShape::Smooth}, b{0.2, 13, 0, 0, SegmentShape::Smooth};
    const BezierCurve curve = layOutCurve({a, b}, 25);
    const BezierKey first = saved(curve.keys.at(0)), second = saved(curve.keys.at(1));
    float before = first.value;
    for (float frame = first.frame; frame < second.frame; frame += 0.01F) {
        float value = NAN;
        ASSERT_TRUE(kaSampleSegment({first.frame, first.value, first.outFrame, first.outValue, second.inFrame,
                                     second.inValue, second.frame, second.value},
                                    frame, value))
            << frame;
        EXPECT_NEAR(value, segmentValue(a, b, (static_cast<double>(frame) / 25 - a.time) * 30), 1e-4)
            << frame;
        EXPECT_GE(value, before - 1e-5F) << frame;
        before = value;
    }
}

TEST(LayOutCurve, KeysThatAreOneStepOfADocumentApartHaveAValueBetweenThem) {
    const BezierCurve curve =
        layOutCurve({{1e-6, 1, 0, 0, SegmentShape::Straight}, {2e-6, 2, 0, 0, SegmentShape::Straight}}, 1);
    ASSERT_EQ(curve.keys.size(), 2U);
    const BezierKey &first = curve.keys[0], &second = curve.keys[1];
    for (int i = 0; i < 100; ++i) {
        float value = NAN;
        EXPECT_TRUE(kaSampleSegment(
            {first.frame, first.value, first.outFrame, first.outValue, second.inFrame, second.inValue,
             second.frame, second.value},
            first.frame + (second.frame - first.frame) * static_cast<float>(i) / 100.0F, value));
    }
    // Closer than that they are one.
    EXPECT_EQ(
        layOutCurve({{1e-6, 1, 0, 0, SegmentShape::Straight}, {1.2e-6, 2, 0, 0, SegmentShape::Straight}}, 1)
            .merged,
        1U);
}

} // namespace
} // namespace ka::motion
