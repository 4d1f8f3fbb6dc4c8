#include "ReferenceTangents.h"

#include <cmath>

namespace ka_test {

namespace {

constexpr double THIRD = static_cast<double>(0.33333334F);
constexpr double REACH = 2.0;

constexpr unsigned int BROKEN = 1;
constexpr unsigned int FLAT = 2;
constexpr unsigned int SMOOTH = 4;
constexpr unsigned int FORWARD = 8;

constexpr unsigned int LENGTH_THIRD = 4;
constexpr unsigned int LENGTH_FIXED = 32;
constexpr unsigned int LENGTH_HALF = 64;

struct Point {
    double x;
    double y;
};

/// The table of types and length modes, one entry per function. `in` is taken from the key, `out` added to
/// it.
struct Table {
    Point key;
    std::optional<Point> previous;
    std::optional<Point> next;

    bool both() const { return previous && next; }
    double slopeBack() const { return (key.y - previous->y) / (key.x - previous->x); }
    double slopeAhead() const { return (next->y - key.y) / (next->x - key.x); }
    double slopeAcross() const { return (next->y - previous->y) / (next->x - previous->x); }
    double chord() const { return both() ? slopeAcross() : previous ? slopeBack() : slopeAhead(); }
    double spanBack() const { return key.x - previous->x; }
    double spanAhead() const { return next->x - key.x; }
    double span() const { return both() ? next->x - previous->x : previous ? spanBack() : spanAhead(); }
    static double lesser(double half, double third) { return half > third ? third : half; }
    double cappedBack() const { return lesser(spanBack() * 0.5, span() * THIRD); }
    double cappedAhead() const { return lesser(spanAhead() * 0.5, span() * THIRD); }

    static Point along(double length, double slope) {
        const double angle = std::atan(slope);
        return {length * std::cos(angle), length * std::sin(angle)};
    }
    static Point across(double width, double slope) { return {width, width * slope}; }
    static Point level(double width) { return {width, 0.0}; }

    Handles place(const Point& in, const Point& out) const {
        return {key.x - in.x, key.y - in.y, key.x + out.x, key.y + out.y};
    }
    Handles collapsed() const { return place({0.0, 0.0}, {0.0, 0.0}); }

    Handles broken(unsigned int mode) const;
    Handles flat(unsigned int mode) const;
    Handles smooth(unsigned int mode) const;
    Handles forward(unsigned int mode) const;
};

Handles Table::broken(unsigned int mode) const {
    switch (mode) {
    case LENGTH_THIRD: {
        const double third = span() * THIRD;
        if (both())
            return place(along(third, slopeBack()), along(third, slopeAhead()));
        return previous ? place(across(third, slopeBack()), level(third))
                        : place(level(third), across(third, slopeAhead()));
    }
    case LENGTH_HALF: {
        const double back = previous ? spanBack() * 0.5 : spanAhead() * 0.5;
        const double ahead = next ? spanAhead() * 0.5 : spanBack() * 0.5;
        return place(previous ? across(back, slopeBack()) : level(back),
                     next ? across(ahead, slopeAhead()) : level(ahead));
    }
    case LENGTH_FIXED:
        return place(previous ? along(REACH, slopeBack()) : level(REACH),
                     next ? along(REACH, slopeAhead()) : level(REACH));
    default:
        return collapsed();
    }
}

Handles Table::flat(unsigned int mode) const {
    switch (mode) {
    case LENGTH_THIRD:
        return place(level(span() * THIRD), level(span() * THIRD));
    case LENGTH_HALF:
        return both() ? place(level(cappedBack()), level(cappedAhead()))
                      : place(level(span() * 0.5), level(span() * 0.5));
    case LENGTH_FIXED:
        return place(level(REACH), level(REACH));
    default:
        return collapsed();
    }
}

Handles Table::smooth(unsigned int mode) const {
    switch (mode) {
    case LENGTH_THIRD: {
        const Point from = previous ? *previous : key;
        const Point to = next ? *next : key;
        const Point third = {(to.x - from.x) * THIRD, (to.y - from.y) * THIRD};
        return place(third, third);
    }
    case LENGTH_HALF:
        return both() ? place(across(cappedBack(), chord()), across(cappedAhead(), chord()))
                      : place(across(span() * 0.5, chord()), across(span() * 0.5, chord()));
    case LENGTH_FIXED:
        return place(along(REACH, chord()), along(REACH, chord()));
    default:
        return collapsed();
    }
}

Handles Table::forward(unsigned int mode) const {
    const auto towards = [this](double width) { return next ? across(width, slopeAhead()) : level(width); };
    switch (mode) {
    case LENGTH_THIRD:
        return place(towards(span() * THIRD), towards(span() * THIRD));
    case LENGTH_HALF:
        return both() ? place(towards(cappedBack()), towards(cappedAhead()))
                      : place(towards(span() * 0.5), towards(span() * 0.5));
    case LENGTH_FIXED: {
        const Point reach = next ? along(REACH, slopeAhead()) : level(REACH);
        return place(reach, reach);
    }
    default:
        return collapsed();
    }
}

Point wide(const Spot& spot) {
    return {static_cast<double>(spot.x), static_cast<double>(spot.y)};
}

std::optional<Point> wide(const std::optional<Spot>& spot) {
    return spot ? std::optional<Point>(wide(*spot)) : std::nullopt;
}

} // namespace

Handles referenceHandles(unsigned int type, unsigned int mode, const Spot& key,
                         const std::optional<Spot>& previous, const std::optional<Spot>& next) {
    const Table table{wide(key), wide(previous), wide(next)};
    switch (type) {
    case BROKEN:
        return table.broken(mode);
    case FLAT:
        return table.flat(mode);
    case SMOOTH:
        return table.smooth(mode);
    case FORWARD:
        return table.forward(mode);
    default:
        return table.collapsed();
    }
}

} // namespace ka_test
