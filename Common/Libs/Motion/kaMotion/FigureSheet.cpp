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

constexpr double radiansPerDegree = 3.14159265358979323846 / 180.0;

Vec3 minus(const Vec3& a, const Vec3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

/// The figure as seen from the camera.
class Projection {
  public:
    explicit Projection(const FigureView& view)
        : _turnSine(std::sin(view.turn * radiansPerDegree)),
          _turnCosine(std::cos(view.turn * radiansPerDegree)),
          _tiltSine(std::sin(view.tilt * radiansPerDegree)),
          _tiltCosine(std::cos(view.tilt * radiansPerDegree)) {}

    /// Right and down in the picture, for a point relative to the camera's target.
    QPointF project(const Vec3& p) const {
        return {p[0] * _turnCosine - p[2] * _turnSine, -(p[1] * _tiltCosine - toCamera(p) * _tiltSine)};
    }

    /// How near a point is to the camera.
    double nearness(const Vec3& p) const { return p[1] * _tiltSine + toCamera(p) * _tiltCosine; }

    /// The sine of the angle from the ground to the camera.
    double tilt() const { return _tiltSine; }

  private:
    double toCamera(const Vec3& p) const { return p[0] * _turnSine + p[2] * _turnCosine; }

    double _turnSine, _turnCosine, _tiltSine, _tiltCosine;
};

/// Every point that a pose has.
template <class Visit>
void eachPoint(const FigurePose& pose, const Visit& visit) {
    std::for_each(pose.joints.begin(), pose.joints.end(), visit);
    for (const FigureFace& face : pose.faces)
        std::for_each(face.corners.begin(), face.corners.end(), visit);
    for (const FigureAxes& axes : pose.axes)
        visit(axes.origin);
}

/// The middle of a pose, on a ground of this height.
Vec3 footprint(const FigurePose& pose, double ground) {
    Vec3 low{1e30, 0, 1e30}, high{-1e30, 0, -1e30};
    eachPoint(pose, [&](const Vec3& point) {
        for (const std::size_t axis : {std::size_t{0}, std::size_t{2}}) {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    });
    return {(low[0] + high[0]) / 2, ground, (low[2] + high[2]) / 2};
}

/// The round number of units, 1, 2 or 5 times a power of ten, nearest above a third of how far the figure reaches.
double stepFor(double reach) {
    const std::vector<double> ticks = niceTicks(0.0, 3.0 * reach, 9);
    return ticks.size() > 1 ? ticks[1] - ticks[0] : reach;
}

int rowsFor(int poses) {
    return std::max(1, (poses + columns - 1) / columns);
}

class SheetPainter {
  public:
    SheetPainter(QImage& image, const FigureStage& stage, const std::vector<FigureBone>& bones)
        : _painter(&image),
          _stage(stage),
          _projection(stage.view()),
          _bones(bones),
          _spacing(stepFor(stage.reach())) {
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
        _painter.setFont(pictureFont(14));
        _painter.drawText(QRectF(x, margin + 26, width - x - margin, 24), Qt::AlignRight | Qt::AlignVCenter,
                          QString("lines on the ground: %1 %2 apart")
                              .arg(_spacing)
                              .arg(_spacing == 1.0 ? "unit" : "units"));
    }

    void drawCell(const QRectF& cell, const FigurePose& pose) {
        _painter.setPen(Qt::NoPen);
        _painter.setBrush(cellColor);
        _painter.drawRoundedRect(cell, 6, 6);
        const QRectF view = cell.adjusted(0, 0, 0, -labelHeight);
        _painter.save();
        _painter.setClipRect(view);
        _scale = std::min(view.width(), view.height()) / 2 / _stage.reach();
        _middle = view.center() - QPointF(0, _stage.lift() * _scale);
        _target = footprint(pose, _stage.ground());
        drawGround(view);
        drawBones(pose, true);
        drawFaces(pose);
        drawBones(pose, false);
        drawAxes(pose);
        _painter.restore();
        _painter.setFont(pictureFont(15));
        _painter.setPen(ink);
        _painter.drawText(QRectF(cell.left(), cell.bottom() - labelHeight, cell.width(), labelHeight),
                          Qt::AlignCenter, pose.label);
    }

  private:
    QPointF at(const Vec3& point) const {
        return _middle + _projection.project(minus(point, _target)) * _scale;
    }

    void drawGround(const QRectF& view) {
        // Seen along the ground there is none.
        if (_projection.tilt() < 0.05)
            return;
        const double span = (view.width() + view.height()) / _scale / _projection.tilt();
        const double step = _spacing;
        _painter.setPen(QPen(groundColor, 1));
        for (const std::size_t axis : {std::size_t{0}, std::size_t{2}}) {
            const std::size_t across = 2 - axis;
            const double first = std::ceil((_target[axis] - span) / step) * step;
            for (double place = first; place <= _target[axis] + span; place += step) {
                Vec3 from{0, _stage.ground(), 0};
                from[axis] = place;
                Vec3 to = from;
                from[across] = _target[across] - span;
                to[across] = _target[across] + span;
                _painter.drawLine(at(from), at(to));
            }
        }
    }

    void drawBones(const FigurePose& pose, bool asShadow) {
        const double width = std::max(2.5, _scale * _stage.reach() * 0.022);
        for (const FigureBone& bone : _bones) {
            Vec3 from = pose.joints[bone.from], to = pose.joints[bone.to];
            if (asShadow)
                from[1] = to[1] = _stage.ground();
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

    /// From the farthest to the nearest, each as bright as it faces the camera and the sky.
    void drawFaces(const FigurePose& pose) {
        std::vector<std::pair<double, const FigureFace*>> byDepth;
        byDepth.reserve(pose.faces.size());
        for (const FigureFace& face : pose.faces) {
            double near = 0.0;
            for (const Vec3& corner : face.corners)
                near += _projection.nearness(minus(corner, _target));
            byDepth.emplace_back(near, &face);
        }
        std::sort(byDepth.begin(), byDepth.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (const auto& [near, face] : byDepth) {
            const QColor color = QColor(face->color).darker(static_cast<int>(100 / brightness(*face)));
            // An outline of the same colour closes the seams between neighbours.
            _painter.setPen(QPen(color, 0.6));
            _painter.setBrush(color);
            const QPointF points[] = {at(face->corners[0]), at(face->corners[1]), at(face->corners[2])};
            _painter.drawPolygon(points, 3);
        }
    }

    double brightness(const FigureFace& face) const {
        const Vec3 a = minus(face.corners[1], face.corners[0]), b = minus(face.corners[2], face.corners[0]);
        const Vec3 normal{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        const double length =
            std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
        if (!(length > 0.0))
            return 1.0;
        const double toCamera = std::abs(_projection.nearness(normal)) / length;
        return 0.5 + 0.3 * toCamera + 0.2 * std::max(0.0, normal[1] / length);
    }

    void drawAxes(const FigurePose& pose) {
        const QColor colors[] = {QColor(0xC0, 0x39, 0x2B), QColor(0x27, 0x8E, 0x4B),
                                 QColor(0x2C, 0x6F, 0xBB)};
        const double length = _stage.reach() * 0.18;
        for (const FigureAxes& axes : pose.axes)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                Vec3 end = axes.origin;
                for (std::size_t i = 0; i < 3; ++i)
                    end[i] += axes.ends[axis][i] * length;
                _painter.setPen(QPen(colors[axis], 2.5, Qt::SolidLine, Qt::RoundCap));
                _painter.drawLine(at(axes.origin), at(end));
            }
    }

    QPainter _painter;
    const FigureStage& _stage;
    Projection _projection;
    const std::vector<FigureBone>& _bones;
    double _spacing;
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

void FigureStage::include(const FigurePose& pose) {
    const Projection projection(_view);
    const Vec3 target = footprint(pose, 0.0);
    eachPoint(pose, [&](const Vec3& point) {
        const QPointF p = projection.project(minus(point, target));
        _ground = std::min(_ground, point[1]);
        _left = std::min(_left, p.x());
        _right = std::max(_right, p.x());
        _top = std::min(_top, p.y());
        _bottom = std::max(_bottom, p.y());
    });
}

double FigureStage::ground() const {
    return std::isfinite(_ground) ? _ground : 0.0;
}

double FigureStage::fromGround(double height) const {
    return height + ground() * std::cos(_view.tilt * radiansPerDegree);
}

double FigureStage::reach() const {
    const double top = std::min(0.0, fromGround(_top)), bottom = std::max(0.0, fromGround(_bottom));
    const double reach = std::max({-_left, _right, (bottom - top) / 2});
    return reach > 1e-9 && std::isfinite(reach) ? reach * 1.12 : 1.0; // a point has room about it
}

double FigureStage::lift() const {
    return std::isfinite(_ground) ? (std::min(0.0, fromGround(_top)) + std::max(0.0, fromGround(_bottom))) / 2
                                  : 0.0;
}

QImage drawFigureFrame(const QString& title, const FigurePose& pose, const std::vector<FigureBone>& bones,
                       const FigureStage& stage, QSize size) {
    startDrawing();
    QImage image(size, QImage::Format_RGB32);
    SheetPainter painter(image, stage, bones);
    painter.drawTitle(title, size.width());
    painter.drawCell(QRectF(margin, margin + titleHeight, size.width() - 2.0 * margin,
                            size.height() - 2.0 * margin - titleHeight),
                     pose);
    return image;
}

QImage drawFigureSheet(const QString& title, const std::vector<FigurePose>& poses,
                       const std::vector<FigureBone>& bones, QSize size, const FigureView& view) {
    startDrawing();
    FigureStage stage(view);
    for (const FigurePose& pose : poses)
        stage.include(pose);
    QImage image(size, QImage::Format_RGB32);
    SheetPainter painter(image, stage, bones);
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
