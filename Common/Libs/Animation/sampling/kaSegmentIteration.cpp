#include "kaSegmentIteration.h"

#include "kaSegmentFormula.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#ifndef KA_SEGMENT_ITERATION_FUNCTIONS
#define KA_SEGMENT_ITERATION_FUNCTIONS
namespace kaSegmentIteration {

/// What one instruction set makes of this file.
struct Functions {
    decltype(&sample) one;
    decltype(&sampleEach) each;
    std::int64_t target;
};

} // namespace kaSegmentIteration
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kaSegmentIteration.cpp"
#include <hwy/foreach_target.h>
// First the lines above, which compile this file once for each instruction set.
#include "kaSegmentFarRoot-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kaSegmentIteration {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Of three roots the formula takes none above 1: with s below this and t settled the root is below 1.
constexpr float BeforeEnd = 1.0F - 3e-7F;
/// Of the slope by which the step has gone, how much must be left wherever the root may be.
constexpr float SlopeKnown = 0.9F;
/// Of t. What is off by more would leave a doubt about most values.
constexpr float Settled = 4e-9F;
constexpr int MostRounds = 4;
/// What remains in doubt by a segment's steepest slope is looked at by the slope where t is: with room for the
/// quotient, as `kaSegmentBounds::slope` has it, and of that slope so much more for how the value is rounded and
/// bends while t is off by less than `Settled`.
constexpr double SlopeRoom = 1.25;
constexpr double Rounded = 0x1p-40;

/// The numbers of as many segments as `D` has lanes, and the frame that each is sampled at.
template <class D>
struct Inputs {
    using V = hn::Vec<hn::Rebind<float, D>>;

    V x0, y0, x1, y1, x2, y2, x3, y3;
    V perFrame, doubtFrom, doubtTo, lowered, slack, bend, slope, inverseSlopes;
    V frame;
};

/// A cubic and its first two derivatives at t, the second halved.
template <class V>
struct Derivatives {
    V f, g, h;
};

template <class D, class V>
HWY_INLINE Derivatives<V> derivatives(D d, V a, V b, V c, V target, V t) {
    const V h = hn::MulAdd(hn::Mul(hn::Set(d, 3), a), t, b);
    return {hn::MulSub(hn::MulAdd(hn::MulAdd(a, t, b), t, c), t, target), hn::MulAdd(hn::Add(h, b), t, c), h};
}

/// The cubic at t - step.
template <class V>
HWY_INLINE V shifted(V a, const Derivatives<V>& at, V step) {
    return hn::NegMulAdd(step, hn::NegMulAdd(step, hn::NegMulAdd(step, a, at.h), at.g), at.f);
}

template <class D, class V>
HWY_INLINE V clampToUnit(D d, V t) {
    return hn::Min(hn::Max(t, hn::Zero(d)), hn::Set(d, 1));
}

/// What the step from t to the root is a quotient of: a method of the fourth order, by all derivatives. The
/// step is f * above / below; its factor is about the inverse of the slope.
template <class V>
struct Quotient {
    V above, below;
};

template <class V>
HWY_INLINE Quotient<V> stepFactor(V a, const Derivatives<V>& at) {
    const V fh = hn::Mul(at.f, at.h);
    const V above = hn::MulSub(at.g, at.g, fh);
    return {above, hn::MulAdd(hn::Mul(a, at.f), at.f, hn::Mul(at.g, hn::Sub(above, fh)))};
}

/// A step in single precision, with a reciprocal of a few digits: what that leaves of the step's length is
/// less than single precision leaves of t, or little more.
template <class DF, class V>
HWY_INLINE V nearer(DF df, V a, V b, V c, V target, V t) {
    const Derivatives<V> at = derivatives(df, a, b, c, target, t);
    const Quotient<V> factor = stepFactor(a, at);
    return hn::NegMulAdd(hn::Mul(at.f, factor.above), hn::ApproximateReciprocal(factor.below), t);
}

/// Of two packed numbers (`kaSegmentBounds`).
template <class DF, class V>
HWY_INLINE V second(DF df, V packed) {
    return hn::BitCast(df, hn::ShiftLeft<16>(hn::BitCast(hn::RebindToUnsigned<DF>(), packed)));
}

