#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

// Wider than some processors' registers: how such values are passed depends on the build, but nothing here is
// called across one.
#pragma GCC diagnostic ignored "-Wpsabi"

/// Arithmetic on several doubles side by side, element by element, with the results of `double` in each. The
/// functions here exist for both, so that a formula can be written once as a template.
using kaLanes = double __attribute__((vector_size(32)));

inline constexpr std::size_t kaLaneCount = sizeof(kaLanes) / sizeof(double);

/// Two of them, which every processor that this is built for has registers for.
using kaPair = double __attribute__((vector_size(16)));

namespace kaLanesDetail {

using LaneBits = std::uint64_t __attribute__((vector_size(sizeof(kaLanes))));
using PairBits = std::uint64_t __attribute__((vector_size(sizeof(kaPair))));

/// The integer of the same width and as many lanes.
template <class Real>
struct Bits {
    using type = std::uint64_t;
};
template <>
struct Bits<kaLanes> {
    using type = LaneBits;
};
template <>
struct Bits<kaPair> {
    using type = PairBits;
};

template <class To, class From>
inline To bitCast(const From& from) {
    static_assert(sizeof(To) == sizeof(From), "the same bits");
    To to;
    std::memcpy(&to, &from, sizeof(to));
    return to;
}

inline constexpr std::uint64_t SignBit = std::uint64_t(1) << 63;

} // namespace kaLanesDetail

template <class Real>
inline Real kaMagnitude(const Real& x) {
    using namespace kaLanesDetail;
    return bitCast<Real>(bitCast<typename Bits<Real>::type>(x) & ~SignBit);
}
inline double kaMagnitude(double x) {
    return std::fabs(x);
}

/// `magnitude`, which is not negative, with the sign of `sign`.
template <class Real>
inline Real kaWithSign(const Real& magnitude, const Real& sign) {
    using namespace kaLanesDetail;
    using Word = typename Bits<Real>::type;
    return bitCast<Real>(bitCast<Word>(magnitude) | (bitCast<Word>(sign) & SignBit));
}

inline double kaSquareRoot(double x) {
    return std::sqrt(x);
}
inline kaLanes kaSquareRoot(const kaLanes& x) {
    kaLanes root;
    for (std::size_t i = 0; i < kaLaneCount; ++i)
        root[i] = std::sqrt(x[i]);
    return root;
}

/// The cube root of a positive number, relative error below 2^-50, in a third of the time of the power. Of 0
/// it is 0; of other numbers that are no normal ones it is anything.
template <class Real>
inline Real kaQuickCubeRoot(const Real& x) {
    using namespace kaLanesDetail;
    using Word = typename Bits<Real>::type;
    // A third of the exponent gives 1 / cube root to within 4 %.
    const Word third = (bitCast<Word>(x) >> 32) * 0x55555555ULL;
    Real inverse = bitCast<Real>(0x553ef0ff289dd796ULL - third);
    // The series of (1 - r)^(-1/3), twice.
    Real r = 1.0 - x * inverse * (inverse * inverse);
    inverse += inverse * r * ((1.0 / 3.0 + 2.0 / 9.0 * r) + r * r * (14.0 / 81.0 + 35.0 / 243.0 * r));
    r = 1.0 - x * inverse * (inverse * inverse);
    inverse += inverse * r * (1.0 / 3.0 + r * (2.0 / 9.0 + 14.0 / 81.0 * r));
    return x * (inverse * inverse);
}

template <class Real>
inline Real kaQuickSignedCubeRoot(const Real& x) {
    return kaWithSign(kaQuickCubeRoot(kaMagnitude(x)), x);
}

/// The same of two numbers, of which either may be several side by side.
template <class Real>
inline std::pair<Real, Real> kaQuickSignedCubeRoots(const Real& a, const Real& b) {
    return {kaQuickSignedCubeRoot(a), kaQuickSignedCubeRoot(b)};
}
template <>
inline std::pair<double, double> kaQuickSignedCubeRoots(const double& a, const double& b) {
    const kaPair roots = kaQuickSignedCubeRoot(kaPair{a, b});
    return {roots[0], roots[1]};
}
