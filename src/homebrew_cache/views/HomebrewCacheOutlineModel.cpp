#include "homebrew_cache/views/HomebrewCacheOutlineModel.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>

#include "foundation/ByteCount.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"

namespace quillbay {

HomebrewCacheOutlineModel::HomebrewCacheOutlineModel(HomebrewCacheCleanupStore& store, QObject* parent)
    : QAbstractItemModel(parent)
    , m_store(store)
{
    connect(&m_store, &HomebrewCacheCleanupStore::stateChanged, this, [this] {
        if (m_store.nodes() != m_nodes)
            reload();
    });
    connect(&m_store, &HomebrewCacheCleanupStore::selectionChanged, this,
            &HomebrewCacheOutlineModel::selectionDidChange);
    reload();
}

void HomebrewCacheOutlineModel::reload()
{
    beginResetModel();
    m_nodes = m_store.nodes();
    m_places.clear();
    m_byID.clear();
    index(m_nodes, nullptr);
    endResetModel();
}

void HomebrewCacheOutlineModel::index(const std::vector<HomebrewCacheNode>& nodes, const HomebrewCacheNode* parent)
{
    for (size_t row = 0; row < nodes.size(); ++row) {
        const HomebrewCacheNode* child = &nodes[row];
        m_places.insert(child, Place {parent, int(row)});
        m_byID.insert(child->id, child);
        if (child->children)
            index(*child->children, child);
    }
}

void HomebrewCacheOutlineModel::selectionDidChange()
{
    if (m_nodes != m_store.nodes()) {
        reload();
        return;
    }
    announceChecks({});
}

void HomebrewCacheOutlineModel::announceChecks(const QModelIndex& parent)
{
    const int rows = rowCount(parent);
    if (rows == 0)
        return;
    emit dataChanged(index(0, titleColumn, parent), index(rows - 1, titleColumn, parent), {Qt::CheckStateRole});
    for (int row = 0; row < rows; ++row)
        announceChecks(index(row, titleColumn, parent));
}

const HomebrewCacheNode* HomebrewCacheOutlineModel::node(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<const HomebrewCacheNode*>(index.internalPointer()) : nullptr;
}

const std::vector<HomebrewCacheNode>& HomebrewCacheOutlineModel::childrenOf(const HomebrewCacheNode* parent) const
{
    static const std::vector<HomebrewCacheNode> none;
    if (!parent)
        return m_nodes;
    return parent->children ? *parent->children : none;
}

QModelIndex HomebrewCacheOutlineModel::index(int row, int column, const QModelIndex& parent) const
{
    const auto& children = childrenOf(node(parent));
    if (row < 0 || size_t(row) >= children.size() || column < 0 || column >= columnCount_)
        return {};
    return createIndex(row, column, const_cast<HomebrewCacheNode*>(&children[size_t(row)]));
}

QModelIndex HomebrewCacheOutlineModel::parent(const QModelIndex& child) const
{
    const HomebrewCacheNode* item = node(child);
    if (!item)
        return {};
    const HomebrewCacheNode* parentNode = m_places.value(item).parent;
    if (!parentNode)
        return {};
    return createIndex(m_places.value(parentNode).row, titleColumn, const_cast<HomebrewCacheNode*>(parentNode));
}

int HomebrewCacheOutlineModel::rowCount(const QModelIndex& parent) const
{
    if (parent.isValid() && parent.column() != titleColumn)
        return 0;
    return int(childrenOf(node(parent)).size());
}

int HomebrewCacheOutlineModel::columnCount(const QModelIndex&) const
{
    return columnCount_;
}

Qt::CheckState HomebrewCacheOutlineModel::checkState(const HomebrewCacheNode& item) const
{
    qsizetype selected = 0;
    for (const QString& id : item.entryIDs) {
        if (m_store.isSelected(id))
            ++selected;
    }
    if (selected == 0)
        return Qt::Unchecked;
    return selected == item.entryIDs.size() ? Qt::Checked : Qt::PartiallyChecked;
}

QVariant HomebrewCacheOutlineModel::data(const QModelIndex& index, int role) const
{
    const HomebrewCacheNode* item = node(index);
    if (!item)
        return {};
    if (role == entryIDsRole)
        return item->entryIDs;
    if (role == nodeIDRole)
        return item->id;
    if (index.column() == titleColumn) {
        switch (role) {
        case Qt::DisplayRole:
            return item->title;
        case Qt::CheckStateRole:
            return checkState(*item);
        default:
            return {};
        }
    }
    switch (role) {
    case Qt::DisplayRole:
        return item->allocatedSize ? formatByteCount(*item->allocatedSize) : tr("Unknown");
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ForegroundRole:
        return QApplication::palette().brush(QPalette::PlaceholderText);
    default:
        return {};
    }
}

bool HomebrewCacheOutlineModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const HomebrewCacheNode* item = node(index);
    if (!item || role != Qt::CheckStateRole || index.column() != titleColumn)
        return false;
    m_store.setSelected(item->entryIDs, value.value<Qt::CheckState>() != Qt::Unchecked);
    return true;
}

Qt::ItemFlags HomebrewCacheOutlineModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags result = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == titleColumn)
        result |= Qt::ItemIsUserCheckable;
    return result;
}

QVariant HomebrewCacheOutlineModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == titleColumn ? tr("Name") : tr("Size");
}

QModelIndex HomebrewCacheOutlineModel::indexOfNode(const QString& nodeID) const
{
    const HomebrewCacheNode* item = m_byID.value(nodeID);
    if (!item)
        return {};
    return createIndex(m_places.value(item).row, titleColumn, const_cast<HomebrewCacheNode*>(item));
}

} // namespace quillbay
