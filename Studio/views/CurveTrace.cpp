#include "CurveTrace.h"

#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaControlPoint2D.h>
#include <kaCurveSampling.h>

namespace ka::studio {

void CurveTrace::read(kaUID id) {
    _curve = id;
    _keys.clear();
    _frames.clear();
    _values.clear();
    _minimum = _maximum = 0.0F;
    const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
    if (curve == nullptr)
        return;
    const std::vector<kaAnimationObject*> keys = curve->getObjects();
    _keys.reserve(keys.size());
    _frames.reserve(keys.size());
    _values.reserve(keys.size());
    for (const kaAnimationObject* key : keys) {
        _keys.push_back(key->getId());
        _frames.push_back(key->getBegin());
        _values.push_back(key->getMaximum());
    }
    if (!_values.empty()) {
        const auto [low, high] = std::minmax_element(_values.begin(), _values.end());
        _minimum = *low;
        _maximum = *high;
    }
}

std::pair<std::size_t, std::size_t> CurveTrace::within(double low, double high) const {
    const auto first = std::lower_bound(_frames.begin(), _frames.end(), low);
    const auto last = std::upper_bound(first, _frames.end(), high);
    return {static_cast<std::size_t>(first - _frames.begin()),
            static_cast<std::size_t>(last - _frames.begin())};
}

QVector<QPointF> CurveTrace::line(const AxisMap& time, const AxisMap& values, const ValueScale& scale,
                                  int width) const {
    QVector<QPointF> line;
    kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(_curve);
    if (_keys.empty() || curve == nullptr || width <= 0)
        return line;
    const auto y = [&](float value) { return values.toPixel(scale.toView(static_cast<double>(value))); };
    // One sample a column, taken in one call; columns before and after the keys hold the ends.
    std::vector<float> frames(static_cast<std::size_t>(width) + 1), sampled(frames.size(), _values.front());
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames[i] = std::clamp(static_cast<float>(time.toValue(static_cast<double>(i))), _frames.front(),
                               _frames.back());
    kaCurveSampling::sample(curve, frames.data(), frames.size(), sampled.data());
    line.reserve(2 * width + 2);
    std::size_t key = within(time.toValue(0.0), time.toValue(0.0)).first;
    for (int column = 0; column <= width; ++column) {
        const double end = time.toValue(column + 1);
        std::size_t next = key;
        while (next < _frames.size() && static_cast<double>(_frames[next]) < end)
            ++next;
        const float sample = sampled[static_cast<std::size_t>(column)];
        line.append(QPointF(column, y(sample)));
        if (next - key == 1) {
            line.append(QPointF(time.toPixel(static_cast<double>(_frames[key])), y(_values[key])));
        } else if (next > key) {
            const auto [low, high] = std::minmax_element(_values.begin() + static_cast<std::ptrdiff_t>(key),
                                                         _values.begin() + static_cast<std::ptrdiff_t>(next));
            line.append(QPointF(column + 0.3, y(std::min(*low, sample))));
            line.append(QPointF(column + 0.6, y(std::max(*high, sample))));
        }
        key = next;
    }
    return line;
}

} // namespace ka::studio
