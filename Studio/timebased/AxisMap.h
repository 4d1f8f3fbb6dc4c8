#pragma once

namespace ka::studio {

/// Maps one axis of a view to pixels, linearly. Scales stay between `Smallest` and `Largest`, so that no
/// pixel is lost to rounding and nothing divides by zero.
class AxisMap {
  public:
    static constexpr double Smallest = 1e-6, Largest = 1e6; ///< Pixels a unit.

    double toPixel(double value) const { return (value - _origin) * _scale; }
    double toValue(double pixel) const { return _origin + pixel / _scale; }
    /// Pixels for one unit; negative where values grow against the pixels.
    double scale() const { return _scale; }

    /// Shows [low, high] on `pixels`, a negative number where high is to be at pixel 0. A span of zero is
    /// widened. What is not finite changes nothing.
    void show(double low, double high, double pixels);
    void pan(double pixels); ///< Moves what is shown by pixels.
    /// Changes the scale and keeps the value at a pixel there.
    void zoom(double pixel, double factor);

  private:
    void setScale(double scale);

    double _origin = 0.0; ///< value at pixel 0
    double _scale = 10.0;
};

} // namespace ka::studio
