#pragma once

#include <QImage>
#include <QString>
#include <functional>
#include <kaMotion/CurveChoice.h>
#include <kaMotion/FigureSheet.h>
#include <kaMotion/Listener.h>
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

/// What of a scene is drawn.
enum class FigureShow {
    Auto, ///< meshes where there are any, else bones
    Meshes, ///< in light and shade, as shapes and skins have them; boxes where there are more than 60 000 triangles
    Boxes, ///< one about each mesh
    Bones, ///< a line from each placed node to the one above it; with axes where these lines stand still
    Axes   ///< of each placed node
};

/// How a figure is drawn.
struct FigureOptions {
    FigureShow show = FigureShow::Auto; ///< what of the scene
    FigureView view;                    ///< from where
    bool isZUp = false;                 ///< Z points up in the scene, not Y
};

/// Draws the figure at `count` frames spread evenly over the range. Evaluates the objects; the scene is left at the
/// last of the frames.
/// @throws Failure (Unreadable) when there is nothing to draw, or positions are not finite.
QImage renderFigure(const QString& title, const Project& project,
                    const std::vector<kaAnimationObject*>& objects, const PictureRange& range, int count,
                    QSize size, const FigureOptions& options = FigureOptions());

/// Draws the figure at every whole frame of the range, all with one scale: the pictures of a film.
/// @param take  gets each picture; false ends it.
/// @return false when the listener or `take` ended it.
bool filmFigure(const QString& title, const Project& project, const std::vector<kaAnimationObject*>& objects,
                const PictureRange& range, QSize size, const FigureOptions& options, Listener& listener,
                const std::function<bool(const QImage&)>& take);

} // namespace ka::motion
#pragma GCC visibility pop
