#include <QDateTime>

#include "core/state/SavedSpaceStore.h"
#include "foundation/ByteCount.h"
#include "foundation/Defaults.h"
#include "foundation/Log.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "platform/FolderBookmark.h"

// The deletion half of the store: selection, the "Don't ask again" choice and clean().

namespace quillbay {

namespace {

QFuture<void> done()
{
    return QtFuture::makeReadyFuture();
}

} // namespace

QFuture<void> HomebrewCacheCleanupStore::clean()
{
    if (!m_rootPath || !canClean())
        return done();
    std::vector<HomebrewCacheEntry> selected;
    for (const QString& id : std::as_const(m_selectedEntryIDs)) {
        const auto found = m_entryIndexByID.constFind(id);
        if (found != m_entryIndexByID.cend())
            selected.push_back(m_entries[size_t(*found)]);
    }
    if (selected.empty())
        return done();
    // The empty containers go only when the user selected everything.
    const bool removeEmptyContainers = size_t(m_selectedEntryIDs.size()) == m_entries.size();
    m_isCleaning = true;
    m_errorMessage.reset();
    setToast(std::nullopt);
    emit stateChanged();

    const QString root = *m_rootPath;
    if (!FolderBookmark::startAccess(root)) {
        m_errorMessage = description(HomebrewCacheBookmarkError::accessDenied);
        m_isCleaning = false;
        emit stateChanged();
        return done();
    }
    return m_cleaner
        .run([selected = std::move(selected), root, removeEmptyContainers](HomebrewCacheCleaner& cleaner) {
            return cleaner.deleteEntries(selected, root, removeEmptyContainers);
        })
        .then(this,
              [this, root](const HomebrewCacheCleaner::Result& result) {
                  m_services.savedSpaceStore.add(result.reclaimedSize);
                  const QString reclaimed = formatByteCount(result.reclaimedSize);
                  if (result.failedEntryCount == 0)
                      setToast(tr("Cleanup completed. Space reclaimed: %1.").arg(reclaimed));
                  else if (result.deletedEntryCount >= 1)
                      setToast(tr("Cleanup partially completed. Space reclaimed: %1. Some selected items could not "
                                  "be deleted.")
                                   .arg(reclaimed));
                  else
                      setToast(tr("Cleanup failed. The selected items could not be deleted."));
                  for (const HomebrewCacheCleaner::Failure& failure : result.failures) {
                      qCCritical(logApp).noquote()
                          << "Homebrew cache item could not be deleted:"
                          << privateText(failure.itemName + QStringLiteral(": ") + failure.message);
                  }
                  // A partial result does not count as a success.
                  if (result.deletedEntryCount >= 1 && result.failedEntryCount == 0
                      && m_services.recordSuccessfulAction)
                      m_services.recordSuccessfulAction(QDateTime::currentDateTime());
                  // Whatever happened, show what is left.
                  return m_scanner.run([root](HomebrewCacheScanner& scanner) { return scanner.scan(root); });
              })
        .unwrap()
        .then(this, [this, root](HomebrewCacheScanResult rescanned) {
            if (rescanned.failure) {
                clearCollections();
                m_hasScannedThisLaunch = false;
                m_errorMessage = rescanned.failure->description;
                qCCritical(logApp).noquote()
                    << "Homebrew cache rescan after deletion failed:" << privateText(rescanned.failure->description);
            } else {
                applyEntries(std::move(rescanned.entries));
            }
            FolderBookmark::stopAccess(root);
            m_isCleaning = false;
            emit stateChanged();
            emit selectionChanged();
        });
}

HomebrewCacheCleanupStore::DeleteRequest HomebrewCacheCleanupStore::requestDelete()
{
    if (!canClean())
        return DeleteRequest::ignored;
    if (!suppressDeleteWarningAlert())
        return DeleteRequest::confirmation;
    clean();
    return DeleteRequest::started;
}

void HomebrewCacheCleanupStore::clearToast()
{
    setToast(std::nullopt);
}

void HomebrewCacheCleanupStore::setSelected(const QString& id, bool value)
{
    setSelected(QStringList {id}, value);
}

void HomebrewCacheCleanupStore::setSelected(const QStringList& ids, bool value)
{
    bool changed = false;
    for (const QString& id : ids) {
        if (!m_entryIndexByID.contains(id))
            continue;
        if (value && !m_selectedEntryIDs.contains(id)) {
            m_selectedEntryIDs.insert(id);
            changed = true;
        } else if (!value && m_selectedEntryIDs.remove(id)) {
            changed = true;
        }
    }
    if (changed)
        emit selectionChanged();
}

void HomebrewCacheCleanupStore::selectAll()
{
    m_selectedEntryIDs.clear();
    for (const HomebrewCacheEntry& entry : m_entries)
        m_selectedEntryIDs.insert(entry.id);
    emit selectionChanged();
}

void HomebrewCacheCleanupStore::deselectAll()
{
    m_selectedEntryIDs.clear();
    emit selectionChanged();
}

bool HomebrewCacheCleanupStore::suppressDeleteWarningAlert() const
{
    return m_services.defaults.boolValue(QLatin1String(suppressDeleteWarningAlertKey), false);
}

void HomebrewCacheCleanupStore::setSuppressDeleteWarningAlert(bool value)
{
    m_services.defaults.setValue(QLatin1String(suppressDeleteWarningAlertKey), value);
}

} // namespace quillbay
