#include "SegmentSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <kaSegmentFormula.h>
#include <kaSegmentIteration.h>
#include <sstream>

using namespace ka_test;

namespace {

constexpr std::size_t ROW = 64;

/// KA_RANDOM_SEGMENTS asks for more, once in a while.
int rows() {
    const char* wanted = std::getenv("KA_RANDOM_SEGMENTS");
    return (wanted ? std::max(1000, std::atoi(wanted)) : 300000) / static_cast<int>(ROW);
}

/// The kinds that curves are made of, handles as parts of the segment.
enum Kind { EASE, THIRDS, SHORT, INSIDE, VERTICAL, NEARLY_THIRD_APART, STEP, ANYTHING, KINDS };

const char* const NAMES[] = {"ease", "thirds",  "short", "inside", "vertical", "nearly_third_apart",
                             "step", "anything"};

kaSegment randomOf(Kind kind, Random& random) {
    if (kind == ANYTHING) {
        const SegmentCase any = randomSegment(random);
        return kaSegment({any.left.key.x, any.left.key.y, any.left.out.x, any.left.out.y, any.right.in.x,
                          any.right.in.y, any.right.key.x, any.right.key.y});
    }
    const double lengths[] = {1.0, 10.0, 25.0, 7.3};
    const double length = lengths[random.next() % 4];
    const double x0 = random.chance(0.5) ? std::floor(random.between(0.0, 3000.0)) : 0.0;
    const double apart =
        1.0 / 3.0 + std::pow(10.0, random.between(-7.0, -2.0)) * (random.chance(0.5) ? 1.0 : -1.0);
    const double out = kind == EASE                       ? 0.5
                       : kind == THIRDS                   ? 1.0 / 3.0
                       : kind == SHORT                    ? random.between(0.1, 0.3)
                       : kind == VERTICAL || kind == STEP ? 0.0
                       : kind == NEARLY_THIRD_APART       ? random.between(0.0, 1.0 - apart)
                                                          : random.unit();
    const double in = kind == EASE                 ? 0.5
                      : kind == THIRDS             ? 2.0 / 3.0
                      : kind == SHORT              ? 1.0 - random.between(0.1, 0.3)
                      : kind == NEARLY_THIRD_APART ? out + apart
                      : kind == STEP               ? 1.0
                                                   : random.unit();
    const double size = std::pow(10.0, random.between(-3.0, 3.0));
    const auto value = [&] { return static_cast<float>(random.between(-size, size)); };
    const float y0 = value();
    const float y3 = random.chance(0.1) ? y0 : value();
    const bool flat = kind == STEP || random.chance(0.2);
    return kaSegment({static_cast<float>(x0), y0, static_cast<float>(x0 + out * length), flat ? y0 : value(),
                      static_cast<float>(x0 + in * length), flat ? y3 : value(),
                      static_cast<float>(x0 + length), y3});
}

/// Mostly between the keys; also on them, and the floats beside them.
float randomFrame(const kaSegment& segment, Random& random) {
    const float first = segment.points().x0;
    const float last = segment.points().x3;
    const float between = first + static_cast<float>(random.unit()) * (last - first);
    const float places[] = {first, last, std::nextafter(first, last), std::nextafter(last, first)};
    const float frame = random.chance(0.9) ? between : places[random.next() % 4];
    return std::min(std::max(frame, first), last);
}

struct Answer {
    bool written = false;
    float value = -7.77e33F;
};

bool same(const Answer& a, const Answer& b) {
    return a.written == b.written && (std::memcmp(&a.value, &b.value, sizeof(float)) == 0 ||
                                      (std::isnan(a.value) && std::isnan(b.value)));
}

std::vector<std::string> targets() {
    std::istringstream words(kaSegmentIteration::targetNames());
    std::vector<std::string> names;
    for (std::string name; words >> name;)
        names.push_back(name);
    return names;
}

/// One row of segments, each sampled alone, side by side, and many times.
class Row {
  public:
    Row(Kind kind, Random& random) {
        for (std::size_t i = 0; i < ROW; ++i) {
            segments.push_back(randomOf(kind, random));
            frames[i] = randomFrame(segments.back(), random);
            framesOfFirst[i] = randomFrame(segments.front(), random);
        }
        for (std::size_t i = 0; i < ROW; ++i) {
            pointers[i] = &segments[i];
            formula[i].written = kaSegmentFormula::sample(segments[i].points(), frames[i], formula[i].value);
            formulaOfFirst[i].written =
                kaSegmentFormula::sample(segments[0].points(), framesOfFirst[i], formulaOfFirst[i].value);
        }
    }

