#pragma once

#include <QList>
#include <QTableView>
#include <optional>

#include "homebrew_catalog/HomebrewCatalogColumn.h"
#include "homebrew_catalog/HomebrewPackageList.h"
#include "homebrew_catalog/HomebrewPackageRoute.h"

namespace quillbay {

class HomebrewPackageTableModel;

// The table of a catalog list, for the plain list and for search results alike. A row is
// opened by selecting it, and the selection is cleared at once, so that no row stays
// selected and the same row opens again after coming back.
class HomebrewPackageTable final : public QTableView
{
    Q_OBJECT

public:
    explicit HomebrewPackageTable(QWidget* parent = nullptr);

    // The list is taken as new only when `identity` changes (a new catalog generation or
    // kind): that resets the rows, the selection and the scroll position. The same
    // identity only shows or hides columns.
    void setContents(const HomebrewPackageList& packages,
                     const QList<HomebrewCatalogColumn>& columns,
                     const QString& identity);
    const QString& identity() const { return m_identity; }
    HomebrewPackageTableModel* packageModel() const { return m_model; }

    const std::optional<QString>& selectedPackageID() const { return m_selectedPackageID; }
    // The package with this id is opened and the selection cleared; an id in no row does
    // nothing.
    void setSelectedPackageID(const std::optional<QString>& id);

signals:
    void openPackage(const HomebrewPackageRoute& route);

private:
    void applyColumns(const QList<HomebrewCatalogColumn>& columns);

    HomebrewPackageTableModel* m_model;
    QString m_identity;
    std::optional<QString> m_selectedPackageID;
    bool m_isClearingSelection = false;
};

} // namespace quillbay
