#pragma once

#include "draw/FigureSheet.h"
#include "scene/CurveChoice.h"
#include "scene/Project.h"

#include <QImage>
#include <QString>

namespace ka::tools {

/// The frames that a picture shows, and how they are told in seconds.
struct PictureRange {
    float from = 0.0F, to = 0.0F;
    double framesPerSecond = 25.0;
};

/// Plots curves over a range of frames, those of one unit in one panel.
/// @param withHandles  also draws the keys' handles.
QImage plotCurves(const QString& title, const CurveList& curves, const PictureRange& range, QSize size,
                  bool withHandles);

/// Draws the figure that the placed nodes make at `count` frames spread evenly over the range. Evaluates the
/// objects; the scene is left at the last of the frames.
/// @throws Failure (Unreadable) when there is no figure: fewer than two nodes, or positions that are not
/// finite.
QImage renderFigure(const QString& title, const Project& project,
                    const std::vector<kaAnimationObject*>& objects, const PictureRange& range, int count,
                    QSize size);

} // namespace ka::tools
