#pragma once

#include "CurveScene.h"
#include "document/KeyDrag.h"
#include "timebased/TimeView.h"

#include <QPixmap>
#include <memory>

namespace ka::studio {

/// Curves with their keys and handles, to be bent by hand.
class CurveEditor : public TimeView {
    Q_OBJECT

  public:
    /// @param selection  of keys, which other views may share. All outlive the editor.
    CurveEditor(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
                QWidget* parent = nullptr);

    /// The curves to show, each once; ids of no curve are passed over.
    void setCurves(const std::vector<kaUID>& curves);
    const CurveScene& scene() const { return _scene; }
    /// Curves that are shown but not changed.
    void setLocked(const std::vector<kaUID>& curves) { _locked = {curves.begin(), curves.end()}; }
    /// Each curve over the same height, whatever its extent.
    void setNormalised(bool normalised);
    bool isNormalised() const { return _scene.isNormalised(); }
    /// A frame around the selected keys by whose sides and corners they are scaled.
    void setScaling(bool scaling);

    const AxisMap& values() const { return _values; }
    /// Where a key stands, in pixels of the widget; for tests and for hints.
    QPointF pixelOfKey(kaUID key) const;
    QPointF pixelOfHandle(kaUID key, HandleDrag::Side side) const;

  public slots:
    void frameAll();       ///< All of the curves.
    void frameSelection(); ///< The selected keys; all without any.
    void insertAtHead();   ///< A key on each curve at the playhead.
    void deleteSelected();
    void selectAll();

  protected:
    void drawContent(QPainter& painter) override;
    void pressContent(QMouseEvent* event) override;
    void moveContent(QMouseEvent* event) override;
    void releaseContent(QMouseEvent* event) override;
    void selectBox(const QRect& box, SelectBy how) override;
    void panContent(double pixels) override;
    void zoomContent(double pixel, double factor) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Hit {
        enum class Kind { Nothing, Key, InHandle, OutHandle, Line, ScaleFrame } kind = Kind::Nothing;
        kaUID id = 0; ///< of the key, of the curve
        int side = 0; ///< of the scaling frame: bits 1 left, 2 right, 4 top, 8 bottom
    };

    void onChanged(const std::vector<kaUID>& ids);
    Hit hitAt(const QPointF& position) const;
    Hit handleAt(const QPointF& position) const;
    Hit scaleFrameAt(const QPointF& position) const;
    bool isLocked(kaUID curve) const { return _locked.count(curve) != 0; }
    std::vector<kaUID> freeSelection() const; ///< The selected keys on curves that are not locked.
    void startKeyDrag(kaUID key, const QPointF& from);
    void dragKeys(const QPointF& to, bool alongOneAxis);
    void dragScale(const QPointF& to);
    void dropCurvesOut(const std::vector<kaUID>& curves);
    void drawLayer();
    void drawGrid(QPainter& painter) const;
    void drawGhosts(QPainter& painter) const;
    void drawHandles(QPainter& painter) const;
    void drawScaleFrame(QPainter& painter) const;
    QRectF selectionFrame() const; ///< In pixels; null without a selection that spans anything.
    QString unitText() const;

    Document& _document;
    IdSelection& _selection;
    CurveScene _scene;
    AxisMap _values;
    std::unordered_set<kaUID> _locked;
    bool _isScaling = false;

    // Everything that stands still, drawn once: what a drag changes is drawn over it.
    QPixmap _layer;
    bool _isLayerStale = true;
    std::vector<kaUID> _moving; ///< curves that are not in the layer

    QPointF _pressed;
    ValueScale _pressedScale; ///< of the curve that was taken hold of
    std::unique_ptr<KeyDrag> _keyDrag;
    std::unique_ptr<HandleDrag> _handleDrag;
    std::unique_ptr<KeyScale> _keyScale;
    int _scaleSide = 0;
    QRectF _scaleFrame;
    std::vector<QVector<QPointF>> _ghosts; ///< the curves that are being changed, as they were
};

} // namespace ka::studio
