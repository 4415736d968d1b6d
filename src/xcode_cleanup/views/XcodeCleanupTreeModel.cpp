#include "xcode_cleanup/views/XcodeCleanupTreeModel.h"

#include <QFileIconProvider>
#include <QMimeDatabase>

#include "core/AppViewModel.h"
#include "core/views/SymbolIcons.h"
#include "foundation/ByteCount.h"

namespace quillbay {

namespace {

// The internal id of an index is the row path of its parent: 0 for a root row, and for
// deeper rows each ancestor's row + 1 in 16 bits, nearest ancestor lowest. The tree is at
// most three levels deep, so two slots suffice; four are there for safety.
constexpr int kSlotBits = 16;
constexpr quintptr kSlotMask = (quintptr(1) << kSlotBits) - 1;

QList<int> pathOf(quintptr id)
{
    QList<int> path;
    while (id != 0) {
        path.prepend(int(id & kSlotMask) - 1);
        id >>= kSlotBits;
    }
    return path;
}

quintptr idOf(const QList<int>& path)
{
    quintptr id = 0;
    for (int row : path)
        id = (id << kSlotBits) | quintptr(row + 1);
    return id;
}

const std::vector<XcodeFileProperties>* childrenOf(const XcodeFileProperties& node)
{
    return node.children ? &*node.children : nullptr;
}

const XcodeFileProperties* nodeAt(const std::vector<XcodeFileProperties>& roots, const QList<int>& path)
{
    const std::vector<XcodeFileProperties>* level = &roots;
    const XcodeFileProperties* node = nullptr;
    for (int row : path) {
        if (!level || row < 0 || std::size_t(row) >= level->size())
            return nullptr;
        node = &(*level)[std::size_t(row)];
        level = childrenOf(*node);
    }
    return node;
}

QIcon iconFor(const std::optional<Icon>& icon)
{
    if (!icon)
        return {};
    static QFileIconProvider provider;
    switch (icon->kind) {
    case Icon::Kind::fileType: {
        const QMimeType type
            = QMimeDatabase().mimeTypeForFile(QStringLiteral("x.") + icon->name, QMimeDatabase::MatchExtension);
        const QIcon themed = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
        return themed.isNull() ? provider.icon(QFileIconProvider::File) : themed;
    }
    case Icon::Kind::image:
        return QIcon(QStringLiteral(":/images/") + icon->name);
    case Icon::Kind::system:
        return symbolIcon(icon->name);
    case Icon::Kind::systemNsImage:
        if (icon->name == QLatin1String("NSFolder"))
            return provider.icon(QFileIconProvider::Folder);
        return QIcon::fromTheme(QStringLiteral("folder-documents"), provider.icon(QFileIconProvider::File));
    }
    return {};
}

bool anyUnknown(const std::vector<XcodeFileProperties>& nodes)
{
    for (const XcodeFileProperties& node : nodes) {
        if (!node.size.isKnown())
            return true;
        if (node.children && anyUnknown(*node.children))
            return true;
    }
    return false;
}

} // namespace

XcodeCleanupTreeModel::XcodeCleanupTreeModel(AppViewModel& viewModel, QObject* parent)
    : QAbstractItemModel(parent)
    , m_viewModel(viewModel)
{
    connect(&viewModel, &AppViewModel::localFilesChanged, this, [this] {
        beginResetModel();
        endResetModel();
    });
    connect(&viewModel, &AppViewModel::selectionChanged, this, &XcodeCleanupTreeModel::refreshChecks);
}

const XcodeFileProperties* XcodeCleanupTreeModel::node(const QModelIndex& index) const
{
    if (!index.isValid())
        return nullptr;
    QList<int> path = pathOf(index.internalId());
    path.append(index.row());
    return nodeAt(m_viewModel.localFiles(), path);
}

QModelIndex XcodeCleanupTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column >= columnCount_ || row >= rowCount(parent))
        return {};
    QList<int> parentPath;
    if (parent.isValid()) {
        parentPath = pathOf(parent.internalId());
        parentPath.append(parent.row());
    }
    return createIndex(row, column, idOf(parentPath));
}

QModelIndex XcodeCleanupTreeModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return {};
    QList<int> path = pathOf(child.internalId());
    const int row = path.takeLast();
    return createIndex(row, 0, idOf(path));
}

int XcodeCleanupTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_viewModel.localFiles().size());
    if (parent.column() != 0)
        return 0;
    const XcodeFileProperties* n = node(parent);
    return n && n->children ? int(n->children->size()) : 0;
}

int XcodeCleanupTreeModel::columnCount(const QModelIndex&) const
{
    return columnCount_;
}

QVariant XcodeCleanupTreeModel::data(const QModelIndex& index, int role) const
{
    const XcodeFileProperties* n = node(index);
    if (!n)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        if (index.column() == labelColumn)
            return n->label;
        if (index.column() == infoColumn)
            return n->info;
        if (index.column() == sizeColumn && n->size.isKnown())
            return formatByteCount(n->size.bytesOrZero());
        return {};
    case Qt::DecorationRole:
        return index.column() == labelColumn ? QVariant(iconFor(n->icon)) : QVariant();
    case Qt::CheckStateRole:
        if (index.column() != labelColumn)
            return {};
        if (m_viewModel.isSelected(n->id))
            return Qt::Checked;
        return n->hasSelection() ? Qt::PartiallyChecked : Qt::Unchecked;
    case Qt::ToolTipRole:
        return index.column() == infoColumn ? n->info : n->tooltip;
    case Qt::TextAlignmentRole:
        if (index.column() == sizeColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case sizeIsUnknownRole:
        return !n->size.isKnown();
    case tooltipRole:
        return n->tooltip;
    case pathsRole:
        return QVariant(n->paths);
    case idRole:
        return n->id;
    default:
        return {};
    }
}

bool XcodeCleanupTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const XcodeFileProperties* n = node(index);
    if (!n || role != Qt::CheckStateRole || index.column() != labelColumn)
        return false;
    // A partly checked row becomes checked on a click, as a folder in a file chooser does.
    m_viewModel.setSelected(n->id, value.value<Qt::CheckState>() != Qt::Unchecked);
    return true;
}

Qt::ItemFlags XcodeCleanupTreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() == labelColumn && !m_viewModel.cleaning())
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant XcodeCleanupTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case labelColumn:
        return QStringLiteral("Name");
    case infoColumn:
        return QStringLiteral("Details");
    case sizeColumn:
        return QStringLiteral("Size");
    default:
        return {};
    }
}

bool XcodeCleanupTreeModel::hasUnknownSize() const
{
    return anyUnknown(m_viewModel.localFiles());
}

void XcodeCleanupTreeModel::refreshChecks()
{
    // Every check mark can move with one click (a location row checks all beneath it),
    // and the tree is small, so repaint all of column 0 level by level.
    std::function<void(const QModelIndex&)> walk = [&](const QModelIndex& parent) {
        const int rows = rowCount(parent);
        if (rows == 0)
            return;
        emit dataChanged(index(0, labelColumn, parent), index(rows - 1, labelColumn, parent), {Qt::CheckStateRole});
        for (int row = 0; row < rows; ++row)
            walk(index(row, labelColumn, parent));
    };
    walk({});
}

} // namespace quillbay
