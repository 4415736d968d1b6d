#pragma once

#include <QFuture>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <optional>
#include <vector>

#include "foundation/SerialExecutor.h"
#include "homebrew_cache/HomebrewCacheBookmarkService.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"
#include "homebrew_cache/HomebrewCacheCleanupServices.h"
#include "homebrew_cache/HomebrewCacheEntry.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

// What the tool's page shows, tested in this order.
enum class HomebrewCacheCleanupPage {
    authorizationRequired,
    scanning,
    failed,
    empty,
    outline,
};

// The state of the Homebrew cache cleanup: the authorized folder, the scan results, the
// selection, the deletion and its toast. UI thread only. Scans and deletions run on their
// own serial executors; `isScanning` and `isCleaning` are tested and set before the first
// wait, so on the one thread no second operation can slip in between.
class HomebrewCacheCleanupStore : public QObject
{
    Q_OBJECT

public:
    static constexpr auto suppressDeleteWarningAlertKey = "SuppressDeleteWarningAlert";

    enum class DeleteRequest {
        ignored, // nothing to delete right now
        confirmation, // the screen asks first
        started, // "Don't ask again" was chosen: cleaning
    };

    explicit HomebrewCacheCleanupStore(HomebrewCacheCleanupServices services, QObject* parent = nullptr);
    ~HomebrewCacheCleanupStore() override;

    // --- State -----------------------------------------------------------------------
    QString expectedRootPath() const { return m_expectedRootPath; }
    QString displayPath() const { return m_services.paths.homebrewCacheDisplayPath(); }
    const std::optional<QString>& rootPath() const { return m_rootPath; }
    bool isAuthorized() const { return m_rootPath.has_value(); }
    bool isLoadingAuthorization() const { return m_isLoadingAuthorization; }
    bool hasLoadedAuthorization() const { return m_hasLoadedAuthorization; }
    bool hasScannedThisLaunch() const { return m_hasScannedThisLaunch; }
    bool isScanning() const { return m_isScanning; }
    bool isCleaning() const { return m_isCleaning; }
    bool isChoosingRoot() const { return m_isChoosingRoot; }
    const std::optional<QString>& errorMessage() const { return m_errorMessage; }
    const std::optional<QString>& toastMessage() const { return m_toastMessage; }
    const std::vector<HomebrewCacheEntry>& entries() const { return m_entries; }
    const std::vector<HomebrewCacheNode>& nodes() const { return m_nodes; }
    const QSet<QString>& selectedEntryIDs() const { return m_selectedEntryIDs; }

    qint64 totalAllocatedSize() const;
    qint64 selectedAllocatedSize() const;
    bool allSelected() const;
    bool canClean() const;
    HomebrewCacheCleanupPage page() const;
    // The error line above the page: a failure after a good scan (a refused clean).
    bool showsErrorLine() const { return isAuthorized() && m_hasScannedThisLaunch && m_errorMessage.has_value(); }
    bool showsFooter() const { return isAuthorized() && m_hasScannedThisLaunch && !m_entries.empty(); }

    // --- Operations --------------------------------------------------------------------
    QFuture<void> loadAuthorization();
    // When the page appears: restore the folder, and scan it once per launch.
    QFuture<void> loadAuthorizationAndScanIfNeeded();
    QFuture<void> scan();
    QFuture<void> rescan();
    QFuture<void> authorize(const QString& path);
    void chooseRoot();
    void removeAuthorization();
    QFuture<void> clean();
    // "Delete...": cleans at once when the warning was suppressed.
    DeleteRequest requestDelete();
    void clearToast();

    // --- Selection -----------------------------------------------------------------------
    bool isSelected(const QString& id) const { return m_selectedEntryIDs.contains(id); }
    void setSelected(const QString& id, bool value);
    void setSelected(const QStringList& ids, bool value);
    void selectAll();
    void deselectAll();

    bool suppressDeleteWarningAlert() const;
    void setSuppressDeleteWarningAlert(bool value);

    // Runs pending work to its end; for shutdown and tests.
    void drain();
    HomebrewCacheCleaner& cleanerForTesting() { return m_cleaner.unsafeService(); }

signals:
    void stateChanged();
    void selectionChanged();
    void toastMessageChanged();

private:
    void applyEntries(std::vector<HomebrewCacheEntry> entries);
    void clearCollections();
    void setToast(std::optional<QString> message);
    void finishLoading(std::optional<HomebrewCacheBookmarkError> error, const QString& description);

    HomebrewCacheCleanupServices m_services;
    QString m_expectedRootPath;
    HomebrewCacheBookmarkService m_bookmarks;

    std::vector<HomebrewCacheEntry> m_entries;
    QHash<QString, qsizetype> m_entryIndexByID;
    std::vector<HomebrewCacheNode> m_nodes;
    QSet<QString> m_selectedEntryIDs;
    std::optional<QString> m_rootPath;
    std::optional<QString> m_errorMessage;
    std::optional<QString> m_toastMessage;
    bool m_isLoadingAuthorization = false;
    bool m_hasLoadedAuthorization = false;
    bool m_hasScannedThisLaunch = false;
    bool m_isScanning = false;
    bool m_isCleaning = false;
    bool m_isChoosingRoot = false;
    QFuture<void> m_loading;

    // Last, so that they are destroyed first: their destructors wait for running calls.
    SerialExecutor<HomebrewCacheScanner> m_scanner;
    SerialExecutor<HomebrewCacheCleaner> m_cleaner;
};

} // namespace quillbay
