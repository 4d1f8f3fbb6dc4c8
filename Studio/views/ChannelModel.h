#pragma once

#include "document/Document.h"

#include <QAbstractItemModel>
#include <unordered_map>
#include <unordered_set>

namespace ka::studio {

/// The channels of what is open: blocks, and below them their curves, by the attribute they drive. Curves in
/// no block stand below an entry of their own.
class ChannelModel : public QAbstractItemModel {
    Q_OBJECT

  public:
    enum Column { Name, Mute, Lock, Solo, ColumnCount };
    static constexpr int IdRole = Qt::UserRole; ///< The id of the block or curve, as qulonglong.

    /// What is dragged out of the tree: ids of blocks, in decimal with blanks between.
    static constexpr const char* MimeType = "application/x-ka-objects";

    explicit ChannelModel(Document& document, QObject* parent = nullptr);

    /// Curves in an index's row: itself, or those below it.
    std::vector<kaUID> curvesOf(const QModelIndex& index) const;
    QModelIndex indexOf(kaUID id) const;
    std::vector<kaUID> lockedCurves() const;
    /// Where any is on, the others are not shown.
    std::vector<kaUID> soloCurves() const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

  signals:
    void switchesChanged(); ///< Locks or solos.

  private:
    struct Group {
        kaUID block; ///< 0 for the curves in none
        QString name;
        std::vector<kaUID> curves;
        std::vector<QString> names;
    };
    struct Place {
        int group, row; ///< row -1: the group itself
    };

    void rebuild();
    void onChanged(const std::vector<kaUID>& ids);
    bool isSame(kaUID id) const;
    Qt::CheckState checked(const QModelIndex& index) const;

    Document& _document;
    std::vector<Group> _groups;
    std::unordered_map<kaUID, Place> _places;
    std::unordered_set<kaUID> _locked, _solo;
};

} // namespace ka::studio
