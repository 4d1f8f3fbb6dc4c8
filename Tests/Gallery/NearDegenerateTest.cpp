#include "RegistryFixture.h"
#include "SegmentSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

using namespace ka_test;

namespace {

constexpr int SEGMENTS = 100000;

/// Segments whose handles stand a third of the span apart but for a little: the cubic coefficient A of the
/// time polynomial is 3 times that little.
SegmentCase nearDegenerate(Random& random) {
    const double starts[] = {0.0, 0.0, 1.0, 10.0, 1000.0};
    const double spans[] = {1.0, 3.0, 7.0, 30.0, 25.0, 100.0, 48.0, 4096.0};
    const double x0 = starts[random.next() % 5];
    const double span = spans[random.next() % 8];
    const double offset = random.chance(0.5) ? 1.0 / 3.0 : random.between(0.0, 2.0 / 3.0);
    const double apart = std::pow(10.0, random.between(-18.0, -1.0)) * (random.chance(0.5) ? 1.0 : -1.0);
    SegmentCase segment;
    segment.left.key = {static_cast<float>(x0), 0.0F};
    segment.right.key = {static_cast<float>(x0 + span), 1.0F};
    segment.left.out = {static_cast<float>(x0 + span * offset), static_cast<float>(random.unit())};
    segment.right.in = {static_cast<float>(x0 + span * (offset + 1.0 / 3.0 + apart)),
                        static_cast<float>(random.unit())};
    segment.left.in = segment.left.key;
    segment.right.out = segment.right.key;
    segment.frame = static_cast<float>(x0 + span * random.unit());
    if (segment.frame >= segment.right.key.x)
        segment.frame = segment.left.key.x;
    return segment;
}

/// The decimal magnitude of A; 0 stands for A = 0.
int decadeOf(double a) {
    return a == 0.0 ? 0 : static_cast<int>(std::floor(std::log10(std::fabs(a))));
}

/// From this magnitude of A on the formula is used, with the error that it has.
constexpr double SMALL_CUBE = 1e-5;
/// The most that a value between 0 and 1 may be off: of what the formula gives, and by the rounding to a
/// float.
constexpr double FORMULA_ERROR = 2e-6;
constexpr double ROUNDING = 3e-8;

double mostError(double a) {
    return std::fabs(a) < SMALL_CUBE ? ROUNDING : FORMULA_ERROR;
}

/// The decimal magnitude at which that begins.
constexpr int FIRST_OF_FORMULA = -5;

struct Row {
    int count = 0;
    int refused = 0; ///< no value at all
    int off = 0;     ///< off by more than a millionth of the values' range
    double error = -1.0;
    SegmentCase worst;
};

using Table = std::map<int, Row>;

std::string keyOf(int decade) {
    return decade == 0 ? "0" : "1e" + std::to_string(decade);
}

/// What the module makes of the segments.
Table computeTable() {
    Table table;
    ModuleSegment module;
    Random random(3);
    for (int i = 0; i < SEGMENTS; ++i) {
        const SegmentCase segment = nearDegenerate(random);
        Row& row = table[decadeOf(timePolynomial(segment.left, segment.right).a)];
        ++row.count;
        const Sample sample = module.sample(segment);
        if (!sample.written) {
            ++row.refused;
            continue;
        }
        const double error =
            errorAgainst(trueValues(segment.left, segment.right, segment.frame), sample.value);
        row.off += error <= 1e-6 ? 0 : 1;
        if (error > row.error) {
            row.error = error;
            row.worst = segment;
        }
    }
    return table;
}

void write(const Table& table, const std::string& path) {
    std::ofstream file(path);
    file << "# How far samples are off where the cubic coefficient A of the time polynomial is nearly 0. "
            "Values "
            "run from 0\n"
            "# to 1. Below 1e-5 the time is solved for as what is nearly a parabola, to the last bit; from "
            "there "
            "on by the\n"
            "# closed cubic formula, which divides by A three times over, so that digits cancel. One row for "
            "each "
            "decimal\n"
            "# magnitude of A (0: A is exactly 0): how many of the segments fell there, how many of them got "
            "no "
            "value, how\n"
            "# many one that is off by more than a millionth, the worst error in value, and for which "
            "segment: "
            "left key,\n"
            "# its out handle, in handle of the right key, right key, frame. Written by KA_WRITE_GOLDEN=1.\n"
            "# A count refused off error | x0 y0 x1 y1 x2 y2 x3 y3 frame\n";
    for (const auto& entry : table) {
        char error[32];
        std::snprintf(error, sizeof(error), "%.2e", entry.second.error);
        file << keyOf(entry.first) << ' ' << entry.second.count << ' ' << entry.second.refused << ' '
             << entry.second.off << ' ' << error << " | " << entry.second.worst << '\n';
    }
}

Table read(const std::string& path) {
    Table table;
    readTable(path, [&table](std::istream& words) {
        std::string key;
        std::string bar;
        Row row;
        words >> key >> row.count >> row.refused >> row.off >> row.error >> bar;
        if (bar != "|" || !readSegment(words, row.worst))
            return false;
        table[key == "0" ? 0 : std::atoi(key.c_str() + 2)] = row;
        return true;
    });
    return table;
}

class NearDegenerate : public RegistryFixture {
  protected:
    void SetUp() override {
        RegistryFixture::SetUp();
        if (std::getenv("KA_WRITE_GOLDEN"))
            write(computeTable(), KA_NEAR_DEGENERATE_TABLE);
    }
};

TEST_F(NearDegenerate, SegmentsAreSampledAsByBisectionOrThePlainFormula) {
    ModuleSegment module;
    Random random(3);
    int shown = 0;
    for (int i = 0; i < SEGMENTS && shown < 5; ++i) {
        const SegmentCase segment = nearDegenerate(random);
        const Sample expected = referenceSegment(segment.left, segment.right, segment.frame);
        const Sample actual = module.sample(segment);
        if (!sameSample(actual, expected)) {
            ADD_FAILURE() << segment << "\n  gives " << actual << ", expected " << expected;
            ++shown;
        }
    }
}

/// No row is off by more than a millionth but the first one in which the formula is used.
TEST_F(NearDegenerate, NoSegmentIsRefusedOrOff) {
    const Table computed = computeTable();
    for (const auto& entry : computed) {
        SCOPED_TRACE(keyOf(entry.first));
        const Row& row = entry.second;
        EXPECT_EQ(row.refused, 0);
        EXPECT_LE(row.error, mostError(timePolynomial(row.worst.left, row.worst.right).a)) << row.worst;
        if (entry.first != FIRST_OF_FORMULA) {
            EXPECT_EQ(row.off, 0) << row.worst;
        }
    }
    for (int decade : {0, -17, -16, -10, -9, -8, -7, -6, -5, -4, -3, -2, -1})
        EXPECT_EQ(computed.count(decade), 1U) << decade;
}

TEST_F(NearDegenerate, SegmentsAreOffByWhatTheTableSays) {
    const Table recorded = read(KA_NEAR_DEGENERATE_TABLE);
    const Table computed = computeTable();
    ASSERT_EQ(recorded.size(), computed.size());
    for (const auto& entry : recorded) {
        SCOPED_TRACE(keyOf(entry.first));
        ASSERT_EQ(computed.count(entry.first), 1U);
        const Row& now = computed.at(entry.first);
        const Row& then = entry.second;
        EXPECT_EQ(now.count, then.count) << "the input is not the same";
        EXPECT_EQ(now.refused, then.refused);
        // Another mathematical library may round otherwise; a change of magnitude is a change of the formula.
        EXPECT_LE(now.error, then.error * 1.5);
        EXPECT_GE(now.error, then.error / 1.5);
        EXPECT_LE(now.off, 2 * then.off);
    }
}

TEST_F(NearDegenerate, TheRecordedSegmentsThemselvesAreOffByAsMuch) {
    ModuleSegment module;
    for (const auto& entry : read(KA_NEAR_DEGENERATE_TABLE)) {
        const Row& row = entry.second;
        const Sample sample = module.sample(row.worst);
        ASSERT_TRUE(sample.written) << row.worst;
        const auto truth = trueValues(row.worst.left, row.worst.right, row.worst.frame);
        EXPECT_NEAR(errorAgainst(truth, sample.value), row.error, 0.5 * row.error) << row.worst;
    }
}

} // namespace
