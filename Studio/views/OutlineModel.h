#pragma once

#include "document/Document.h"

#include <OpenSG/OSGNode.h>
#include <QAbstractItemModel>
#include <unordered_map>

namespace ka::studio {

class Session;

/// What is open as a tree: the scene's nodes, and the clips with their tracks and what lies on them.
class OutlineModel : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum class Kind : char { Group, Node, Clip, Track, Bar };
    enum Column { Name, What, ColumnCount };
    static constexpr int KindRole = Qt::UserRole + 1;
    static constexpr int IdRole = Qt::UserRole; ///< A node's container id, an object's id; as qulonglong.

    explicit OutlineModel(Session& session, QObject* parent = nullptr);

    QModelIndex indexOf(Kind kind, kaUID id) const; ///< Invalid for what is not here.
    QModelIndex sceneGroup() const { return index(0, 0); }
    QModelIndex clipGroup() const { return index(1, 0); }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override; ///< Renames.
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    /// Ids of objects, and for nodes those of their blocks.
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

  private:
    struct Item {
        Kind kind;
        kaUID id;
        int parent; ///< place in the list; -1 for groups
        int row;
        QString name;
        std::vector<int> children;
    };
    using Items = std::vector<Item>;

    static int add(Items& items, Kind kind, kaUID id, int parent, const QString& name);
    void addNodes(Items& items, int group) const;
    static void addClips(Items& items, int group);
    void rebuild();
    void onChanged(const std::vector<kaUID>& ids);
    bool hasSameShape(const Items& other) const;
    const Item& itemOf(const QModelIndex& index) const { return _items[index.internalId()]; }
    QString whatOf(const Item& item) const;

    Session& _session;
    Items _items;
    std::unordered_map<kaUID, int> _nodes, _objects; ///< places in the list
};

} // namespace ka::studio
