#include "DopeSheet.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationManager.h>

namespace ka::studio {

namespace {

constexpr double Reach = 6.0;        ///< Pixels beside a mark within which a click takes hold of it.
constexpr double MarkDistance = 6.0; ///< Pixels from mark to mark below which they are drawn as lines.

} // namespace

DopeSheet::DopeSheet(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
                     QWidget* parent)
    : RowView(axis, head, parent), _document(document), _selection(selection) {
    setObjectName(QStringLiteral("dopeSheet"));
    connect(&selection, &IdSelection::changed, this, &DopeSheet::invalidate);
    connect(&document, &Document::changed, this, [this](const std::vector<kaUID>& ids) {
        for (const kaUID id : ids)
            _scene.forget(id);
        invalidate();
    });
    connect(&document, &Document::replaced, this, [this] {
        _scene.forgetAll();
        _scene.setCurves({});
        invalidate();
    });
}

void DopeSheet::setCurves(const std::vector<kaUID>& curves) {
    _scene.setCurves(curves);
    invalidate();
}

int DopeSheet::rowCount() const {
    return _scene.curves().empty() ? 0 : static_cast<int>(_scene.curves().size()) + 1;
}

std::vector<kaUID> DopeSheet::curvesOfRow(int row) const {
    if (row < 0 || row >= rowCount())
        return {};
    return row == 0 ? _scene.curves()
                    : std::vector<kaUID>{_scene.curves()[static_cast<std::size_t>(row) - 1]};
}

QString DopeSheet::rowLabel(int row) const {
    if (row == 0)
        return tr("All");
    const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(curvesOfRow(row).front());
    if (curve == nullptr)
        return {};
    const kaAnimationObject* block = curve->getParentObject();
    const kaAnimationField* field = kaAnimationManager::the()->getField(curve->getField());
    const QString name =
        QString::fromLatin1((field != nullptr ? field->attribute : curve->getName()).c_str());
    return block != nullptr ? QString::fromLatin1(block->getName().c_str()) + QStringLiteral(" ") + name
                            : name;
}

/// Of the marks in one column of pixels one is drawn, a selected one first: 1 for a mark, 2 for a selected one.
/// @param left  the pixel of the first column.
void DopeSheet::markColumns(kaUID curve, int left, std::vector<char>& columns) const {
    const CurveTrace& trace = _scene.trace(curve);
    const auto [first, last] =
        trace.within(frameAt(left), frameAt(left + static_cast<double>(columns.size())));
    for (std::size_t i = first; i < last; ++i) {
        const double x = pixelOf(static_cast<double>(trace.frames()[i])) - left;
        const auto column = static_cast<std::size_t>(std::max(0.0, x));
        if (column < columns.size())
            columns[column] =
                std::max(columns[column], _selection.contains(trace.keys()[i]) ? char(2) : char(1));
    }
}

/// Whether marks would hide each other: by the keys of the whole curve, so that a row keeps its look while it is
/// panned.
bool DopeSheet::isDense(kaUID curve) const {
    const CurveTrace& trace = _scene.trace(curve);
    if (trace.size() < 2)
        return false;
    const double frames =
        static_cast<double>(trace.frames().back()) - static_cast<double>(trace.frames().front());
    return static_cast<double>(trace.size()) * MarkDistance > frames * std::abs(axis().map().scale());
}

void DopeSheet::drawRow(QPainter& painter, int row, const QRect& rect) {
    const double middle = rect.center().y() + 0.5, size = row == 0 ? 5.5 : 4.5;
    const int reach = static_cast<int>(std::ceil(size)) + 1; // a mark stands out by as much
    const int left = rect.left() - reach;
    std::vector<char> columns(static_cast<std::size_t>(rect.width() + 2 * reach), 0);
    const std::vector<kaUID> curves = curvesOfRow(row);
    for (const kaUID curve : curves)
        markColumns(curve, left, columns);
    const bool isLine = std::any_of(curves.begin(), curves.end(), [this](kaUID id) { return isDense(id); });
    painter.setPen(QPen(palette().color(QPalette::Text), 0.8));
    for (std::size_t column = 0; column < columns.size(); ++column) {
        if (columns[column] == 0)
            continue;
        const QColor color = columns[column] == 2 ? QColor(255, 200, 40) : palette().color(QPalette::Mid);
        const double x = left + static_cast<double>(column);
        if (isLine) {
            painter.fillRect(QRectF(x, middle - size, 1, 2 * size), color);
            continue;
        }
        const double at = x + 0.5;
        const QPointF mark[] = {
            {at, middle - size}, {at + size, middle}, {at, middle + size}, {at - size, middle}};
        painter.setBrush(color);
        painter.drawPolygon(mark, 4);
    }
}

QPoint DopeSheet::pixelOfKey(kaUID id) const {
    const kaAnimationCurve2D* curve = curveOf(id);
    const std::vector<kaUID>& curves = _scene.curves();
    const auto found =
        curve != nullptr ? std::find(curves.begin(), curves.end(), curve->getId()) : curves.end();
    if (found == curves.end())
        return {-10000, -10000};
    const double frame = static_cast<double>(kaAnimationManager::the()->getPoint2D(id)->getBegin());
    return {static_cast<int>(std::lround(pixelOf(frame))),
            rowRect(static_cast<int>(found - curves.begin()) + 1).center().y()};
}

std::vector<kaUID> DopeSheet::keysAt(int row, double x) const {
    std::vector<kaUID> keys;
    for (const kaUID curve : curvesOfRow(row)) {
        if (_locked.count(curve) != 0)
            continue;
        const CurveTrace& trace = _scene.trace(curve);
        const auto [first, last] = trace.within(frameAt(x - Reach), frameAt(x + Reach));
        std::size_t nearest = last;
        for (std::size_t i = first; i < last; ++i)
            if (nearest == last || std::abs(pixelOf(static_cast<double>(trace.frames()[i])) - x) <
                                       std::abs(pixelOf(static_cast<double>(trace.frames()[nearest])) - x))
                nearest = i;
        if (nearest != last)
            keys.push_back(trace.keys()[nearest]);
    }
    return keys;
}

void DopeSheet::pressContent(QMouseEvent* event) {
    _pressed = event->pos();
    _drag.reset();
    const std::vector<kaUID> keys = keysAt(rowAt(_pressed.y()), _pressed.x());
    if (keys.empty() || _pressed.x() < LabelWidth) {
        startBox(_pressed);
        return;
    }
    const bool isKnown =
        std::all_of(keys.begin(), keys.end(), [this](kaUID id) { return _selection.contains(id); });
    if (!isKnown || event->modifiers().testFlag(Qt::ControlModifier))
        _selection.select(keys, IdSelection::byModifiers(event->modifiers(), true));
}

void DopeSheet::moveContent(QMouseEvent* event) {
    const int way = event->pos().x() - _pressed.x();
    if (_drag == nullptr && std::abs(way) < 3)
        return;
    if (_drag == nullptr) {
        std::vector<kaUID> keys;
        for (const kaUID id : _selection.ids())
            if (const kaAnimationCurve2D* curve = curveOf(id))
                if (_locked.count(curve->getId()) == 0)
                    keys.push_back(id);
        _drag = std::make_unique<KeyDrag>(_document, keys);
    }
    _drag->moveTo(static_cast<float>(way / axis().map().scale()), 0.0F, axis().snapsFrames(), false);
    emit hint(tr("Moved by %1 frames").arg(static_cast<double>(_drag->frames()), 0, 'f', 2));
}

void DopeSheet::releaseContent(QMouseEvent* /*event*/) {
    if (_drag != nullptr)
        _drag->commit();
    _drag.reset();
}

void DopeSheet::selectBox(const QRect& box, SelectBy how) {
    std::vector<kaUID> keys;
    for (int row = 1; row < rowCount(); ++row) {
        const QRect rect = rowRect(row);
        if (rect.bottom() < box.top() || rect.top() > box.bottom())
            continue;
        const CurveTrace& trace = _scene.trace(curvesOfRow(row).front());
        const auto [first, last] = trace.within(frameAt(box.left()), frameAt(box.right()));
        keys.insert(keys.end(), trace.keys().begin() + static_cast<std::ptrdiff_t>(first),
                    trace.keys().begin() + static_cast<std::ptrdiff_t>(last));
    }
    _selection.select(keys, how);
}

} // namespace ka::studio
