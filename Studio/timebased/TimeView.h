#pragma once

#include "IdSelection.h"
#include "TimeAxis.h"

#include <QRect>
#include <QWidget>
#include <optional>

namespace ka::studio {

class PlayHead;

/// What every view over time has: a ruler with the playhead that can be dragged, panning by the middle
/// button, zooming at the pointer by the wheel, and a rubber band. Views draw and handle the rest.
class TimeView : public QWidget {
    Q_OBJECT

  public:
    /// @param axis,head  outlive the view.
    TimeView(TimeAxis& axis, PlayHead& head, QWidget* parent = nullptr);

    static constexpr int RulerHeight = 24; ///< Pixels.

    /// The part of the view below the ruler.
    QRect contentRect() const;
    double frameAt(double x) const { return _axis.map().toValue(x); }
    double pixelOf(double frame) const { return _axis.map().toPixel(frame); }

  signals:
    /// One line for the user: what a drag does at the moment; empty at its end.
    void hint(const QString& text);

  protected:
    // What a view adds. Positions are pixels of the widget.
    virtual void drawContent(QPainter& painter) = 0;
    virtual void pressContent(QMouseEvent* event) = 0; ///< Left button, below the ruler.
    virtual void moveContent(QMouseEvent* event) = 0;  ///< While the left button is held.
    virtual void releaseContent(QMouseEvent* event) = 0;
    virtual void selectBox(const QRect& box, SelectBy how) = 0;
    virtual void panContent(double /*pixels*/) {}                    ///< Across time.
    virtual void zoomContent(double /*pixel*/, double /*factor*/) {} ///< Across time.

    void startBox(const QPoint& from);

    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

    TimeAxis& axis() { return _axis; }
    const TimeAxis& axis() const { return _axis; }
    PlayHead& head() { return _head; }

  private:
    enum class Drag { None, Pan, Scrub, Range, Box, Content };

    void drawRuler(QPainter& painter) const;
    void drawRange(QPainter& painter) const;
    void drawHead(QPainter& painter) const;
    QRectF headFlag() const; ///< Where the playhead's label is; null where it is not seen.
    QString headText() const;
    void pressRuler(const QMouseEvent& event);
    void scrubTo(const QPoint& position);
    void dragRange(const QPoint& position);
    double wholeFrameAt(const QPoint& position) const; ///< Where whole frames are wanted, else any.
    QString label(double frame) const;

    TimeAxis& _axis;
    PlayHead& _head;
    Drag _drag = Drag::None;
    QPoint _last;
    std::optional<QRect> _box;
    double _rangeStart = 0.0; ///< where a range was begun
};

} // namespace ka::studio
