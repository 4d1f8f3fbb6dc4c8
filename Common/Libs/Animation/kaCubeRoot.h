#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

/// Sign-preserving cube root, within one unit in the last place.
///
/// The argument is scaled by a power of 8 into [1/8, 1), where a cubic through four Chebyshev nodes is within 1.4 % of
/// the root; a Halley step cubes that error, and a second one cubes it again, past double precision.
/// Zeros, subnormals, infinities and NaN go to the standard library.
inline double kaCubeRoot(double x) {
    constexpr std::uint64_t MantissaMask = 0x000FFFFFFFFFFFFFULL;
    constexpr int MantissaBits = 52;
    constexpr int ExponentMask = 0x7FF;

    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof(bits));
    const int biased = static_cast<int>(bits >> MantissaBits) & ExponentMask;
    if (biased == 0 || biased == ExponentMask)
        return std::cbrt(x);
    // |x| = m * 8^third with m in [1/8, 1)
    const int exponent = biased - 1022;
    const int third = (exponent + 3074) / 3 - 1024;
    const std::uint64_t scaledBits =
        (bits & MantissaMask) | (static_cast<std::uint64_t>(1022 + exponent - 3 * third) << MantissaBits);
    double m = 0.0;
    std::memcpy(&m, &scaledBits, sizeof(m));

    double root =
        0.3583673209302209 + m * (1.315345817852591 + m * (-1.0888337168929574 + m * 0.4166388065364723));
    double cube = root * root * root;
    root = root * (cube + 2.0 * m) / (2.0 * cube + m);
    cube = root * root * root;
    root = root - root * (cube - m) / (2.0 * cube + m);

    const std::uint64_t powerBits = static_cast<std::uint64_t>(1023 + third) << MantissaBits;
    double power = 0.0;
    std::memcpy(&power, &powerBits, sizeof(power));
    return std::copysign(root * power, x);
}
