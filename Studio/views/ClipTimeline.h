#pragma once

#include "document/ContainerEdits.h"
#include "timebased/RowView.h"

#include <map>

namespace ka::studio {

/// Clips, their tracks and what lies on them, as bars: to be moved, stretched, trimmed, linked. A row for
/// each clip, below it one for each of its tracks, and one for each block that stands by itself.
class ClipTimeline : public RowView {
    Q_OBJECT

  public:
    /// @param selection  of blocks, clips and sequences.
    ClipTimeline(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
                 QWidget* parent = nullptr);

    /// The bar of an object, in pixels; null where it has none. For tests and hints.
    QRect barOf(kaUID object) const;
    /// Puts an object, or a copy of one that lies elsewhere, on the track below a place. @return its id; 0
    /// when there is no track, or no room.
    kaUID placeAt(kaUID object, const QPoint& position);
    kaUID trackAt(int y) const; ///< 0 where there is none.
    kaUID clipAt(int y) const;  ///< The clip whose row, or a track of which, is there; 0 for none.
    kaUID objectAt(const QPoint& position) const; ///< 0 for none.

  public slots:
    void frameAll();

  signals:
    void chosen(kaUID object);               ///< By a double click: to be played.
    void menuWanted(const QPoint& position); ///< Of the widget.

  protected:
    int rowCount() const override { return static_cast<int>(_rows.size()); }
    void drawRow(QPainter& painter, int row, const QRect& rect) override;
    void drawOver(QPainter& painter) override;
    QString rowLabel(int row) const override;
    void pressContent(QMouseEvent* event) override;
    void moveContent(QMouseEvent* event) override;
    void releaseContent(QMouseEvent* event) override;
    void selectBox(const QRect& box, SelectBy how) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    enum class Drag { None, Move, Begin, End, Link };
    struct Row {
        kaUID object; ///< a clip, a track, or a block by itself
        int level;    ///< 0, or 1 for tracks
    };

    void takeInRows();
    void onChanged(const std::vector<kaUID>& ids);
    std::vector<kaUID> barsOf(int row) const;
    QRect barRect(kaUID object, int row) const;
    void drawBar(QPainter& painter, kaUID object, const QRect& bar) const;
    void drawLinks(QPainter& painter) const;
    void drawNames(QPainter& painter) const;
    QString nameOf(const kaAnimationObject& object) const;
    double dragged(const QPoint& to) const; ///< Frames, whole ones where those are wanted.
    bool isPossible() const;
    void finish(Qt::KeyboardModifiers modifiers, const QPoint& at);

    Document& _document;
    IdSelection& _selection;
    std::vector<Row> _rows;
    std::map<kaUID, int> _rowOf; ///< of a bar's object

    Drag _drag = Drag::None;
    kaUID _held = 0, _toTrack = 0;
    QPoint _pressed, _at;
    float _begin = 0.0F, _end = 0.0F; ///< what the held object would span
};

} // namespace ka::studio
