#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <kaMotion/Canvas.h>
#include <kaMotion/CurvePlot.h>
#include <limits>

namespace ka::motion {

namespace {

const QColor ink(0x22, 0x26, 0x2B);
const QColor faint(0x6B, 0x72, 0x7B);
const QColor gridColor(0xE4, 0xE7, 0xEB);
const QColor frameColor(0xA7, 0xAE, 0xB6);

constexpr int outerMargin = 28, titleHeight = 44, labelHeight = 56, panelTitle = 30, panelGap = 18;
constexpr int axisWidth = 84, legendWidth = 270;

struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void include(double value) {
        if (std::isfinite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }

    /// Never empty; with some room on both sides.
    Range padded(double part) const {
        if (!(low <= high))
            return {0.0, 1.0};
        const double smallest = std::max({std::abs(low), std::abs(high), 1.0}) * 1e-6;
        const double room = high - low > smallest ? (high - low) * part : std::max(1.0, std::abs(low) * 0.1);
        return {low - room, high + room};
    }
};

QString tickText(double value, double step) {
    const double clean = std::abs(value) < step * 1e-6 ? 0.0 : value;
    const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step) + 1e-9)), 0, 8);
    const bool plain = std::abs(clean) < 1e6;
    return plain ? QString::number(clean, 'f', decimals) : QString::number(clean, 'g', 6);
}

double stepOf(const std::vector<double>& ticks) {
    return ticks.size() > 1 ? ticks[1] - ticks[0] : 1.0;
}

/// Maps frames and values into a rectangle of the picture.
class Scale {
  public:
    Scale(const Range& x, const Range& y, const QRectF& area) : _x(x), _y(y), _area(area) {}
    double x(double frame) const {
        return _area.left() + (frame - _x.low) / (_x.high - _x.low) * _area.width();
    }
    double y(double value) const {
        return _area.bottom() - (value - _y.low) / (_y.high - _y.low) * _area.height();
    }
    QPointF at(const QPointF& point) const { return {x(point.x()), y(point.y())}; }

  private:
    Range _x, _y;
    QRectF _area;
};

class PlotPainter {
  public:
    PlotPainter(QImage& image, double framesPerSecond) : _painter(&image), _framesPerSecond(framesPerSecond) {
        image.fill(Qt::white);
        _painter.setRenderHint(QPainter::Antialiasing);
    }

    void draw(const QString& title, const std::vector<PlotPanel>& panels, const QSize& size) {
        text(QRectF(outerMargin, outerMargin - 8, size.width() - 2 * outerMargin, 30), title,
             pictureFont(20, true), ink, Qt::AlignLeft | Qt::AlignVCenter);
        Range frames;
        for (const PlotPanel& panel : panels)
            for (const PlotCurve& curve : panel.curves)
                for (const QPointF& sample : curve.samples)
                    frames.include(sample.x());
        _frames = frames.padded(0.01);
        const int count = std::max<int>(1, static_cast<int>(panels.size()));
        const double top = outerMargin + titleHeight, bottom = size.height() - outerMargin - labelHeight;
        const double height = (bottom - top - (count - 1) * panelGap) / count;
        QRectF area;
        for (int i = 0; i < static_cast<int>(panels.size()); ++i) {
            const double panelTop = top + i * (height + panelGap) + panelTitle;
            area = QRectF(outerMargin + axisWidth, panelTop,
                          size.width() - 2 * outerMargin - axisWidth - legendWidth, height - panelTitle);
            drawPanel(panels[static_cast<std::size_t>(i)], area);
        }
        drawFrameLabels(area);
    }

  private:
    void drawPanel(const PlotPanel& panel, const QRectF& area) {
        text(QRectF(area.left(), area.top() - panelTitle, area.width(), panelTitle), panel.title,
             pictureFont(15, true), ink, Qt::AlignLeft | Qt::AlignVCenter);
        Range values;
        for (const PlotCurve& curve : panel.curves) {
            for (const QPointF& sample : curve.samples)
                values.include(sample.y());
            for (const auto& [handle, key] : curve.handles)
                values.include(handle.y());
        }
        values = values.padded(0.06);
        const Scale scale(_frames, values, area);
        drawGrid(area, scale, values);
        drawUnit(area, panel.unit);
        _painter.save();
        _painter.setClipRect(area.adjusted(-1, -1, 1, 1));
        for (const PlotCurve& curve : panel.curves)
            drawCurve(curve, scale, area.width());
        _painter.restore();
        _painter.setPen(QPen(frameColor, 1));
        _painter.setBrush(Qt::NoBrush);
        _painter.drawRect(area);
        drawLegend(panel, area);
    }

    void drawGrid(const QRectF& area, const Scale& scale, const Range& values) {
        const auto frameTicks = niceTicks(_frames.low, _frames.high, static_cast<int>(area.width() / 110));
        const auto valueTicks = niceTicks(values.low, values.high, static_cast<int>(area.height() / 38));
        _painter.setPen(QPen(gridColor, 1));
        for (const double tick : frameTicks)
            _painter.drawLine(QPointF(scale.x(tick), area.top()), QPointF(scale.x(tick), area.bottom()));
        for (const double tick : valueTicks) {
            _painter.setPen(QPen(std::abs(tick) < stepOf(valueTicks) * 1e-6 ? frameColor : gridColor, 1));
            _painter.drawLine(QPointF(area.left(), scale.y(tick)), QPointF(area.right(), scale.y(tick)));
            text(QRectF(area.left() - axisWidth, scale.y(tick) - 10, axisWidth - 8, 20),
                 tickText(tick, stepOf(valueTicks)), pictureFont(13), faint,
                 Qt::AlignRight | Qt::AlignVCenter);
        }
    }

