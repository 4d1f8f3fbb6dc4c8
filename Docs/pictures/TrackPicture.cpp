#include "TrackPicture.h"

#include <QPainter>
#include <kaAnimationCurve2D.h>
#include <kaAnimationManager.h>
#include <kaAnimationSequence.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Canvas.h>
#include <string>

namespace {

constexpr int Width = 1200;
constexpr int LabelWidth = 130;
constexpr int RowHeight = 74;
constexpr int Top = 70;
constexpr double PixelsPerFrame = 8.5;

kaAnimationManager& manager() {
    return *kaAnimationManager::the();
}

kaAnimationUnit* block(const std::string& name, float begin, float end) {
    kaAnimationCurve2D* curve = manager().createCurve2D(nullptr, "curve", 0, false);
    curve->setPoints({manager().createPoint2D(begin, 0.0F, 0), manager().createPoint2D(end, 1.0F, 0)});
    kaAnimationUnit* unit = manager().createUnit(name, 0);
    unit->addObject(curve);
    return unit;
}

/// Everything goes in by `insertObject`, which decides the track.
kaAnimationStrip* exampleClip() {
    kaAnimationStrip* clip = manager().createStrip("walk and wave", 0);
    clip->insertObject(block("walk", 0.0F, 40.0F));
    clip->insertObject(block("turn", 40.0F, 60.0F));
    clip->insertObject(block("wave", 20.0F, 50.0F));
    clip->insertObject(block("walk back", 70.0F, 110.0F));
    kaAnimationSequence* event = manager().createSequence("open the door", 0);
    event->setBegin(62.0F);
    event->setEnd(68.0F);
    clip->insertObject(event);
    kaAnimationStrip* nested = manager().createStrip("nested clip", 0);
    nested->insertObject(block("nod", 60.0F, 95.0F));
    clip->insertObject(nested);
    return clip;
}

QColor colorOf(const kaAnimationObject& object) {
    switch (object.getTypeID()) {
    case KA_TYPE_STRIP:
        return ka::motion::distinctColor(2);
    case KA_TYPE_SEQUENCE:
        return ka::motion::distinctColor(1);
    default:
        return ka::motion::distinctColor(0);
    }
}

double xOf(float frame) {
    return LabelWidth + static_cast<double>(frame) * PixelsPerFrame;
}

void drawObject(QPainter& painter, const kaAnimationObject& object, int top) {
    const QRectF box(xOf(object.getBegin()), top + 12, xOf(object.getEnd()) - xOf(object.getBegin()),
                     RowHeight - 24);
    painter.setPen(colorOf(object).darker(140));
    painter.setBrush(colorOf(object).lighter(150));
    painter.drawRoundedRect(box, 5, 5);
    const bool narrow = object.getTypeID() == KA_TYPE_SEQUENCE;
    painter.setPen(Qt::black);
    if (narrow)
        painter.drawText(QPointF(box.left() - 20, box.bottom() + 16),
                         QString::fromStdString(object.getName()));
    else
        painter.drawText(box.adjusted(8, 0, -4, 0), Qt::AlignVCenter,
                         QString::fromStdString(object.getName()));
}

void drawRuler(QPainter& painter, int bottom) {
    for (int frame = 0; frame <= 120; frame += 10) {
        const double x = xOf(static_cast<float>(frame));
        painter.setPen(QColor(225, 225, 225));
        painter.drawLine(QPointF(x, Top), QPointF(x, bottom));
        painter.setPen(Qt::darkGray);
        painter.drawText(QRectF(x - 30, bottom + 4, 60, 20), Qt::AlignCenter, QString::number(frame));
    }
    painter.drawText(QRectF(LabelWidth, bottom + 24, Width - LabelWidth, 20), Qt::AlignCenter, "frame");
}

} // namespace

QImage drawTracks() {
    kaAnimationStrip* clip = exampleClip();
    const auto tracks = clip->getStreaks();
    const int bottom = Top + RowHeight * static_cast<int>(tracks.size()) + 24;
    QImage image(Width, bottom + 56, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(ka::motion::pictureFont(20, true));
    painter.drawText(QRectF(0, 14, Width, 36), Qt::AlignCenter,
                     "Clip \"" + QString::fromStdString(clip->getName()) +
                         "\": blocks, a sequence, a nested clip");
    painter.setFont(ka::motion::pictureFont(15));
    drawRuler(painter, bottom);
    int top = Top;
    for (const auto& entry : tracks) {
        painter.setPen(Qt::black);
        painter.drawText(QRectF(16, top, LabelWidth - 24, RowHeight), Qt::AlignVCenter,
                         QString("track %1").arg(entry.first));
        for (const kaAnimationObject* object : entry.second->getObjects())
            drawObject(painter, *object, top);
        top += RowHeight;
    }
    painter.end();
    manager().destroyStrip(clip);
    return image;
}
