#include "SegmentSupport.h"

#include "kaAnimationController.h"
#include "kaAnimationManager.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace ka_test {

ModuleSegment::ModuleSegment()
    : _curve(makeCurve(std::vector<Key>{stepKey(0, 0), stepKey(1, 1)})),
      _left(keysOf(*_curve)[0]),
      _right(keysOf(*_curve)[1]) {}

Sample ModuleSegment::sample(const SegmentCase& segment) {
    place(*_left, segment.left.key);
    place(*_left->getOutTangent(), segment.left.out);
    place(*_right, segment.right.key);
    place(*_right->getInTangent(), segment.right.in);
    return moduleSample(_curve, segment.frame);
}

Sample moduleSample(kaAnimationCurve2D* curve, float frame) {
    // A value that sampling never gives on its own: where it is still there, none was written.
    const float mark = -7.77e33F;
    Sample sample;
    sample.value = mark;
    sample.returned = kaAnimationController::the()->computeCurveValue(curve, frame, sample.value);
    sample.written = sample.value != mark;
    return sample;
}

bool sameSample(const Sample& a, const Sample& b) {
    if (a.returned != b.returned || a.written != b.written)
        return false;
    return !a.written || a.value == b.value || (std::isnan(a.value) && std::isnan(b.value));
}

std::uint64_t Random::next() {
    _state += 0x9E3779B97F4A7C15ULL;
    std::uint64_t mixed = _state;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBULL;
    return mixed ^ (mixed >> 31U);
}

namespace {

float narrow(double value) {
    return static_cast<float>(value);
}

/// Handles mostly within the segment, some astray, some on its ends or on their keys.
double share(Random& random) {
    if (random.chance(0.15))
        return random.chance(0.5) ? 0.0 : 1.0;
    return random.chance(0.8) ? random.unit() : random.between(-2.0, 3.0);
}

/// Where the in handle stands for an out handle at `out`: anywhere, or a third of the segment farther on,
/// which makes the cubic coefficient of the time vanish, or nearly there.
double shareOfIn(Random& random, double out) {
    if (!random.chance(0.15))
        return share(random);
    const double apart = random.chance(0.3) ? 0.0 : std::pow(10.0, random.between(-12.0, -3.0));
    return out + 1.0 / 3.0 + (random.chance(0.5) ? apart : -apart);
}

} // namespace

SegmentCase randomSegment(Random& random) {
    const double magnitudes[] = {0.0, 1.0, 100.0, 1e4, 1e6};
    const double x0 = random.between(-1, 1) * magnitudes[random.next() % 5];
    const double span = std::pow(10.0, random.between(-1.0, 3.0));
    const auto value = [&] { return narrow(random.between(-10.0, 10.0)); };
    SegmentCase segment;
    segment.left.key = {narrow(x0), value()};
    segment.right.key = {narrow(x0 + span), value()};
    const double out = random.chance(0.05) ? 1.0 / 3.0 : share(random);
    segment.left.out = {narrow(x0 + span * out), value()};
    segment.right.in = {narrow(x0 + span * shareOfIn(random, out)), value()};
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

bool isStep(const SegmentCase& segment) {
    const auto same = [](const Spot& a, const Spot& b) { return a.x == b.x && a.y == b.y; };
    return same(segment.left.out, segment.left.key) && same(segment.right.in, segment.right.key);
}

double discriminant(const SegmentCase& segment) {
    const TimePolynomial x = timePolynomial(segment.left, segment.right);
    const double x0 = static_cast<double>(segment.left.key.x);
    const double s =
        (static_cast<double>(segment.frame) - x0) / (static_cast<double>(segment.right.key.x) - x0);
    const double p = (3.0 * x.a * x.c - x.b * x.b) / (3.0 * x.a * x.a);
    const double q =
        2.0 * x.b * x.b * x.b / (27.0 * x.a * x.a * x.a) - x.b * x.c / (3.0 * x.a * x.a) - s / x.a;
    return std::fabs(std::pow(p / 3.0, 3.0) + std::pow(q / 2.0, 2.0));
}

namespace {

std::string text(float value) {
    char buffer[32];
    std::snprintf(buffer, sizeof(buffer), "%.9g", static_cast<double>(value));
    return buffer;
}

bool readFloat(std::istream& stream, float& value) {
    std::string word;
    if (!(stream >> word))
        return false;
    value = std::strtof(word.c_str(), nullptr);
    return true;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const SegmentCase& segment) {
    for (const Spot& spot : {segment.left.key, segment.left.out, segment.right.in, segment.right.key})
        stream << text(spot.x) << ' ' << text(spot.y) << ' ';
    return stream << text(segment.frame);
}

std::ostream& operator<<(std::ostream& stream, const Sample& sample) {
    stream << (sample.returned ? "true" : "false");
    return sample.written ? stream << ' ' << text(sample.value) : stream;
}

bool readSegment(std::istream& stream, SegmentCase& segment) {
    for (Spot* spot : {&segment.left.key, &segment.left.out, &segment.right.in, &segment.right.key})
        if (!readFloat(stream, spot->x) || !readFloat(stream, spot->y))
            return false;
    segment.left.in = segment.left.key;
    segment.right.out = segment.right.key;
    return readFloat(stream, segment.frame);
}

void readTable(const std::string& path, const std::function<bool(std::istream& words)>& readRow) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        if (!line.empty() && line[0] != '#' && !readRow(words))
            throw std::runtime_error("not a row of the table: " + line);
    }
}

} // namespace ka_test
