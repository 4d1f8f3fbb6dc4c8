#pragma once

#include <QImage>
#include <QString>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/FigureSheet.h>
#include <kaMotion/Project.h>

#pragma GCC visibility push(default)
namespace ka::motion {

/// The frames that a picture shows, and how they are told in seconds.
struct PictureRange {
    float from = 0.0F;             ///< the first frame
    float to = 0.0F;               ///< the last frame
    double framesPerSecond = 25.0; ///< above 0
};

/// Plots curves over a range of frames, those of one unit in one panel.
/// @param title  above the picture.
/// @param curves  what is plotted.
/// @param range  the frames shown.
/// @param size  of the picture, in pixels.
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

} // namespace ka::motion
#pragma GCC visibility pop
