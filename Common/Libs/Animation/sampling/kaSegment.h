#pragma once

#include "kaSegmentPoints.h"

#include <cstddef>

/// One cubic Bézier segment between two keys in the (frame, value) plane, ready to be sampled by frame.
///
/// Within a segment the frame is no linear function of the curve parameter t, so t is solved for by the
/// closed cubic formula in double precision. What depends on the segment alone is computed once here, by the
/// very expressions that a sample would use, so that the result is the same float either way. A segment fills
/// one cache line: what seldom counts is computed again where it does.
///
/// The formula divides by the coefficient A of t^3 three times over, so that its digits cancel where A is
/// nearly 0, which it is where the handles stand a third of the segment apart. Below 1e-5 in magnitude the
/// time is solved for as a parabola that is slightly off: to full double precision, for A = 0, too.
class alignas(64) kaSegment {
  public:
    using Points = kaSegmentPoints;

    explicit kaSegment(const Points& points);

    const Points& points() const { return _points; }

    /// Whether the frame lies from this segment's first key on and before its second, which is not earlier.
    /// The answer is one comparison of two: of random frames either alone is as likely as not, which no
    /// processor foresees, and what it has begun of the next sample by then would be lost.
    bool holds(float frame) const { return (_points.x0 <= frame) != (_points.x3 <= frame); }

    /// @param frame in [x0, x3].
    /// @return whether `value` was written. For a segment of zero length: whether y0 differs from 0, nothing
    ///         written.
    bool sample(float frame, float& value) const;

    /// Whether the frame is solved for by the cubic formula, as it is unless the handles stand on their keys
    /// or nearly a third of the segment apart, or the segment has no length.
    bool isCubic() const { return _a != 0.0; }

    static constexpr std::size_t Side = 4;
    /// `sample` of several cubic segments, each at its own frame: the same floats, and the steps of one are
    /// taken while those of the others wait for their results.
    static void sampleSideBySide(const kaSegment* const (&segments)[Side], const float (&frames)[Side],
                                 float (&values)[Side], bool (&written)[Side]);

  private:
    /// What the time polynomial A t^3 + B t^2 + C t is reduced to by t = u - shift, shift = B/(3A), where A
    /// is not 0: u^3 + p u + q = 0 with q = q0 - s/A.
    struct Reduced {
        double shift;
        double q0;
        double pThird3; ///< (p / 3)^3
    };
    /// The powers of t in the time polynomial as seen from one of the keys, t counted from there.
    struct Powers {
        double a;
        double b;
        double c;

        double root(double s) const;
    };

    double length() const { return static_cast<double>(_points.x3) - static_cast<double>(_points.x0); }
    bool isStep() const;
    double squareCoefficient() const;
    double linearCoefficient() const;
    double p() const;

    double positionOf(float frame) const;
    double positionBefore(float frame) const;
    Powers powersFromRight() const;
    bool sampleWithoutFormula(float frame, float& value) const;
    bool parameter(double q, double discriminant, double& t) const;
    bool nearlyParabolicParameter(float frame, double& t) const;
    bool nearlyDoubleRoot(double q, double& t) const;
    bool threeRoots(double q, double& t) const;
    double blend(double t) const;
    bool write(double t, float& value) const;

    Points _points{};
    double _a = 0.0; ///< coefficient of t^3; 0 where the cubic formula is not used
    union {
        Reduced _reduced{}; ///< where `_a` is not 0
        Powers _powers;     ///< from the left key, where it is 0
    };
};
