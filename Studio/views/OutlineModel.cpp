#include "OutlineModel.h"

#include "ChannelModel.h"
#include "document/ContainerEdits.h"
#include "document/PoseDrag.h"
#include "document/Session.h"

#include <OpenSG/OSGTransform3D.h>
#include <QMimeData>
#include <algorithm>
#include <kaAnimationCurve2D.h>
#include <kaAnimationStreak.h>
#include <kaAnimationStrip.h>
#include <kaAnimationUnit.h>
#include <kaMotion/Project.h>
#include <set>

namespace ka::studio {

namespace {

QString nameOf(const kaAnimationObject& object) {
    return QString::fromLatin1(object.getName().c_str());
}

} // namespace

OutlineModel::OutlineModel(Session& session, QObject* parent)
    : QAbstractItemModel(parent), _session(session) {
    connect(&session.document(), &Document::replaced, this, &OutlineModel::rebuild);
    connect(&session.document(), &Document::changed, this, &OutlineModel::onChanged);
    rebuild();
}

int OutlineModel::add(Items& items, Kind kind, kaUID id, int parent, const QString& name) {
    const int place = static_cast<int>(items.size());
    int row = place; // of groups
    if (parent >= 0) {
        std::vector<int>& siblings = items[static_cast<std::size_t>(parent)].children;
        row = static_cast<int>(siblings.size());
        siblings.push_back(place);
    }
    items.push_back({kind, id, parent, row, name, {}});
    return place;
}

/// Nodes without a name and without children of their own only carry geometry: they are left out.
void OutlineModel::addNodes(Items& items, int group) const {
    std::vector<std::pair<osg::NodePtr, int>> pending{{_session.project().root(), group}};
    while (!pending.empty()) {
        const auto [node, parent] = pending.back();
        pending.pop_back();
        int place = parent;
        const std::string name = ka::motion::nodeName(node);
        if (!name.empty() || osg::Transform3DPtr::dcast(node->getCore()) != osg::NullFC)
            place = add(items, Kind::Node, node.getFieldContainerId(), parent,
                        name.empty() ? tr("node %1").arg(node.getFieldContainerId())
                                     : QString::fromStdString(name));
        for (osg::UInt32 i = node->getNChildren(); i-- > 0;)
            pending.emplace_back(node->getChild(i), place);
    }
}

void OutlineModel::addClips(Items& items, int group) {
    const kaAnimationManager* manager = kaAnimationManager::the();
    std::vector<std::pair<kaAnimationObject*, int>> pending;
    for (kaAnimationUnit* block : manager->getSceneUnits())
        add(items, Kind::Bar, block->getId(), group, nameOf(*block));
    for (kaAnimationStrip* clip : manager->getSceneStrips())
        pending.emplace_back(clip, group);
    std::reverse(pending.begin(), pending.end());
    while (!pending.empty()) {
        const auto [object, parent] = pending.back();
        pending.pop_back();
        const kaAnimationStrip* clip = manager->getStrip(object->getId());
        const int place =
            add(items, clip != nullptr ? Kind::Clip : Kind::Bar, object->getId(), parent, nameOf(*object));
        if (clip == nullptr)
            continue;
        for (const auto& [number, track] : clip->getStreaks()) {
            const int row = add(items, Kind::Track, track->getId(), place, tr("Track %1").arg(number));
            for (kaAnimationObject* child : track->getObjects())
                pending.emplace_back(child, row);
        }
    }
}

bool OutlineModel::hasSameShape(const Items& other) const {
    if (other.size() != _items.size())
        return false;
    for (std::size_t i = 0; i < other.size(); ++i)
        if (other[i].kind != _items[i].kind || other[i].id != _items[i].id ||
            other[i].parent != _items[i].parent)
            return false;
    return true;
}

void OutlineModel::rebuild() {
    Items items;
    const int scene = add(items, Kind::Group, 0, -1, tr("Scene"));
    const int clips = add(items, Kind::Group, 1, -1, tr("Clips and blocks"));
    if (_session.isOpen()) {
        addNodes(items, scene);
        addClips(items, clips);
    }
    if (hasSameShape(items)) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            const bool differs = items[i].name != _items[i].name;
            _items[i].name = items[i].name;
            const QModelIndex place = createIndex(_items[i].row, 0, static_cast<quintptr>(i));
            if (differs)
                emit dataChanged(place, place);
        }
        return;
    }
    beginResetModel();
    _items = std::move(items);
    _nodes.clear();
    _objects.clear();
    for (std::size_t i = 0; i < _items.size(); ++i)
        if (_items[i].kind != Kind::Group)
            (_items[i].kind == Kind::Node ? _nodes : _objects).emplace(_items[i].id, static_cast<int>(i));
    endResetModel();
}

