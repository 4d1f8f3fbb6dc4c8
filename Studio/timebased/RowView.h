#pragma once

#include "TimeView.h"

#include <QPixmap>

namespace ka::studio {

/// A view over time whose content stands in rows of one height, more of them than fit: scrolled by the middle
/// button, or by the wheel with Ctrl. Each row has a label at its left. Only rows in view are drawn.
class RowView : public TimeView {
    Q_OBJECT

  public:
    RowView(TimeAxis& axis, PlayHead& head, QWidget* parent = nullptr);

    static constexpr int RowHeight = 22;                    ///< Pixels.
    static constexpr int LabelWidth = TimeAxis::LeftMargin; ///< Pixels, over the content.

    /// The part of the widget that a row takes, wherever it is scrolled to.
    QRect rowRect(int row) const;
    int rowAt(int y) const; ///< -1 where there is none.

  protected:
    virtual int rowCount() const = 0;
    /// @param rect  the part of the row that is drawn; the painter is clipped to it.
    virtual void drawRow(QPainter& painter, int row, const QRect& rect) = 0;
    virtual QString rowLabel(int row) const = 0;
    /// Over all rows.
    virtual void drawOver(QPainter& /*painter*/) {}

    /// To be called when the rows look different; the playhead moves over them as they are.
    void invalidate();

    void drawContent(QPainter& painter) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void panContent(double pixels) override;
    void zoomContent(double pixel, double factor) override; ///< There is nothing to zoom: it scrolls.

  private:
    void scrollTo(int offset);
    /// @param from,to  the pixels across that are drawn
    void drawRows(QPainter& painter, int from, int to);
    void drawLabels(QPainter& painter);
    bool scrollRows();

    int _offset = 0;
    // The rows as they were drawn last, where time stood then and how they were scrolled.
    QPixmap _rows;
    AxisMap _drawn;
    bool _isStale = true;
};

} // namespace ka::studio
