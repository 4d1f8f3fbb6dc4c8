#include "ClipTimeline.h"

#include "ChannelModel.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <limits>

namespace ka::studio {

namespace {

constexpr int Edge = 6; ///< Pixels of a bar's end that stretch it.

kaAnimationObject* objectWith(kaUID id) {
    return kaAnimationManager::the()->getObject(id);
}

bool isBar(const kaAnimationObject& object) {
    const unsigned int type = object.getTypeID();
    return type == KA_TYPE_UNIT || type == KA_TYPE_STRIP || type == KA_TYPE_SEQUENCE;
}

QColor colorOf(const kaAnimationObject& object) {
    switch (object.getTypeID()) {
    case KA_TYPE_STRIP:
        return {120, 160, 90};
    case KA_TYPE_SEQUENCE:
        return {200, 150, 60};
    default:
        return {95, 130, 185};
    }
}

/// A filled rectangle with a border, of whole pixels: the same however it is clipped, which lines are not.
void fillFramed(QPainter& painter, const QRect& rect, const QColor& fill, const QColor& frame, int border) {
    const QRect inside = rect.adjusted(border, border, -border, -border);
    painter.fillRect(inside, fill);
    painter.fillRect(QRect(rect.topLeft(), QPoint(rect.right(), inside.top() - 1)), frame);
    painter.fillRect(QRect(QPoint(rect.left(), inside.bottom() + 1), rect.bottomRight()), frame);
    painter.fillRect(QRect(rect.left(), inside.top(), border, inside.height()), frame);
    painter.fillRect(QRect(inside.right() + 1, inside.top(), border, inside.height()), frame);
}

} // namespace

ClipTimeline::ClipTimeline(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
                           QWidget* parent)
    : RowView(axis, head, parent), _document(document), _selection(selection) {
    setObjectName(QStringLiteral("clipTimeline"));
    setAcceptDrops(true);
    connect(&selection, &IdSelection::changed, this, &ClipTimeline::invalidate);
    connect(&document, &Document::changed, this, &ClipTimeline::onChanged);
    connect(&document, &Document::replaced, this, &ClipTimeline::takeInRows);
}

/// Curves alone leave the rows as they are; whatever else changes is rare.
void ClipTimeline::onChanged(const std::vector<kaUID>& ids) {
    const auto concerns = [](kaUID id) {
        const kaAnimationObject* object = objectWith(id);
        return object == nullptr || object->getTypeID() > KA_TYPE_CURVE;
    };
    if (std::any_of(ids.begin(), ids.end(), concerns))
        takeInRows();
    invalidate();
}

void ClipTimeline::takeInRows() {
    _rows.clear();
    _rowOf.clear();
    kaAnimationManager* manager = kaAnimationManager::the();
    for (kaAnimationStrip* clip : manager->getSceneStrips()) {
        _rows.push_back({clip->getId(), 0});
        for (const auto& [number, track] : clip->getStreaks())
            _rows.push_back({track->getId(), 1});
    }
    for (const kaAnimationUnit* block : manager->getSceneUnits())
        _rows.push_back({block->getId(), 0});
    for (int row = 0; row < rowCount(); ++row)
        for (const kaUID id : barsOf(row))
            _rowOf.emplace(id, row);
    invalidate();
}

std::vector<kaUID> ClipTimeline::barsOf(int row) const {
    const kaUID id = _rows[static_cast<std::size_t>(row)].object;
    const kaAnimationStreak* track = kaAnimationManager::the()->getStreak(id);
    if (track == nullptr)
        return {id};
    std::vector<kaUID> bars;
    for (const kaAnimationObject* object : track->getObjects())
        if (isBar(*object))
            bars.push_back(object->getId());
    return bars;
}

QString ClipTimeline::rowLabel(int row) const {
    const Row& shown = _rows[static_cast<std::size_t>(row)];
    const kaAnimationObject* object = objectWith(shown.object);
    if (object == nullptr)
        return {};
    if (const kaAnimationStreak* track = kaAnimationManager::the()->getStreak(shown.object))
        return tr("   Track %1").arg(track->getIndex());
    return QString::fromLatin1(object->getName().c_str());
}

QRect ClipTimeline::barRect(kaUID id, int row) const {
    const kaAnimationObject* object = objectWith(id);
    if (object == nullptr || !(object->getBegin() <= object->getEnd()))
        return {};
    constexpr double Far = 1e6; // pixels; beyond, a rectangle of whole ones would overflow
    const double left = std::clamp(pixelOf(static_cast<double>(object->getBegin())), -Far, Far);
    const double right = std::clamp(pixelOf(static_cast<double>(object->getEnd())), -Far, Far);
    const QRect rect = rowRect(row);
    return {static_cast<int>(std::lround(left)), rect.top() + 2,
            std::max(4, static_cast<int>(std::lround(right - left))), rect.height() - 4};
}

QRect ClipTimeline::barOf(kaUID object) const {
    const auto row = _rowOf.find(object);
    return row != _rowOf.end() ? barRect(object, row->second) : QRect();
}

kaUID ClipTimeline::objectAt(const QPoint& position) const {
    const int row = rowAt(position.y());
    if (row < 0 || position.x() < LabelWidth)
        return 0;
    const std::vector<kaUID> bars = barsOf(row);
    for (auto bar = bars.rbegin(); bar != bars.rend(); ++bar)
        if (barRect(*bar, row).adjusted(-2, 0, 2, 0).contains(position))
            return *bar;
    return 0;
}

kaUID ClipTimeline::trackAt(int y) const {
    const int row = rowAt(y);
    const kaUID id = row < 0 ? 0 : _rows[static_cast<std::size_t>(row)].object;
    return kaAnimationManager::the()->getStreak(id) != nullptr ? id : 0;
}

kaUID ClipTimeline::clipAt(int y) const {
    for (int row = rowAt(y); row >= 0; --row) {
        const kaUID id = _rows[static_cast<std::size_t>(row)].object;
        if (kaAnimationManager::the()->getStrip(id) != nullptr)
            return id;
        if (kaAnimationManager::the()->getStreak(id) == nullptr)
            return 0;
    }
    return 0;
}

void ClipTimeline::drawBar(QPainter& painter, kaUID id, const QRect& bar) const {
    const kaAnimationObject* object = objectWith(id);
    QColor color = colorOf(*object);
    color.setAlpha(object->isActive() ? 255 : 90);
    const bool isSelected = _selection.contains(id);
    if (bar.width() < 12 && !isSelected) { // among thousands a border costs more than it shows
        painter.fillRect(bar.adjusted(0, 0, -1, 0), color);
        return;
    }
    fillFramed(painter, bar, color, isSelected ? QColor(255, 200, 40) : color.darker(150),
               isSelected ? 2 : 1);
    if (bar.width() < 30)
        return;
    painter.setPen(Qt::white);
    const QRect inside = bar.adjusted(5, 0, -3, 0);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, nameOf(*object));
}

