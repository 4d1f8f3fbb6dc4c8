#pragma once

#include "CurveScene.h"
#include "document/KeyDrag.h"
#include "timebased/RowView.h"

#include <memory>

namespace ka::studio {

/// The keys of the shown curves in time, a row for each curve below one for all of them. It shares its
/// selection with the curve editor.
class DopeSheet : public RowView {
    Q_OBJECT

  public:
    DopeSheet(Document& document, TimeAxis& axis, PlayHead& head, IdSelection& selection,
              QWidget* parent = nullptr);

    void setCurves(const std::vector<kaUID>& curves);
    void setLocked(const std::vector<kaUID>& curves) { _locked = {curves.begin(), curves.end()}; }
    const CurveScene& scene() const { return _scene; }
    /// The middle of a key's mark; far outside for a key that is not shown.
    QPoint pixelOfKey(kaUID key) const;

  protected:
    int rowCount() const override;
    void drawRow(QPainter& painter, int row, const QRect& rect) override;
    QString rowLabel(int row) const override;
    void pressContent(QMouseEvent* event) override;
    void moveContent(QMouseEvent* event) override;
    void releaseContent(QMouseEvent* event) override;
    void selectBox(const QRect& box, SelectBy how) override;

  private:
    std::vector<kaUID> keysAt(int row, double x) const;
    std::vector<kaUID> curvesOfRow(int row) const;
    void markColumns(kaUID curve, int left, std::vector<char>& columns) const;
    bool isDense(kaUID curve) const;

    Document& _document;
    IdSelection& _selection;
    CurveScene _scene;
    std::unordered_set<kaUID> _locked;
    QPoint _pressed;
    std::unique_ptr<KeyDrag> _drag;
};

} // namespace ka::studio
