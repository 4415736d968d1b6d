#pragma once

#include <QPointer>
#include <QWidget>

#include "homebrew_catalog/HomebrewPackageRoute.h"

class QAction;
class QButtonGroup;
class QLabel;
class QLineEdit;
class QMenu;
class QStackedWidget;
class QToolButton;

namespace quillbay {

class HomebrewCatalogColumnsPanel;
class HomebrewCatalogStore;
class HomebrewInstalledPackagesStore;
class HomebrewPackageDetailView;
class HomebrewPackageTable;
class HomebrewProgressView;
class UnavailablePanel;
class Workspace;

// The "Catalog" tool: a toolbar (kind, sort, columns, search and its history), then the
// catalog of the chosen kind in the state the store is in, with the search results laid
// over it while a query stands. Opening a package shows its page in place of the
// catalog; coming back shows the catalog as it was left.
class HomebrewCatalogView final : public QWidget
{
    Q_OBJECT

public:
    // The installed store may be absent; it is only read by package pages that show an
    // installed package, which this tool never opens.
    HomebrewCatalogView(HomebrewCatalogStore& store,
                        Workspace& workspace,
                        HomebrewInstalledPackagesStore* installedStore = nullptr,
                        QWidget* parent = nullptr);

    // Pushes the package page of the route, as opening a row does.
    void openPackage(const HomebrewPackageRoute& route);
    // The package page on show, if any.
    HomebrewPackageDetailView* detailView() const;

    // The catalog table of the selected kind.
    HomebrewPackageTable* catalogTable() const;
    HomebrewPackageTable* searchTable() const { return m_searchTable; }
    // What the catalog area and the search layer over it show now.
    QWidget* currentContent() const;
    QWidget* currentSearchContent() const;
    bool isSearchLayerVisible() const;
    QMenu* sortMenu() const { return m_sortMenu; }
    QMenu* searchHistoryMenu() const { return m_historyMenu; }
    HomebrewCatalogColumnsPanel* columnsPanel() const { return m_columnsPanel; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* buildToolbar();
    QToolButton* makeToolButton(const QString& objectName, const QString& label, const QString& symbol);
    void refresh();
    void rebuildSortMenu();
    void rebuildHistoryMenu();
    void closePackage();

    HomebrewCatalogStore& m_store;
    Workspace& m_workspace;
    HomebrewInstalledPackagesStore* m_installedStore;

    QStackedWidget* m_navigation;
    QWidget* m_catalogPage;
    QPointer<HomebrewPackageDetailView> m_detail;

    QButtonGroup* m_kindGroup = nullptr;
    QToolButton* m_caskButton = nullptr;
    QToolButton* m_formulaButton = nullptr;
    QMenu* m_sortMenu = nullptr;
    QMenu* m_historyMenu = nullptr;
    QLineEdit* m_searchField = nullptr;
    QToolButton* m_columnsButton = nullptr;
    HomebrewCatalogColumnsPanel* m_columnsPanel;

    QWidget* m_errorLine;
    QLabel* m_errorLabel;
    QStackedWidget* m_content;
    UnavailablePanel* m_unavailable;
    HomebrewProgressView* m_loading;
    // One table per kind, so that each keeps its own scroll position across a switch.
    HomebrewPackageTable* m_caskTable;
    HomebrewPackageTable* m_formulaTable;
    QStackedWidget* m_searchLayer;
    HomebrewProgressView* m_searching;
    UnavailablePanel* m_noResults;
    HomebrewPackageTable* m_searchTable;
};

} // namespace quillbay
