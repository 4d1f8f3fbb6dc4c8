#pragma once

#include <QImage>
#include <QString>
#include <kaMotion/Rotation.h>
#include <vector>

#pragma GCC visibility push(default)
namespace ka::motion {

/// Which side of the body a joint is on; told apart by colour.
enum class BodySide { Middle, Left, Right };

/// A line of the figure between two joints.
struct FigureBone {
    std::size_t from = 0;             ///< index of a joint
    std::size_t to = 0;               ///< index of a joint
    BodySide side = BodySide::Middle; ///< for its colour
};

/// The figure at one frame: world positions of the joints, Y up.
struct FigurePose {
    QString label;            ///< below the figure
    std::vector<Vec3> joints; ///< world positions
};

/// The side that a joint's name tells ("LeftArm", "RThumb", "arm.L", "hand_r").
BodySide sideOfName(const std::string& name);

/// Draws the poses side by side with one scale and one direction of view. The camera goes along with the
/// figure; the lines on the ground stand still in the world and show how far it went.
QImage drawFigureSheet(const QString& title, const std::vector<FigurePose>& poses,
                       const std::vector<FigureBone>& bones, QSize size);

/// The height at which `count` poses fill a sheet of this width with cells that are almost square.
int sheetHeight(int width, int count);

} // namespace ka::motion
#pragma GCC visibility pop
