#include <algorithm>
#include <cmath>
#include <kaMotion/Rotation.h>
#include <utility>

namespace ka::motion {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double degree = pi / 180.0;

/// Below this cosine of the middle angle the outer two axes coincide to far less than a float can tell.
constexpr double lockedCosine = 1e-8;

Matrix3 axisRotation(int axis, double degrees) {
    const double turn = std::remainder(degrees, 360.0) * degree;
    const double c = std::cos(turn), s = std::sin(turn);
    switch (axis) {
    case 0:
        return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
    case 1:
        return {{{c, 0, s}, {0, 1, 0}, {-s, 0, c}}};
    default:
        return {{{c, -s, 0}, {s, c, 0}, {0, 0, 1}}};
    }
}

double nearestTurn(double degrees, double previous) {
    return previous + std::remainder(degrees - previous, 360.0);
}

double squaredDistance(const Vec3& a, const Vec3& b) {
    double sum = 0.0;
    for (int i = 0; i < 3; ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

double largestStep(const Vec3& a, const Vec3& b) {
    return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])});
}

/// The two sets of angles that describe a rotation, each within half a turn of `previous`.
std::pair<Vec3, Vec3> bothNear(const Vec3& degrees, const EulerOrder& order, const Vec3& previous) {
    Vec3 same = degrees, other = degrees;
    other[order[0]] += 180.0;
    other[order[1]] = 180.0 - other[order[1]];
    other[order[2]] += 180.0;
    for (int axis = 0; axis < 3; ++axis) {
        same[axis] = nearestTurn(same[axis], previous[axis]);
        other[axis] = nearestTurn(other[axis], previous[axis]);
    }
    return {same, other};
}

} // namespace

Matrix3 product(const Matrix3& a, const Matrix3& b) {
    Matrix3 result{};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            for (int i = 0; i < 3; ++i)
                result[row][column] += a[row][i] * b[i][column];
    return result;
}

Vec3 product(const Matrix3& m, const Vec3& v) {
    Vec3 result{};
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 3; ++i)
            result[row] += m[row][i] * v[i];
    return result;
}

Matrix3 matrixFromAngles(const Vec3& degrees, const EulerOrder& order) {
    Matrix3 result = axisRotation(order[0], degrees[order[0]]);
    for (int i = 1; i < 3; ++i)
        result = product(result, axisRotation(order[i], degrees[order[i]]));
    return result;
}

Matrix3 matrixFromQuaternion(const Quaternion& q) {
    const double x = q.x, y = q.y, z = q.z, w = q.w;
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w)},
             {2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w)},
             {2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)}}};
}

Quaternion quaternionFromMatrix(const Matrix3& m) {
    // The component with the largest square is taken from the diagonal, so that the divisor is never small.
    const std::array<double, 4> squares{1 + m[0][0] - m[1][1] - m[2][2], 1 - m[0][0] + m[1][1] - m[2][2],
                                        1 - m[0][0] - m[1][1] + m[2][2], 1 + m[0][0] + m[1][1] + m[2][2]};
    const auto largest = std::max_element(squares.begin(), squares.end()) - squares.begin();
    const double root = std::sqrt(std::max(0.0, squares[static_cast<std::size_t>(largest)]));
    const double d = root > 0.0 ? 0.5 / root : 0.0;
    const double xy = (m[1][0] + m[0][1]) * d, xz = (m[0][2] + m[2][0]) * d, yz = (m[2][1] + m[1][2]) * d;
    const double xw = (m[2][1] - m[1][2]) * d, yw = (m[0][2] - m[2][0]) * d, zw = (m[1][0] - m[0][1]) * d;
    switch (largest) {
    case 0:
        return normalized({root / 2, xy, xz, xw});
    case 1:
        return normalized({xy, root / 2, yz, yw});
    case 2:
        return normalized({xz, yz, root / 2, zw});
    default:
        return normalized({xw, yw, zw, root / 2});
    }
}

Quaternion normalized(const Quaternion& q) {
    const double largest = std::max({std::abs(q.x), std::abs(q.y), std::abs(q.z), std::abs(q.w)});
    if (!(largest > 0.0) || !std::isfinite(largest))
        return {};
    const Quaternion s{q.x / largest, q.y / largest, q.z / largest, q.w / largest};
    const double length = std::sqrt(s.x * s.x + s.y * s.y + s.z * s.z + s.w * s.w);
    return {s.x / length, s.y / length, s.z / length, s.w / length};
}

Quaternion slerp(const Quaternion& a, const Quaternion& b, double t) {
    const double cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    const double sign = cosine < 0.0 ? -1.0 : 1.0;
    double wa = 1.0 - t, wb = t;
    const double angle = std::acos(std::min(1.0, std::abs(cosine)));
    if (angle > 1e-6) {
        wa = std::sin(wa * angle) / std::sin(angle);
        wb = std::sin(wb * angle) / std::sin(angle);
    }
    wb *= sign;
    return normalized({wa * a.x + wb * b.x, wa * a.y + wb * b.y, wa * a.z + wb * b.z, wa * a.w + wb * b.w});
}

double angleBetween(const Matrix3& a, const Matrix3& b) {
    double sum = 0.0;
    for (int row = 0; row < 3; ++row)
        sum += squaredDistance(a[row], b[row]);
    // The Frobenius distance of two rotations an angle apart is 2·√2·sin(angle/2).
    return 2.0 * std::asin(std::min(1.0, std::sqrt(sum / 8.0))) / degree;
}

Vec3 nearestAngles(const Vec3& degrees, const EulerOrder& order, const Vec3& previous) {
    const auto [same, other] = bothNear(degrees, order, previous);
    return squaredDistance(other, previous) < squaredDistance(same, previous) ? other : same;
}

Vec3 continuedAngles(const Vec3& degrees, const EulerOrder& order, const Vec3& previous) {
    // No joint turns by a right angle between two keys and no flip is less than one; what lies between is
    // left alone.
    constexpr double flip = 90.0, close = 45.0;
    const auto [same, other] = bothNear(degrees, order, previous);
    return largestStep(same, previous) > flip && largestStep(other, previous) < close ? other : same;
}

Vec3 sceneAngles(const Matrix3& m, const Vec3& previous) {
    const double cosine = std::hypot(m[0][0], m[1][0]);
    const double y = std::atan2(-m[2][0], cosine) / degree;
    if (cosine > lockedCosine) {
        const Vec3 angles{std::atan2(m[2][1], m[2][2]) / degree, y, std::atan2(m[1][0], m[0][0]) / degree};
        return nearestAngles(angles, sceneOrder, previous);
    }
    // With Y at +90 the matrix holds x - z only, at -90 x + z only.
    const double sign = y > 0.0 ? -1.0 : 1.0;
    const double combined = std::atan2(-m[1][2], m[1][1]) / degree;
    const double missing = std::remainder(combined - (previous[0] + sign * previous[2]), 360.0);
    return {previous[0] + missing / 2, nearestTurn(y, previous[1]), previous[2] + sign * missing / 2};
}

} // namespace ka::motion
