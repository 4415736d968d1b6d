#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"

namespace quillbay {

class HomebrewCacheCleanupStore;

// The outline as a two-column tree (title with a check box, size). A row's check box
// stands for all entries at or under it: on when all are selected, off when none is,
// mixed otherwise; toggling it sets all of them in the store. Keeps its own copy of the
// nodes, taken whenever the store's outline changes, so the view never sees a half-made
// tree.
class HomebrewCacheOutlineModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { titleColumn, sizeColumn, columnCount_ };
    static constexpr int entryIDsRole = Qt::UserRole + 1;
    static constexpr int nodeIDRole = Qt::UserRole + 2;

    explicit HomebrewCacheOutlineModel(HomebrewCacheCleanupStore& store, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The index of the node with this id, or an invalid one.
    QModelIndex indexOfNode(const QString& nodeID) const;

private:
    struct Place
    {
        const HomebrewCacheNode* parent;
        int row;
    };

    void reload();
    void selectionDidChange();
    void index(const std::vector<HomebrewCacheNode>& nodes, const HomebrewCacheNode* parent);
    void announceChecks(const QModelIndex& parent);
    const HomebrewCacheNode* node(const QModelIndex& index) const;
    const std::vector<HomebrewCacheNode>& childrenOf(const HomebrewCacheNode* node) const;
    Qt::CheckState checkState(const HomebrewCacheNode& node) const;

    HomebrewCacheCleanupStore& m_store;
    std::vector<HomebrewCacheNode> m_nodes;
    QHash<const HomebrewCacheNode*, Place> m_places;
    QHash<QString, const HomebrewCacheNode*> m_byID;
};

} // namespace quillbay
