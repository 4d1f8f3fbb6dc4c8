#pragma once

#include <QImage>
#include <QString>
#include <array>
#include <cmath>
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

/// A triangle of what the figure shows.
struct FigureFace {
    std::array<Vec3, 3> corners{}; ///< world positions
    QRgb color = 0xFF8890A0;       ///< before light and shade
};

/// A node as three lines, red, green and blue.
struct FigureAxes {
    Vec3 origin{};              ///< world position
    std::array<Vec3, 3> ends{}; ///< directions of X, Y and Z in the world, of unit length
};

/// The figure at one frame, Y up.
struct FigurePose {
    QString label;                   ///< below the figure
    std::vector<Vec3> joints;        ///< world positions
    std::vector<FigureFace> faces{}; ///< drawn by depth, in light and shade
    std::vector<FigureAxes> axes{};  ///< drawn above the rest
};

/// From where the figure is seen, without perspective.
struct FigureView {
    double turn = 35.0; ///< degrees about the vertical, from the front to the left of the figure
    double tilt = 18.0; ///< degrees from the ground up to the camera
};

/// The side that a joint's name tells ("LeftArm", "RThumb", "arm.L", "hand_r").
BodySide sideOfName(const std::string& name);

/// What the pictures of one figure share, from all of its poses: how much of the world each shows.
class FigureStage {
  public:
    /// Without any pose yet. @param view  from where the figure is looked at in all of the pictures.
    explicit FigureStage(const FigureView& view = FigureView()) : _view(view) {}

    /// Makes room for a pose.
    void include(const FigurePose& pose);

    const FigureView& view() const { return _view; } ///< from where the figure is looked at
    double ground() const;                           ///< height of the lowest point; 0 without any
    double reach() const;                            ///< half the width and height of what is shown
    double lift() const; ///< of the middle of the picture above the ground, in the picture's direction

  private:
    /// Down the picture from the ground to `height`, a place from a ground at height 0.
    double fromGround(double height) const;

    FigureView _view;
    double _ground = HUGE_VAL;
    double _left = 0.0, _right = 0.0;            ///< in the picture, from the footprint of each pose
    double _top = HUGE_VAL, _bottom = -HUGE_VAL; ///< in the picture, from a ground at height 0
};

/// Draws the poses side by side with one scale and one direction of view. The camera goes along with the
/// figure; the lines on the ground stand still in the world and show how far it went.
QImage drawFigureSheet(const QString& title, const std::vector<FigurePose>& poses,
                       const std::vector<FigureBone>& bones, QSize size,
                       const FigureView& view = FigureView());

/// Draws one pose as a picture of a film, all of whose poses the stage has room for.
QImage drawFigureFrame(const QString& title, const FigurePose& pose, const std::vector<FigureBone>& bones,
                       const FigureStage& stage, QSize size);

/// The height at which `count` poses fill a sheet of this width with cells that are almost square.
int sheetHeight(int width, int count);

} // namespace ka::motion
#pragma GCC visibility pop
