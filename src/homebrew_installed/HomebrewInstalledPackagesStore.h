#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "foundation/SerialExecutor.h"
#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_installed/HomebrewInstallationBookmarkService.h"
#include "homebrew_installed/HomebrewInstallationScanResult.h"
#include "homebrew_installed/HomebrewInstallationScanner.h"
#include "homebrew_installed/HomebrewInstalledPackage.h"
#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"
#include "platform/UserPaths.h"

namespace quillbay {

class Defaults;
class Pickers;
class Workspace;

// What the installed tool knows: the authorized Homebrew root, the rows of the last scan,
// the catalog rows to join them with, and the two processed lists the table shows.
//
// UI thread only. The scanner, the processor and the bookmark service each run on their
// own executor; every result comes back through a continuation on this object. Guards
// (isScanning, isChoosingRoot, isLoadingAuthorization) are tested and set here before the
// first wait, so no second operation can slip in between.
class HomebrewInstalledPackagesStore : public QObject
{
    Q_OBJECT

public:
    static constexpr auto rootBookmarkKey = "homebrewInstallation.rootBookmark";
    // The pause after a keystroke before the lists are filtered again.
    static constexpr int searchDebounceMilliseconds = 150;

    // The root's bookmark lives in `defaults` under `bookmarkKey`; only this store, on the
    // UI thread, reads and writes it.
    HomebrewInstalledPackagesStore(Defaults& defaults,
                                   QString bookmarkKey,
                                   std::unique_ptr<HomebrewInstallationBookmarkService> bookmarkService,
                                   std::unique_ptr<HomebrewInstallationScanner> scanner,
                                   std::unique_ptr<HomebrewInstalledPackageProcessor> processor,
                                   Pickers& pickers,
                                   Workspace& workspace,
                                   UserPaths userPaths,
                                   QObject* parent = nullptr);
    // Waits for the running service calls, so that no continuation outlives this object.
    ~HomebrewInstalledPackagesStore() override;

    // --- State ----------------------------------------------------------------------
    const QList<HomebrewInstalledPackage>& rawPackages() const { return m_rawPackages; }
    const HomebrewPackageSummaries& catalogSummaries() const { return m_catalogSummaries; }
    const QList<HomebrewInstalledPackage>& formulae() const { return m_formulae; }
    const QList<HomebrewInstalledPackage>& casks() const { return m_casks; }
    // casks for the kind cask, formulae otherwise.
    const QList<HomebrewInstalledPackage>& currentPackages() const;
    const std::optional<QString>& rootURL() const { return m_rootURL; }
    HomebrewCatalogKind selectedKind() const { return m_selectedKind; }
    const QString& searchText() const { return m_searchText; }
    bool isLoadingAuthorization() const { return m_isLoadingAuthorization; }
    bool hasLoadedAuthorization() const { return m_hasLoadedAuthorization; }
    bool hasScannedThisLaunch() const { return m_hasScannedThisLaunch; }
    bool isScanning() const { return m_isScanning; }
    bool isChoosingRoot() const { return m_isChoosingRoot; }
    bool isFiltering() const { return m_isFiltering; }
    const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    const std::optional<QString>& operationErrorMessage() const { return m_operationErrorMessage; }

    bool isAuthorized() const { return m_rootURL.has_value(); }
    bool hasSearchText() const { return !m_searchText.trimmed().isEmpty(); }
    bool hasPackages(HomebrewCatalogKind kind) const;

    // Only switches the list shown: both lists are always kept up to date.
    void setSelectedKind(HomebrewCatalogKind kind);
    // A different text filters again after the typing pause.
    void setSearchText(const QString& text);

    // --- Operations -------------------------------------------------------------------
    // When the screen appears: take the catalog rows of the moment, restore the root, and
    // scan it once per launch.
    void start(const HomebrewPackageSummaries& catalogSummaries);
    void loadAuthorization();
    void scan(const QString& rootURL);
    void rescan();
    // Asks for a folder, then authorizes it.
    void chooseRoot();
    // Validates, scans and remembers the folder; only then does it become the root.
    void authorize(const QString& url);
    // Forgets the root and everything found in it; touches no file.
    void removeAuthorization();
    // With the catalog's rows whenever they are replaced; re-joins without a rescan.
    void updateCatalogSummaries(const HomebrewPackageSummaries& summaries);
    void scheduleProcessing(bool debounced);
    void revealInstallation(const HomebrewInstalledPackage& package);
    void clearOperationError();

    // Where the folder panel opens when no root is authorized: the first usual prefix that
    // holds bin/brew, else the first one, else home.
    QString suggestedRootDirectory() const;

    const QString& bookmarkKey() const { return m_bookmarkKey; }

signals:
    // Flags, the root and the messages.
    void stateChanged();
    // rawPackages, formulae or casks.
    void packagesChanged();
    void searchTextChanged();
    void selectedKindChanged();

private:
    struct ProcessingSnapshot
    {
        QList<HomebrewInstalledPackage> rawPackages;
        HomebrewPackageSummaries catalogSummaries;
        QString query;
    };

    void loadAuthorization(std::function<void()> done);
    void authorize(const QString& url, std::function<void()> done);
    void applyScanResult(const HomebrewInstallationScanResult& result);
    void finishAuthorization(const QString& url, std::function<void()> done);
    void runProcessing(ProcessingSnapshot snapshot, std::stop_token stopToken);
    void cancelProcessing();
    void clearRootURL();

    Defaults& m_defaults;
    QString m_bookmarkKey;
    SerialExecutor<HomebrewInstallationBookmarkService> m_bookmarkService;
    SerialExecutor<HomebrewInstallationScanner> m_scanner;
    SerialExecutor<HomebrewInstalledPackageProcessor> m_processor;
    Pickers& m_pickers;
    Workspace& m_workspace;
    UserPaths m_userPaths;

    QList<HomebrewInstalledPackage> m_rawPackages;
    HomebrewPackageSummaries m_catalogSummaries;
    QList<HomebrewInstalledPackage> m_formulae;
    QList<HomebrewInstalledPackage> m_casks;
    std::optional<QString> m_rootURL;
    HomebrewCatalogKind m_selectedKind = HomebrewCatalogKind::cask;
    QString m_searchText;
    bool m_isLoadingAuthorization = false;
    bool m_hasLoadedAuthorization = false;
    bool m_hasScannedThisLaunch = false;
    bool m_isScanning = false;
    bool m_isChoosingRoot = false;
    bool m_isFiltering = false;
    std::optional<QString> m_errorMessage;
    std::optional<QString> m_operationErrorMessage;

    // Callers of loadAuthorization that arrived while it was at work; they resume with it.
    std::vector<std::function<void()>> m_authorizationWaiters;
    // Raised when the user starts an authorization or removes it. A restore or scan that
    // began before then must not overwrite the newer decision: a stale restore would drop
    // a just-chosen root (or remove its bookmark), a stale scan bring forgotten rows back.
    quint64 m_authorizationEpoch = 0;

    // The current processing task: one stop source per task, replaced by each newer one.
    std::stop_source m_processingStop;
    QTimer m_debounceTimer;
    ProcessingSnapshot m_debouncedSnapshot;
};

} // namespace quillbay
