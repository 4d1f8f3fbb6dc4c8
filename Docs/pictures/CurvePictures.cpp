#include "CurvePictures.h"

#include <array>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/CurvePlot.h>
#include <limits>
#include <utility>

namespace {

using ka::motion::PlotCurve;
using ka::motion::PlotPanel;

/// Keys at uneven distances, up and down, so that every rule shows.
kaAnimationCurve2D* makeCurve(unsigned int type, unsigned int mode) {
    constexpr std::array<std::pair<float, float>, 5> Keys{
        {{0.0F, 0.0F}, {10.0F, 6.0F}, {13.0F, 2.0F}, {30.0F, 3.0F}, {40.0F, 9.0F}}};
    kaAnimationManager* manager = kaAnimationManager::the();
    kaAnimationCurve2D* curve = manager->createCurve2D(nullptr, "curve", 0, false);
    std::vector<kaControlPoint2D*> points;
    for (const auto& [x, y] : Keys) {
        kaControlPoint2D* point = manager->createPoint2D(x, y, 0);
        point->setTangentType(type);
        point->setTangentLengthMode(mode);
        points.push_back(point);
    }
    curve->setPoints(points);
    return curve;
}

QPointF place(const kaControlPoint2D& point) {
    return {static_cast<double>(point.getPosition()[0]), static_cast<double>(point.getPosition()[1])};
}

PlotCurve plotOf(kaAnimationCurve2D& curve, const QString& label, const QColor& color) {
    PlotCurve plot{label, color, {}, {}, {}};
    constexpr int StepsPerFrame = 20;
    for (int i = 0; i <= static_cast<int>(curve.getEnd()) * StepsPerFrame; ++i) {
        const float frame = static_cast<float>(i) / static_cast<float>(StepsPerFrame);
        float value = std::numeric_limits<float>::quiet_NaN();
        kaAnimationController::the()->computeCurveValue(&curve, frame, value);
        plot.samples.emplace_back(static_cast<double>(frame), static_cast<double>(value));
    }
    for (const auto& entry : curve.getPoints()) {
        const kaControlPoint2D& key = *entry.second;
        plot.keys.push_back(place(key));
        plot.handles.emplace_back(place(*key.getInTangent()), place(key));
        plot.handles.emplace_back(place(*key.getOutTangent()), place(key));
    }
    return plot;
}

using Choices = std::vector<std::pair<const char*, unsigned int>>;

template <class Make>
QImage drawChoices(const QString& title, const Choices& choices, Make&& make) {
    std::vector<PlotPanel> panels;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        kaAnimationCurve2D* curve = make(choices[i].second);
        const QString name = QString::fromLatin1(choices[i].first);
        panels.push_back({name, "value", {plotOf(*curve, name, ka::motion::distinctColor(i))}});
        kaAnimationManager::the()->destroyCurve2D(curve);
    }
    return ka::motion::drawPlot(title, panels, 0.0, QSize(1200, 140 + 240 * static_cast<int>(panels.size())));
}

} // namespace

QImage drawTangentTypes() {
    const Choices types = {{"TANGENT_COLLAPSED", kaControlPoint2D::TANGENT_COLLAPSED},
                           {"TANGENT_BROKEN", kaControlPoint2D::TANGENT_BROKEN},
                           {"TANGENT_FLAT", kaControlPoint2D::TANGENT_FLAT},
                           {"TANGENT_SMOOTH", kaControlPoint2D::TANGENT_SMOOTH},
                           {"TANGENT_FORWARD", kaControlPoint2D::TANGENT_FORWARD}};
    return drawChoices("Tangent types, length mode LENGTH_HALF", types,
                       [](unsigned int type) { return makeCurve(type, kaControlPoint2D::LENGTH_HALF); });
}

QImage drawLengthModes() {
    const Choices modes = {{"LENGTH_THIRD", kaControlPoint2D::LENGTH_THIRD},
                           {"LENGTH_HALF", kaControlPoint2D::LENGTH_HALF},
                           {"LENGTH_FIXED", kaControlPoint2D::LENGTH_FIXED}};
    return drawChoices("Length modes, tangent type TANGENT_SMOOTH", modes,
                       [](unsigned int mode) { return makeCurve(kaControlPoint2D::TANGENT_SMOOTH, mode); });
}
