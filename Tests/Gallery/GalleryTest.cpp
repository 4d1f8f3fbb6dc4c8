#include "Gallery.h"

#include "RegistryFixture.h"
#include "SegmentSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>

using namespace ka_test;

namespace {

/// Frames over the curve and a tenth of its span to either side, every key's frame and the floats next to it.
std::vector<float> framesOver(const std::vector<Key>& keys) {
    constexpr int COUNT = 1000;
    std::vector<float> frames;
    double low = 0.0;
    double high = 1.0;
    if (!keys.empty()) {
        low = static_cast<double>(keys.front().key.x);
        high = static_cast<double>(keys.back().key.x);
    }
    if (!std::isfinite(high))
        high = 1000.0;
    const double margin = (high - low) * 0.1;
    for (int i = 0; i <= COUNT; ++i)
        frames.push_back(static_cast<float>(low - margin + (high - low + 2 * margin) * i / COUNT));
    for (const Key& key : keys)
        for (float frame :
             {std::nextafter(key.key.x, -INFINITY), key.key.x, std::nextafter(key.key.x, INFINITY)})
            frames.push_back(frame);
    return frames;
}

class Gallery : public RegistryFixture, public testing::WithParamInterface<GalleryCurve> {};

TEST_P(Gallery, IsSampledToTheSameFloatAsThePlainFormula) {
    kaAnimationCurve2D* curve = build(GetParam());
    std::vector<Key> known;
    for (const GalleryKey& key : GetParam().keys)
        if (!key.forgotten)
            known.push_back(key.at);
    std::stable_sort(known.begin(), known.end(),
                     [](const Key& a, const Key& b) { return a.key.x < b.key.x; });
    for (float frame : framesOver(sampledKeys(GetParam()))) {
        const Sample expected = referenceSample(known, frame);
        const Sample actual = moduleSample(curve, frame);
        ASSERT_TRUE(sameSample(actual, expected))
            << "frame " << frame << ": " << actual << ", expected " << expected;
    }
}

/// How far a curve's samples are from the truth, at worst.
struct Worst {
    double error = 0.0; ///< in value, relative to the largest value of the segment where that is above 1
    int refused = 0;    ///< frames within a segment that get no value
    SegmentCase at;
};

/// The segments of a curve that have a truth to compare with: neither steps nor made of what is no number.
std::vector<SegmentCase> cubicSegments(const std::vector<Key>& keys) {
    std::vector<SegmentCase> segments;
    for (std::size_t i = 1; i < keys.size(); ++i) {
        const SegmentCase segment{keys[i - 1], keys[i], 0.0F};
        const auto& [left, right, frame] = segment;
        if (!isStep(segment) &&
            std::isfinite(left.out.x + right.in.x + left.key.y + right.key.y + right.key.x))
            segments.push_back(segment);
    }
    return segments;
}

template <class Sampler>
Worst worstOf(const std::vector<Key>& keys, Sampler&& sampler) {
    Worst worst;
    const std::vector<float> frames = framesOver(keys);
    for (SegmentCase segment : cubicSegments(keys)) {
        double scale = 1.0;
        for (const Spot& spot : {segment.left.key, segment.left.out, segment.right.in, segment.right.key})
            scale = std::max(scale, std::fabs(static_cast<double>(spot.y)));
        for (float frame : frames) {
            if (!(segment.left.key.x <= frame && frame < segment.right.key.x))
                continue;
            segment.frame = frame;
            const Sample sample = sampler(segment);
            worst.refused += sample.written ? 0 : 1;
            const double error =
                sample.written
                    ? errorAgainst(trueValues(segment.left, segment.right, frame), sample.value) / scale
                    : 0.0;
            if (error > worst.error) {
                worst.error = error;
                worst.at = segment;
            }
        }
    }
    return worst;
}

// The errors that the formula itself makes, kept in a file.

/// Below this a sample is as good as single precision gives it.
constexpr double ROUNDING = 2e-6;

using Table = std::map<std::string, Worst>;

Worst worstOfFormula(const GalleryCurve& curve) {
    return worstOf(sampledKeys(curve), [](const SegmentCase& segment) {
        return referenceSegment(segment.left, segment.right, segment.frame);
    });
}

void write(const std::string& path) {
    std::ofstream file(path);
    file
        << "# The curves of the gallery on which the closed cubic formula itself is off, or gives no value: "
           "how "
           "far at worst\n"
           "# from the nearest of the true values (bisection in long double), how many frames get no value, "
           "and "
           "the worst\n"
           "# place: cubic coefficient A of the time polynomial, discriminant D, frame. Where |D| < 1e-6 the "
           "formula takes\n"
           "# the roots of D = 0, with the plain power for the cube root; where A is nearly 0 its digits "
           "cancel. "
           "Curves that\n"
           "# are not listed stay within 2e-6. Written by KA_WRITE_GOLDEN=1.\n"
           "# curve error refused | A D frame\n";
    for (const GalleryCurve& curve : gallery()) {
        const Worst worst = worstOfFormula(curve);
        if (worst.error <= ROUNDING && worst.refused == 0)
            continue;
        char line[160];
        std::snprintf(line, sizeof(line), "%s %.2e %d | %.2e %.2e %.9g\n", curve.name.c_str(), worst.error,
                      worst.refused, timePolynomial(worst.at.left, worst.at.right).a, discriminant(worst.at),
                      static_cast<double>(worst.at.frame));
        file << line;
    }
}

Table read(const std::string& path) {
    Table table;
    readTable(path, [&table](std::istream& words) {
        std::string name;
        Worst worst;
        if (!(words >> name >> worst.error >> worst.refused))
            return false;
        table[name] = worst;
        return true;
    });
    return table;
}

const Table& recorded() {
    static const Table table = [] {
        if (std::getenv("KA_WRITE_GOLDEN"))
            write(KA_GALLERY_TABLE);
        return read(KA_GALLERY_TABLE);
    }();
    return table;
}

/// Another mathematical library may round otherwise; a change of magnitude is a change of the formula.
void expectAsRecorded(const std::string& name, const Worst& now) {
    const auto found = recorded().find(name);
    const Worst then = found == recorded().end() ? Worst{ROUNDING, 0, {}} : found->second;
    EXPECT_LE(now.error, then.error > ROUNDING ? then.error * 1.5 : ROUNDING) << now.at;
    EXPECT_NEAR(now.refused, then.refused, 0.02 * then.refused);
    EXPECT_GE(now.error, then.error > ROUNDING ? then.error / 1.5 : 0.0)
        << "the table says more than is true";
}

TEST_P(Gallery, StaysAsNearToTheTruthAsTheTableSays) {
    ModuleSegment module;
    expectAsRecorded(GetParam().name, worstOf(sampledKeys(GetParam()), [&](const SegmentCase& segment) {
                         return module.sample(segment);
                     }));
}

TEST_P(Gallery, HasTheErrorsOfTheFormulaInTheTable) {
    expectAsRecorded(GetParam().name, worstOfFormula(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Curves, Gallery, testing::ValuesIn(gallery()),
                         [](const auto& row) { return row.param.name; });

TEST(GalleryItself, IsAllThatTheTableNames) {
    for (const auto& entry : recorded())
        EXPECT_EQ(galleryCurve(entry.first).name, entry.first);
    EXPECT_FALSE(recorded().empty());
}

TEST(GalleryItself, HasFortyCurvesOrMoreUnderNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const GalleryCurve& curve : gallery())
        names.insert(curve.name);
    EXPECT_EQ(names.size(), gallery().size());
    EXPECT_GE(gallery().size(), 40U);
}

} // namespace
