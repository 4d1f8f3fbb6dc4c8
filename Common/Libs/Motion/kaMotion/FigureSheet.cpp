#include <QPainter>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <kaMotion/Canvas.h>
#include <kaMotion/FigureSheet.h>
#include <limits>
#include <tuple>

namespace ka::motion {

namespace {

const QColor ink(0x22, 0x26, 0x2B);
const QColor faint(0x6B, 0x72, 0x7B);
const QColor cellColor(0xF6, 0xF7, 0xF9);
const QColor groundColor(0xE3, 0xE6, 0xEA);
const QColor shadowColor(0xC9, 0xCE, 0xD4);

constexpr int margin = 24, titleHeight = 58, labelHeight = 30, gap = 12, columns = 4;

QColor colorOf(BodySide side) {
    switch (side) {
    case BodySide::Left:
        return QColor(0x00, 0x72, 0xB2);
    case BodySide::Right:
        return QColor(0xD5, 0x5E, 0x00);
    default:
        return QColor(0x33, 0x3A, 0x42);
    }
}

/// Looks down on the figure from the front left, without perspective: the same everywhere in the picture.
struct View {
    static constexpr double turn = 0.6, tilt = 0.32; ///< radians

    /// Right and down in the picture, for a point relative to the camera's target.
    static QPointF project(const Vec3& p) {
        const double across = p[0] * std::cos(turn) - p[2] * std::sin(turn);
        const double away = p[0] * std::sin(turn) + p[2] * std::cos(turn);
        return {across, -(p[1] * std::cos(tilt) - away * std::sin(tilt))};
    }
};

/// What all cells share.
struct Stage {
    double ground = 0.0;  ///< height of the lowest joint
    double reach = 1.0;   ///< half the width and height of what a cell shows
    double lift = 0.0;    ///< of the middle of a cell above the ground
    double spacing = 1.0; ///< between the lines on the ground
};

Vec3 footprint(const FigurePose& pose, double ground) {
    Vec3 low{1e30, 0, 1e30}, high{-1e30, 0, -1e30};
    for (const Vec3& joint : pose.joints)
        for (const std::size_t axis : {std::size_t{0}, std::size_t{2}}) {
            low[axis] = std::min(low[axis], joint[axis]);
            high[axis] = std::max(high[axis], joint[axis]);
        }
    return {(low[0] + high[0]) / 2, ground, (low[2] + high[2]) / 2};
}

Vec3 minus(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

/// A round number of units about half as long as the figure reaches.
double stepFor(double reach) {
    const std::vector<double> ticks = niceTicks(0.0, reach, 2);
    return ticks.size() > 1 ? ticks[1] - ticks[0] : reach;
}

Stage stageFor(const std::vector<FigurePose>& poses) {
    Stage stage;
    stage.ground = std::numeric_limits<double>::infinity();
    for (const FigurePose& pose : poses)
        for (const Vec3& joint : pose.joints)
            stage.ground = std::min(stage.ground, joint[1]);
    double left = 0, right = 0, top = 0, bottom = 0;
    for (const FigurePose& pose : poses) {
        const Vec3 target = footprint(pose, stage.ground);
        for (const Vec3& joint : pose.joints) {
            const QPointF p = View::project(minus(joint, target));
            left = std::min(left, p.x());
            right = std::max(right, p.x());
            top = std::min(top, p.y());
            bottom = std::max(bottom, p.y());
        }
    }
    stage.reach = std::max({-left, right, (bottom - top) / 2, 1e-6}) * 1.12;
    stage.lift = (top + bottom) / 2;
    stage.spacing = stepFor(stage.reach);
    return stage;
}

int rowsFor(int poses) {
    return std::max(1, (poses + columns - 1) / columns);
}

class SheetPainter {
  public:
    SheetPainter(QImage& image, const Stage& stage, const std::vector<FigureBone>& bones)
        : _painter(&image), _stage(stage), _bones(bones) {
        image.fill(Qt::white);
        _painter.setRenderHint(QPainter::Antialiasing);
    }

    void drawTitle(const QString& title, int width) {
        _painter.setFont(pictureFont(20, true));
        _painter.setPen(ink);
        _painter.drawText(QRectF(margin, margin - 8, width - 2 * margin, 30),
                          Qt::AlignLeft | Qt::AlignVCenter, title);
        double x = margin;
        for (const auto& [side, name] :
             {std::pair(BodySide::Left, "left"), std::pair(BodySide::Right, "right"),
              std::pair(BodySide::Middle, "middle")}) {
            if (std::none_of(_bones.begin(), _bones.end(),
                             [s = side](const FigureBone& b) { return b.side == s; }))
                continue;
            _painter.setPen(QPen(colorOf(side), 4, Qt::SolidLine, Qt::RoundCap));
            _painter.drawLine(QPointF(x + 2, margin + 38), QPointF(x + 24, margin + 38));
            _painter.setPen(faint);
            _painter.setFont(pictureFont(14));
            _painter.drawText(QRectF(x + 32, margin + 26, 80, 24), Qt::AlignLeft | Qt::AlignVCenter, name);
            x += 100;
        }
        _painter.setPen(faint);
        _painter.drawText(QRectF(x, margin + 26, width - x - margin, 24), Qt::AlignRight | Qt::AlignVCenter,
                          QString("lines on the ground: %1 units apart").arg(_stage.spacing));
    }

    void drawCell(const QRectF& cell, const FigurePose& pose) {
        _painter.setPen(Qt::NoPen);
        _painter.setBrush(cellColor);
        _painter.drawRoundedRect(cell, 6, 6);
        const QRectF view = cell.adjusted(0, 0, 0, -labelHeight);
        _painter.save();
        _painter.setClipRect(view);
        _scale = std::min(view.width(), view.height()) / 2 / _stage.reach;
        _middle = view.center() - QPointF(0, _stage.lift * _scale);
        _target = footprint(pose, _stage.ground);
        drawGround(view);
        drawBones(pose, true);
        drawBones(pose, false);
        _painter.restore();
        _painter.setFont(pictureFont(15));
        _painter.setPen(ink);
        _painter.drawText(QRectF(cell.left(), cell.bottom() - labelHeight, cell.width(), labelHeight),
                          Qt::AlignCenter, pose.label);
    }

  private:
    QPointF at(const Vec3& point) const { return _middle + View::project(minus(point, _target)) * _scale; }

    void drawGround(const QRectF& view) {
        const double span = (view.width() + view.height()) / _scale / std::sin(View::tilt);
        const double step = _stage.spacing;
        _painter.setPen(QPen(groundColor, 1));
        for (const std::size_t axis : {std::size_t{0}, std::size_t{2}}) {
            const std::size_t across = 2 - axis;
            const double first = std::ceil((_target[axis] - span) / step) * step;
            for (double place = first; place <= _target[axis] + span; place += step) {
                Vec3 from{0, _stage.ground, 0};
                from[axis] = place;
                Vec3 to = from;
                from[across] = _target[across] - span;
                to[across] = _target[across] + span;
                _painter.drawLine(at(from), at(to));
            }
        }
    }

    void drawBones(const FigurePose& pose, bool asShadow) {
        const double width = std::max(2.5, _scale * _stage.reach * 0.022);
        for (const FigureBone& bone : _bones) {
            Vec3 from = pose.joints[bone.from], to = pose.joints[bone.to];
            if (asShadow)
                from[1] = to[1] = _stage.ground;
            const QColor color = asShadow ? shadowColor : colorOf(bone.side);
            _painter.setPen(QPen(color, asShadow ? width * 1.4 : width, Qt::SolidLine, Qt::RoundCap));
            _painter.drawLine(at(from), at(to));
            if (asShadow)
                continue;
            _painter.setPen(Qt::NoPen);
            _painter.setBrush(color.darker(115));
            _painter.drawEllipse(at(to), width * 0.75, width * 0.75);
        }
    }

    QPainter _painter;
    Stage _stage;
    const std::vector<FigureBone>& _bones;
    double _scale = 1.0;
    QPointF _middle;
    Vec3 _target{};
};

} // namespace

BodySide sideOfName(const std::string& name) {
    const auto startsWith = [&](const char* word) { return name.rfind(word, 0) == 0; };
    const auto endsWith = [&](const std::string& word) {
        return name.size() >= word.size() && name.compare(name.size() - word.size(), word.size(), word) == 0;
    };
    // A single letter counts only before a capital: "LThumb", but not "Leg".
    const bool isLetter = name.size() > 1 && std::isupper(static_cast<unsigned char>(name[1])) != 0;
    for (const auto& [side, word, letter, tail] :
         {std::tuple(BodySide::Left, "eft", 'L', 'l'), std::tuple(BodySide::Right, "ight", 'R', 'r')}) {
        const std::string upper = letter + std::string(word), lower = tail + std::string(word);
        if (name.find(upper) != name.npos || startsWith(lower.c_str()) || (isLetter && name[0] == letter))
            return side;
        for (const char separator : {'.', '_', '-'})
            if (endsWith(std::string{separator, letter}) || endsWith(std::string{separator, tail}))
                return side;
    }
    return BodySide::Middle;
}

QImage drawFigureSheet(const QString& title, const std::vector<FigurePose>& poses,
                       const std::vector<FigureBone>& bones, QSize size) {
    startDrawing();
    QImage image(size, QImage::Format_RGB32);
    SheetPainter painter(image, stageFor(poses), bones);
    painter.drawTitle(title, size.width());
    const int rows = rowsFor(static_cast<int>(poses.size()));
    const double width = (size.width() - 2.0 * margin - (columns - 1) * gap) / columns;
    const double height = (size.height() - 2.0 * margin - titleHeight - (rows - 1) * gap) / rows;
    for (int i = 0; i < static_cast<int>(poses.size()); ++i)
        painter.drawCell(QRectF(margin + (i % columns) * (width + gap),
                                margin + titleHeight + (i / columns) * (height + gap), width, height),
                         poses[static_cast<std::size_t>(i)]);
    return image;
}

int sheetHeight(int width, int count) {
    const int cell = (width - 2 * margin - (columns - 1) * gap) / columns;
    return 2 * margin + titleHeight + rowsFor(count) * (cell + gap) - gap;
}

} // namespace ka::motion
