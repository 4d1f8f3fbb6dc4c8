#pragma once

#include <kaMotion/Motion.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// A rotation over time exactly as a model file means it, whatever form it is stored in: the referee of every
/// conversion.
class RotationSource {
  public:
    /// Angles about the axes of `order`, read as straight between keys once each continues the one before it,
    /// so that 179 followed by -179 is a turn of two degrees.
    RotationSource(const MotionChannel<3>& angles, const EulerOrder& order);
    /// Quaternions: linear ones turn the shortest way at constant speed, cubic ones follow the normalised
    /// spline.
    explicit RotationSource(const MotionChannel<4>& quaternions);

    /// Keys of the source.
    std::size_t size() const { return _times.size(); }
    /// Seconds of a key.
    double time(std::size_t key) const { return _times[key]; }
    /// Between all of its keys.
    Interpolation interpolation() const { return _interpolation; }

    /// The rotation at key `segment` for `u` 0, at the next key for 1, in between for what is in between.
    Matrix3 at(std::size_t segment, double u) const;

    /// Angles that are the scene's own as they stand, so that nothing needs fitting. Null otherwise.
    const std::vector<Vec3>* sceneAnglesAsTheyStand() const;

  private:
    Quaternion spline(std::size_t segment, double u) const;

    Interpolation _interpolation;
    std::vector<double> _times;
    EulerOrder _order = sceneOrder;
    std::vector<Vec3> _angles;             ///< empty for quaternions
    std::vector<MotionKey<4>> _splineKeys; ///< for cubic quaternions
    std::vector<Quaternion> _quaternions;  ///< normalised, for the others
};

} // namespace ka::motion
#pragma GCC visibility pop
