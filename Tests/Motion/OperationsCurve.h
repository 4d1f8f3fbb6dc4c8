#pragma once

#include <cmath>
#include <functional>
#include <kaMotion/PlainCurve.h>
#include <vector>

namespace ka::motion::testing {

/// The value of a curve by the definition alone: the parameter by halving, the blend by its weights, all in
/// long double. Held outside of the keys.
inline long double slowValue(const std::vector<PlainKey>& keys, long double frame) {
    if (frame <= keys.front().x)
        return keys.front().y;
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        const PlainKey &a = keys[i], &b = keys[i + 1];
        if (frame >= b.x)
            continue;
        if (a.outX == a.x && a.outY == a.y && b.inX == b.x && b.inY == b.y)
            return a.y;
        const auto blend = [](long double p, long double q, long double r, long double s, long double t) {
            const long double v = 1 - t;
            return v * v * v * p + 3 * v * v * t * q + 3 * v * t * t * r + t * t * t * s;
        };
        long double low = 0, high = 1;
        for (int step = 0; step < 80; ++step) {
            const long double middle = (low + high) / 2;
            (blend(a.x, a.outX, b.inX, b.x, middle) < frame ? low : high) = middle;
        }
        return blend(a.y, a.outY, b.inY, b.y, (low + high) / 2);
    }
    return keys.back().y;
}

/// Keys with straight segments between them, at frame i * step.
inline std::vector<PlainKey> straightKeys(std::size_t count, double step,
                                          const std::function<double(double)>& value) {
    std::vector<PlainKey> keys;
    for (std::size_t i = 0; i < count; ++i) {
        const auto x = static_cast<float>(static_cast<double>(i) * step);
        const auto y = static_cast<float>(value(static_cast<double>(x)));
        keys.push_back({x, y, x, y, x, y});
    }
    for (std::size_t i = 0; i + 1 < count; ++i) {
        keys[i].outX = keys[i + 1].inX = (keys[i].x + keys[i + 1].x) / 2;
        keys[i].outY = keys[i + 1].inY = (keys[i].y + keys[i + 1].y) / 2;
    }
    return keys;
}

/// The change of direction at a key, in value per frame; 0 at the ends.
inline double cornerAt(const std::vector<PlainKey>& keys, std::size_t i) {
    const PlainKey& key = keys[i];
    if (i == 0 || i + 1 == keys.size() || key.inX == key.x || key.outX == key.x)
        return 0.0;
    const double in = (static_cast<double>(key.y) - static_cast<double>(key.inY)) /
                      (static_cast<double>(key.x) - static_cast<double>(key.inX));
    const double out = (static_cast<double>(key.outY) - static_cast<double>(key.y)) /
                       (static_cast<double>(key.outX) - static_cast<double>(key.x));
    return std::abs(out - in);
}

/// The largest difference of two curves at every quarter frame and every key of the first.
inline double slowDifference(const std::vector<PlainKey>& source, const std::vector<PlainKey>& other) {
    long double worst = 0;
    const auto compare = [&](long double frame) {
        worst = std::max(worst, std::fabs(slowValue(source, frame) - slowValue(other, frame)));
    };
    for (const PlainKey& key : source)
        compare(key.x);
    for (double frame = std::ceil(static_cast<double>(source.front().x) * 4) / 4;
         frame <= static_cast<double>(source.back().x); frame += 0.25)
        compare(frame);
    return static_cast<double>(worst);
}

} // namespace ka::motion::testing
