#include "xcode_cleanup/FileMeasure.h"
#include "xcode_cleanup/XcodeFileManager.h"

namespace quillbay {

namespace {

// What removing the item frees: a folder's files, else the item's own blocks, else
// nothing. Links never reach here; the deletion counts them as 0 itself.
qint64 measureForDeletion(const QString& path)
{
    if (const std::optional<qint64> bytes = measureDirectory(path))
        return *bytes;
    return measureSingleItem(path).value_or(0);
}

} // namespace

void XcodeFileManager::computeDeletionRoots()
{
    m_builtInDeletionRoots = XcodeDeletion::builtInRoots(m_developerFolder);
    computeAuthorizedDeletionRoots();
}

void XcodeFileManager::computeAuthorizedDeletionRoots()
{
    // Every custom folder given counts, also one whose access did not open: deletion
    // there fails on its own, and the guard stays simple.
    m_authorizedDeletionRoots
        = XcodeDeletion::authorizedRoots(m_builtInDeletionRoots, m_customArchivesFolders, m_customDerivedDataFolders);
}

XcodeDeletionResult XcodeFileManager::deleteItems(const std::vector<XcodeFileProperties>& items) const
{
    XcodeDeletion deletion(m_authorizedDeletionRoots, &measureForDeletion);
    deletion.setBetweenChecksHook(m_deletionBetweenChecks);
    return deletion.run(XcodeDeletion::collectTargets(items));
}

} // namespace quillbay
