#pragma once

#include "kaSegmentPoints.h"

/// The time of a segment as a polynomial A t^3 + B t^2 + C t, 0 at t = 0 and 1 at t = 1, and the stated steps
/// that solve it for t, every one in double precision and in this order: a sample is the very float that they
/// give.
class kaSegmentFormula {
  public:
    /// Below this magnitude the discriminant counts as zero.
    static constexpr double DiscriminantTolerance = 1e-6;
    /// A root this little below 0 still counts as inside the segment.
    static constexpr double RootTolerance = 1e-6;
    /// Below this magnitude of A the steps lose too many digits.
    static constexpr double SmallCube = 1e-5;

    /// The sample of a segment that may be of any kind. @param frame in [x0, x3].
    /// @return whether `value` was written. For a segment of zero length: whether y0 differs from 0, nothing
    ///         written.
    static bool sample(const kaSegmentPoints& points, float frame, float& value);

    /// The segment has a length.
    explicit kaSegmentFormula(const kaSegmentPoints& points);

    double a() const { return _a; }
    double b() const { return _b; }
    double c() const { return _c; }
    bool isNearlyParabolic() const;

    /// What the polynomial is reduced to by t = u - shift: u^3 + p u + q = 0.
    struct Reduced {
        double p;
        double q;
        double shift;
        double pThird3; ///< (p / 3)^3
    };

    /// Where A is not nearly 0.
    Reduced reduced(double s) const;

    /// @param frame in [x0, x3]. @return whether there is a t for it; else `t` is anything.
    bool parameter(float frame, double& t) const;

  private:
    /// The powers of t as seen from one of the keys, t counted from there.
    struct Powers {
        double a;
        double b;
        double c;

        double root(double s) const;
    };
    double length() const;
    double positionOf(float frame) const;
    double positionBefore(float frame) const;
    Powers powersFromRight() const;
    bool nearlyParabolicParameter(float frame, double& t) const;
    static bool nearlyDoubleRoot(const Reduced& cubic, double& t);
    static bool threeRoots(const Reduced& cubic, double& t);

    const kaSegmentPoints& _points;
    double _a;
    double _b;
    double _c;
};
