#pragma once

#include <QList>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <optional>

#include "homebrew_catalog/HomebrewPackageDetail.h"
#include "homebrew_catalog/HomebrewPackageRoute.h"
#include "homebrew_catalog/HomebrewPackageSummary.h"
#include "homebrew_installed/HomebrewInstalledPackage.h"

class QGroupBox;
class QLabel;
class QMessageBox;
class QPushButton;
class QScrollArea;
class QStackedWidget;
class QToolButton;
class QVBoxLayout;

namespace quillbay {

class HomebrewCatalogStore;
class HomebrewInstalledPackageDetailSections;
class HomebrewInstalledPackagesStore;
class HomebrewProgressView;
class UnavailablePanel;
class Workspace;

// The page of one package, shared by the catalog and the installed-packages tools. It
// loads the package's details when it appears and shows them as a grouped form; with an
// installed package it shows that package's local sections above them.
//
// The page keeps its own back stack: following a dependency or a replacement pushes that
// route (with no installed package), "Back" pops it, and "Back" on the first route asks
// the host to close the page (closeRequested). A host therefore only creates the page for
// a route, shows it, and removes it on closeRequested.
class HomebrewPackageDetailView final : public QWidget
{
    Q_OBJECT

public:
    // `installedStore` is needed only with an installed package.
    HomebrewPackageDetailView(HomebrewCatalogStore& store,
                              Workspace& workspace,
                              const HomebrewPackageRoute& route,
                              std::optional<HomebrewInstalledPackage> installedPackage = std::nullopt,
                              HomebrewInstalledPackagesStore* installedStore = nullptr,
                              QWidget* parent = nullptr);
    ~HomebrewPackageDetailView() override;

    const HomebrewPackageRoute& route() const { return m_stack.last().route; }
    const std::optional<HomebrewInstalledPackage>& installedPackage() const { return m_stack.last().installedPackage; }
    // How many pages the back stack holds, the first one included.
    int depth() const { return static_cast<int>(m_stack.size()); }
    QString title() const;

    void pushRoute(const HomebrewPackageRoute& route);
    // Pops one page; on the first page it asks the host to close the page instead.
    void goBack();

    bool didCopyInstallCommand() const { return m_didCopyInstallCommand; }
    void copyInstallCommand();
    // Looks the Terminal up and opens it; a failure shows the alert.
    void openTerminal();
    bool isShowingTerminalLaunchError() const { return m_isShowingTerminalLaunchError; }
    const QString& terminalLaunchErrorMessage() const { return m_terminalLaunchErrorMessage; }

    // What the page shows now: the form, the progress indicator or the unavailable view.
    QWidget* currentContent() const;
    // The form's sections, in order, as group boxes named after their titles.
    QWidget* form() const { return m_form; }

signals:
    void closeRequested();
    void routeChanged(const HomebrewPackageRoute& route);

protected:
    void showEvent(QShowEvent* event) override;

private:
    struct Entry
    {
        HomebrewPackageRoute route;
        std::optional<HomebrewInstalledPackage> installedPackage;
    };
    // The store state one page is drawn from; the page is rebuilt only when it changes.
    struct Shown
    {
        std::optional<HomebrewPackageDetail> detail;
        bool isLoading = false;
        std::optional<QString> error;
        std::optional<HomebrewPackageSummary> summary;
        friend bool operator==(const Shown&, const Shown&) = default;
    };

    Shown currentState() const;
    void startLoad();
    void enterEntry();
    void leaveEntry();
    void refresh();
    void rebuildForm(const Shown& shown);
    void addCatalogSections(QVBoxLayout* layout, const HomebrewPackageDetail& detail, const Shown& shown);
    void addTryAgainRow(QGroupBox* box);
    void addDetailUnavailableSection(QVBoxLayout* layout, const Shown& shown);
    void updateCopyButton();
    void showTerminalLaunchError(const QString& message);

    HomebrewCatalogStore& m_store;
    Workspace& m_workspace;
    HomebrewInstalledPackagesStore* m_installedStore;
    QList<Entry> m_stack;
    std::optional<Shown> m_shown;

    QLabel* m_titleLabel;
    QToolButton* m_backButton;
    QToolButton* m_terminalButton;
    QStackedWidget* m_pages;
    QScrollArea* m_scrollArea;
    QWidget* m_form = nullptr;
    HomebrewProgressView* m_loading;
    UnavailablePanel* m_unavailable;
    // Lives across rebuilds of the form, so that its "Copied" state survives a detail
    // arriving; recreated per page.
    QPointer<HomebrewInstalledPackageDetailSections> m_installedSections;
    QPointer<QPushButton> m_copyButton;

    bool m_didCopyInstallCommand = false;
    QTimer m_copyReset;
    bool m_isShowingTerminalLaunchError = false;
    QString m_terminalLaunchErrorMessage;
    QPointer<QMessageBox> m_terminalAlert;
};

} // namespace quillbay
