#include "homebrew_catalog/views/HomebrewPackageTableModel.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>

namespace quillbay {

using namespace Qt::StringLiterals;

HomebrewPackageTableModel::HomebrewPackageTableModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

void HomebrewPackageTableModel::setPackages(HomebrewPackageList packages)
{
    beginResetModel();
    m_packages = std::move(packages);
    endResetModel();
}

std::optional<int> HomebrewPackageTableModel::rowOfPackageID(const QString& id) const
{
    for (qsizetype row = 0; row < m_packages.size(); ++row) {
        if (m_packages.at(row).id() == id)
            return static_cast<int>(row);
    }
    return std::nullopt;
}

QString HomebrewPackageTableModel::countText(const std::optional<qint64>& count)
{
    return count ? QLocale().toString(*count) : u"\u2014"_s;
}

QString HomebrewPackageTableModel::badgeTitle(const HomebrewPackageSummary& package)
{
    if (package.isDisabled)
        return u"Disabled"_s;
    if (package.isDeprecated)
        return u"Deprecated"_s;
    return {};
}

QString HomebrewPackageTableModel::badgeSymbol(const HomebrewPackageSummary& package)
{
    if (package.isDisabled)
        return u"nosign"_s;
    if (package.isDeprecated)
        return u"exclamationmark.triangle"_s;
    return {};
}

int HomebrewPackageTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_packages.size());
}

int HomebrewPackageTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : columnTotal;
}

QVariant HomebrewPackageTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_packages.size())
        return {};
    const HomebrewPackageSummary& package = m_packages.at(index.row());
    switch (role) {
    case IdentifierRole:
        return package.identifier;
    case PackageIDRole:
        return package.id();
    case BadgeRole:
        return badgeTitle(package);
    default:
        break;
    }

    const int column = index.column();
    if (column == nameColumn) {
        if (role == Qt::DisplayRole)
            return package.displayName;
        if (role == Qt::AccessibleTextRole) {
            QStringList parts {package.displayName};
            if (package.identifier != package.displayName)
                parts << package.identifier;
            if (const QString badge = badgeTitle(package); !badge.isEmpty())
                parts << badge;
            return parts.join(u", "_s);
        }
        // The badge's symbol stays known to assistive technology, beside its read-out label.
        if (role == Qt::AccessibleDescriptionRole)
            return badgeSymbol(package);
        return {};
    }
    const auto optional = static_cast<HomebrewCatalogColumn>(column - 1);
    switch (optional) {
    case HomebrewCatalogColumn::description:
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return package.summary;
        if (role == Qt::ForegroundRole)
            return QGuiApplication::palette().color(QPalette::PlaceholderText);
        return {};
    case HomebrewCatalogColumn::currentVersion:
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return package.version;
        if (role == Qt::FontRole)
            return QFontDatabase::systemFont(QFontDatabase::FixedFont);
        return {};
    case HomebrewCatalogColumn::thirtyDays:
    case HomebrewCatalogColumn::ninetyDays:
    case HomebrewCatalogColumn::threeHundredSixtyFiveDays: {
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        if (role != Qt::DisplayRole)
            return {};
        const HomebrewAnalyticsCounts& counts = package.analytics;
        if (optional == HomebrewCatalogColumn::thirtyDays)
            return countText(counts.thirtyDays);
        if (optional == HomebrewCatalogColumn::ninetyDays)
            return countText(counts.ninetyDays);
        return countText(counts.threeHundredSixtyFiveDays);
    }
    }
    return {};
}

QVariant HomebrewPackageTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    if (section == nameColumn)
        return u"Name"_s;
    if (section > 0 && section < columnTotal)
        return columnHeader(static_cast<HomebrewCatalogColumn>(section - 1));
    return {};
}

} // namespace quillbay
