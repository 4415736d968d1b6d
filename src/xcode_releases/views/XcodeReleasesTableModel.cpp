#include "xcode_releases/views/XcodeReleasesTableModel.h"

#include <QFontDatabase>

#include "xcode_releases/XcodeReleaseText.h"

namespace quillbay {

XcodeReleasesTableModel::XcodeReleasesTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

void XcodeReleasesTableModel::setContents(QList<XcodeRelease> releases, const QList<Column>& columns, bool isExpand)
{
    beginResetModel();
    m_releases = std::move(releases);
    m_columns = QList<Column> {Column::version} + columns;
    m_isExpand = isExpand;
    endResetModel();
}

int XcodeReleasesTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_releases.size());
}

int XcodeReleasesTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QString XcodeReleasesTableModel::mainText(const XcodeRelease& release, Column column) const
{
    switch (column) {
    case Column::download:
        return QStringLiteral("Download");
    case Column::releaseNotes:
        return QStringLiteral("Release Notes");
    default:
        // The long forms stay in the model: the table shows the short text and puts
        // builds on a line of their own.
        return cellText(release, column, false);
    }
}

std::optional<QString> XcodeReleasesTableModel::buildLine(const XcodeRelease& release, Column column) const
{
    if (!m_isExpand)
        return std::nullopt;
    if (column == Column::version) {
        if (release.version && !release.version->build.isEmpty())
            return release.version->build;
        return std::nullopt;
    }
    return buildText(release, column);
}

QVariant XcodeReleasesTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_releases.size() || index.column() >= m_columns.size())
        return {};
    const XcodeRelease& release = m_releases.at(index.row());
    const Column column = m_columns.at(index.column());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return mainText(release, column);
    case BuildLineRole:
        if (const std::optional<QString> build = buildLine(release, column))
            return *build;
        return {};
    case SymbolRole:
        if (column == Column::releaseNotes)
            return QStringLiteral("doc.text");
        if (column == Column::version)
            return isAppleSiliconOnly(release) ? QStringLiteral("cpu") : QVariant();
        return columnSymbol(column).isEmpty() ? QVariant() : QVariant(columnSymbol(column));
    case LinkRole:
        if (column == Column::download || column == Column::releaseNotes)
            return cellText(release, column, false);
        return {};
    case AppleSiliconRole:
        return column == Column::version && isAppleSiliconOnly(release);
    case ColumnRole:
        return static_cast<int>(column);
    case Qt::FontRole:
        if (column == Column::required || column == Column::swift || !columnSymbol(column).isEmpty())
            return QFontDatabase::systemFont(QFontDatabase::FixedFont);
        return {};
    default:
        return {};
    }
}

QVariant XcodeReleasesTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size())
        return {};
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return columnTitle(m_columns.at(section));
    return {};
}

Qt::ItemFlags XcodeReleasesTableModel::flags(const QModelIndex& index) const
{
    // Rows are shown, never selected for an action.
    return index.isValid() ? Qt::ItemIsEnabled : Qt::NoItemFlags;
}

} // namespace quillbay
