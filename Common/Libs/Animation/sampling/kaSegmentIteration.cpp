#include "kaSegmentIteration.h"

#include "kaSegmentFormula.h"

#include <cstdint>

#ifndef KA_SEGMENT_ITERATION_FUNCTIONS
#define KA_SEGMENT_ITERATION_FUNCTIONS
namespace kaSegmentIteration {

/// What one instruction set makes of this file.
struct Functions {
    decltype(&sample) one;
    decltype(&sampleEach) each;
    decltype(&sampleMany) many;
    std::int64_t target;
};

} // namespace kaSegmentIteration
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kaSegmentIteration.cpp"
#include <hwy/foreach_target.h>
// First the lines above, which compile this file once for each instruction set.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kaSegmentIteration {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Results below this magnitude are written as 0; single precision on the safe side of it.
constexpr float SurelyValue = 1.000002e-6F;
constexpr float SurelyZero = 0.999998e-6F;

/// The numbers of as many segments as `D` has lanes, and the frame that each is sampled at.
template <class D>
struct Inputs {
    using V = hn::Vec<hn::Rebind<float, D>>;

    V x0, y0, x1, y1, x2, y2, x3, y3;
    V perFrame, doubtFrom, doubtTo, bias, slack, bend, slope, rounding;
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

template <class D, class V>
HWY_INLINE V clampToUnit(D d, V t) {
    return hn::Min(hn::Max(t, hn::Zero(d)), hn::Set(d, 1));
}

/// The slope of the time at a key, or where that is small what the start does best with.
template <class DF, class V>
HWY_INLINE V lessSteep(DF df, V slope) {
    const V least = hn::Set(df, 0.45F);
    const V raised = hn::MulAdd(hn::Mul(slope, slope), hn::Set(df, 0.25F / 0.45F), least);
    return hn::IfThenElse(hn::Gt(slope, hn::Add(least, least)), slope, raised);
}

/// Where t is about, to a millionth in most cases: a quotient that has the time's slopes at both keys,
/// vertical ones made less steep, and one step of Halley's method. `s` is the part of the length.
template <class DF, class V>
HWY_INLINE V nearby(DF df, const V s, const V left, const V right) {
    const V one = hn::Set(df, 1.0F);
    const V two = hn::Set(df, 2.0F);
    const V l = lessSteep(df, left);
    const V r = lessSteep(df, right);
    const V lr = hn::Mul(l, r);
    const V w = hn::NegMulAdd(s, s, s);
    const V start = hn::Div(hn::MulAdd(r, w, hn::Mul(lr, hn::Mul(s, s))),
                            hn::MulAdd(hn::NegMulAdd(two, lr, hn::Add(l, r)), w, lr));
    const V a = hn::Sub(hn::Add(left, right), two);
    const V b = hn::Sub(hn::Sub(one, a), left);
    const auto [f, g, h] = derivatives(df, a, b, left, s, start);
    return clampToUnit(df, hn::Sub(start, hn::Div(hn::Mul(f, g), hn::NegMulAdd(f, h, hn::Mul(g, g)))));
}

template <class D>
using Floats = hn::Vec<hn::Rebind<float, D>>;
template <class D>
using Doubles = hn::Vec<D>;
template <class D>
using Truths = hn::Mask<hn::Rebind<float, D>>;

/// One coordinate of the segment as a polynomial of t, from the key on.
template <class D>
struct Polynomial {
    Doubles<D> a, b, c;
};

/// Of which no digit is lost.
template <class D>
HWY_INLINE Polynomial<D> polynomial(D d, Doubles<D> p0, Doubles<D> p1, Doubles<D> p2, Doubles<D> p3) {
    const Doubles<D> three = hn::Set(d, 3.0);
    const Doubles<D> c = hn::Mul(three, hn::Sub(p1, p0));
    const Doubles<D> b = hn::MulSub(three, hn::Sub(p2, p1), c);
    return {hn::Sub(hn::Sub(hn::Sub(p3, p0), c), b), b, c};
}

/// The values where no doubt is left, and which these are.
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
    Truths<D> sure = hn::Or(hn::Lt(s, in.doubtFrom), hn::Gt(s, in.doubtTo));

