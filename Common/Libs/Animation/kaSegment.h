#pragma once

/// One cubic Bézier segment between two keys in the (frame, value) plane, ready to be sampled by frame.
///
/// Within a segment the frame is no linear function of the curve parameter t, so t is solved for by the
/// closed cubic formula in double precision. What depends on the segment alone is computed once here, by the
/// very expressions that a sample would use, so that the result is the same float either way.
class kaSegment {
  public:
    /// The four control points: key, its out handle, the next key's in handle, the next key.
    struct Points {
        float x0, y0, x1, y1, x2, y2, x3, y3;
    };

    kaSegment() = default;
    explicit kaSegment(const Points& points);

    /// @param frame in [x0, x3].
    /// @return whether `value` was written. For a segment of zero length: whether y0 differs from 0, nothing
    ///         written.
    bool sample(float frame, float& value) const;

  private:
    enum class Kind {
        ZeroLength, ///< both keys at one frame
        Step,       ///< both handles on their keys
        Cubic,
        Quadratic, ///< the time polynomial has no cubic term
        Linear     ///< nor a quadratic one
    };

    bool parameter(double s, double& t) const;
    bool cubicParameter(double s, double& t) const;
    bool quadraticParameter(double s, double& t) const;
    bool nearlyDoubleRoot(double q, double& t) const;
    bool threeRoots(double q, double& t) const;
    float valueAt(double t) const;

    Points _points{};
    Kind _kind = Kind::ZeroLength;
    double _dx = 0.0;
    double _a = 0.0;       ///< coefficient of t^3
    double _b = 0.0;       ///< of t^2
    double _c = 0.0;       ///< of t
    double _shift = 0.0;   ///< B / (3A): t = u - shift
    double _p = 0.0;       ///< of the reduced cubic
    double _q0 = 0.0;      ///< q at s = 0
    double _pThird3 = 0.0; ///< (p / 3)^3
};