/// Where t is about, to a millionth in most cases: a quotient that has the time's slopes at both keys, as
/// `inverseSlopes` tells them, and one step. `s` is the part of the length.
template <class DF, class V>
HWY_INLINE V nearby(DF df, const V s, const V left, const V right, const V inverseSlopes) {
    const V one = hn::Set(df, 1.0F);
    const V two = hn::Set(df, 2.0F);
    const V inverseRight = second(df, inverseSlopes);
    const V w = hn::NegMulAdd(s, s, s);
    const V above = hn::MulAdd(inverseSlopes, w, hn::Mul(s, s));
    const V below = hn::MulAdd(hn::Add(inverseSlopes, hn::Sub(inverseRight, two)), w, one);
    const V a = hn::Sub(hn::Add(left, right), two);
    const V b = hn::Sub(hn::Sub(one, a), left);
    const V start = hn::Mul(above, hn::ApproximateReciprocal(below));
    return clampToUnit(df, nearer(df, a, b, left, s, start));
}

/// The values where no doubt is left, and which these are.
///
/// After a step t is off by no more than what is left of the time there, with what the formula and roundings
/// may miss of it, divided by the least slope of the time between there and the root. That slope is the one
/// before the step without what the second derivative can take from it on the way; `SlopeKnown` relates it to
/// that by which t's error is reckoned, and `kaSegmentBounds::slope` leaves room for the quotient.
template <class D>
HWY_INLINE Truths<D> iterate(D d, const Inputs<D>& in, Floats<D>& value) {
    using VF = Floats<D>;
    const hn::Rebind<float, D> df;
    const auto wide = [d](VF v) HWY_ATTR { return hn::PromoteTo(d, v); };
    const auto narrow = [df](Doubles<D> v) HWY_ATTR { return hn::DemoteTo(df, v); };
    const VF threePerFrame = hn::Mul(hn::Set(df, 3.0F), in.perFrame);
    const VF s = hn::Mul(hn::Sub(in.frame, in.x0), in.perFrame);
    const VF left = hn::Mul(hn::Sub(in.x1, in.x0), threePerFrame);
    const VF right = hn::Mul(hn::Sub(in.x3, in.x2), threePerFrame);
    Truths<D> sure =
        hn::And(hn::Or(hn::Lt(s, in.doubtFrom), hn::Gt(s, in.doubtTo)), hn::Lt(s, hn::Set(df, BeforeEnd)));

    const Doubles<D> x0 = wide(in.x0);
    const Polynomial<D> time = polynomial(d, x0, wide(in.x1), wide(in.x2), wide(in.x3));
    const Doubles<D> target = hn::Sub(wide(in.frame), x0);
    Doubles<D> t = wide(nearby(df, s, left, right, in.inverseSlopes));
    VF missed;
    for (int round = 1;; ++round) {
        const Derivatives<Doubles<D>> at = derivatives(d, time.a, time.b, time.c, target, t);
        const Quotient<Doubles<D>> factor = stepFactor(time.a, at);
        const Doubles<D> fall = hn::Div(factor.above, factor.below);
        const Doubles<D> step = hn::Mul(at.f, fall);
        const VF rest = hn::Abs(narrow(shifted(time.a, at, step)));
        t = hn::Sub(t, step);
        const VF inverse = narrow(fall);
        missed = hn::Mul(hn::Add(in.slack, rest), inverse);
        const VF away = hn::Add(hn::Abs(narrow(step)), missed);
        const VF leastSlope = hn::NegMulAdd(in.bend, away, narrow(at.g));
        const Truths<D> near = hn::And(hn::Ge(hn::Mul(leastSlope, inverse), hn::Set(df, SlopeKnown)),
                                       hn::Le(missed, hn::Set(df, Settled)));
        if (HWY_LIKELY(hn::AllTrue(df, hn::Or(near, hn::Not(sure)))))
            break;
        if (round == MostRounds) {
            sure = hn::And(sure, near);
            break;
        }
        t = clampToUnit(d, t);
    }
    t = hn::Sub(t, wide(in.lowered));

    const Doubles<D> y0 = wide(in.y0);
    const Polynomial<D> of = polynomial(d, y0, wide(in.y1), wide(in.y2), wide(in.y3));
    const Doubles<D> result = hn::MulAdd(hn::MulAdd(hn::MulAdd(of.a, t, of.b), t, of.c), t, y0);
    const Doubles<D> off = wide(hn::Mul(in.slope, hn::Add(missed, second(df, in.lowered))));
    const VF lowest = narrow(hn::Sub(result, off));
    const VF highest = narrow(hn::Add(result, off));
    Truths<D> known = hn::And(sure, settled(df, lowest, highest, value));
    if (HWY_LIKELY(hn::AllTrue(df, known)))
        return known;
    const Doubles<D> bent = hn::MulAdd(hn::Mul(hn::Set(d, 3.0), of.a), t, hn::Add(of.b, of.b));
    const Doubles<D> slope = hn::Abs(hn::MulAdd(bent, t, of.c));
    const Doubles<D> unknown = wide(hn::Add(missed, second(df, in.lowered)));
    const Doubles<D> less = hn::MulAdd(hn::Mul(slope, hn::Set(d, SlopeRoom)), unknown,
                                       hn::Mul(wide(in.slope), hn::Set(d, Rounded)));
    const VF low = narrow(hn::Sub(result, less));
    const VF high = narrow(hn::Add(result, less));
    return hn::And(sure, settled(df, low, high, value));
}

