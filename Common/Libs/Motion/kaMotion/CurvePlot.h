#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QString>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// One curve of a plot.
struct PlotCurve {
    QString label;                ///< beside the line
    QColor color;                 ///< of line, keys and handles
    std::vector<QPointF> samples; ///< frame and value; a NaN value breaks the line
    std::vector<QPointF> keys;    ///< drawn as dots while they are few enough to tell apart
    /// Handle and key by turns; drawn as thin lines with a ring at the handle.
    std::vector<std::pair<QPointF, QPointF>> handles;
};

/// Curves of one unit under one another's eyes.
struct PlotPanel {
    QString title;                 ///< above the panel
    QString unit;                  ///< of the values, written along the axis
    std::vector<PlotCurve> curves; ///< drawn in this order
};

/// Draws the panels below one another over a common axis of frames.
/// @param title  above all panels.
/// @param panels  from the top down.
/// @param size  of the picture, in pixels.
/// @param framesPerSecond  for a second row of labels in seconds; 0 leaves it out.
QImage drawPlot(const QString& title, const std::vector<PlotPanel>& panels, double framesPerSecond,
                QSize size);

} // namespace ka::motion
#pragma GCC visibility pop
