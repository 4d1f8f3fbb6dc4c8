#include "ChannelTree.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_set>

namespace ka::studio {

ChannelTree::ChannelTree(Document& document, QWidget* parent)
    : QWidget(parent),
      _model(new ChannelModel(document, this)),
      _filter(new QSortFilterProxyModel(this)),
      _search(new QLineEdit(this)),
      _view(new QTreeView(this)) {
    _filter->setSourceModel(_model);
    _filter->setRecursiveFilteringEnabled(true);
    _filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    _search->setPlaceholderText(tr("Search channels"));
    _search->setToolTip(tr("Shows the channels and blocks whose name holds this text"));
    _search->setClearButtonEnabled(true);
    _view->setObjectName(QStringLiteral("channels"));
    _view->setModel(_filter);
    _view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    _view->setUniformRowHeights(true);
    _view->setDragEnabled(true);
    _view->header()->setStretchLastSection(false);
    _view->header()->setMinimumSectionSize(24);
    _view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column : {ChannelModel::Mute, ChannelModel::Lock, ChannelModel::Solo}) {
        _view->header()->setSectionResizeMode(column, QHeaderView::Fixed);
        _view->header()->resizeSection(column, 26);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(_search);
    layout->addWidget(_view);
    connect(_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        _filter->setFilterFixedString(text);
        if (!text.isEmpty())
            _view->expandAll();
    });
    connect(_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ChannelTree::shownChanged);
    connect(_model, &ChannelModel::switchesChanged, this, &ChannelTree::shownChanged);
}

std::vector<kaUID> ChannelTree::shownCurves() const {
    std::vector<kaUID> curves;
    for (const QModelIndex& row : _view->selectionModel()->selectedRows()) {
        const std::vector<kaUID> more = _model->curvesOf(_filter->mapToSource(row));
        curves.insert(curves.end(), more.begin(), more.end());
    }
    const std::vector<kaUID> solo = _model->soloCurves();
    if (solo.empty())
        return curves;
    const std::unordered_set<kaUID> only(solo.begin(), solo.end());
    const auto isHidden = [&only](kaUID id) { return only.count(id) == 0; };
    curves.erase(std::remove_if(curves.begin(), curves.end(), isHidden), curves.end());
    return curves.empty() ? solo : curves;
}

std::vector<kaUID> ChannelTree::chosenBlocks() const {
    std::vector<kaUID> blocks;
    for (const QModelIndex& row : _view->selectionModel()->selectedRows()) {
        const QModelIndex group = row.parent().isValid() ? row.parent() : row;
        blocks.push_back(group.data(ChannelModel::IdRole).toULongLong());
    }
    std::sort(blocks.begin(), blocks.end());
    blocks.erase(std::unique(blocks.begin(), blocks.end()), blocks.end());
    return blocks;
}

void ChannelTree::choose(const std::vector<kaUID>& ids) {
    QItemSelection chosen;
    for (const kaUID id : ids) {
        const QModelIndex index = _filter->mapFromSource(_model->indexOf(id));
        if (index.isValid())
            chosen.select(index, index);
    }
    _view->selectionModel()->select(chosen, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (!chosen.isEmpty())
        _view->scrollTo(chosen.indexes().front());
}

} // namespace ka::studio
