#include "RowView.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace ka::studio {

RowView::RowView(TimeAxis& axis, PlayHead& head, QWidget* parent) : TimeView(axis, head, parent) {
    connect(&axis, &TimeAxis::changed, this, &RowView::invalidate);
}

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
    if (_isStale) {
        _rows = QPixmap(size() * devicePixelRatioF());
        _rows.setDevicePixelRatio(devicePixelRatioF());
        QPainter rows(&_rows);
        rows.setFont(font());
        drawRows(rows);
        _isStale = false;
    }
    painter.drawPixmap(0, 0, _rows);
    drawOver(painter);
}

void RowView::drawRows(QPainter& painter) {
    painter.fillRect(contentRect(), palette().color(QPalette::Base));
    const int first = _offset / RowHeight;
    const int last = std::min(rowCount() - 1, (_offset + contentRect().height()) / RowHeight);
    for (int row = first; row <= last; ++row) {
        const QRect rect = rowRect(row);
        if (row % 2 == 1)
            painter.fillRect(rect, palette().color(QPalette::AlternateBase));
        drawRow(painter, row, rect);
    }
    QColor ground = palette().color(QPalette::Button);
    ground.setAlpha(215);
    painter.fillRect(QRect(0, RulerHeight, LabelWidth, height()), ground);
    painter.setPen(palette().color(QPalette::ButtonText));
    for (int row = first; row <= last; ++row) {
        const QRect label = QRect(6, rowRect(row).top(), LabelWidth - 10, RowHeight);
        painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(rowLabel(row), Qt::ElideRight, label.width()));
    }
    painter.drawLine(LabelWidth, RulerHeight, LabelWidth, height());
}

} // namespace ka::studio
