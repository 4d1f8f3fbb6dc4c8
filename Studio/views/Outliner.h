#pragma once

#include "OutlineModel.h"

#include <QWidget>
#include <set>

class QLineEdit;
class QSortFilterProxyModel;
class QTreeView;

namespace ka::studio {

class IdSelection;

/// The tree of the scene's nodes and of the clips, with a search. Clips and blocks that are chosen in it are
/// those of the shared selection.
class Outliner : public QWidget {
    Q_OBJECT

  public:
    /// @param bars  the selection of clips and blocks; outlives it, as the session does.
    Outliner(Session& session, IdSelection& bars, QWidget* parent = nullptr);

    OutlineModel& model() { return *_model; }
    QTreeView& view() { return *_view; }
    QLineEdit& search() { return *_search; }
    unsigned int chosenNode() const;  ///< 0 where none is.
    void showNode(unsigned int node); ///< Chooses it, and says so to nobody.

  signals:
    void nodeChosen(unsigned int node);
    void played(kaUID object); ///< A double click on a clip or block.

  private:
    void find(const QString& text);
    void onChosen();
    void takeSelection();
    void choose(const QModelIndex& index, bool isFirst);
    void keepExpanded();
    void expandAgain();

    IdSelection& _bars;
    OutlineModel* _model;
    QSortFilterProxyModel* _filter;
    QLineEdit* _search;
    QTreeView* _view;
    bool _isSearching = false;
    bool _isQuiet = false; ///< while it follows others
    std::set<std::pair<int, qulonglong>> _expanded;
};

} // namespace ka::studio