/// With its switches: \u21bb for repeating, the custom range, MB for motion blur; muted ones are pale.
QString ClipTimeline::nameOf(const kaAnimationObject& object) const {
    QString text = QString::fromLatin1(object.getName().c_str());
    if (object.isRepeating())
        text += QStringLiteral(" \u21bb");
    if (object.isUseCustomRange())
        text += tr(" [%1, %2]")
                    .arg(static_cast<double>(object.getCustomBegin()))
                    .arg(static_cast<double>(object.getCustomEnd()));
    if (isFlagged(object, ObjectFlag::MotionBlur))
        text += tr(" MB");
    return text;
}

/// Bars that begin before what is seen say at its edge what they are.
void ClipTimeline::drawNames(QPainter& painter) const {
    for (int row = std::max(0, rowAt(RulerHeight)); row < rowCount() && rowRect(row).top() < height(); ++row)
        for (const kaUID id : barsOf(row)) {
            const QRect bar = barRect(id, row);
            if (bar.left() >= LabelWidth || bar.right() < LabelWidth + 30)
                continue;
            const kaAnimationObject& object = *objectWith(id);
            const QString text = nameOf(object);
            const int wide = painter.fontMetrics().horizontalAdvance(text) + 10;
            const QRect place(LabelWidth, bar.top() + 1, std::min(wide, bar.right() - LabelWidth - 1),
                              bar.height() - 1);
            QColor color = colorOf(object);
            color.setAlpha(object.isActive() ? 255 : 90);
            painter.fillRect(place, palette().color(QPalette::Base));
            painter.fillRect(place, color);
            painter.setPen(Qt::white);
            painter.drawText(place.adjusted(5, 0, -3, 0), Qt::AlignLeft | Qt::AlignVCenter, text);
        }
}

