#include "homebrew_installed/views/HomebrewInstalledPackagesContent.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/FolderAuthorizationRequiredView.h"
#include "core/views/StatusPanels.h"
#include "core/views/UnavailablePanel.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "homebrew_installed/views/HomebrewInstalledPackageTable.h"

namespace quillbay {

HomebrewInstalledPackagesContent::HomebrewInstalledPackagesContent(HomebrewInstalledPackagesStore& store,
                                                                   QWidget* parent)
    : QStackedWidget(parent)
    , m_store(store)
    , m_authorization(new FolderAuthorizationRequiredView(
          tr("View installed Homebrew Formulae and Casks."), QStringLiteral("externaldrive.badge.questionmark"), this))
    , m_chooseFolder(m_authorization->addAction(tr("Choose Folder"), QStringLiteral("chooseFolderPushButton")))
    , m_scanning(makeProgressPanel(tr("Scanning Installed Packages"), QStringLiteral("scanningPanel"), this))
    , m_failed(new UnavailablePanel(tr("Retry"), this))
    , m_filtering(makeProgressPanel(tr("Searching Installed Packages"), QStringLiteral("filteringPanel"), this))
    , m_noSearchResults(new UnavailablePanel(QString(), this))
    , m_noPackages(new UnavailablePanel(tr("Rescan"), this))
    , m_table(new HomebrewInstalledPackageTable(this))
{
    setObjectName(QStringLiteral("installedPackagesContent"));
    m_failed->setObjectName(QStringLiteral("failedPanel"));
    m_failed->button()->setObjectName(QStringLiteral("retryPushButton"));
    m_noSearchResults->setObjectName(QStringLiteral("noSearchResultsPanel"));
    m_noSearchResults->setContent(QStringLiteral("magnifyingglass"), tr("No Installed Packages Found"),
                                  tr("Try a different name, alias, description, or installed version."));
    m_noPackages->setObjectName(QStringLiteral("noPackagesPanel"));
    m_noPackages->button()->setObjectName(QStringLiteral("emptyRescanPushButton"));

    for (QWidget* page : {static_cast<QWidget*>(m_authorization), m_scanning, static_cast<QWidget*>(m_failed),
                          m_filtering, static_cast<QWidget*>(m_noSearchResults), static_cast<QWidget*>(m_noPackages),
                          static_cast<QWidget*>(m_table)})
        addWidget(page);

    connect(m_chooseFolder, &QPushButton::clicked, &m_store, &HomebrewInstalledPackagesStore::chooseRoot);
    connect(m_failed->button(), &QPushButton::clicked, &m_store, &HomebrewInstalledPackagesStore::rescan);
    connect(m_noPackages->button(), &QPushButton::clicked, &m_store, &HomebrewInstalledPackagesStore::rescan);
    connect(m_table, &HomebrewInstalledPackageTable::openPackage, this, &HomebrewInstalledPackagesContent::openPackage);
    connect(&m_store, &HomebrewInstalledPackagesStore::stateChanged, this, &HomebrewInstalledPackagesContent::refresh);
    connect(&m_store, &HomebrewInstalledPackagesStore::packagesChanged, this, [this] {
        refreshRows();
        refresh();
    });
    connect(&m_store, &HomebrewInstalledPackagesStore::selectedKindChanged, this, [this] {
        refreshRows();
        refresh();
    });
    connect(&m_store, &HomebrewInstalledPackagesStore::searchTextChanged, this,
            &HomebrewInstalledPackagesContent::refresh);
    refreshRows();
    refresh();
}

HomebrewInstalledContentState HomebrewInstalledPackagesContent::stateOf(const HomebrewInstalledPackagesStore& store)
{
    using State = HomebrewInstalledContentState;
    if (!store.isAuthorized())
        return State::authorizationRequired;
    if (store.isScanning() && !store.hasScannedThisLaunch())
        return State::scanning;
    if (!store.hasScannedThisLaunch() && store.errorMessage())
        return State::failed;
    if (store.isFiltering())
        return State::filtering;
    const bool empty = store.currentPackages().isEmpty();
    if (empty && store.hasSearchText())
        return State::noSearchResults;
    if (empty && !store.hasPackages(store.selectedKind()))
        return State::noPackages;
    // Also the instant between a scan and the end of its processing: rows found, none
    // processed yet.
    return State::table;
}

void HomebrewInstalledPackagesContent::refreshRows()
{
    m_table->setPackages(m_store.currentPackages());
}

void HomebrewInstalledPackagesContent::refresh()
{
    using State = HomebrewInstalledContentState;
    m_state = stateOf(m_store);
    switch (m_state) {
    case State::authorizationRequired:
        m_authorization->setErrorMessage(m_store.errorMessage());
        m_chooseFolder->setEnabled(!m_store.isChoosingRoot() && !m_store.isScanning());
        setCurrentWidget(m_authorization);
        break;
    case State::scanning:
        setCurrentWidget(m_scanning);
        break;
    case State::failed:
        m_failed->setContent(QStringLiteral("exclamationmark.triangle"), tr("Failed to load data"),
                             m_store.errorMessage().value_or(QString()));
        m_failed->button()->setEnabled(!m_store.isScanning());
        setCurrentWidget(m_failed);
        break;
    case State::filtering:
        setCurrentWidget(m_filtering);
        break;
    case State::noSearchResults:
        setCurrentWidget(m_noSearchResults);
        break;
    case State::noPackages:
        if (m_store.selectedKind() == HomebrewCatalogKind::formula)
            m_noPackages->setContent(QStringLiteral("function"), tr("No Installed Formulae"),
                                     tr("No matching installations were found in the authorized Homebrew root."));
        else
            m_noPackages->setContent(QStringLiteral("shippingbox"), tr("No Installed Casks"),
                                     tr("No matching installations were found in the authorized Homebrew root."));
        m_noPackages->button()->setEnabled(!m_store.isScanning());
        setCurrentWidget(m_noPackages);
        break;
    case State::table:
        setCurrentWidget(m_table);
        break;
    }
}

} // namespace quillbay
