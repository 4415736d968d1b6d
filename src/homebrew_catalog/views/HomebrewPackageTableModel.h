#pragma once

#include <QAbstractTableModel>
#include <optional>

#include "homebrew_catalog/HomebrewCatalogColumn.h"
#include "homebrew_catalog/HomebrewPackageList.h"

namespace quillbay {

// The rows of one catalog list, read in place from the store's shared list: a new list is
// one model reset, and only the rows on screen are ever asked for their text.
class HomebrewPackageTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    // "Name" first, then the optional columns in their declared order.
    static constexpr int nameColumn = 0;
    static constexpr int columnTotal = 1 + static_cast<int>(allCatalogColumns.size());
    static int columnIndex(HomebrewCatalogColumn column) { return 1 + static_cast<int>(column); }

    enum Role {
        IdentifierRole = Qt::UserRole + 1,
        PackageIDRole,
        // "Disabled", "Deprecated" or empty.
        BadgeRole,
    };

    explicit HomebrewPackageTableModel(QObject* parent = nullptr);

    void setPackages(HomebrewPackageList packages);
    const HomebrewPackageList& packages() const { return m_packages; }
    // The row of the package with this id, if one shows it.
    std::optional<int> rowOfPackageID(const QString& id) const;

    // A count with the locale's digit grouping, or an em dash when it is unknown.
    static QString countText(const std::optional<qint64>& count);
    // "Disabled" wins over "Deprecated"; empty when the package is neither.
    static QString badgeTitle(const HomebrewPackageSummary& package);
    static QString badgeSymbol(const HomebrewPackageSummary& package);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    HomebrewPackageList m_packages;
};

} // namespace quillbay