void ClipTimeline::drawRow(QPainter& painter, int row, const QRect& rect) {
    constexpr int Border = 2; // pixels that a bar's outline may stand out
    for (const kaUID id : barsOf(row)) {
        const QRect bar = barRect(id, row);
        if (!bar.isNull() && bar.right() >= rect.left() - Border && bar.left() <= rect.right() + Border)
            drawBar(painter, id, bar);
    }
}

/// From the end that fires to the object that starts or stops; at most some hundreds of them.
void ClipTimeline::drawLinks(QPainter& painter) const {
    const auto connections = kaAnimationManager::the()->getObjectConnections();
    if (connections.empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    for (const auto& [id, row] : _rowOf) {
        const kaAnimationObject* source = objectWith(id);
        if (source == nullptr || source->getTriggers().empty())
            continue;
        for (const auto& [trigger, connection] : source->getTriggers()) {
            const auto link = connections.find(connection);
            if (link == connections.end() || link->second.first == nullptr)
                continue;
            const QRect from = barOf(id), to = barOf(link->second.first->getId());
            const bool stops = link->second.second == kaAnimationManager::ActionStop;
            painter.setPen(QPen(stops ? QColor(210, 70, 60) : QColor(60, 150, 90), 1.6));
            const int x = trigger == kaAnimationManager::TriggerEnd ? from.right() : from.left();
            painter.drawLine(QPoint(x, from.center().y()), QPoint(to.left(), to.center().y()));
            painter.drawEllipse(QPoint(to.left(), to.center().y()), 3, 3);
        }
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
}

void ClipTimeline::drawOver(QPainter& painter) {
    drawNames(painter);
    drawLinks(painter);
    if (_drag == Drag::Link) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::DashLine));
        painter.drawLine(_pressed, _at);
        return;
    }
    if (_drag == Drag::None || objectWith(_held) == nullptr)
        return;
    const QColor color = isPossible() ? QColor(70, 160, 80) : QColor(210, 60, 50);
    int row = _rowOf.count(_held) != 0 ? _rowOf.at(_held) : 0;
    for (int i = 0; i < rowCount() && _toTrack != 0; ++i)
        if (_rows[static_cast<std::size_t>(i)].object == _toTrack)
            row = i;
    const double left = pixelOf(static_cast<double>(_begin)), right = pixelOf(static_cast<double>(_end));
    painter.setPen(QPen(color, 2));
    painter.setBrush(QColor(color.red(), color.green(), color.blue(), 70));
    painter.drawRect(QRectF(left, rowRect(row).top() + 2, std::max(4.0, right - left), RowHeight - 4));
}

void ClipTimeline::pressContent(QMouseEvent* event) {
    _pressed = _at = event->pos();
    _held = objectAt(_pressed);
    _toTrack = 0;
    if (_held == 0) {
        startBox(_pressed);
        return;
    }
    if (!_selection.contains(_held) || event->modifiers() != Qt::NoModifier)
        _selection.select({_held}, event->modifiers().testFlag(Qt::ShiftModifier) ? SelectBy::Adding
                                                                                  : SelectBy::Replacing);
    const kaAnimationObject* object = objectWith(_held);
    _begin = object->getBegin();
    _end = object->getEnd();
    const QRect bar = barOf(_held);
    if (event->modifiers().testFlag(Qt::AltModifier))
        _drag = Drag::Link;
    else if (bar.width() > 3 * Edge && _pressed.x() <= bar.left() + Edge)
        _drag = Drag::Begin;
    else if (bar.width() > 3 * Edge && _pressed.x() >= bar.right() - Edge)
        _drag = Drag::End;
    else
        _drag = Drag::Move;
}

double ClipTimeline::dragged(const QPoint& to) const {
    const double frames = (to.x() - _pressed.x()) / axis().map().scale();
    return axis().snapsFrames() ? std::round(frames) : frames;
}

bool ClipTimeline::isPossible() const {
    const kaAnimationObject* object = objectWith(_held);
    const kaUID track = _toTrack != 0 ? _toTrack : object->getParent();
    if (kaAnimationManager::the()->getStreak(track) == nullptr)
        return beginsBefore(_begin, _end);
    return beginsBefore(_begin, _end) && hasRoom(track, _held, _begin, _end);
}

