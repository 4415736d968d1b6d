#pragma once

#include <QAbstractTableModel>
#include <QList>

#include "homebrew_installed/HomebrewInstalledPackage.h"

namespace quillbay {

// The rows of the installed table over one processed list: name, installed version,
// catalog version and update status. The name column also offers the identifier as a
// subtitle, only where it differs from the name.
class HomebrewInstalledPackageTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { nameColumn, installedVersionColumn, catalogVersionColumn, updateStatusColumn, columnCount_ };
    enum Role { subtitleRole = Qt::UserRole + 1, packageIDRole };

    explicit HomebrewInstalledPackageTableModel(QObject* parent = nullptr);

    // Replaces all rows (a new list is a new table: no row keeps its place).
    void setPackages(QList<HomebrewInstalledPackage> packages);
    const QList<HomebrewInstalledPackage>& packages() const { return m_packages; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QList<HomebrewInstalledPackage> m_packages;
};

} // namespace quillbay
