#include "CurveScene.h"

#include <QRectF>
#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>

namespace ka::studio {

bool CurveScene::setCurves(const std::vector<kaUID>& curves) {
    std::vector<kaUID> there;
    std::unordered_map<kaUID, std::size_t> places;
    for (const kaUID id : curves)
        if (kaAnimationManager::the()->getCurve2D(id) != nullptr && places.emplace(id, there.size()).second)
            there.push_back(id);
    if (there == _curves)
        return false;
    _curves = std::move(there);
    _places = std::move(places);
    for (auto trace = _traces.begin(); trace != _traces.end();)
        trace = _places.count(trace->first) == 0 ? _traces.erase(trace) : std::next(trace);
    return true;
}

bool CurveScene::forget(kaUID curve) {
    _traces.erase(curve);
    return _places.count(curve) != 0;
}

const CurveTrace& CurveScene::trace(kaUID curve) const {
    const auto [entry, isNew] = _traces.try_emplace(curve);
    if (isNew)
        entry->second.read(curve);
    return entry->second;
}

ValueScale CurveScene::scaleOf(kaUID curve) const {
    ValueScale scale;
    if (!_isNormalised)
        return scale;
    const CurveTrace& shown = trace(curve);
    const double low = static_cast<double>(shown.minimum()), high = static_cast<double>(shown.maximum());
    scale.offset = (low + high) / 2;
    scale.factor = high > low ? 2 / (high - low) : 1.0;
    return scale;
}

QColor CurveScene::colorOf(kaUID id, bool onDark) const {
    const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
    if (curve == nullptr)
        return Qt::gray;
    const osg::Color3f& c = curve->getColor();
    QColor color = QColor::fromRgbF(std::clamp<qreal>(c[0], 0, 1), std::clamp<qreal>(c[1], 0, 1),
                                    std::clamp<qreal>(c[2], 0, 1));
    if (color == Qt::black) {
        const auto place = _places.find(id);
        const int turn = place != _places.end() ? static_cast<int>(place->second) : 0;
        color = QColor::fromHsv(turn * 137 % 360, 190, 200); // the golden angle keeps neighbours apart
    }
    const QColor tone = QColor::fromHsv(color.hue(), std::min(color.saturation(), onDark ? 170 : 255),
                                        std::max(color.value(), 90));
    return onDark ? tone.lighter(125) : tone.darker(125);
}

kaUID CurveScene::keyAt(const QPointF& place, const AxisMap& time, const AxisMap& values,
                        double reach) const {
    kaUID nearest = 0;
    double best = reach * reach;
    for (const kaUID curve : _curves) {
        const CurveTrace& shown = trace(curve);
        const ValueScale scale = scaleOf(curve);
        const auto [first, last] =
            shown.within(time.toValue(place.x() - reach), time.toValue(place.x() + reach));
        for (std::size_t i = first; i < last; ++i) {
            const double dx = time.toPixel(static_cast<double>(shown.frames()[i])) - place.x();
            const double dy =
                values.toPixel(scale.toView(static_cast<double>(shown.values()[i]))) - place.y();
            if (dx * dx + dy * dy <= best) {
                best = dx * dx + dy * dy;
                nearest = shown.keys()[i];
            }
        }
    }
    return nearest;
}

kaUID CurveScene::curveAt(const QPointF& place, const AxisMap& time, const AxisMap& values,
                          double reach) const {
    kaUID nearest = 0;
    double best = reach;
    for (const kaUID id : _curves) {
        kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(id);
        const CurveTrace& shown = trace(id);
        if (curve == nullptr || shown.size() == 0)
            continue;
        // Across a steep line the nearest place is a little earlier or later.
        for (double x = place.x() - reach; x <= place.x() + reach; x += 1.0) {
            const float frame = std::clamp(static_cast<float>(time.toValue(x)), shown.frames().front(),
                                           shown.frames().back());
            float value = shown.values().front();
            kaAnimationController::the()->computeCurveValue(curve, frame, value);
            const double dy = values.toPixel(scaleOf(id).toView(static_cast<double>(value))) - place.y();
            const double distance = std::hypot(x - place.x(), dy);
            if (distance <= best) {
                best = distance;
                nearest = id;
            }
        }
    }
    return nearest;
}

std::vector<kaUID> CurveScene::keysIn(const QRectF& box, const AxisMap& time, const AxisMap& values) const {
    std::vector<kaUID> keys;
    for (const kaUID curve : _curves) {
        const CurveTrace& shown = trace(curve);
        const ValueScale scale = scaleOf(curve);
        const auto [first, last] = shown.within(time.toValue(box.left()), time.toValue(box.right()));
        for (std::size_t i = first; i < last; ++i) {
            const double y = values.toPixel(scale.toView(static_cast<double>(shown.values()[i])));
            if (y >= box.top() && y <= box.bottom())
                keys.push_back(shown.keys()[i]);
        }
    }
    return keys;
}

} // namespace ka::studio
