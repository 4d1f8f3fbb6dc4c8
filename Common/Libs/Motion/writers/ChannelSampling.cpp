#include "writers/ChannelSampling.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ka::motion {

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

/// Pieces are split down to this part of a frame.
constexpr double shortestPiece = 1.0 / 64;

/// Parts of a piece at which it is compared with the curves.
constexpr double probes[] = {0.06, 0.2, 0.35, 0.5, 0.65, 0.8, 0.94};

/// Of the tolerance, what the probes may use up; between them a difference can be a little larger.
constexpr double withinProbes = 0.9;

template <std::size_t Width>
using Row = std::array<double, Width>;

/// Three curves as one function of the frame.
class VectorSource {
  public:
    static constexpr std::size_t width = 3;

    VectorSource(const CurveFunctions& curves, const SamplingOptions& options) : _curves(curves) {
        double largest = 0.0;
        for (const CurveFunction& curve : curves) {
            double least = std::numeric_limits<double>::infinity(), most = -least;
            for (const PlainKey& key : curve.keys()) {
                least = std::min(least, static_cast<double>(key.y));
                most = std::max(most, static_cast<double>(key.y));
            }
            if (!curve.isConstant()) {
                _distance = std::max(_distance, most - least);
                largest = std::max({largest, std::abs(least), std::abs(most)});
            }
        }
        // No bound below what single precision holds.
        constexpr double digits = 4 * std::numeric_limits<float>::epsilon();
        _tolerance = std::max(options.tolerance * degree * _distance, digits * largest);
    }

    Row<3> value(double frame, Side side) const {
        return {_curves[0].value(frame, side), _curves[1].value(frame, side), _curves[2].value(frame, side)};
    }

    Row<3> slope(double frame, Side side) const {
        return {_curves[0].slope(frame, side), _curves[1].slope(frame, side), _curves[2].slope(frame, side)};
    }

    bool mayBeOnePiece(double, double) const { return true; }
    static Row<3> linear(const Row<3>& a, const Row<3>& b, double u) {
        return {a[0] + (b[0] - a[0]) * u, a[1] + (b[1] - a[1]) * u, a[2] + (b[2] - a[2]) * u};
    }
    static double difference(const Row<3>& a, const Row<3>& b) {
        return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])});
    }
    double tolerance() const { return _tolerance; }
    static Row<3> continued(const Row<3>& value, const Row<3>&, bool&) { return value; }

    void tell(double worst, SamplingReport& report) const {
        if (_distance > 0.0)
            report.worstPart = std::max(report.worstPart, worst / _distance);
    }

  private:
    const CurveFunctions& _curves;
    double _distance = 0.0, _tolerance = 0.0;
};

Quaternion quaternionOf(const Row<4>& row) {
    return normalized({row[0], row[1], row[2], row[3]});
}

/// Three angles as a quaternion, which is continuous wherever they are.
class RotationCurves {
  public:
    static constexpr std::size_t width = 4;

    RotationCurves(const CurveFunctions& angles, const SamplingOptions& options)
        : _angles(angles), _tolerance(options.tolerance) {}

    Row<4> value(double frame, Side side) const {
        return product(product(about(2, frame, side), about(1, frame, side)), about(0, frame, side));
    }

    Row<4> slope(double frame, Side side) const {
        const Row<4> x = about(0, frame, side), y = about(1, frame, side), z = about(2, frame, side);
        const Row<4> dx = turning(0, x, frame, side), dy = turning(1, y, frame, side),
                     dz = turning(2, z, frame, side);
        const Row<4> a = product(product(dz, y), x), b = product(product(z, dy), x),
                     c = product(product(z, y), dx);
        return {a[0] + b[0] + c[0], a[1] + b[1] + c[1], a[2] + b[2] + c[2], a[3] + b[3] + c[3]};
    }

    /// What turns further could come round to where it was unnoticed.
    bool mayBeOnePiece(double from, double to) const {
        constexpr double furthest = 120.0;
        double turn = 0.0;
        for (const CurveFunction& angle : _angles) {
            const auto [least, most] = angle.bounds(from, to);
            turn += most - least;
        }
        return turn <= furthest;
    }

    static Row<4> linear(const Row<4>& a, const Row<4>& b, double u) {
        const Quaternion q = slerp(quaternionOf(a), quaternionOf(b), u);
        return {q.x, q.y, q.z, q.w};
    }

    /// The angle between two rotations; of quaternions, however they are signed and whatever their length.
    static double difference(const Row<4>& a, const Row<4>& b) {
        const Quaternion p = quaternionOf(a), q = quaternionOf(b);
        const double s = p.x * q.x + p.y * q.y + p.z * q.z + p.w * q.w < 0.0 ? -1.0 : 1.0;
        const double dx = p.x - s * q.x, dy = p.y - s * q.y, dz = p.z - s * q.z, dw = p.w - s * q.w;
        const double chord = std::sqrt(dx * dx + dy * dy + dz * dz + dw * dw);
        return 4.0 * std::asin(std::min(1.0, chord / 2.0)) / degree;
    }

    double tolerance() const { return _tolerance; }

