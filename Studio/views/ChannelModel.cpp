#include "ChannelModel.h"

#include "document/ContainerEdits.h"

#include <QColor>
#include <QMimeData>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationField.h>
#include <kaAnimationUnit.h>

namespace ka::studio {

namespace {

/// Every group's index carries 0, and a curve's one more than the number of its group.
constexpr quintptr GroupLevel = 0;

QString nameOf(const kaAnimationCurve2D& curve) {
    const kaAnimationField* field = kaAnimationManager::the()->getField(curve.getField());
    return QString::fromLatin1(
        (field != nullptr && !field->attribute.empty() ? field->attribute : curve.getName()).c_str());
}

} // namespace

ChannelModel::ChannelModel(Document& document, QObject* parent)
    : QAbstractItemModel(parent), _document(document) {
    connect(&document, &Document::changed, this, &ChannelModel::onChanged);
    connect(&document, &Document::replaced, this, [this] {
        _locked.clear();
        _solo.clear();
        rebuild();
    });
    rebuild();
}

void ChannelModel::rebuild() {
    beginResetModel();
    _groups.clear();
    _places.clear();
    const kaAnimationManager* manager = kaAnimationManager::the();
    Group loose{0, tr("Curves in no block"), {}, {}};
    const auto add = [](Group& group, const kaAnimationCurve2D& curve) {
        group.curves.push_back(curve.getId());
        group.names.push_back(nameOf(curve));
    };
    for (const kaAnimationObject* block : manager->getObjects(KA_TYPE_UNIT)) {
        Group group{block->getId(), QString::fromLatin1(block->getName().c_str()), {}, {}};
        for (const kaAnimationObject* curve : block->getObjects())
            if (curve->getTypeID() == KA_TYPE_CURVE)
                add(group, static_cast<const kaAnimationCurve2D&>(*curve));
        _groups.push_back(std::move(group));
    }
    for (const kaAnimationObject* curve : manager->getObjects(KA_TYPE_CURVE))
        if (manager->getUnit(curve->getParent()) == nullptr)
            add(loose, static_cast<const kaAnimationCurve2D&>(*curve));
    const auto byName = [](const Group& a, const Group& b) {
        return std::tie(a.name, a.block) < std::tie(b.name, b.block);
    };
    std::sort(_groups.begin(), _groups.end(), byName);
    if (!loose.curves.empty())
        _groups.push_back(std::move(loose));
    for (int g = 0; g < static_cast<int>(_groups.size()); ++g) {
        const Group& group = _groups[static_cast<std::size_t>(g)];
        _places.emplace(group.block, Place{g, -1});
        for (int row = 0; row < static_cast<int>(group.curves.size()); ++row)
            _places.emplace(group.curves[static_cast<std::size_t>(row)], Place{g, row});
    }
    endResetModel();
}

/// Whether an object still has the place and name that it is shown with.
bool ChannelModel::isSame(kaUID id) const {
    const kaAnimationManager* manager = kaAnimationManager::the();
    const auto place = _places.find(id);
    const kaAnimationCurve2D* curve = manager->getCurve2D(id);
    const kaAnimationUnit* block = manager->getUnit(id);
    if (curve == nullptr && block == nullptr)
        return place == _places.end() || id == 0;
    if (place == _places.end())
        return false;
    const Group& group = _groups[static_cast<std::size_t>(place->second.group)];
    if (block != nullptr)
        return group.name == QString::fromLatin1(block->getName().c_str()) &&
               group.curves.size() == block->getChildCount();
    return (manager->getUnit(curve->getParent()) == nullptr ? 0 : curve->getParent()) == group.block;
}

void ChannelModel::onChanged(const std::vector<kaUID>& ids) {
    if (!std::all_of(ids.begin(), ids.end(), [this](kaUID id) { return isSame(id); })) {
        rebuild();
        return;
    }
    constexpr std::size_t Few = 200;
    if (ids.size() > Few && !_groups.empty()) {
        emit dataChanged(index(0, Mute), index(static_cast<int>(_groups.size()) - 1, Mute));
        return;
    }
    for (const kaUID id : ids)
        if (_places.count(id) != 0)
            emit dataChanged(indexOf(id), indexOf(id).siblingAtColumn(Solo));
}

QModelIndex ChannelModel::indexOf(kaUID id) const {
    const auto place = _places.find(id);
    if (place == _places.end())
        return {};
    if (place->second.row < 0)
        return createIndex(place->second.group, 0, GroupLevel);
    return createIndex(place->second.row, 0, static_cast<quintptr>(place->second.group) + 1);
}

std::vector<kaUID> ChannelModel::curvesOf(const QModelIndex& index) const {
    if (!index.isValid())
        return {};
    if (index.internalId() == GroupLevel)
        return _groups[static_cast<std::size_t>(index.row())].curves;
    return {_groups[index.internalId() - 1].curves[static_cast<std::size_t>(index.row())]};
}

std::vector<kaUID> ChannelModel::lockedCurves() const {
    return {_locked.begin(), _locked.end()};
}

std::vector<kaUID> ChannelModel::soloCurves() const {
    return {_solo.begin(), _solo.end()};
}

QModelIndex ChannelModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : GroupLevel);
}