    /// Every sample that differs from the formula's.
    void compare() const {
        float values[ROW];
        bool written[ROW];
        std::fill(values, values + ROW, Answer().value);
        kaSegmentIteration::sampleEach(pointers, frames, ROW - 3, values, written);
        for (std::size_t i = 0; i < ROW; ++i) {
            Answer alone;
            alone.written = kaSegmentIteration::sample(segments[i], frames[i], alone.value);
            expect(alone, formula[i], i, "alone");
            if (i < ROW - 3)
                expect({written[i], values[i]}, formula[i], i, "side by side");
        }
        std::fill(values, values + ROW, Answer().value);
        const kaSegment* first[ROW];
        std::fill(first, first + ROW, &segments[0]);
        kaSegmentIteration::sampleEach(first, framesOfFirst, ROW - 1, values, written);
        for (std::size_t i = 0; i < ROW - 1; ++i)
            expect({written[i], values[i]}, formulaOfFirst[i], 0, "one of many");
    }

  private:
    void expect(const Answer& actual, const Answer& expected, std::size_t place, const char* how) const {
        if (same(actual, expected) || testing::Test::HasFailure())
            return;
        const kaSegment::Points& p = segments[place].points();
        ADD_FAILURE() << how << " " << actual.value << ", by the formula " << expected.value << ": " << p.x0
                      << ' ' << p.y0 << ' ' << p.x1 << ' ' << p.y1 << ' ' << p.x2 << ' ' << p.y2 << ' '
                      << p.x3 << ' ' << p.y3 << " at " << frames[place];
    }

    std::vector<kaSegment> segments;
    const kaSegment* pointers[ROW];
    float frames[ROW];
    float framesOfFirst[ROW];
    Answer formula[ROW];
    Answer formulaOfFirst[ROW];
};

class Iteration : public testing::TestWithParam<int> {
  protected:
    void TearDown() override { kaSegmentIteration::setTarget(nullptr); }
};

TEST_P(Iteration, GivesTheFloatOfTheFormulaOnEveryInstructionSet) {
    Random random(11);
    const auto kind = static_cast<Kind>(GetParam());
    const std::vector<std::string> names = targets();
    ASSERT_FALSE(names.empty());
    for (int i = 0; i < rows() && !HasFailure(); ++i) {
        const Row row(kind, random);
        for (const std::string& name : names) {
            ASSERT_TRUE(kaSegmentIteration::setTarget(name.c_str()));
            SCOPED_TRACE(name);
            row.compare();
        }
    }
}

/// Else the formula would be compared with itself.
TEST_P(Iteration, LeavesLittleToTheFormula) {
    Random random(12);
    const auto kind = static_cast<Kind>(GetParam());
    if (kind == STEP || kind == ANYTHING)
        GTEST_SKIP() << "steps have no use for it, and of the others many a handle points backwards";
    int left = 0;
    constexpr int COUNT = 20000;
    for (int i = 0; i < COUNT; ++i) {
        const kaSegment segment = randomOf(kind, random);
        const auto frame = segment.points().x0 + static_cast<float>(random.between(0.01, 0.99)) *
                                                     (segment.points().x3 - segment.points().x0);
        float value = 0.0F;
        left += kaSegmentIteration::sampleWithoutFormula(segment, frame, value) ? 0 : 1;
    }
    EXPECT_LT(left, COUNT / (kind == VERTICAL ? 4 : 20));
}

INSTANTIATE_TEST_SUITE_P(Kinds, Iteration, testing::Range(0, static_cast<int>(KINDS)),
                         [](const auto& row) { return NAMES[row.param]; });

TEST(IterationItself, UsesTheInstructionSetThatTheVariableNames) {
    for (const std::string& name : targets()) {
        setenv("KA_VECTOR_TARGET", name.c_str(), 1);
        ASSERT_TRUE(kaSegmentIteration::setTarget(nullptr));
        EXPECT_EQ(kaSegmentIteration::targetName(), name);
    }
    const std::string best = targets().front();
    setenv("KA_VECTOR_TARGET", "none of this name", 1);
    ASSERT_TRUE(kaSegmentIteration::setTarget(nullptr));
    EXPECT_EQ(kaSegmentIteration::targetName(), best);
    unsetenv("KA_VECTOR_TARGET");
    ASSERT_TRUE(kaSegmentIteration::setTarget(nullptr));
    EXPECT_EQ(kaSegmentIteration::targetName(), best);
    EXPECT_FALSE(kaSegmentIteration::setTarget("none of this name"));
    EXPECT_EQ(kaSegmentIteration::targetName(), best);
}

} // namespace