    /// @param isTurned  set when the sign was changed.
    static Row<4> continued(const Row<4>& value, const Row<4>& previous, bool& isTurned) {
        const double cosine =
            value[0] * previous[0] + value[1] * previous[1] + value[2] * previous[2] + value[3] * previous[3];
        isTurned = cosine < 0.0;
        return isTurned ? Row<4>{-value[0], -value[1], -value[2], -value[3]} : value;
    }

    static void tell(double worst, SamplingReport& report) {
        report.worstRotation = std::max(report.worstRotation, worst);
    }

  private:
    static Row<4> product(const Row<4>& p, const Row<4>& q) {
        return {p[3] * q[0] + p[0] * q[3] + p[1] * q[2] - p[2] * q[1],
                p[3] * q[1] - p[0] * q[2] + p[1] * q[3] + p[2] * q[0],
                p[3] * q[2] + p[0] * q[1] - p[1] * q[0] + p[2] * q[3],
                p[3] * q[3] - p[0] * q[0] - p[1] * q[1] - p[2] * q[2]};
    }

    Row<4> about(std::size_t axis, double frame, Side side) const {
        const double half = _angles[axis].value(frame, side) * degree / 2.0;
        Row<4> q{0.0, 0.0, 0.0, std::cos(half)};
        q[axis] = std::sin(half);
        return q;
    }

    Row<4> turning(std::size_t axis, const Row<4>& q, double frame, Side side) const {
        const double half = _angles[axis].slope(frame, side) * degree / 2.0;
        Row<4> d{0.0, 0.0, 0.0, -q[axis] * half};
        d[axis] = q[3] * half;
        return d;
    }

    const CurveFunctions& _angles;
    double _tolerance;
};

/// A stretch of frames that one segment of a channel stands for. Slopes are per frame.
template <std::size_t Width>
struct Piece {
    double from = 0.0, to = 0.0;
    Row<Width> first{}, last{}, slopeOut{}, slopeIn{};
    bool holds = false;
};

/// Everything that one kind of interpolation needs to follow the curves.
template <std::size_t Width>
struct Pieces {
    std::vector<Piece<Width>> list;
    std::size_t exact = 0, resampled = 0, unreached = 0;
    double worst = 0.0;
};

template <class Source>
class Sampler {
  public:
    static constexpr std::size_t width = Source::width;

    Sampler(const CurveFunctions& curves, const SamplingOptions& options)
        : _curves(curves), _options(options), _source(curves, options) {
        for (const CurveFunction& curve : curves)
            for (const PlainKey& key : curve.keys())
                _breaks.push_back(static_cast<double>(key.x));
        std::sort(_breaks.begin(), _breaks.end());
        _breaks.erase(std::unique(_breaks.begin(), _breaks.end()), _breaks.end());
    }

    MotionChannel<width> run(SamplingReport& report) {
        MotionChannel<width> channel;
        if (_breaks.empty())
            return channel;
        Pieces<width> straight = follow(Interpolation::Linear);
        const bool onlyHolds = std::all_of(straight.list.begin(), straight.list.end(),
                                           [](const Piece<width>& piece) { return piece.holds; });
        if (onlyHolds && straight.list.size() > 1) {
            channel.interpolation = Interpolation::Step;
            channel.keys = heldKeys(straight.list);
        } else {
            chooseKind(channel, straight, report);
        }
        alignSigns(channel.keys);
        report.keys += channel.keys.size();
        report.exact += straight.exact;
        report.resampled += straight.resampled;
        report.unreached += straight.unreached;
        _source.tell(straight.worst, report);
        return channel;
    }

  private:
    void chooseKind(MotionChannel<width>& channel, Pieces<width>& straight, SamplingReport& report) {
        Pieces<width> smooth;
        if (straight.resampled > 0)
            smooth = follow(Interpolation::Cubic);
        const auto numbers = [](const Pieces<width>& pieces, std::size_t each) {
            return pieces.list.size() * (1 + each);
        };
        const bool isSmooth =
            straight.resampled > 0 && smooth.unreached <= straight.unreached &&
            (smooth.unreached < straight.unreached || numbers(smooth, 3 * width) < numbers(straight, width));
        if (isSmooth) {
            channel.interpolation = Interpolation::Cubic;
            straight = std::move(smooth);
        }
        channel.keys = runningKeys(straight.list, report);
    }

    Pieces<width> follow(Interpolation kind) const {
        Pieces<width> pieces;
        for (std::size_t i = 0; i + 1 < _breaks.size(); ++i) {
            const std::size_t before = pieces.list.size();
            split(_breaks[i], _breaks[i + 1], kind, pieces);
            ++(pieces.list.size() == before + 1 ? pieces.exact : pieces.resampled);
        }
        return pieces;
    }

