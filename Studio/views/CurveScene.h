#pragma once

#include "CurveTrace.h"

#include <QColor>
#include <QRectF>
#include <unordered_map>

namespace ka::studio {

/// The curves that a view shows, read when they are needed and again when they have changed.
class CurveScene {
  public:
    /// @return whether they are others than before.
    bool setCurves(const std::vector<kaUID>& curves);
    const std::vector<kaUID>& curves() const { return _curves; }

    void setNormalised(bool normalised) { _isNormalised = normalised; }
    bool isNormalised() const { return _isNormalised; }

    /// The curve is read again before it is next shown. @return whether it is one of those shown.
    bool forget(kaUID curve);
    void forgetAll() { _traces.clear(); }

    const CurveTrace& trace(kaUID curve) const;
    ValueScale scaleOf(kaUID curve) const;
    /// The colour that the curve carries, or one of its own where it carries none; lighter on dark ground.
    QColor colorOf(kaUID curve, bool onDark) const;

    /// The key nearest to a place, within `reach` pixels of it; 0 for none.
    kaUID keyAt(const QPointF& place, const AxisMap& time, const AxisMap& values, double reach) const;
    /// The curve whose line passes within `reach` pixels; 0 for none.
    kaUID curveAt(const QPointF& place, const AxisMap& time, const AxisMap& values, double reach) const;
    /// The keys in a rectangle of pixels.
    std::vector<kaUID> keysIn(const QRectF& box, const AxisMap& time, const AxisMap& values) const;

  private:
    std::vector<kaUID> _curves;
    std::unordered_map<kaUID, std::size_t> _places;
    mutable std::unordered_map<kaUID, CurveTrace> _traces;
    bool _isNormalised = false;
};

} // namespace ka::studio