QModelIndex ChannelModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == GroupLevel)
        return {};
    return createIndex(static_cast<int>(child.internalId()) - 1, 0, GroupLevel);
}

int ChannelModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid())
        return static_cast<int>(_groups.size());
    if (parent.internalId() != GroupLevel || parent.column() != 0)
        return 0;
    return static_cast<int>(_groups[static_cast<std::size_t>(parent.row())].curves.size());
}

int ChannelModel::columnCount(const QModelIndex& /*parent*/) const {
    return ColumnCount;
}

Qt::CheckState ChannelModel::checked(const QModelIndex& index) const {
    const std::vector<kaUID> curves = curvesOf(index);
    const auto isOn = [&](kaUID id) {
        if (index.column() == Lock)
            return _locked.count(id) != 0;
        if (index.column() == Solo)
            return _solo.count(id) != 0;
        const kaAnimationObject* curve = kaAnimationManager::the()->getObject(id);
        return curve != nullptr && !curve->isActive();
    };
    const auto on = std::count_if(curves.begin(), curves.end(), isOn);
    if (on == 0)
        return Qt::Unchecked;
    return static_cast<std::size_t>(on) == curves.size() ? Qt::Checked : Qt::PartiallyChecked;
}

QVariant ChannelModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const bool isGroup = index.internalId() == GroupLevel;
    const Group& group = _groups[isGroup ? static_cast<std::size_t>(index.row()) : index.internalId() - 1];
    const auto row = static_cast<std::size_t>(index.row());
    if (role == IdRole)
        return static_cast<qulonglong>(isGroup ? group.block : group.curves[row]);
    if (role == Qt::DisplayRole && index.column() == Name)
        return isGroup ? group.name : group.names[row];
    if (role == Qt::CheckStateRole && index.column() != Name)
        return checked(index);
    if (role == Qt::DecorationRole && index.column() == Name && !isGroup)
        if (const kaAnimationCurve2D* curve = kaAnimationManager::the()->getCurve2D(group.curves[row])) {
            const osg::Color3f& c = curve->getColor();
            return QColor::fromRgbF(std::clamp<qreal>(c[0], 0, 1), std::clamp<qreal>(c[1], 0, 1),
                                    std::clamp<qreal>(c[2], 0, 1));
        }
    if (role == Qt::ToolTipRole)
        return headerData(index.column(), Qt::Horizontal, Qt::ToolTipRole);
    return {};
}

bool ChannelModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole || index.column() == Name)
        return false;
    const bool on = value.toInt() == Qt::Checked;
    const std::vector<kaUID> curves = curvesOf(index);
    if (index.column() == Mute) {
        _document.history().beginMacro(on ? tr("Mute") : tr("Unmute"));
        for (const kaUID curve : curves)
            setFlag(_document, curve, ObjectFlag::Active, !on);
        _document.history().endMacro();
        return true;
    }
    std::unordered_set<kaUID>& set = index.column() == Lock ? _locked : _solo;
    for (const kaUID curve : curves)
        if (on)
            set.insert(curve);
        else
            set.erase(curve);
    emit dataChanged(index, index);
    emit switchesChanged();
    return true;
}

QVariant ChannelModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const bool isTip = role == Qt::ToolTipRole;
    switch (section) {
    case Mute:
        return isTip ? tr("Mute: the channel does not move the scene") : tr("M");
    case Lock:
        return isTip ? tr("Lock: the curve is shown but cannot be changed") : tr("L");
    case Solo:
        return isTip ? tr("Solo: only such curves are shown") : tr("S");
    default:
        return isTip ? tr("Choose channels to see their curves") : tr("Channel");
    }
}

Qt::ItemFlags ChannelModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags flags = QAbstractItemModel::flags(index) | Qt::ItemIsDragEnabled;
    return index.column() == Name ? flags : flags | Qt::ItemIsUserCheckable;
}

QStringList ChannelModel::mimeTypes() const {
    return {QString::fromLatin1(MimeType)};
}

QMimeData* ChannelModel::mimeData(const QModelIndexList& indexes) const {
    QStringList ids;
    for (const QModelIndex& index : indexes)
        if (index.column() == Name && index.internalId() == GroupLevel)
            ids.append(QString::number(index.data(IdRole).toULongLong()));
    auto* data = new QMimeData; // the caller owns it
    data->setData(QString::fromLatin1(MimeType), ids.join(QLatin1Char(' ')).toLatin1());
    return data;
}

} // namespace ka::studio
