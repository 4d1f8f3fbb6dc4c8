#include <algorithm>
#include <kaMotion/CurveFit.h>

namespace ka::motion {

namespace {

SegmentShape shapeOf(Interpolation interpolation) {
    switch (interpolation) {
    case Interpolation::Step:
        return SegmentShape::Step;
    case Interpolation::Cubic:
        return SegmentShape::Smooth;
    default:
        return SegmentShape::Straight;
    }
}

/// A piece of one segment of the source.
struct Span {
    std::size_t segment;
    double from, to; ///< parts of the segment, in [0, 1]

    double part(double u) const { return from + (to - from) * u; }
};

class RotationFitter {
  public:
    RotationFitter(const RotationSource& source, const FitOptions& options)
        : _source(source),
          _options(options),
          _mostKeys(std::min(options.mostKeys, 1000 + 20 * source.size())) {}

    RotationFit fit() {
        Vec3 angles = sceneAngles(_source.at(0, 0.0), {0, 0, 0});
        addKey(_source.time(0), angles);
        for (std::size_t segment = 0; segment + 1 < _source.size(); ++segment) {
            if (_source.interpolation() == Interpolation::Step) {
                setShape(SegmentShape::Step);
                angles = sceneAngles(_source.at(segment, 1.0), angles);
                addKey(_source.time(segment + 1), angles);
            } else {
                angles = fitSpan({segment, 0.0, 1.0}, angles);
            }
        }
        _fit.addedKeys = _fit.curves[0].size() - _source.size();
        return std::move(_fit);
    }

  private:
    static constexpr std::size_t sixths = 6;
    using Trace = std::array<Vec3, sixths + 1>; ///< angles at every sixth of a span

    double timeAt(const Span& span, double u) const {
        const double from = _source.time(span.segment), to = _source.time(span.segment + 1);
        const double part = span.part(u);
        return part >= 1.0 ? to : from + (to - from) * part;
    }

    void addKey(double time, const Vec3& angles) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            _fit.curves[axis].push_back({time, angles[axis], 0.0, 0.0, SegmentShape::Straight});
    }

    void setShape(SegmentShape shape) {
        for (auto& curve : _fit.curves)
            curve.back().toNext = shape;
    }

    /// Follows the source through the span in small turns, so that the angles at its end are the ones it
    /// leads to.
    Trace trace(const Span& span, const Vec3& start) const {
        Trace angles;
        angles[0] = start;
        for (std::size_t i = 1; i <= sixths; ++i)
            angles[i] = sceneAngles(_source.at(span.segment, span.part(static_cast<double>(i) / sixths)),
                                    angles[i - 1]);
        return angles;
    }

    /// The two keys of a smooth span that passes through the angles at its thirds, or of a straight one.
    static std::pair<CurveKey, CurveKey> ends(const Trace& angles, std::size_t axis, SegmentShape shape,
                                              double seconds) {
        const double p0 = angles[0][axis], p1 = angles[2][axis], p2 = angles[4][axis],
                     p3 = angles[sixths][axis];
        CurveKey from{0.0, p0, 0.0, (-11 * p0 + 18 * p1 - 9 * p2 + 2 * p3) / (2 * seconds), shape};
        CurveKey to{seconds, p3, (-2 * p0 + 9 * p1 - 18 * p2 + 11 * p3) / (2 * seconds), 0.0, shape};
        return {from, to};
    }

    /// The largest difference, in degrees, between the source and the span's curves.
    double errorOf(const Span& span, const Trace& angles, SegmentShape shape, double seconds) const {
        double worst = 0.0;
        for (std::size_t i = 1; i < sixths; ++i) {
            const double u = static_cast<double>(i) / sixths;
            Vec3 fitted{};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const auto [from, to] = ends(angles, axis, shape, seconds);
                fitted[axis] = segmentValue(from, to, u);
            }
            worst = std::max(worst, angleBetween(_source.at(span.segment, span.part(u)),
                                                 matrixFromAngles(fitted, sceneOrder)));
        }
        return worst;
    }

    /// Appends what is needed to get from `start` to the end of the span.
    /// @return the angles at its end.
    Vec3 fitSpan(const Span& span, const Vec3& start) {
        const Trace angles = trace(span, start);
        const double seconds = timeAt(span, 1.0) - timeAt(span, 0.0);
        double error = 0.0;
        for (const SegmentShape shape : {SegmentShape::Straight, SegmentShape::Smooth}) {
            error = errorOf(span, angles, shape, seconds);
            if (error <= _options.tolerance)
                return finishSpan(span, angles, shape, seconds, error);
        }
        if (seconds < 2.0 * _options.shortest || _fit.curves[0].size() > _mostKeys) {
            ++_fit.unreached;
            return finishSpan(span, angles, SegmentShape::Straight, seconds,
                              errorOf(span, angles, SegmentShape::Straight, seconds));
        }
        const double middle = span.part(0.5);
        const Vec3 between = fitSpan({span.segment, span.from, middle}, start);
        return fitSpan({span.segment, middle, span.to}, between);
    }

    Vec3 finishSpan(const Span& span, const Trace& angles, SegmentShape shape, double seconds, double error) {
        setShape(shape);
        addKey(timeAt(span, 1.0), angles[sixths]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const auto [from, to] = ends(angles, axis, shape, seconds);
            auto& curve = _fit.curves[axis];
            curve[curve.size() - 2].outSlope = from.outSlope;
            curve.back().inSlope = to.inSlope;
        }
        if (error > _fit.worst) {
            _fit.worst = error;
            _fit.worstTime = timeAt(span, 0.0);
        }
        return angles[sixths];
    }

    const RotationSource& _source;
    const FitOptions& _options;
    std::size_t _mostKeys;
    RotationFit _fit;
};

} // namespace

CurveTriple curvesOf(const MotionChannel<3>& channel) {
    CurveTriple curves;
    for (const MotionKey<3>& key : channel.keys)
        for (std::size_t axis = 0; axis < 3; ++axis)
            curves[axis].push_back({key.time, key.value[axis], key.inTangent[axis], key.outTangent[axis],
                                    shapeOf(channel.interpolation)});
    return curves;
}

RotationFit fitRotation(const RotationSource& source, const FitOptions& options) {
    if (source.size() == 0)
        return {};
    const std::vector<Vec3>* angles = source.sceneAnglesAsTheyStand();
    if (angles == nullptr)
        return RotationFitter(source, options).fit();
    RotationFit fit;
    for (std::size_t key = 0; key < source.size(); ++key)
        for (std::size_t axis = 0; axis < 3; ++axis)
            fit.curves[axis].push_back(
                {source.time(key), (*angles)[key][axis], 0.0, 0.0, shapeOf(source.interpolation())});
    return fit;
}

} // namespace ka::motion