    const Doubles<D> x0 = wide(in.x0);
    const Polynomial<D> time = polynomial(d, x0, wide(in.x1), wide(in.x2), wide(in.x3));
    const Doubles<D> target = hn::Sub(wide(in.frame), x0);
    Doubles<D> t = wide(nearby(df, s, left, right));
    VF missed;
    for (int round = 0;; ++round) {
        const auto at = derivatives(d, time.a, time.b, time.c, target, t);
        const Doubles<D> fall = hn::Div(at.g, hn::NegMulAdd(at.f, at.h, hn::Mul(at.g, at.g)));
        const Doubles<D> step = hn::Mul(at.f, fall);
        t = hn::Sub(t, step);
        const VF inverse = narrow(fall);
        const VF length = hn::Abs(narrow(step));
        missed = hn::Mul(in.slack, inverse);
        const VF around = hn::Add(length, missed);
        const VF reach = hn::MulAdd(hn::Mul(in.bend, inverse), around, around);
        const Truths<D> near =
            hn::And(hn::And(hn::Le(reach, hn::Set(df, 1.0F / 32)),
                            hn::Ge(hn::Mul(narrow(at.g), inverse), hn::Set(df, 0.5F))),
                    hn::Le(hn::Mul(hn::Mul(reach, reach), length), hn::Set(df, kaSegmentBounds::Settled)));
        if (HWY_LIKELY(hn::AllTrue(df, hn::Or(near, hn::Not(sure)))))
            break;
        if (round == 3) {
            sure = hn::And(sure, near);
            break;
        }
        t = clampToUnit(d, t);
    }
    // Of three roots the formula takes none above 1.
    sure = hn::And(sure, hn::And(hn::Lt(missed, hn::Set(df, 4e-8F)), hn::Lt(s, hn::Set(df, 1.0F - 3e-7F))));
    t = hn::Sub(t, wide(in.bias));

    const Doubles<D> y0 = wide(in.y0);
    const Polynomial<D> of = polynomial(d, y0, wide(in.y1), wide(in.y2), wide(in.y3));
    const Doubles<D> result = hn::MulAdd(hn::MulAdd(hn::MulAdd(of.a, t, of.b), t, of.c), t, y0);
    const Doubles<D> off = wide(hn::MulAdd(in.slope, missed, in.rounding));
    const VF lowest = narrow(hn::Sub(result, off));
    const VF highest = narrow(hn::Add(result, off));
    const Truths<D> isValue =
        hn::And(hn::Eq(lowest, highest), hn::Gt(hn::Abs(lowest), hn::Set(df, SurelyValue)));
    const Truths<D> isZero = hn::Lt(hn::Max(hn::Abs(lowest), hn::Abs(highest)), hn::Set(df, SurelyZero));
    value = hn::IfThenElseZero(isValue, lowest);
    return hn::And(sure, hn::Or(isValue, isZero));
}

/// Of one segment, in every lane.
template <class D>
HWY_INLINE Inputs<D> broadcast(D, const kaSegment& segment) {
    const hn::Rebind<float, D> df;
    const kaSegment::Points& p = segment.points();
    const kaSegmentBounds& b = segment.bounds();
    const auto set = [df](float x) HWY_ATTR { return hn::Set(df, x); };
    return {set(p.x0),    set(p.y0),   set(p.x1),       set(p.y1),        set(p.x2),      set(p.y2),
            set(p.x3),    set(p.y3),   set(b.perFrame), set(b.doubtFrom), set(b.doubtTo), set(b.bias),
            set(b.slack), set(b.bend), set(b.slope),    set(b.rounding),  hn::Zero(df)};
}

bool SampleOne(const kaSegment& segment, float frame, float& value) {
    using D = hn::CappedTag<double, 1>;
    const D d;
    const hn::Rebind<float, D> df;
    Inputs<D> in = broadcast(d, segment);
    in.frame = hn::Set(df, frame);
    auto result = hn::Zero(df);
    if (!hn::AllTrue(df, iterate(d, in, result)))
        return false;
    value = hn::GetLane(result);
    return true;
}

void SampleEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                bool* written) {
    using D = hn::CappedTag<double, 8>;
    const D d;
    const hn::Rebind<float, D> df;
    const std::size_t lanes = hn::Lanes(d);
    constexpr std::size_t Most = 8;
    constexpr std::size_t Numbers = sizeof(kaSegment) / sizeof(float);
    HWY_ALIGN float numbers[Numbers][Most];
    HWY_ALIGN float results[Most];
    for (std::size_t i = 0; i < count; i += lanes) {
        const std::size_t used = HWY_MIN(lanes, count - i);
        HWY_ALIGN float at[Most];
        for (std::size_t k = 0; k < lanes; ++k) {
            const std::size_t from = i + (k < used ? k : 0);
            float own[Numbers];
            hwy::CopyBytes<sizeof(kaSegment)>(segments[from], own);
            for (std::size_t n = 0; n < Numbers; ++n)
                numbers[n][k] = own[n];
            at[k] = frames[from];
        }
        const auto load = [&](std::size_t n) HWY_ATTR { return hn::Load(df, numbers[n]); };
        const Inputs<D> in{load(0),  load(1),  load(2),  load(3),  load(4),         load(5),
                           load(6),  load(7),  load(8),  load(9),  load(10),        load(11),
                           load(12), load(13), load(14), load(15), hn::Load(df, at)};
        auto result = hn::Zero(df);
        const auto sure = iterate(d, in, result);
        hn::Store(result, df, results);
        const bool all = hn::AllTrue(df, sure);
        HWY_ALIGN std::uint8_t bits[8] = {};
        if (!all)
            hn::StoreMaskBits(df, sure, bits);
        for (std::size_t k = 0; k < used; ++k) {
            written[i + k] = all || (bits[0] >> k & 1U) != 0;
            if (written[i + k])
                values[i + k] = results[k];
            else
                written[i + k] =
                    kaSegmentFormula::sample(segments[i + k]->points(), frames[i + k], values[i + k]);
        }
    }
}

void SampleMany(const kaSegment& segment, const float* frames, std::size_t count, float* values,
                bool* written) {
    using D = hn::CappedTag<double, 8>;
    const D d;
    const hn::Rebind<float, D> df;
    const std::size_t lanes = hn::Lanes(d);
    Inputs<D> in = broadcast(d, segment);
    for (std::size_t i = 0; i < count; i += lanes) {
        const std::size_t used = HWY_MIN(lanes, count - i);
        HWY_ALIGN float at[8];
        HWY_ALIGN float results[8];
        for (std::size_t k = 0; k < lanes; ++k)
            at[k] = frames[i + (k < used ? k : 0)];
        in.frame = hn::Load(df, at);
        auto result = hn::Zero(df);
        const auto sure = iterate(d, in, result);
        hn::Store(result, df, results);
        HWY_ALIGN std::uint8_t bits[8] = {};
        hn::StoreMaskBits(df, sure, bits);
        for (std::size_t k = 0; k < used; ++k) {
            written[i + k] = (bits[0] >> k & 1U) != 0;
            if (written[i + k])
                values[i + k] = results[k];
            else
                written[i + k] = kaSegmentFormula::sample(segment.points(), frames[i + k], values[i + k]);
        }
    }
}

Functions functions() {
    return {SampleOne, SampleEach, SampleMany, HWY_TARGET};
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
void sampleFirstMany(const kaSegment& segment, const float* frames, std::size_t count, float* values,
                     bool* written);

/// Until the first call, which chooses: other objects may sample before those of this file are made.
Functions chosen{sampleFirst, sampleFirstEach, sampleFirstMany, 0};

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

void sampleFirstMany(const kaSegment& segment, const float* frames, std::size_t count, float* values,
                     bool* written) {
    chooseFirst();
    chosen.many(segment, frames, count, values, written);
}

} // namespace

bool sample(const kaSegment& segment, float frame, float& value) {
    return (segment.isIterated() && chosen.one(segment, frame, value)) ||
           kaSegmentFormula::sample(segment.points(), frame, value);
}

bool sampleWithoutFormula(const kaSegment& segment, float frame, float& value) {
    return chosen.one(segment, frame, value);
}

void sampleEach(const kaSegment* const* segments, const float* frames, std::size_t count, float* values,
                bool* written) {
    chosen.each(segments, frames, count, values, written);
}

void sampleMany(const kaSegment& segment, const float* frames, std::size_t count, float* values,
                bool* written) {
    chosen.many(segment, frames, count, values, written);
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