    void split(double from, double to, Interpolation kind, Pieces<width>& pieces) const {
        Piece<width> piece{from, to, _source.value(from, Side::After), _source.value(to, Side::Before),
                           {},   {}};
        piece.holds = std::all_of(_curves.begin(), _curves.end(),
                                  [&](const CurveFunction& curve) { return curve.holds(from, to); });
        double worst = 0.0;
        if (!piece.holds) {
            if (kind == Interpolation::Cubic)
                setSlopes(piece);
            const bool isFine = _source.mayBeOnePiece(from, to) && fits(piece, kind, worst);
            if (!isFine && to - from > shortestPiece) {
                const double middle = from + (to - from) / 2;
                split(from, middle, kind, pieces);
                split(middle, to, kind, pieces);
                return;
            }
            pieces.unreached += isFine ? 0 : 1;
        }
        pieces.worst = std::max(pieces.worst, worst);
        pieces.list.push_back(piece);
    }

    void setSlopes(Piece<width>& piece) const {
        piece.slopeOut = _source.slope(piece.from, Side::After);
        piece.slopeIn = _source.slope(piece.to, Side::Before);
        for (Row<width>* slopes : {&piece.slopeOut, &piece.slopeIn})
            for (double& slope : *slopes)
                slope = std::abs(slope) < 1e6 ? slope : 0.0;
    }

    bool fits(const Piece<width>& piece, Interpolation kind, double& worst) const {
        for (const double u : probes) {
            const Row<width> wanted = _source.value(piece.from + (piece.to - piece.from) * u, Side::After);
            const Row<width> given =
                kind == Interpolation::Cubic ? hermite(piece, u) : Source::linear(piece.first, piece.last, u);
            worst = std::max(worst, Source::difference(given, wanted));
        }
        return worst <= withinProbes * _source.tolerance();
    }

    static Row<width> hermite(const Piece<width>& piece, double u) {
        const double v = 1.0 - u, span = piece.to - piece.from;
        Row<width> row{};
        for (std::size_t i = 0; i < width; ++i)
            row[i] = v * v * (1 + 2 * u) * piece.first[i] + u * u * (1 + 2 * v) * piece.last[i] +
                     span * (v * v * u * piece.slopeOut[i] - u * u * v * piece.slopeIn[i]);
        return row;
    }

    double seconds(double frame) const { return frame / _options.framesPerSecond; }

    std::vector<MotionKey<width>> heldKeys(const std::vector<Piece<width>>& pieces) const {
        std::vector<MotionKey<width>> keys;
        for (const Piece<width>& piece : pieces)
            keys.push_back({seconds(piece.from), piece.first, {}, {}});
        const double end = pieces.back().to;
        keys.push_back({seconds(end), _source.value(end, Side::After), {}, {}});
        return keys;
    }

    std::vector<MotionKey<width>> runningKeys(const std::vector<Piece<width>>& pieces,
                                              SamplingReport& report) const {
        std::vector<MotionKey<width>> keys;
        const Piece<width>* before = nullptr;
        for (const Piece<width>& piece : pieces) {
            addKey(keys, before, piece.from, piece.first, perSecond(piece.slopeOut), report);
            before = &piece;
        }
        const double end = _breaks.back();
        addKey(keys, before, end, _source.value(end, Side::After), {}, report);
        return keys;
    }

    /// The key on which one piece ends and the next begins: two where the value jumps.
    void addKey(std::vector<MotionKey<width>>& keys, const Piece<width>* before, double frame,
                const Row<width>& value, const Row<width>& out, SamplingReport& report) const {
        MotionKey<width> key{seconds(frame), value, {}, out};
        if (before != nullptr && Source::difference(before->last, value) > _source.tolerance()) {
            const double gap = std::min(jumpFrames, (before->to - before->from) / 2);
            keys.push_back({seconds(frame - gap), before->last, perSecond(before->slopeIn), {}});
            ++report.jumps;
        } else if (before != nullptr) {
            // A whole turn from one piece to the next changes the sign and nothing else.
            bool isTurned = false;
            Source::continued(value, before->last, isTurned);
            key.inTangent = perSecond(before->slopeIn, isTurned ? -1.0 : 1.0);
        }
        keys.push_back(key);
    }

    Row<width> perSecond(Row<width> slopes, double sign = 1.0) const {
        for (double& slope : slopes)
            slope *= sign * _options.framesPerSecond;
        return slopes;
    }

    static void alignSigns(std::vector<MotionKey<width>>& keys) {
        for (std::size_t i = 1; i < keys.size(); ++i) {
            bool isTurned = false;
            keys[i].value = Source::continued(keys[i].value, keys[i - 1].value, isTurned);
            if (!isTurned)
                continue;
            for (Row<width>* tangent : {&keys[i].inTangent, &keys[i].outTangent})
                for (double& slope : *tangent)
                    slope = -slope;
        }
    }

    const CurveFunctions& _curves;
    const SamplingOptions& _options;
    Source _source;
    std::vector<double> _breaks;
};

} // namespace

MotionChannel<3> sampleVector(const CurveFunctions& curves, const SamplingOptions& options,
                              SamplingReport& report) {
    return Sampler<VectorSource>(curves, options).run(report);
}

MotionChannel<4> sampleRotation(const CurveFunctions& angles, const SamplingOptions& options,
                                SamplingReport& report) {
    return Sampler<RotationCurves>(angles, options).run(report);
}

} // namespace ka::motion
