#include "Outliner.h"

#include "document/Session.h"
#include "timebased/IdSelection.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace ka::studio {

namespace {

OutlineModel::Kind kindOf(const QModelIndex& index) {
    return static_cast<OutlineModel::Kind>(index.data(OutlineModel::KindRole).toInt());
}

bool isObject(const QModelIndex& index) {
    const OutlineModel::Kind kind = kindOf(index);
    return kind == OutlineModel::Kind::Clip || kind == OutlineModel::Kind::Bar;
}

} // namespace

Outliner::Outliner(Session& session, IdSelection& bars, QWidget* parent)
    : QWidget(parent),
      _bars(bars),
      _model(new OutlineModel(session, this)),
      _filter(new QSortFilterProxyModel(this)),
      _search(new QLineEdit(this)),
      _view(new QTreeView(this)) {
    _filter->setSourceModel(_model);
    _filter->setRecursiveFilteringEnabled(true);
    _filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    _search->setPlaceholderText(tr("Search nodes and clips"));
    _search->setToolTip(tr("Shows the nodes, clips and blocks whose name holds this text"));
    _search->setClearButtonEnabled(true);
    _view->setObjectName(QStringLiteral("outliner"));
    _view->setModel(_filter);
    _view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    _view->setUniformRowHeights(true);
    _view->setIndentation(12);
    _view->setDragEnabled(true);
    _view->setEditTriggers(QAbstractItemView::EditKeyPressed);
    _view->setExpandsOnDoubleClick(false);
    _view->header()->setStretchLastSection(false);
    _view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    _view->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(_search);
    layout->addWidget(_view);
    connect(_search, &QLineEdit::textChanged, this, &Outliner::find);
    connect(_model, &QAbstractItemModel::modelAboutToBeReset, this, &Outliner::keepExpanded);
    connect(_model, &QAbstractItemModel::modelReset, this, &Outliner::expandAgain);
    connect(_view->selectionModel(), &QItemSelectionModel::selectionChanged, this, &Outliner::onChosen);
    connect(_view, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (isObject(index))
            emit played(index.data(OutlineModel::IdRole).toULongLong());
        else
            _view->setExpanded(index, !_view->isExpanded(index));
    });
    connect(&bars, &IdSelection::changed, this, &Outliner::takeSelection);
    expandAgain();
}

/// After a search the tree is open as far as it was before.
void Outliner::find(const QString& text) {
    if (!_isSearching)
        keepExpanded();
    _isSearching = !text.isEmpty();
    _filter->setFilterFixedString(text);
    if (_isSearching) {
        _view->expandAll();
        return;
    }
    _view->collapseAll();
    expandAgain();
}

unsigned int Outliner::chosenNode() const {
    for (const QModelIndex& index : _view->selectionModel()->selectedRows())
        if (kindOf(index) == OutlineModel::Kind::Node)
            return index.data(OutlineModel::IdRole).toUInt();
    return 0;
}

void Outliner::onChosen() {
    if (_isQuiet)
        return;
    const QScopedValueRollback<bool> quiet(_isQuiet, true);
    std::vector<kaUID> objects;
    for (const QModelIndex& index : _view->selectionModel()->selectedRows())
        if (isObject(index))
            objects.push_back(index.data(OutlineModel::IdRole).toULongLong());
    _bars.select(objects, SelectBy::Replacing);
    if (const unsigned int node = chosenNode())
        emit nodeChosen(node);
}

void Outliner::choose(const QModelIndex& index, bool isFirst) {
    const QModelIndex shown = _filter->mapFromSource(index);
    if (!shown.isValid())
        return;
    _view->selectionModel()->select(shown, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    if (isFirst)
        _view->scrollTo(shown);
}

/// What is chosen elsewhere is chosen here as well; of very many the first.
void Outliner::takeSelection() {
    if (_isQuiet)
        return;
    const QScopedValueRollback<bool> quiet(_isQuiet, true);
    constexpr std::size_t Most = 500;
    _view->selectionModel()->clearSelection();
    std::size_t count = 0;
    for (const kaUID id : _bars.ids())
        if (count++ < Most)
            choose(_model->indexOf(OutlineModel::Kind::Bar, id), count == 1);
}

void Outliner::showNode(unsigned int node) {
    const QScopedValueRollback<bool> quiet(_isQuiet, true);
    _view->selectionModel()->clearSelection();
    choose(_model->indexOf(OutlineModel::Kind::Node, node), true);
}

/// What is open in the tree stays open when it is built anew.
void Outliner::keepExpanded() {
    _expanded.clear();
    std::vector<QModelIndex> pending{QModelIndex()};
    while (!pending.empty()) {
        const QModelIndex parent = pending.back();
        pending.pop_back();
        for (int row = 0; row < _filter->rowCount(parent); ++row) {
            const QModelIndex index = _filter->index(row, 0, parent);
            if (!_view->isExpanded(index))
                continue;
            _expanded.emplace(static_cast<int>(kindOf(index)),
                              index.data(OutlineModel::IdRole).toULongLong());
            pending.push_back(index);
        }
    }
}

void Outliner::expandAgain() {
    for (const auto& [kind, id] : _expanded) {
        const QModelIndex index = _model->indexOf(static_cast<OutlineModel::Kind>(kind), id);
        if (index.isValid())
            _view->expand(_filter->mapFromSource(index));
    }
    for (const QModelIndex& group : {_model->sceneGroup(), _model->clipGroup()}) {
        _view->expand(_filter->mapFromSource(group));
        if (_model->rowCount(group) == 1) // one figure, one clip: seen at once
            _view->expand(_filter->mapFromSource(_model->index(0, 0, group)));
    }
    const QScopedValueRollback<bool> quiet(_isQuiet, false);
    takeSelection();
}

} // namespace ka::studio