    void drawUnit(const QRectF& area, const QString& unit) {
        _painter.save();
        _painter.translate(outerMargin + 8, area.center().y());
        _painter.rotate(-90);
        text(QRectF(-area.height() / 2, -12, area.height(), 24), unit, pictureFont(14), ink, Qt::AlignCenter);
        _painter.restore();
    }

    void drawCurve(const PlotCurve& curve, const Scale& scale, double width) {
        QPainterPath path;
        bool isDown = false;
        for (const QPointF& sample : curve.samples) {
            const bool hasValue = std::isfinite(sample.y());
            if (hasValue && isDown)
                path.lineTo(scale.at(sample));
            else if (hasValue)
                path.moveTo(scale.at(sample));
            isDown = hasValue;
        }
        drawHandles(curve, scale);
        _painter.setBrush(Qt::NoBrush);
        _painter.setPen(QPen(curve.color, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        _painter.drawPath(path);
        // Dots closer than this run into a band that hides the curve.
        constexpr double dotSpacing = 9.0;
        if (static_cast<double>(curve.keys.size()) * dotSpacing > width)
            return;
        _painter.setPen(QPen(Qt::white, 1.2));
        _painter.setBrush(curve.color);
        for (const QPointF& key : curve.keys)
            if (std::isfinite(key.y()))
                _painter.drawEllipse(scale.at(key), 4.2, 4.2);
    }

    void drawHandles(const PlotCurve& curve, const Scale& scale) {
        _painter.setPen(QPen(faint, 1.2));
        _painter.setBrush(Qt::white);
        for (const auto& [handle, key] : curve.handles) {
            _painter.drawLine(scale.at(key), scale.at(handle));
            _painter.drawEllipse(scale.at(handle), 3.4, 3.4);
        }
    }

    void drawLegend(const PlotPanel& panel, const QRectF& area) {
        constexpr double rowHeight = 24;
        const auto rows = static_cast<std::size_t>(std::max(1.0, std::floor(area.height() / rowHeight)));
        double y = area.top();
        const double left = area.right() + 20;
        for (std::size_t i = 0; i < panel.curves.size(); ++i) {
            const bool isRest = i + 1 == rows && panel.curves.size() > rows;
            const QString label =
                isRest ? QString("and %1 more").arg(panel.curves.size() - i) : panel.curves[i].label;
            if (!isRest) {
                _painter.setPen(QPen(panel.curves[i].color, 3.5, Qt::SolidLine, Qt::RoundCap));
                _painter.drawLine(QPointF(left, y + rowHeight / 2), QPointF(left + 22, y + rowHeight / 2));
            }
            const QFont font = pictureFont(14);
            const QString shown = QFontMetrics(font).elidedText(label, Qt::ElideMiddle, legendWidth - 56);
            text(QRectF(left + 32, y, legendWidth - 52, rowHeight), shown, font, ink,
                 Qt::AlignLeft | Qt::AlignVCenter);
            if (isRest)
                return;
            y += rowHeight;
        }
    }

    void drawFrameLabels(const QRectF& area) {
        const auto ticks = niceTicks(_frames.low, _frames.high, static_cast<int>(area.width() / 110));
        const Scale scale(_frames, {0, 1}, area);
        for (const double tick : ticks) {
            const double x = scale.x(tick);
            _painter.setPen(QPen(frameColor, 1));
            _painter.drawLine(QPointF(x, area.bottom()), QPointF(x, area.bottom() + 5));
            text(QRectF(x - 60, area.bottom() + 6, 120, 18), tickText(tick, stepOf(ticks)), pictureFont(13),
                 faint, Qt::AlignCenter);
            if (_framesPerSecond > 0.0)
                text(QRectF(x - 60, area.bottom() + 24, 120, 18),
                     tickText(tick / _framesPerSecond, stepOf(ticks) / _framesPerSecond) + " s",
                     pictureFont(12), frameColor, Qt::AlignCenter);
        }
        text(QRectF(area.left(), area.bottom() + 40, area.width(), 24), "frame", pictureFont(14), ink,
             Qt::AlignCenter);
    }

    void text(const QRectF& box, const QString& words, const QFont& font, const QColor& color, int flags) {
        _painter.setFont(font);
        _painter.setPen(color);
        _painter.drawText(box, flags | Qt::TextSingleLine, words);
    }

    QPainter _painter;
    double _framesPerSecond;
    Range _frames;
};

} // namespace

QImage drawPlot(const QString& title, const std::vector<PlotPanel>& panels, double framesPerSecond,
                QSize size) {
    startDrawing();
    QImage image(size, QImage::Format_RGB32);
    PlotPainter(image, framesPerSecond).draw(title, panels, size);
    return image;
}

} // namespace ka::motion
