// Included once for each instruction set, by kaSegmentIteration.cpp.
#if defined(KA_SEGMENT_FAR_ROOT_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef KA_SEGMENT_FAR_ROOT_INL
#undef KA_SEGMENT_FAR_ROOT_INL
#else
#define KA_SEGMENT_FAR_ROOT_INL
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kaSegmentIteration {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

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

/// Results below this magnitude are written as 0; single precision on the safe side of it.
constexpr float SurelyValue = 1.000002e-6F;
constexpr float SurelyZero = 0.999998e-6F;

/// The value that everything from `lowest` to `highest` is written as. @return where there is one.
template <class DF, class V>
HWY_INLINE hn::Mask<DF> settled(DF df, V lowest, V highest, V& value) {
    const auto isValue = hn::And(hn::Eq(lowest, highest), hn::Gt(hn::Abs(lowest), hn::Set(df, SurelyValue)));
    const auto isZero = hn::Lt(hn::Max(hn::Abs(lowest), hn::Abs(highest)), hn::Set(df, SurelyZero));
    value = hn::IfThenElseZero(isValue, lowest);
    return hn::Or(isValue, isZero);
}

/// By how much t may be off where a cubic has one root far away, in units of a rounding and of that root's
/// distance: 8 by the formula's steps for the first angle tried and 20 for another, 5 by those here; the rest is
/// room.
constexpr double FirstRoundings = 16.0;
constexpr double OtherRoundings = 28.0;
/// How little the cosine of the far root's angle is beside 1.
constexpr double Beside = 0x1p-10;
/// 120 degrees are less by this with the formula's pi of 12 digits.
constexpr double ShortTurn = 2.0 / 3.0 * 9.7932384626e-12;

/// A cosine beside 1 or -1, as it came out rounded, and from it the sine and cosine of a third of the small
/// angle to the next multiple of 180 degrees.
template <class V>
struct ThirdOfAngle {
    V sine, cosine;
};

/// @param below  of the cosine's magnitude, what it has less than 1: up to `Beside`, where the series are as
/// good as exact.
template <class D, class V>
HWY_INLINE ThirdOfAngle<V> thirdOfAngle(D d, V below) {
    const auto set = [d](double x) HWY_ATTR { return hn::Set(d, x); };
    const V ends = hn::MulAdd(below, set(5.0 / 896 / 3), set(3.0 / 160 / 3));
    const V series = hn::MulAdd(hn::MulAdd(ends, below, set(1.0 / 12 / 3)), below, set(1.0 / 3));
    const V third = hn::Mul(hn::Sqrt(hn::Add(below, below)), series);
    const V square = hn::Mul(third, third);
    const V bent = hn::MulAdd(square, set(1.0 / 120), set(-1.0 / 6));
    const V least = hn::MulAdd(square, set(-1.0 / 720), set(1.0 / 24));
    const V flat = hn::MulAdd(least, square, set(-1.0 / 2));
    return {hn::MulAdd(hn::Mul(bent, square), third, third), hn::MulAdd(flat, square, set(1.0))};
}

/// a / b, correctly rounded, where 1 / b is at hand, correctly rounded as well. Source: P. W. Markstein,
/// Computation of Elementary Functions on the IBM RISC System/6000 Processor, theorem 1.
///
/// Of one segment alone it is a division: that takes longer, but what comes next need not wait as long.
template <class D, class V>
HWY_INLINE V quotient(D d, V a, V b, V perB) {
    if (!HWY_NATIVE_FMA || hn::MaxLanes(d) == 1)
        return hn::Div(a, b);
    const V near = hn::Mul(a, perB);
    return hn::MulAdd(hn::NegMulAdd(near, b, a), perB, near);
}

/// The time's cubic as the formula reduces it, rounding for rounding.
template <class V>
struct ReducedCubic {
    V third, q, shift, discriminant, cosine;
};

template <class D, class In>
HWY_INLINE ReducedCubic<hn::Vec<D>> reducedCubic(D d, const In& in) {
    using V = hn::Vec<D>;
    const auto wide = [d](auto v) HWY_ATTR { return hn::PromoteTo(d, v); };
    const V one = hn::Set(d, 1.0);
    const V two = hn::Set(d, 2.0);
    const V three = hn::Set(d, 3.0);
    const V x0 = wide(in.x0);
    const V length = hn::Sub(wide(in.x3), x0);
    const V perLength = hn::Div(one, length);
    const V x1 = quotient(d, hn::Sub(wide(in.x1), x0), length, perLength);
    const V x2 = quotient(d, hn::Sub(wide(in.x2), x0), length, perLength);
    const V s = quotient(d, hn::Sub(wide(in.frame), x0), length, perLength);
    const V a = hn::Add(hn::Sub(one, hn::Mul(three, x2)), hn::Mul(three, x1));
    const V b = hn::Mul(three, hn::Sub(x2, hn::Mul(two, x1)));
    const V c = hn::Mul(three, x1);
    const V perA = hn::Div(one, a);
    const V a3 = hn::Mul(three, a);
    const V a33 = hn::Mul(a3, a);
    const V perA33 = hn::Div(one, a33);
    const V p = quotient(d, hn::Sub(hn::Mul(a3, c), hn::Mul(b, b)), a33, perA33);
    const V b222 = hn::Mul(hn::Mul(hn::Mul(two, b), b), b);
    const V a27 = hn::Mul(hn::Mul(hn::Mul(hn::Set(d, 27.0), a), a), a);
    const V q = hn::Sub(hn::Sub(hn::Div(b222, a27), quotient(d, hn::Mul(b, c), a33, perA33)),
                        quotient(d, s, a, perA));
    const V third = quotient(d, p, three, hn::Set(d, 1.0 / 3));
    const V cube = hn::Mul(hn::Mul(third, third), third);
    const V half = hn::Mul(q, hn::Set(d, 0.5));
    const V r = hn::Mul(hn::Set(d, -2.0), hn::Sqrt(hn::Neg(cube)));
    const V shift = hn::Mul(hn::Mul(b, perA), hn::Set(d, 1.0 / 3)); // but for a rounding or two
    return {third, q, shift, hn::Add(cube, hn::Mul(half, half)), hn::Div(q, r)};
}

/// The values where no doubt is left, and which these are, of segments whose coefficient of t^3 is so small
/// that one of three roots lies far away: there the digits that the formula's reduced cubic loses decide the
/// float. So that cubic is made as the formula makes it, to the last bit; what follows, the arc cosine of
/// something beside 1 and the cosines of a third of it, loses none and is had by short series.
///
/// The formula tries the roots in the order of their angles. The far one is never taken, and the other two are
/// tried here, each at 60 degrees from the far one's axis, more or less.
template <class D, class In>
HWY_INLINE hn::Mask<hn::Rebind<float, D>> farRoot(D d, const In& in, decltype(In::frame)& value) {
    using V = hn::Vec<D>;
    const hn::Rebind<float, D> df;
    const auto set = [d](double x) HWY_ATTR { return hn::Set(d, x); };
    const auto wide = [d](auto v) HWY_ATTR { return hn::PromoteTo(d, v); };
    const ReducedCubic<V> cubic = reducedCubic(d, in);
    const V below = hn::Sub(set(1.0), hn::Abs(cubic.cosine));
    const ThirdOfAngle<V> angle = thirdOfAngle(d, below);
    const V most = hn::Mul(set(2.0), hn::Sqrt(hn::Neg(cubic.third)));

    // The angles turned by what the short pi takes from them.
    const auto isFirst = hn::Gt(cubic.cosine, hn::Zero(d)); // the far root has no turn
    const V turn1 = hn::IfThenElseZero(isFirst, set(-ShortTurn));
    const V turn2 = hn::IfThenElse(isFirst, set(-2.0 * ShortTurn), set(2.0 * ShortTurn));
    const V signedMost = hn::IfThenElse(isFirst, hn::Neg(most), most);
    const V half = set(0.5);
    const V sine60 = set(0.86602540378443864676);
    const V cosine1 = hn::NegMulAdd(turn1, angle.sine, angle.cosine);
    const V cosine2 = hn::NegMulAdd(turn2, angle.sine, angle.cosine);
    const V sine1 = hn::MulAdd(turn1, angle.cosine, angle.sine);
    const V sine2 = hn::MulAdd(turn2, angle.cosine, angle.sine);
    const V t1 = hn::Sub(hn::Mul(signedMost, hn::MulAdd(sine60, sine1, hn::Mul(half, cosine1))), cubic.shift);
    const V t2 =
        hn::Sub(hn::Mul(signedMost, hn::NegMulAdd(sine60, sine2, hn::Mul(half, cosine2))), cubic.shift);

    const V missed1 = hn::Mul(most, set(FirstRoundings * 0x1p-53));
    const V missed2 = hn::Mul(most, set(OtherRoundings * 0x1p-53));
    const auto inside = [&](V t, V margin) HWY_ATTR {
        return hn::And(hn::Ge(t, hn::Add(set(-kaSegmentFormula::RootTolerance), margin)),
                       hn::Le(t, hn::Sub(set(1.0), margin)));
    };
    const auto taken1 = inside(t1, missed1);
    const auto taken2 = hn::AndNot(inside(t1, hn::Neg(missed1)), inside(t2, missed2));
    const auto known =
        hn::And(hn::And(hn::Or(taken1, taken2), hn::Le(below, set(Beside))),
                hn::And(hn::Le(cubic.discriminant, set(-kaSegmentFormula::DiscriminantTolerance)),
                        hn::And(hn::Gt(most, set(4.0)), hn::Lt(most, set(1e6)))));
    const V t = hn::IfThenElse(taken1, t1, t2);
    const V missed = hn::IfThenElse(taken1, missed1, missed2);

    const V y0 = wide(in.y0);
    const V y1 = wide(in.y1);
    const V y2 = wide(in.y2);
    const V y3 = wide(in.y3);
    const Polynomial<D> of = polynomial(d, y0, y1, y2, y3);
    const V result = hn::MulAdd(hn::MulAdd(hn::MulAdd(of.a, t, of.b), t, of.c), t, y0);
    // The slope, and what it may change by while t is settled to a millionth.
    const V bent = hn::MulAdd(hn::Mul(set(3.0), of.a), t, hn::Add(of.b, of.b));
    const V slope =
        hn::Add(hn::Abs(hn::MulAdd(bent, t, of.c)),
                hn::Mul(set(1e-4), hn::Add(hn::Abs(of.a), hn::Add(hn::Abs(of.b), hn::Abs(of.c)))));
    const V size = hn::Add(hn::Add(hn::Abs(y0), hn::Abs(y1)), hn::Add(hn::Abs(y2), hn::Abs(y3)));
    const V off = hn::MulAdd(slope, missed, hn::Mul(size, set(0x1p-45)));
    const auto lowest = hn::DemoteTo(df, hn::Sub(result, off));
    const auto highest = hn::DemoteTo(df, hn::Add(result, off));
    const auto one = hn::DemoteTo(df, hn::IfThenElseZero(known, set(1.0)));
    return hn::And(hn::Gt(one, hn::Zero(df)), settled(df, lowest, highest, value));
}

} // namespace HWY_NAMESPACE
} // namespace kaSegmentIteration
HWY_AFTER_NAMESPACE();

#endif