/// Curves and keys are not shown here.
void OutlineModel::onChanged(const std::vector<kaUID>& ids) {
    const auto concerns = [this](kaUID id) {
        const kaAnimationObject* object = kaAnimationManager::the()->getObject(id);
        return object != nullptr ? object->getTypeID() > KA_TYPE_CURVE : _objects.count(id) != 0;
    };
    if (std::any_of(ids.begin(), ids.end(), concerns))
        rebuild();
}

QModelIndex OutlineModel::indexOf(Kind kind, kaUID id) const {
    const auto& places = kind == Kind::Node ? _nodes : _objects;
    const auto place = places.find(id);
    if (place == places.end())
        return {};
    return createIndex(_items[static_cast<std::size_t>(place->second)].row, 0,
                       static_cast<quintptr>(place->second));
}

QModelIndex OutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent))
        return {};
    const int place = parent.isValid() ? itemOf(parent).children[static_cast<std::size_t>(row)] : row;
    return createIndex(row, column, static_cast<quintptr>(place));
}

QModelIndex OutlineModel::parent(const QModelIndex& child) const {
    const int place = child.isValid() ? itemOf(child).parent : -1;
    if (place < 0)
        return {};
    return createIndex(_items[static_cast<std::size_t>(place)].row, 0, static_cast<quintptr>(place));
}

int OutlineModel::rowCount(const QModelIndex& parent) const {
    constexpr int Groups = 2;
    if (!parent.isValid())
        return Groups;
    return parent.column() == 0 ? static_cast<int>(itemOf(parent).children.size()) : 0;
}

int OutlineModel::columnCount(const QModelIndex& /*parent*/) const {
    return ColumnCount;
}

QString OutlineModel::whatOf(const Item& item) const {
    if (item.kind == Kind::Group)
        return QString::number(item.children.size());
    if (item.kind == Kind::Node) {
        const std::size_t curves = curvesOfNode(static_cast<unsigned int>(item.id)).size();
        return curves > 0 ? tr("%1 curves").arg(curves) : QString();
    }
    const kaAnimationObject* object = kaAnimationManager::the()->getObject(item.id);
    if (object == nullptr || item.kind == Kind::Track || !(object->getBegin() <= object->getEnd()))
        return {};
    return QStringLiteral("%1 - %2")
        .arg(static_cast<double>(object->getBegin()), 0, 'g', 6)
        .arg(static_cast<double>(object->getEnd()), 0, 'g', 6);
}

QVariant OutlineModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const Item& item = itemOf(index);
    switch (role) {
    case IdRole:
        return static_cast<qulonglong>(item.id);
    case KindRole:
        return static_cast<int>(item.kind);
    case Qt::DisplayRole:
        return index.column() == Name ? item.name : whatOf(item);
    case Qt::EditRole:
        return item.name;
    case Qt::ToolTipRole:
        return item.kind == Kind::Node ? tr("Drop it on a track: its blocks are laid out there")
               : item.kind == Kind::Bar || item.kind == Kind::Clip
                   ? tr("Drop it on a track to lay it out there; F2 renames it")
                   : QString();
    default:
        return {};
    }
}

bool OutlineModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!flags(index).testFlag(Qt::ItemIsEditable) || role != Qt::EditRole || value.toString().isEmpty())
        return false;
    return rename(_session.document(), itemOf(index).id, value.toString().toLatin1().toStdString());
}

QVariant OutlineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Name ? tr("Name") : tr("Holds");
}

Qt::ItemFlags OutlineModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    if (!index.isValid())
        return flags;
    const Kind kind = itemOf(index).kind;
    const bool isObject = kind == Kind::Clip || kind == Kind::Bar;
    flags.setFlag(Qt::ItemIsDragEnabled, isObject || kind == Kind::Node);
    flags.setFlag(Qt::ItemIsEditable, isObject && index.column() == Name);
    return flags;
}

QStringList OutlineModel::mimeTypes() const {
    return {QString::fromLatin1(ChannelModel::MimeType)};
}

QMimeData* OutlineModel::mimeData(const QModelIndexList& indexes) const {
    std::set<kaUID> ids;
    for (const QModelIndex& index : indexes) {
        const Item& item = itemOf(index);
        if (item.kind == Kind::Clip || item.kind == Kind::Bar)
            ids.insert(item.id);
        if (item.kind == Kind::Node)
            for (const kaUID id : blocksOfNode(static_cast<unsigned int>(item.id)))
                ids.insert(id);
    }
    QStringList texts;
    for (const kaUID id : ids)
        texts.append(QString::number(id));
    auto* data = new QMimeData; // the caller owns it
    data->setData(QString::fromLatin1(ChannelModel::MimeType), texts.join(QLatin1Char(' ')).toLatin1());
    return data;
}

} // namespace ka::studio
