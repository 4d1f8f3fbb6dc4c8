#include "TransportIcons.h"

#include <QPainter>
#include <QPainterPath>

namespace ka::studio {

namespace {

// Signs stand in a square of 16 by 16.

/// @param way  1 to the right, -1 to the left. @param tip  where it points to, across.
void addTriangle(QPainterPath& path, double tip, double width, double way) {
    path.moveTo(tip, 8.0);
    path.lineTo(tip - way * width, 2.5);
    path.lineTo(tip - way * width, 13.5);
    path.closeSubpath();
}

QPainterPath pathOf(TransportSign sign) {
    QPainterPath path;
    switch (sign) {
    case TransportSign::First:
        path.addRect(2.5, 2.5, 2.0, 11.0);
        addTriangle(path, 5.0, 8.5, -1.0);
        break;
    case TransportSign::Last:
        path.addRect(11.5, 2.5, 2.0, 11.0);
        addTriangle(path, 11.0, 8.5, 1.0);
        break;
    case TransportSign::PreviousKey:
        addTriangle(path, 1.0, 6.5, -1.0);
        addTriangle(path, 8.0, 6.5, -1.0);
        break;
    case TransportSign::NextKey:
        addTriangle(path, 8.0, 6.5, 1.0);
        addTriangle(path, 15.0, 6.5, 1.0);
        break;
    case TransportSign::Reverse:
        addTriangle(path, 3.0, 10.0, -1.0);
        break;
    case TransportSign::Play:
        addTriangle(path, 13.0, 10.0, 1.0);
        break;
    case TransportSign::Pause:
        path.addRect(3.5, 2.5, 3.0, 11.0);
        path.addRect(9.5, 2.5, 3.0, 11.0);
        break;
    case TransportSign::Stop:
        path.addRect(3.0, 3.0, 10.0, 10.0);
        break;
    case TransportSign::Loop:
        path.arcMoveTo(2.5, 2.5, 11.0, 11.0, 40.0);
        path.arcTo(2.5, 2.5, 11.0, 11.0, 40.0, 280.0);
        break;
    }
    return path;
}

QPixmap drawn(TransportSign sign, const QColor& color, int size) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    const QPainterPath path = pathOf(sign);
    if (sign != TransportSign::Loop) {
        painter.fillPath(path, color);
        return picture;
    }
    painter.strokePath(path, QPen(color, 2.0, Qt::SolidLine, Qt::FlatCap));
    const QPointF head[] = {{9.5, 11.2}, {15.2, 10.0}, {13.4, 15.4}};
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(head, 3);
    return picture;
}

} // namespace

QIcon transportIcon(TransportSign sign, const QColor& color) {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 96})
        icon.addPixmap(drawn(sign, color, size));
    return icon;
}

} // namespace ka::studio