/// Of one segment, in every lane.
template <class D>
HWY_INLINE Inputs<D> broadcast(D, const kaSegment& segment) {
    const hn::Rebind<float, D> df;
    const kaSegment::Points& p = segment.points();
    const kaSegmentBounds& b = segment.bounds();
    const auto set = [df](float x) HWY_ATTR { return hn::Set(df, x); };
    return {set(p.x0),       set(p.y0),        set(p.x1),      set(p.y1),
            set(p.x2),       set(p.y2),        set(p.x3),      set(p.y3),
            set(b.perFrame), set(b.doubtFrom), set(b.doubtTo), set(b.lowered),
            set(b.slack),    set(b.bend),      set(b.slope),   set(b.inverseSlopes),
            hn::Zero(df)};
}

/// `take`, which is `iterate` or `farRoot`, of a single segment.
template <class Take>
HWY_INLINE bool sampleAlone(const kaSegment& segment, float frame, float& value, const Take& take) {
    using D = hn::CappedTag<double, 1>;
    const D d;
    const hn::Rebind<float, D> df;
    Inputs<D> in = broadcast(d, segment);
    in.frame = hn::Set(df, frame);
    auto result = hn::Zero(df);
    if (!hn::AllTrue(df, take(d, in, result)))
        return false;
    value = hn::GetLane(result);
    return true;
}

HWY_NOINLINE bool sampleFarRoot(const kaSegment& segment, float frame, float& value) {
    return sampleAlone(segment, frame, value,
                       [](auto d, const auto& in, auto& result) HWY_ATTR { return farRoot(d, in, result); });
}

#if HWY_TARGET == HWY_SCALAR // which has no pairs
bool SampleOne(const kaSegment& segment, float frame, float& value) {
    if (segment.hasFarRoot())
        return sampleFarRoot(segment, frame, value);
    return sampleAlone(segment, frame, value,
                       [](auto d, const auto& in, auto& result) HWY_ATTR { return iterate(d, in, result); });
}
#else
using Pair = hn::FixedTag<double, 2>;

/// One of the control points, time and value side by side.
HWY_INLINE Doubles<Pair> point(const float& x) {
    return hn::PromoteTo(Pair(), hn::LoadU(hn::Rebind<float, Pair>(), &x));
}

HWY_INLINE bool settledAlone(float lowest, float highest, float& value) {
    const bool isValue = lowest == highest && std::fabs(lowest) > SurelyValue;
    if (!isValue && !(std::max(std::fabs(lowest), std::fabs(highest)) < SurelyZero))
        return false;
    value = isValue ? lowest : 0.0F;
    return true;
}

