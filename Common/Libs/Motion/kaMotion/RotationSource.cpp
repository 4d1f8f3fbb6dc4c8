#include <kaMotion/RotationSource.h>

namespace ka::motion {

namespace {

Quaternion quaternionOf(const std::array<double, 4>& v) {
    return {v[0], v[1], v[2], v[3]};
}

} // namespace

RotationSource::RotationSource(const MotionChannel<3>& angles, const EulerOrder& order)
    : _interpolation(angles.interpolation), _order(order) {
    for (const MotionKey<3>& key : angles.keys) {
        _times.push_back(key.time);
        _angles.push_back(_angles.empty() ? key.value : continuedAngles(key.value, order, _angles.back()));
    }
}

RotationSource::RotationSource(const MotionChannel<4>& quaternions)
    : _interpolation(quaternions.interpolation) {
    for (const MotionKey<4>& key : quaternions.keys) {
        _times.push_back(key.time);
        _quaternions.push_back(normalized(quaternionOf(key.value)));
    }
    if (_interpolation == Interpolation::Cubic)
        _splineKeys = quaternions.keys;
}

Matrix3 RotationSource::at(std::size_t segment, double u) const {
    const std::size_t next = segment + 1;
    const bool isAtKey = u <= 0.0 || next >= size() || (_interpolation == Interpolation::Step && u < 1.0);
    const std::size_t key = isAtKey ? segment : next;
    if (!_angles.empty()) {
        if (isAtKey || u >= 1.0)
            return matrixFromAngles(_angles[key], _order);
        Vec3 between{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            between[axis] = _angles[segment][axis] + (_angles[next][axis] - _angles[segment][axis]) * u;
        return matrixFromAngles(between, _order);
    }
    if (isAtKey || u >= 1.0)
        return matrixFromQuaternion(_quaternions[key]);
    if (_interpolation == Interpolation::Cubic)
        return matrixFromQuaternion(spline(segment, u));
    return matrixFromQuaternion(slerp(_quaternions[segment], _quaternions[next], u));
}

Quaternion RotationSource::spline(std::size_t segment, double u) const {
    const MotionKey<4>&a = _splineKeys[segment], &b = _splineKeys[segment + 1];
    const double span = b.time - a.time, v = 1.0 - u;
    std::array<double, 4> q{};
    for (std::size_t i = 0; i < 4; ++i)
        q[i] = v * v * (1 + 2 * u) * a.value[i] + u * u * (1 + 2 * v) * b.value[i] +
               span * (v * v * u * a.outTangent[i] - u * u * v * b.inTangent[i]);
    return normalized(quaternionOf(q));
}

const std::vector<Vec3>* RotationSource::sceneAnglesAsTheyStand() const {
    return !_angles.empty() && _order == sceneOrder ? &_angles : nullptr;
}

} // namespace ka::motion
