#include "Builders.h"
#include "RegistryFixture.h"
#include "kaAnimationController.h"
#include "kaCurveSampling.h"

#include <cmath>
#include <cstring>
#include <limits>

using namespace ka_test;

namespace {

constexpr float UNTOUCHED = -12345.0F;

/// Segments of every kind: eased, short and vertical handles, thirds, a step, handles that point backwards.
std::vector<Key> mixedKeys() {
    std::vector<Key> keys;
    for (int i = 0; i < 60; ++i) {
        const auto x = static_cast<float>(i * 10);
        const auto y = static_cast<float>(i * 7 % 11) - 5.0F;
        const float reaches[] = {5.0F, 1.5F, 0.0F, 10.0F / 3.0F, 8.0F, -2.0F};
        const float reach = reaches[i / 2 % 6];
        keys.push_back(i % 13 == 0 ? stepKey(x, y)
                                   : Key{{x, y}, {x - reach, y + 1.0F}, {x + reach, y - 1.0F}});
    }
    return keys;
}

class SamplingMany : public RegistryFixture {
  protected:
    struct Answer {
        bool written;
        float value;
    };
    static Answer alone(kaAnimationCurve2D* curve, float frame) {
        Answer answer{false, UNTOUCHED};
        answer.written = kaAnimationController::the()->computeCurveValue(curve, frame, answer.value);
        return answer;
    }
    static void expectSame(float value, bool written, const Answer& expected, float frame) {
        EXPECT_EQ(written, expected.written) << "at " << frame;
        EXPECT_EQ(std::memcmp(&value, &expected.value, sizeof(value)), 0)
            << value << ", alone " << expected.value << " at " << frame;
    }
    static void expectAsAlone(kaAnimationCurve2D* curve, const std::vector<float>& frames) {
        std::vector<float> values(frames.size(), UNTOUCHED);
        const auto written = std::make_unique<bool[]>(frames.size() + 1);
        std::size_t expected = 0;
        const std::size_t count =
            kaCurveSampling::sample(curve, frames.data(), frames.size(), values.data(), written.get());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const Answer answer = alone(curve, frames[i]);
            expectSame(values[i], written[i], answer, frames[i]);
            expected += answer.written ? 1 : 0;
        }
        EXPECT_EQ(count, expected);
        std::vector<float> again(frames.size(), UNTOUCHED);
        EXPECT_EQ(kaCurveSampling::sample(curve, frames.data(), frames.size(), again.data()), expected);
        EXPECT_EQ(std::memcmp(again.data(), values.data(), values.size() * sizeof(float)), 0);
    }
};

TEST_F(SamplingMany, FramesOfOneCurveGiveWhatEachGivesAlone) {
    kaAnimationCurve2D* curve = makeCurve(mixedKeys());
    std::vector<float> ascending;
    for (int i = -20; i < 6200; ++i)
        ascending.push_back(static_cast<float>(i) * 0.1F);
    expectAsAlone(curve, ascending);
    std::vector<float> mixed;
    for (int i = 0; i < 6000; ++i)
        mixed.push_back(ascending[static_cast<std::size_t>(i) * 1237 % ascending.size()]);
    expectAsAlone(curve, mixed);
    constexpr float Infinity = std::numeric_limits<float>::infinity();
    expectAsAlone(curve, {Infinity, -Infinity, 5.0F, NAN, 6.0F, 590.0F, 0.0F});
    expectAsAlone(curve, {});
    expectAsAlone(curve, {7.5F});
}

TEST_F(SamplingMany, CurvesWithoutAValueAreLeftAlone) {
    expectAsAlone(nullptr, {1.0F, 2.0F});
    expectAsAlone(makeCurve(std::vector<Spot>{}), {1.0F, 2.0F});
    expectAsAlone(makeCurve(std::vector<Spot>{{5, 7}}), {1.0F, 5.0F});
    expectAsAlone(makeCurve(std::vector<Key>{stepKey(5, 2), stepKey(5, 0)}),
                  {1.0F, 5.0F}); // true, nothing written
}

TEST_F(SamplingMany, CurvesAtOneFrameGiveWhatEachGivesAlone) {
    std::vector<kaAnimationCurve2D*> curves{nullptr, makeCurve(std::vector<Spot>{{5, 7}})};
    const std::vector<Key> keys = mixedKeys();
    for (std::size_t first = 0; first + 2 <= keys.size(); ++first)
        curves.push_back(
            makeCurve(std::vector<Key>(keys.begin() + static_cast<std::ptrdiff_t>(first), keys.end())));
    for (float frame : {0.0F, 3.3F, 100.0F, 333.25F, 589.9F, 700.0F}) {
        std::vector<float> values(curves.size(), UNTOUCHED);
        const auto written = std::make_unique<bool[]>(curves.size());
        kaCurveSampling::sample(curves.data(), curves.size(), frame, values.data(), written.get());
        for (std::size_t i = 0; i < curves.size(); ++i)
            expectSame(values[i], written[i], alone(curves[i], frame), frame);
    }
}

TEST_F(SamplingMany, SeesEdits) {
    kaAnimationCurve2D* curve = makeCurve(mixedKeys());
    expectAsAlone(curve, {10.0F, 12.0F, 14.0F, 16.0F, 18.0F, 19.0F});
    curve->findPoint(10.0F)->setPosition(11.0F, 40.0F);
    expectAsAlone(curve, {10.0F, 12.0F, 14.0F, 16.0F, 18.0F, 19.0F});
}

} // namespace
