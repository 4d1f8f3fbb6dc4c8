#pragma once

#include "ChannelModel.h"

#include <QWidget>

class QLineEdit;
class QSortFilterProxyModel;
class QTreeView;

namespace ka::studio {

/// The channels as a tree, with a search; what is chosen in it is what the curve editor shows.
class ChannelTree : public QWidget {
    Q_OBJECT

  public:
    explicit ChannelTree(Document& document, QWidget* parent = nullptr);

    /// The curves to show: those chosen, or of them those on solo.
    std::vector<kaUID> shownCurves() const;
    std::vector<kaUID> lockedCurves() const { return _model->lockedCurves(); }
    /// The blocks that are chosen, themselves or by a curve of theirs.
    std::vector<kaUID> chosenBlocks() const;

    void choose(const std::vector<kaUID>& ids); ///< Blocks or curves.
    QLineEdit& search() { return *_search; }
    QTreeView& view() { return *_view; }
    ChannelModel& model() { return *_model; }

  signals:
    void shownChanged();

  private:
    ChannelModel* _model;
    QSortFilterProxyModel* _filter;
    QLineEdit* _search;
    QTreeView* _view;
};

} // namespace ka::studio
