#pragma once

#include <array>

#pragma GCC visibility push(default)
namespace ka::motion {

using Vec3 = std::array<double, 3>;
using Matrix3 = std::array<Vec3, 3>; ///< rows; applied to column vectors

/// A rotation as most model files store it; not assumed to be of unit length.
struct Quaternion {
    double x = 0.0; ///< of the vector part
    double y = 0.0; ///< of the vector part
    double z = 0.0; ///< of the vector part
    double w = 1.0; ///< the scalar part
};

/// The order in which the three axis rotations of a set of angles are multiplied, leftmost first. {2, 1, 0}
/// stands for Rz·Ry·Rx: a point is turned about X first.
using EulerOrder = std::array<int, 3>;

/// How the scene composes the three angles of a transform node.
inline constexpr EulerOrder sceneOrder{2, 1, 0};

Matrix3 product(const Matrix3& a, const Matrix3& b);
Vec3 product(const Matrix3& m, const Vec3& v);

/// The rotation of `degrees` (about X, Y, Z in this order of storage, whatever the order of multiplication).
Matrix3 matrixFromAngles(const Vec3& degrees, const EulerOrder& order);
Matrix3 matrixFromQuaternion(const Quaternion& q);
/// The rotation part of a matrix with orthonormal columns.
Quaternion quaternionFromMatrix(const Matrix3& m);

/// Unit length; the identity for a quaternion too short to have a direction.
Quaternion normalized(const Quaternion& q);
/// The shortest way from `a` to `b`, both of unit length, at constant speed.
Quaternion slerp(const Quaternion& a, const Quaternion& b, double t);

/// The angle, in degrees, of the one rotation that takes `a` to `b`; exact also for tiny angles.
double angleBetween(const Matrix3& a, const Matrix3& b);

/// Angles, in degrees, that give the same rotation as `degrees` and lie nearest to `previous`: whole turns
/// are added to each angle, and of the two sets of angles that describe every rotation the nearer one is
/// taken. No angle of the result is more than half a turn from the previous one.
Vec3 nearestAngles(const Vec3& degrees, const EulerOrder& order, const Vec3& previous);

/// The same for angles that a file states itself: its numbers stay, whole turns aside. The other set is taken
/// only where the file flips over to it from one key to the next, which the rotation itself does not do.
Vec3 continuedAngles(const Vec3& degrees, const EulerOrder& order, const Vec3& previous);

/// The scene's angles, in degrees, for a rotation, nearest to `previous`. Where the Y angle stands at a right
/// angle only the sum or difference of the others is given by the rotation; both then move by the same
/// amount.
Vec3 sceneAngles(const Matrix3& rotation, const Vec3& previous);

} // namespace ka::motion
#pragma GCC visibility pop
