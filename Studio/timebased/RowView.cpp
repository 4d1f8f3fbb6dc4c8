#include "RowView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ka::studio {

RowView::RowView(TimeAxis& axis, PlayHead& head, QWidget* parent) : TimeView(axis, head, parent) {}

void RowView::invalidate() {
    _isStale = true;
    update();
}

void RowView::resizeEvent(QResizeEvent* event) {
    TimeView::resizeEvent(event);
    invalidate();
}

void RowView::changeEvent(QEvent* event) {
    TimeView::changeEvent(event);
    invalidate();
}

QRect RowView::rowRect(int row) const {
    return {0, RulerHeight + row * RowHeight - _offset, width(), RowHeight};
}

int RowView::rowAt(int y) const {
    const int row = y < RulerHeight ? -1 : (y - RulerHeight + _offset) / RowHeight;
    return row < rowCount() ? row : -1;
}

void RowView::scrollTo(int offset) {
    const int most = std::max(0, rowCount() * RowHeight - contentRect().height());
    const int wanted = std::clamp(offset, 0, most);
    if (wanted != _offset)
        invalidate();
    _offset = wanted;
}

void RowView::panContent(double pixels) {
    scrollTo(_offset - static_cast<int>(std::lround(pixels)));
}

void RowView::zoomContent(double /*pixel*/, double factor) {
    scrollTo(_offset + (factor > 1.0 ? -2 : 2) * RowHeight);
}

void RowView::drawContent(QPainter& painter) {
    scrollTo(_offset); // there may be fewer rows than before
    if (_isStale || !scrollRows()) {
        _rows = QPixmap(size() * devicePixelRatioF());
        _rows.setDevicePixelRatio(devicePixelRatioF());
        QPainter rows(&_rows);
        rows.setFont(font());
        rows.fillRect(contentRect(), palette().color(QPalette::Base));
        drawRows(rows, LabelWidth, width());
        drawLabels(rows);
        _isStale = false;
    }
    _drawn = axis().map();
    painter.drawPixmap(0, 0, _rows);
    painter.setClipRect(contentRect().adjusted(LabelWidth, 0, 0, 0));
    drawOver(painter);
}

/// Panned by whole pixels, what is drawn already is moved and only what came into view is drawn.
/// @return false where all of it must be drawn anew.
bool RowView::scrollRows() {
    const AxisMap& now = axis().map();
    const double shift = now.toPixel(_drawn.toValue(0.0));
    const double ratio = devicePixelRatioF();
    const bool isWhole = std::abs(shift - std::round(shift)) < 1e-3 &&
                         std::abs(shift * ratio - std::round(shift * ratio)) < 1e-3;
    if (now.scale() != _drawn.scale() || !isWhole || std::abs(shift) >= width() - LabelWidth)
        return false;
    const int pixels = static_cast<int>(std::lround(shift));
    if (pixels == 0)
        return true;
    const QRect content(static_cast<int>(LabelWidth * ratio), 0,
                        _rows.width() - static_cast<int>(LabelWidth * ratio), _rows.height());
    _rows.scroll(static_cast<int>(std::lround(shift * ratio)), 0, content);
    QPainter rows(&_rows);
    rows.setFont(font());
    if (pixels > 0)
        drawRows(rows, LabelWidth, LabelWidth + pixels);
    else
        drawRows(rows, width() + pixels, width());
    return true;
}

void RowView::drawRows(QPainter& painter, int from, int to) {
    const int first = _offset / RowHeight;
    const int last = std::min(rowCount() - 1, (_offset + contentRect().height()) / RowHeight);
    painter.setClipRect(QRect(from, RulerHeight, to - from, height()));
    painter.fillRect(QRect(from, RulerHeight, to - from, height()), palette().color(QPalette::Base));
    for (int row = first; row <= last; ++row) {
        const QRect rect = QRect(from, rowRect(row).top(), to - from, RowHeight);
        if (row % 2 == 1)
            painter.fillRect(rect, palette().color(QPalette::AlternateBase));
        drawRow(painter, row, rect);
    }
    painter.setClipping(false);
}

void RowView::drawLabels(QPainter& painter) {
    const int first = _offset / RowHeight;
    const int last = std::min(rowCount() - 1, (_offset + contentRect().height()) / RowHeight);
    painter.fillRect(QRect(0, RulerHeight, LabelWidth, height()), palette().color(QPalette::Button));
    painter.setPen(palette().color(QPalette::ButtonText));
    for (int row = first; row <= last; ++row) {
        const QRect label = QRect(6, rowRect(row).top(), LabelWidth - 10, RowHeight);
        painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(rowLabel(row), Qt::ElideRight, label.width()));
    }
    painter.drawLine(LabelWidth - 1, RulerHeight, LabelWidth - 1, height());
}

} // namespace ka::studio
