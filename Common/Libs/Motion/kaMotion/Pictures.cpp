#include "project/FigurePoser.h"

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
#include <kaMotion/Text.h>
#include <limits>

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

/// The decimals at which frames this far apart can be told from each other; none for whole frames.
int decimalsFor(double step) {
    return step >= 1.0 || step <= 0.0 ? 0 : std::min(6, static_cast<int>(std::ceil(-std::log10(step))) + 1);
}

/// @param decimals  of a frame that is no whole one.
QString labelOf(float frame, double framesPerSecond, int decimals) {
    QString number = QString::number(static_cast<double>(frame), 'f', decimals);
    while (number.contains('.') && (number.endsWith('0') || number.endsWith('.')))
        number.chop(1);
    return QString("frame %1  ·  %2 s")
        .arg(number)
        .arg(QString::number(static_cast<double>(frame) / framesPerSecond, 'f', decimals + 2));
}

/// Sees whether the joints of all poses stand where those of the first do.
class Stillness {
  public:
    void include(const FigurePose& pose) {
        if (_first.empty())
            _first = pose.joints;
        for (std::size_t i = 0; i < pose.joints.size(); ++i)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                _size = std::max(_size, std::abs(pose.joints[i][axis] - pose.joints[0][axis]));
                _most = std::max(_most, std::abs(pose.joints[i][axis] - _first[i][axis]));
            }
    }
    bool isStill() const { return _most <= 1e-4 * _size; }

  private:
    std::vector<Vec3> _first;
    double _size = 1e-9, _most = 0.0;
};

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
                    QSize size, const FigureOptions& options) {
    FigurePoser poser(project.root(), project.placedNodes(), options.show, options.isZUp);
    // Whole frames are what is played; where there are not enough of them, what lies between.
    const double step = count > 1 ? static_cast<double>(range.to - range.from) / (count - 1) : 0.0;
    const bool isWhole = step >= 1.0 || step <= 0.0;
    const auto posed = [&] {
        std::vector<FigurePose> poses;
        for (int i = 0; i < count; ++i) {
            const float part = count > 1 ? static_cast<float>(i) / static_cast<float>(count - 1) : 0.0F;
            const float between = range.from + (range.to - range.from) * part;
            const float frame = isWhole ? std::clamp(std::round(between), range.from, range.to) : between;
            evaluate(objects, frame);
            poses.push_back(poser.pose(frame));
            poses.back().label = labelOf(frame, range.framesPerSecond, std::max(1, decimalsFor(step)));
        }
        return poses;
    };
    std::vector<FigurePose> poses = posed();
    Stillness joints;
    for (const FigurePose& pose : poses)
        joints.include(pose);
    if (poser.shown() == FigureShow::Bones && joints.isStill()) {
        poser.addAxes();
        poses = posed();
    }
    return drawFigureSheet(title, poses, poser.bones(), size, options.view);
}

bool filmFigure(const QString& title, const Project& project, const std::vector<kaAnimationObject*>& objects,
                const PictureRange& range, QSize size, const FigureOptions& options, Listener& listener,
                const std::function<bool(const QImage&)>& take) {
    FigurePoser poser(project.root(), project.placedNodes(), options.show, options.isZUp);
    const std::vector<FigureBone> bones = poser.bones();
    FigureStage stage(options.view);
    Stillness joints;
    const double first = std::ceil(static_cast<double>(range.from)), last = static_cast<double>(range.to);
    const auto count = static_cast<std::size_t>(std::max(0.0, std::floor(last - first)) + 1.0);
    // Once to see how much room all frames take, once to draw them.
    for (std::size_t i = 0; i < 2 * count; ++i) {
        if (!listener.progress("filming", i, 2 * count))
            return false;
        const auto frame = static_cast<float>(first + static_cast<double>(i % count));
        evaluate(objects, frame);
        FigurePose pose = poser.pose(frame);
        if (i < count) {
            stage.include(pose);
            joints.include(pose);
            if (i + 1 == count && poser.shown() == FigureShow::Bones && joints.isStill())
                poser.addAxes();
            continue;
        }
        pose.label = labelOf(frame, range.framesPerSecond, 1);
        if (!take(drawFigureFrame(title, pose, bones, stage, size)))
            return false;
    }
    return listener.progress("filming", 2 * count, 2 * count);
}

} // namespace ka::motion
