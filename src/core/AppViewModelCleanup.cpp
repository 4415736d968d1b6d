// The Xcode cleanup workflow: scanning location by location, the selection, and the
// clean with its saved-space total, outcome message and engagement signal.

#include <QThread>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/ByteCount.h"
#include "foundation/SerialExecutor.h"
#include "platform/Workspace.h"
#include "xcode_cleanup/XcodeFileManager.h"

namespace quillbay {

namespace {

bool nodeHasContent(const XcodeFileProperties& node)
{
    if (!node.paths.isEmpty())
        return true;
    if (!node.children)
        return false;
    for (const XcodeFileProperties& child : *node.children) {
        if (nodeHasContent(child))
            return true;
    }
    return false;
}

constexpr int kLocationCount = static_cast<int>(Location::userDataPreview) + 1;

} // namespace

void AppViewModel::setScanning(bool value)
{
    if (m_scanning == value)
        return;
    m_scanning = value;
    emit cleanupStateChanged();
}

void AppViewModel::setCleaning(bool value)
{
    if (m_cleaning == value)
        return;
    m_cleaning = value;
    emit cleanupStateChanged();
}

void AppViewModel::setLocalFiles(std::vector<XcodeFileProperties> files)
{
    m_localFiles = std::move(files);
    emit localFilesChanged();
}

bool AppViewModel::hasContent() const
{
    for (const XcodeFileProperties& row : m_localFiles) {
        if (nodeHasContent(row))
            return true;
    }
    return false;
}

bool AppViewModel::isXcodeRunning() const
{
    return m_workspace && m_workspace->runningApplicationIdentifiers().contains(QLatin1String(xcodeBundleIdentifier));
}

void AppViewModel::startInitialScan()
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning)
        return;
    if (m_fileManager) {
        setScanning(true);
        performScan(m_fileManager);
        return;
    }
    requestDeveloperFolderAuthorization(true);
}

void AppViewModel::rescan()
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning || !m_fileManager)
        return;
    clearToast();
    setScanning(true);
    m_toastAfterScan = true;
    performScan(m_fileManager);
}

// Continuations hold the manager weakly: the last strong reference must be dropped on this
// thread, never inside a finished future on the manager's own worker, whose executor would
// then wait for itself.
void AppViewModel::performScan(const std::shared_ptr<FileManagerExecutor>& manager)
{
    Q_ASSERT(m_scanning);
    setLocalFiles({});
    m_totalSize = 0;
    m_selectedSize = 0;
    m_disableClean = true;
    emit cleanupStateChanged();
    emit selectionChanged();
    manager->run([](XcodeFileManager& fileManager) { return fileManager.prepareLocations(); })
        .then(this, [this, weak = std::weak_ptr(manager)](std::vector<XcodeFileProperties> rows) {
            // The six names show at once, without sizes, while the first location scans.
            setLocalFiles(std::move(rows));
            scanNextLocation(weak, 0);
        });
}

void AppViewModel::scanNextLocation(const std::weak_ptr<FileManagerExecutor>& weak, int location)
{
    const std::shared_ptr<FileManagerExecutor> manager = weak.lock();
    if (!manager) {
        setScanning(false);
        return;
    }
    if (location >= kLocationCount) {
        finishScan(*manager);
        return;
    }
    manager
        ->run([location](XcodeFileManager& fileManager) {
            fileManager.scan(static_cast<Location>(location));
            return fileManager.locationFiles();
        })
        .then(this, [this, weak, location](std::vector<XcodeFileProperties> rows) {
            // Every rebuild replaces all rows, so a check mark set mid-scan does not survive
            // the next location; selection is meant for a finished tree.
            setLocalFiles(std::move(rows));
            scanNextLocation(weak, location + 1);
        });
}

void AppViewModel::finishScan(FileManagerExecutor& manager)
{
    manager.run([](XcodeFileManager& fileManager) { return fileManager.totalSize(); }).then(this, [this](qint64 total) {
        if (total != m_totalSize)
            m_totalSize = total;
        setScanning(false);
        emit cleanupStateChanged();
        if (std::exchange(m_toastAfterScan, false))
            setToast(QStringLiteral("Completed"));
    });
}

bool AppViewModel::isSelected(const QUuid& id) const
{
    for (const XcodeFileProperties& row : m_localFiles) {
        if (const std::optional<bool> answer = row.selection(id))
            return *answer;
    }
    return false;
}

void AppViewModel::setSelected(const QUuid& id, bool value)
{
    for (XcodeFileProperties& row : m_localFiles) {
        if (row.setSelected(id, value))
            break;
    }
    refreshSelectionState();
}

void AppViewModel::selectAll(bool value)
{
    for (XcodeFileProperties& row : m_localFiles)
        row.setSelected(row.id, value);
    refreshSelectionState();
}

void AppViewModel::refreshSelectionState()
{
    bool anySelection = false;
    qint64 selected = 0;
    for (const XcodeFileProperties& row : m_localFiles) {
        anySelection = anySelection || row.hasSelection();
        if (__builtin_add_overflow(selected, row.selectedSize(), &selected))
            qFatal("selected size overflowed");
    }
    m_disableClean = !anySelection;
    if (selected != m_selectedSize)
        m_selectedSize = selected;
    emit selectionChanged();
    emit cleanupStateChanged();
}

void AppViewModel::clean()
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning || !m_fileManager)
        return;
    setCleaning(true);
    m_fileManager->run([items = m_localFiles](XcodeFileManager& fileManager) { return fileManager.deleteItems(items); })
        .then(this, [this, weak = std::weak_ptr(m_fileManager)](XcodeDeletionResult result) {
            // A partial run counts: whatever went is space the user got back.
            m_savedSpaceStore.add(result.reclaimedSize);
            m_selectedSize = 0;
            m_disableClean = true;
            m_cleaning = false;
            emit selectionChanged();
            emit cleanupStateChanged();
            QString message;
            if (result.failedItemCount == 0) {
                message = QStringLiteral("Completed");
                // A run whose targets were all gone already did nothing worth counting.
                if (result.deletedItemCount >= 1)
                    emit successfulActionCompleted(QDateTime::currentDateTime());
            } else if (result.deletedItemCount >= 1) {
                message = QStringLiteral("Cleanup partially completed. Space reclaimed: ")
                    + formatByteCount(result.reclaimedSize)
                    + QStringLiteral(". Some selected items could not be deleted.");
            } else {
                message = QStringLiteral("Cleanup failed. The selected items could not be deleted.");
            }
            setToast(message);
            if (const std::shared_ptr<FileManagerExecutor> manager = weak.lock()) {
                setScanning(true);
                performScan(manager);
            }
        });
}

} // namespace quillbay
