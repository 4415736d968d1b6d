#include "homebrew_cache/HomebrewCacheCleanupStore.h"

#include <QCoreApplication>
#include <QPointer>

#include "core/state/SavedSpaceStore.h"
#include "foundation/ByteCount.h"
#include "foundation/Defaults.h"
#include "foundation/Log.h"
#include "foundation/PathContainment.h"
#include "platform/FolderBookmark.h"
#include "platform/Pickers.h"

namespace quillbay {

namespace {

QFuture<void> done()
{
    return QtFuture::makeReadyFuture();
}

} // namespace

HomebrewCacheCleanupStore::HomebrewCacheCleanupStore(HomebrewCacheCleanupServices services, QObject* parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_expectedRootPath(standardizedPath(m_services.paths.homebrewCacheFolder()))
    , m_bookmarks(m_services.defaults, m_services.bookmarkKey)
    , m_scanner(std::make_unique<HomebrewCacheScanner>(m_expectedRootPath, displayPath()))
    , m_cleaner(std::make_unique<HomebrewCacheCleaner>(m_expectedRootPath, displayPath()))
{
}

HomebrewCacheCleanupStore::~HomebrewCacheCleanupStore() = default;

qint64 HomebrewCacheCleanupStore::totalAllocatedSize() const
{
    qint64 total = 0;
    for (const HomebrewCacheEntry& entry : m_entries)
        total += entry.allocatedSize.value_or(0);
    return total;
}

qint64 HomebrewCacheCleanupStore::selectedAllocatedSize() const
{
    qint64 total = 0;
    for (const QString& id : m_selectedEntryIDs) {
        const auto found = m_entryIndexByID.constFind(id);
        if (found != m_entryIndexByID.cend())
            total += m_entries[size_t(*found)].allocatedSize.value_or(0);
    }
    return total;
}

bool HomebrewCacheCleanupStore::allSelected() const
{
    return !m_entries.empty() && size_t(m_selectedEntryIDs.size()) == m_entries.size();
}

bool HomebrewCacheCleanupStore::canClean() const
{
    return m_hasScannedThisLaunch && !m_selectedEntryIDs.isEmpty() && !m_isScanning && !m_isCleaning;
}

HomebrewCacheCleanupPage HomebrewCacheCleanupStore::page() const
{
    if (!isAuthorized())
        return HomebrewCacheCleanupPage::authorizationRequired;
    if (m_isScanning && !m_hasScannedThisLaunch)
        return HomebrewCacheCleanupPage::scanning;
    if (!m_hasScannedThisLaunch && m_errorMessage)
        return HomebrewCacheCleanupPage::failed;
    if (m_entries.empty())
        return HomebrewCacheCleanupPage::empty;
    return HomebrewCacheCleanupPage::outline;
}

QFuture<void> HomebrewCacheCleanupStore::loadAuthorization()
{
    if (m_hasLoadedAuthorization)
        return done();
    if (m_isLoadingAuthorization)
        return m_loading; // the first call is at work: wait for it
    m_isLoadingAuthorization = true;
    emit stateChanged();

    const HomebrewCacheBookmarkService::Restored restored = m_bookmarks.restoreRootURL();
    if (restored.error) {
        finishLoading(restored.error, description(*restored.error));
        return done();
    }
    if (!restored.path) {
        m_rootPath.reset();
        finishLoading(std::nullopt, QString());
        return done();
    }
    const QString path = *restored.path;
    if (!FolderBookmark::startAccess(path)) {
        finishLoading(HomebrewCacheBookmarkError::accessDenied, description(HomebrewCacheBookmarkError::accessDenied));
        return done();
    }
    m_loading = m_scanner.run([path](HomebrewCacheScanner& scanner) { return scanner.validateRoot(path); })
                    .then(this, [this, path](const std::optional<HomebrewCacheScanFailure>& failure) {
                        FolderBookmark::stopAccess(path);
                        if (failure) {
                            finishLoading(std::nullopt, failure->description);
                            return;
                        }
                        m_rootPath = standardizedPath(path);
                        finishLoading(std::nullopt, QString());
                    });
    return m_loading;
}

void HomebrewCacheCleanupStore::finishLoading(std::optional<HomebrewCacheBookmarkError> error,
                                              const QString& description)
{
    if (!description.isEmpty()) {
        m_rootPath.reset();
        m_errorMessage = description;
        // A dead bookmark would fail at every launch; anything else may pass next time.
        if (error == HomebrewCacheBookmarkError::couldNotResolveBookmark)
            m_bookmarks.clearRootURL();
        qCCritical(logApp).noquote() << "Homebrew cache bookmark restore failed:" << privateText(description);
    }
    m_isLoadingAuthorization = false;
    m_hasLoadedAuthorization = true;
    emit stateChanged();
}

QFuture<void> HomebrewCacheCleanupStore::loadAuthorizationAndScanIfNeeded()
{
    return loadAuthorization()
        .then(this,
              [this] {
                  if (m_rootPath && !m_hasScannedThisLaunch)
                      return scan();
                  return done();
              })
        .unwrap();
}

QFuture<void> HomebrewCacheCleanupStore::scan()
{
    if (m_isScanning || m_isCleaning || !m_rootPath)
        return done();
    m_isScanning = true;
    m_errorMessage.reset();
    setToast(std::nullopt);
    clearCollections();
    m_hasScannedThisLaunch = false;
    emit stateChanged();
    emit selectionChanged();

    const QString root = *m_rootPath;
    if (!FolderBookmark::startAccess(root)) {
        m_errorMessage = description(HomebrewCacheBookmarkError::accessDenied);
        m_isScanning = false;
        emit stateChanged();
        return done();
    }
    return m_scanner.run([root](HomebrewCacheScanner& scanner) { return scanner.scan(root); })
        .then(this, [this, root](HomebrewCacheScanResult result) {
            if (result.failure) {
                clearCollections();
                m_hasScannedThisLaunch = false;
                m_errorMessage = result.failure->description;
                qCCritical(logApp).noquote()
                    << "Homebrew cache scan failed:" << privateText(result.failure->description);
            } else {
                applyEntries(std::move(result.entries));
            }
            FolderBookmark::stopAccess(root);
            m_isScanning = false;
            emit stateChanged();
            emit selectionChanged();
        });
}

QFuture<void> HomebrewCacheCleanupStore::rescan()
{
    if (!m_rootPath || m_isScanning || m_isCleaning)
        return done();
    return scan().then(this, [this] {
        if (m_hasScannedThisLaunch)
            setToast(tr("Completed"));
    });
}

void HomebrewCacheCleanupStore::chooseRoot()
{
    if (m_isChoosingRoot || m_isScanning || m_isCleaning)
        return;
    m_isChoosingRoot = true;
    emit stateChanged();
    const Pickers::FolderRequest request {
        m_expectedRootPath, tr("Choose %1 to scan and clean its cache contents.").arg(displayPath()), tr("Choose")};
    QPointer<HomebrewCacheCleanupStore> self(this);
    m_services.pickers.chooseFolder(request, [self](std::optional<QString> path) {
        if (!self)
            return;
        const auto finish = [self] {
            if (!self)
                return;
            self->m_isChoosingRoot = false;
            emit self->stateChanged();
        };
        if (!path) {
            finish();
            return;
        }
        self->authorize(*path).then(self.data(), finish);
    });
}

QFuture<void> HomebrewCacheCleanupStore::authorize(const QString& path)
{
    if (m_isScanning || m_isCleaning)
        return done();
    m_isScanning = true;
    m_errorMessage.reset();
    setToast(std::nullopt);
    clearCollections();
    m_hasScannedThisLaunch = false;
    emit stateChanged();
    emit selectionChanged();

    if (!FolderBookmark::startAccess(path)) {
        m_errorMessage = description(HomebrewCacheBookmarkError::accessDenied);
        m_isScanning = false;
        emit stateChanged();
        return done();
    }
    // A folder is remembered only after a good scan of it.
    return m_scanner
        .run([path](HomebrewCacheScanner& scanner) {
            if (auto failure = scanner.validateRoot(path))
                return HomebrewCacheScanResult {{}, std::move(failure)};
            return scanner.scan(path);
        })
        .then(this, [this, path](HomebrewCacheScanResult result) {
            std::optional<QString> error;
            if (result.failure)
                error = result.failure->description;
            else if (const auto saveError = m_bookmarks.saveRootURL(path))
                error = description(*saveError);
            if (error) {
                clearCollections();
                m_hasScannedThisLaunch = false;
                m_errorMessage = error;
                qCCritical(logApp).noquote() << "Homebrew cache authorization failed:" << privateText(*error);
            } else {
                m_rootPath = standardizedPath(path);
                m_hasLoadedAuthorization = true;
                applyEntries(std::move(result.entries));
            }
            FolderBookmark::stopAccess(path);
            m_isScanning = false;
            emit stateChanged();
            emit selectionChanged();
        });
}

void HomebrewCacheCleanupStore::removeAuthorization()
{
    if (m_isScanning || m_isCleaning)
        return;
    m_bookmarks.clearRootURL();
    m_rootPath.reset();
    // Nothing is restored again in this launch.
    m_hasLoadedAuthorization = true;
    m_hasScannedThisLaunch = false;
    clearCollections();
    m_errorMessage.reset();
    setToast(std::nullopt);
    emit stateChanged();
    emit selectionChanged();
}

void HomebrewCacheCleanupStore::drain()
{
    m_cleaner.drain();
    m_scanner.drain();
}

void HomebrewCacheCleanupStore::applyEntries(std::vector<HomebrewCacheEntry> entries)
{
    m_entries = std::move(entries);
    m_entryIndexByID.clear();
    m_entryIndexByID.reserve(qsizetype(m_entries.size()));
    for (size_t i = 0; i < m_entries.size(); ++i) {
        if (m_entryIndexByID.contains(m_entries[i].id))
            qFatal("Two Homebrew cache entries share one id");
        m_entryIndexByID.insert(m_entries[i].id, qsizetype(i));
    }
    m_nodes = HomebrewCacheScanner::makeOutline(m_entries);
    // After every scan everything is selected.
    m_selectedEntryIDs.clear();
    for (const HomebrewCacheEntry& entry : m_entries)
        m_selectedEntryIDs.insert(entry.id);
    m_hasScannedThisLaunch = true;
    m_errorMessage.reset();
}

void HomebrewCacheCleanupStore::clearCollections()
{
    m_entries.clear();
    m_entryIndexByID.clear();
    m_nodes.clear();
    m_selectedEntryIDs.clear();
}

void HomebrewCacheCleanupStore::setToast(std::optional<QString> message)
{
    if (m_toastMessage == message)
        return;
    m_toastMessage = std::move(message);
    emit toastMessageChanged();
}

} // namespace quillbay