/// `iterate` for a single segment: its steps with time and value side by side, for here what counts is how
/// few instructions there are and how few of them wait for each other. What is nearly always so is asked by
/// branches, which wait for nothing.
bool SampleOne(const kaSegment& segment, float frame, float& value) {
    const Pair d;
    const hn::CappedTag<float, 1> df;
    const kaSegment::Points& p = segment.points();
    const kaSegmentBounds& bounds = segment.bounds();
    if (HWY_UNLIKELY(segment.hasFarRoot()))
        return sampleFarRoot(segment, frame, value);
    const float s = (frame - p.x0) * bounds.perFrame;
    if (!(s < bounds.doubtFrom || s > bounds.doubtTo) || !(s < BeforeEnd))
        return false;
    const float threePerFrame = 3.0F * bounds.perFrame;
    const auto near = nearby(df, hn::Set(df, s), hn::Set(df, (p.x1 - p.x0) * threePerFrame),
                             hn::Set(df, (p.x3 - p.x2) * threePerFrame), hn::Set(df, bounds.inverseSlopes));

    const auto p0 = point(p.x0);
    const Polynomial<Pair> of = polynomial(d, p0, point(p.x1), point(p.x2), point(p.x3));
    const auto target = hn::Sub(hn::OddEven(hn::Zero(d), hn::Set(d, static_cast<double>(frame))), p0);
    double t = static_cast<double>(hn::GetLane(near));
    for (int round = 1;; ++round) {
        const auto at = derivatives(d, of.a, of.b, of.c, target, hn::Set(d, t));
        const auto factor = stepFactor(of.a, at);
        const double fall = hn::GetLane(factor.above) / hn::GetLane(factor.below);
        const double step = hn::GetLane(at.f) * fall;
        const auto steps =
            hn::OddEven(hn::Set(d, step + static_cast<double>(bounds.lowered)), hn::Set(d, step));
        const auto moved = shifted(of.a, at, steps);
        const double rest = std::fabs(hn::GetLane(moved));
        const double missed = (static_cast<double>(bounds.slack) + rest) * fall;
        const double away = std::fabs(step) + missed;
        const double leastSlope = hn::GetLane(at.g) - static_cast<double>(bounds.bend) * away;
        if (HWY_LIKELY(leastSlope * fall >= SlopeKnown && missed <= Settled)) {
            const double result = hn::GetLane(hn::UpperHalf(hn::Half<Pair>(), moved));
            const float unknown = hn::GetLane(second(df, hn::Set(df, bounds.lowered)));
            const double off = static_cast<double>(bounds.slope) * (missed + static_cast<double>(unknown));
            const auto lowest = static_cast<float>(result - off);
            const auto highest = static_cast<float>(result + off);
            if (HWY_LIKELY(settledAlone(lowest, highest, value)))
                return true;
            const auto bent = hn::NegMulAdd(steps, hn::Mul(hn::Set(d, 3.0), of.a), hn::Add(at.h, at.h));
            const auto slopes = hn::NegMulAdd(steps, bent, at.g);
            const double slope = std::fabs(hn::GetLane(hn::UpperHalf(hn::Half<Pair>(), slopes)));
            const double less = slope * SlopeRoom * (missed + static_cast<double>(unknown)) +
                                static_cast<double>(bounds.slope) * Rounded;
            return settledAlone(static_cast<float>(result - less), static_cast<float>(result + less), value);
        }
        if (round == MostRounds)
            return false;
        t = std::min(std::max(t - step, 0.0), 1.0);
    }
}
#endif

/// How many segments are sampled at a time.
using Side = hn::CappedTag<double, 8>;

#if HWY_ARCH_X86 && HWY_TARGET != HWY_SCALAR // where registers are made of blocks of four floats

