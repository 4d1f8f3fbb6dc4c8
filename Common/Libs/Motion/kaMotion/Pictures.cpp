#include <algorithm>
#include <cmath>
#include <kaAnimationController.h>
#include <kaAnimationCurve2D.h>
#include <kaControlPoint2D.h>
#include <kaMotion/Canvas.h>
#include <kaMotion/CurvePlot.h>
#include <kaMotion/Failure.h>
#include <kaMotion/FigureSheet.h>
#include <kaMotion/Pictures.h>
#include <kaMotion/Pose.h>
#include <kaMotion/Text.h>
#include <limits>
#include <map>

namespace ka::motion {

namespace {

QPointF pointAt(const osg::Pnt2f& position) {
    return {static_cast<double>(position[0]), static_cast<double>(position[1])};
}

PlotCurve plotCurve(kaAnimationCurve2D* curve, const PictureRange& range, int samples, bool withHandles) {
    PlotCurve plot;
    plot.label = QString::fromStdString(curveLabel(curve));
    const float from = std::max(range.from, curve->getBegin()), to = std::min(range.to, curve->getEnd());
    for (int i = 0; i <= samples && from <= to; ++i) {
        const float frame = from + (to - from) * static_cast<float>(i) / static_cast<float>(samples);
        float value = 0.0F;
        const bool hasValue = kaAnimationController::the()->computeCurveValue(curve, frame, value);
        plot.samples.emplace_back(static_cast<double>(frame), hasValue
                                                                  ? static_cast<double>(value)
                                                                  : std::numeric_limits<double>::quiet_NaN());
    }
    for (const auto& [frame, key] : curve->getPoints()) {
        if (frame < from || frame > to)
            continue;
        plot.keys.push_back(pointAt(key->getPosition()));
        for (const kaControlPoint2D* handle : {key->getInTangent(), key->getOutTangent()})
            if (withHandles && handle != nullptr && handle->getPosition() != key->getPosition())
                plot.handles.emplace_back(pointAt(handle->getPosition()), pointAt(key->getPosition()));
    }
    return plot;
}

PlotPanel& panelOf(std::vector<PlotPanel>& panels, const QString& unit) {
    const auto same = [&](const PlotPanel& panel) { return panel.unit == unit; };
    const auto found = std::find_if(panels.begin(), panels.end(), same);
    if (found != panels.end())
        return *found;
    const QString title = unit == "degrees" ? "rotation" : unit == "units" ? "translation" : "values";
    panels.push_back({title, unit, {}});
    return panels.back();
}

/// One line for each node and its nearest placed ancestor.
std::vector<FigureBone> bonesOf(const std::vector<osg::NodePtr>& nodes) {
    std::map<osg::NodePtr, std::size_t> places;
    std::vector<FigureBone> bones;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        osg::NodePtr above = nodes[i]->getParent();
        while (above != osg::NullFC && places.find(above) == places.end())
            above = above->getParent();
        if (above != osg::NullFC)
            bones.push_back({places[above], i, sideOfName(nodeName(nodes[i]))});
        places[nodes[i]] = i;
    }
    return bones;
}

/// The decimals at which frames this far apart can be told from each other; none for whole frames.
int decimalsFor(double step) {
    return step >= 1.0 || step <= 0.0 ? 0 : std::min(6, static_cast<int>(std::ceil(-std::log10(step))) + 1);
}

/// @param decimals  of a frame that is no whole one.
FigurePose figureAt(const std::vector<osg::NodePtr>& nodes, float frame, double framesPerSecond,
                    int decimals) {
    FigurePose figure;
    figure.label =
        QString("frame %1  ·  %2 s")
            .arg(QString::number(static_cast<double>(frame), 'f', frame == std::floor(frame) ? 0 : decimals))
            .arg(QString::number(static_cast<double>(frame) / framesPerSecond, 'f', decimals + 2));
    for (const NodePose& pose : readPose(nodes)) {
        const Vec3 joint{static_cast<double>(pose.position[0]), static_cast<double>(pose.position[1]),
                         static_cast<double>(pose.position[2])};
        if (!std::all_of(joint.begin(), joint.end(), [](double v) { return std::isfinite(v); }))
            throw Failure(ExitCode::Unreadable, "node '" + oneLine(pose.name) +
                                                    "' has no finite position at frame " +
                                                    formatNumber(static_cast<double>(frame)));
        figure.joints.push_back(joint);
    }
    return figure;
}

} // namespace

QImage plotCurves(const QString& title, const CurveList& curves, const PictureRange& range, QSize size,
                  bool withHandles) {
    std::vector<PlotPanel> panels;
    for (kaAnimationCurve2D* curve : curves) {
        PlotPanel& panel = panelOf(panels, QString::fromStdString(curveUnit(curve)));
        panel.curves.push_back(plotCurve(curve, range, 2 * size.width(), withHandles));
        panel.curves.back().color = distinctColor(panel.curves.size() - 1);
    }
    return drawPlot(title, panels, range.framesPerSecond, size);
}

QImage renderFigure(const QString& title, const Project& project,
                    const std::vector<kaAnimationObject*>& objects, const PictureRange& range, int count,
                    QSize size) {
    const std::vector<osg::NodePtr> nodes = project.placedNodes();
    if (nodes.size() < 2)
        throw Failure(ExitCode::Unreadable, "there is no figure to draw: fewer than two placed nodes");
    std::vector<FigurePose> poses;
    // Whole frames are what is played; where there are not enough of them, what lies between.
    const double step = count > 1 ? static_cast<double>(range.to - range.from) / (count - 1) : 0.0;
    const bool isWhole = step >= 1.0 || step <= 0.0;
    for (int i = 0; i < count; ++i) {
        const float part = count > 1 ? static_cast<float>(i) / static_cast<float>(count - 1) : 0.0F;
        const float between = range.from + (range.to - range.from) * part;
        const float frame = isWhole ? std::clamp(std::round(between), range.from, range.to) : between;
        evaluate(objects, frame);
        poses.push_back(figureAt(nodes, frame, range.framesPerSecond, std::max(1, decimalsFor(step))));
    }
    return drawFigureSheet(title, poses, bonesOf(nodes), size);
}

} // namespace ka::motion