void ClipTimeline::moveContent(QMouseEvent* event) {
    _at = event->pos();
    const kaAnimationObject* object = objectWith(_held);
    if (object == nullptr)
        return;
    const auto frames = static_cast<float>(dragged(_at));
    _begin = object->getBegin() + (_drag == Drag::End ? 0.0F : frames);
    _end = object->getEnd() + (_drag == Drag::Begin ? 0.0F : frames);
    const kaUID below = trackAt(_at.y());
    _toTrack = _drag == Drag::Move && below != 0 && below != object->getParent() ? below : 0;
    const bool trims = event->modifiers().testFlag(Qt::ControlModifier);
    emit hint(_drag == Drag::Link   ? tr("Link: its end starts what is below the pointer")
              : _drag == Drag::Move ? tr("From %1 to %2%3")
                                          .arg(static_cast<double>(_begin))
                                          .arg(static_cast<double>(_end))
                                          .arg(isPossible() ? QString() : tr(": something is there"))
              : trims ? tr("Trim: its keys stay")
                      : tr("Stretch: its keys go along (Ctrl: trim)"));
    update();
}

void ClipTimeline::releaseContent(QMouseEvent* event) {
    if (_drag != Drag::None)
        finish(event->modifiers(), event->pos());
    _drag = Drag::None;
    _held = 0;
    update();
}

void ClipTimeline::finish(Qt::KeyboardModifiers modifiers, const QPoint& at) {
    const auto frames = static_cast<float>(dragged(at));
    const bool trims = modifiers.testFlag(Qt::ControlModifier);
    const kaUID target = _drag == Drag::Link ? objectAt(at) : 0;
    if (_drag == Drag::Link && target != 0 && target != _held)
        connectObjects(_document, _held, kaAnimationManager::TriggerEnd, target,
                       kaAnimationManager::ActionPlay);
    if (_drag == Drag::Link || (frames == 0.0F && _toTrack == 0))
        return;
    bool done = true;
    if (_drag == Drag::Move)
        done = moveObject(_document, _held, frames, _toTrack);
    else if (_drag == Drag::Begin)
        done = trims ? trimBegin(_document, _held, _begin) : stretchBegin(_document, _held, _begin);
    else if (_drag == Drag::End)
        done = trims ? trimEnd(_document, _held, _end) : stretchEnd(_document, _held, _end);
    if (!done)
        emit hint(tr("It stays where it was: something is there, or nothing would be left of it"));
}

void ClipTimeline::selectBox(const QRect& box, SelectBy how) {
    std::vector<kaUID> ids;
    for (int row = std::max(0, rowAt(std::max(box.top(), RulerHeight + 1))); row < rowCount(); ++row) {
        if (rowRect(row).top() > box.bottom())
            break;
        for (const kaUID id : barsOf(row))
            if (barRect(id, row).intersects(box))
                ids.push_back(id);
    }
    _selection.select(ids, how);
}

void ClipTimeline::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const kaUID id = objectAt(event->pos()))
        emit chosen(id);
    else
        TimeView::mousePressEvent(event);
}

void ClipTimeline::contextMenuEvent(QContextMenuEvent* event) {
    const kaUID id = objectAt(event->pos());
    if (id != 0 && !_selection.contains(id))
        _selection.select({id}, SelectBy::Replacing);
    emit menuWanted(event->pos());
}

void ClipTimeline::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasFormat(QString::fromLatin1(ChannelModel::MimeType)))
        event->acceptProposedAction();
}

kaUID ClipTimeline::placeAt(kaUID object, const QPoint& position) {
    double frame = frameAt(position.x());
    frame = axis().snapsFrames() ? std::round(frame) : frame;
    const kaUID placed = placeOnTrack(_document, object, trackAt(position.y()), static_cast<float>(frame));
    emit hint(placed != 0 ? tr("Placed at frame %1").arg(frame)
                          : tr("It does not fit there: drop it on a track with room"));
    return placed;
}

void ClipTimeline::dropEvent(QDropEvent* event) {
    const QByteArray ids = event->mimeData()->data(QString::fromLatin1(ChannelModel::MimeType));
    for (const QByteArray& id : ids.split(' '))
        if (!id.isEmpty() && placeAt(id.toULongLong(), event->pos()) != 0)
            event->acceptProposedAction();
}

void ClipTimeline::frameAll() {
    double begin = std::numeric_limits<double>::max(), end = -begin;
    for (const auto& [id, row] : _rowOf)
        if (const kaAnimationObject* object = objectWith(id)) {
            if (!(object->getBegin() <= object->getEnd()))
                continue;
            begin = std::min(begin, static_cast<double>(object->getBegin()));
            end = std::max(end, static_cast<double>(object->getEnd()));
        }
    if (begin <= end)
        axis().frame(begin, end, width());
}

} // namespace ka::studio