/// The numbers `From` to `From` + 3 of as many segments as there are lanes, one number of all to a register.
template <std::size_t From, class V>
HWY_INLINE void transpose(const kaSegment* const* segments, V (&columns)[4]) {
    const hn::Rebind<float, Side> df;
    const hn::Full128<float> block;
    const auto four = [&](std::size_t i)
                          HWY_ATTR { return hn::LoadU(block, &segments[i]->points().x0 + From); };
    if constexpr (hn::MaxLanes(df) == 2) {
        const auto low = hn::InterleaveLower(block, four(0), four(1));
        const auto high = hn::InterleaveUpper(block, four(0), four(1));
        columns[0] = hn::LowerHalf(low);
        columns[1] = hn::UpperHalf(df, low);
        columns[2] = hn::LowerHalf(high);
        columns[3] = hn::UpperHalf(df, high);
    } else {
        const auto row = [&](std::size_t i) HWY_ATTR {
            if constexpr (hn::MaxLanes(df) == 8)
                return hn::Combine(df, four(i + 4), four(i));
            else
                return four(i);
        };
        const V row0 = row(0);
        const V row1 = row(1);
        const V row2 = row(2);
        const V row3 = row(3);
        const V evenLow = hn::InterleaveLower(df, row0, row2);
        const V oddLow = hn::InterleaveLower(df, row1, row3);
        const V evenHigh = hn::InterleaveUpper(df, row0, row2);
        const V oddHigh = hn::InterleaveUpper(df, row1, row3);
        columns[0] = hn::InterleaveLower(df, evenLow, oddLow);
        columns[1] = hn::InterleaveUpper(df, evenLow, oddLow);
        columns[2] = hn::InterleaveLower(df, evenHigh, oddHigh);
        columns[3] = hn::InterleaveUpper(df, evenHigh, oddHigh);
    }
}

/// As many segments as there are lanes.
HWY_INLINE Inputs<Side> gather(const kaSegment* const* segments) {
    using V = Floats<Side>;
    V p[4];
    V q[4];
    V b[4];
    V c[4];
    transpose<0>(segments, p);
    transpose<4>(segments, q);
    transpose<8>(segments, b);
    transpose<12>(segments, c);
    return {p[0], p[1], p[2], p[3], q[0], q[1], q[2], q[3], b[0],
            b[1], b[2], b[3], c[0], c[1], c[2], c[3], V()};
}

#else

HWY_INLINE Inputs<Side> gather(const kaSegment* const* segments) {
    const Side d;
    const hn::Rebind<float, Side> df;
    constexpr std::size_t Numbers = sizeof(kaSegment) / sizeof(float);
    HWY_ALIGN float numbers[Numbers][8];
    for (std::size_t k = 0; k < hn::Lanes(d); ++k) {
        float own[Numbers];
        hwy::CopyBytes<sizeof(kaSegment)>(segments[k], own);
        for (std::size_t n = 0; n < Numbers; ++n)
            numbers[n][k] = own[n];
    }
    const auto load = [&](std::size_t n) HWY_ATTR { return hn::Load(df, numbers[n]); };
    return {load(0), load(1),  load(2),  load(3),  load(4),  load(5),  load(6),  load(7),     load(8),
            load(9), load(10), load(11), load(12), load(13), load(14), load(15), hn::Zero(df)};
}

#endif

/// As many samples as there are lanes.
HWY_INLINE void sampleSide(const kaSegment* const* segments, const float* frames, float* values,
                           bool* written) {
    const Side d;
    const hn::Rebind<float, Side> df;
    const std::size_t lanes = hn::Lanes(d);
    bool same = true;
    for (std::size_t k = 1; k < lanes; ++k)
        same = same & (segments[k] == segments[0]);
    Inputs<Side> in = same ? broadcast(d, *segments[0]) : gather(segments);
    in.frame = hn::LoadU(df, frames);
    auto result = hn::Zero(df);
    const auto iterated = hn::Gt(in.perFrame, hn::Zero(df));
    auto sure = hn::AllFalse(df, iterated) ? iterated : iterate(d, in, result);
    const auto hasFarRoot = hn::Lt(in.perFrame, hn::Zero(df));
    if (HWY_UNLIKELY(!hn::AllFalse(df, hasFarRoot))) {
        auto others = hn::Zero(df);
        const auto known = hn::And(hasFarRoot, farRoot(d, in, others));
        result = hn::IfThenElse(known, others, result);
        sure = hn::Or(sure, known);
    }
    if (HWY_LIKELY(hn::AllTrue(df, sure))) {
        hn::StoreU(result, df, values);
        std::fill_n(written, lanes, true);
        return;
    }
    HWY_ALIGN float results[8];
    HWY_ALIGN std::uint8_t bits[8] = {};
    hn::Store(result, df, results);
    hn::StoreMaskBits(df, sure, bits);
    for (std::size_t k = 0; k < lanes; ++k) {
        written[k] = (bits[0] >> k & 1U) != 0;
        if (written[k])
            values[k] = results[k];
        else
            written[k] = kaSegmentFormula::sample(segments[k]->points(), frames[k], values[k]);
    }
}

void SampleEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                bool* written) {
    const std::size_t lanes = hn::Lanes(Side());
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        sampleSide(segments + i, frames + i, values + i, written + i);
    if (i == count)
        return;
    // The lanes that are left over take the first one's sample.
    const kaSegment* lastSegments[8];
    float lastFrames[8];
    float lastValues[8];
    bool lastWritten[8];
    for (std::size_t k = 0; k < lanes; ++k) {
        lastSegments[k] = segments[i + k < count ? i + k : i];
        lastFrames[k] = frames[i + k < count ? i + k : i];
    }
    sampleSide(lastSegments, lastFrames, lastValues, lastWritten);
    for (std::size_t k = 0; i + k < count; ++k) {
        written[i + k] = lastWritten[k];
        if (lastWritten[k])
            values[i + k] = lastValues[k];
    }
}

Functions functions() {
    return {SampleOne, SampleEach, HWY_TARGET};
}

} // namespace HWY_NAMESPACE
} // namespace kaSegmentIteration
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <cstdlib>
#include <cstring>
#include <string>

namespace kaSegmentIteration {

HWY_EXPORT(functions);

namespace {

bool sampleFirst(const kaSegment& segment, float frame, float& value);
void sampleFirstEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                     bool* written);

/// Until the first call, which chooses: other objects may sample before those of this file are made.
Functions chosen{sampleFirst, sampleFirstEach, 0};

std::int64_t usableTargets() {
    return hwy::SupportedTargets() & HWY_TARGETS;
}

/// The best of these, each a bit.
void choose(std::int64_t targets) {
    hwy::ChosenTarget best; // of our own: the library's is for all of the process
    best.Update(targets);
    chosen = HWY_DISPATCH_TABLE(functions)[best.GetIndex()]();
}

std::int64_t targetOf(const char* name) {
    std::int64_t targets = usableTargets();
    while (targets != 0) {
        const std::int64_t target = targets & -targets;
        if (std::strcmp(hwy::TargetName(target), name) == 0)
            return target;
        targets &= ~target;
    }
    return 0;
}

void chooseFirst() {
    const char* name = std::getenv("KA_VECTOR_TARGET");
    const std::int64_t wanted = name ? targetOf(name) : 0;
    choose(wanted != 0 ? wanted : usableTargets());
}

bool sampleFirst(const kaSegment& segment, float frame, float& value) {
    chooseFirst();
    return chosen.one(segment, frame, value);
}

void sampleFirstEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                     bool* written) {
    chooseFirst();
    chosen.each(segments, frames, count, values, written);
}

} // namespace

bool sample(const kaSegment& segment, float frame, float& value) {
    return ((segment.isIterated() || segment.hasFarRoot()) && chosen.one(segment, frame, value)) ||
           kaSegmentFormula::sample(segment.points(), frame, value);
}

bool sampleWithoutFormula(const kaSegment& segment, float frame, float& value) {
    return chosen.one(segment, frame, value);
}

void sampleEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                bool* written) {
    chosen.each(segments, frames, count, values, written);
}

std::string targetNames() {
    std::string names;
    for (std::int64_t targets = usableTargets(); targets != 0; targets &= targets - 1)
        names += std::string(names.empty() ? "" : " ") + hwy::TargetName(targets & -targets);
    return names;
}

const char* targetName() {
    if (chosen.target == 0)
        chooseFirst();
    return hwy::TargetName(chosen.target);
}

bool setTarget(const char* name) {
    if (!name) {
        chooseFirst();
        return true;
    }
    const std::int64_t target = targetOf(name);
    if (target == 0)
        return false;
    choose(target);
    return true;
}

} // namespace kaSegmentIteration
#endif
