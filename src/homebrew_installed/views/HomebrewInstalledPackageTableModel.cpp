#include "homebrew_installed/views/HomebrewInstalledPackageTableModel.h"

#include <QApplication>
#include <QFontDatabase>
#include <QPalette>

#include "core/views/SymbolIcons.h"
#include "homebrew_installed/HomebrewInstalledStatusLabel.h"

namespace quillbay {

HomebrewInstalledPackageTableModel::HomebrewInstalledPackageTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

void HomebrewInstalledPackageTableModel::setPackages(QList<HomebrewInstalledPackage> packages)
{
    beginResetModel();
    m_packages = std::move(packages);
    endResetModel();
}

int HomebrewInstalledPackageTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_packages.size());
}

int HomebrewInstalledPackageTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columnCount_;
}

QVariant HomebrewInstalledPackageTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_packages.size())
        return {};
    const HomebrewInstalledPackage& package = m_packages.at(index.row());
    if (role == packageIDRole)
        return package.id();
    switch (index.column()) {
    case nameColumn:
        if (role == Qt::DisplayRole)
            return package.displayName();
        if (role == subtitleRole)
            return package.identifier != package.displayName() ? package.identifier : QString();
        if (role == Qt::ToolTipRole)
            return package.identifier;
        break;
    case installedVersionColumn:
    case catalogVersionColumn:
        if (role == Qt::DisplayRole)
            return index.column() == installedVersionColumn ? package.installedVersion : catalogVersionText(package);
        if (role == Qt::FontRole)
            return QFontDatabase::systemFont(QFontDatabase::FixedFont);
        break;
    case updateStatusColumn: {
        const HomebrewInstalledStatusLabel label = HomebrewInstalledStatusLabel::of(package);
        if (role == Qt::DisplayRole)
            return label.text;
        if (role == Qt::DecorationRole)
            return symbolIcon(label.systemImage);
        if (role == Qt::ForegroundRole)
            return QApplication::palette().color(QPalette::PlaceholderText);
        break;
    }
    default:
        break;
    }
    return {};
}

QVariant HomebrewInstalledPackageTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case nameColumn:
        return tr("Name");
    case installedVersionColumn:
        return tr("Installed Version");
    case catalogVersionColumn:
        return tr("Catalog Version");
    case updateStatusColumn:
        return tr("Update Status");
    default:
        return {};
    }
}

} // namespace quillbay
