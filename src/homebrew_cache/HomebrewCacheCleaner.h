#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"

namespace quillbay {

// Deletes the items of selected cache entries, and nothing outside the cache. The scan may
// be minutes old and Homebrew may have run since, so nothing in the entries is trusted:
// the root is checked once per call, each path again right before its removal, and the
// removal itself walks down from the root by folder descriptors without following links,
// so a folder swapped for a link after the checks still cannot lead it out.
// Calls run one at a time, off the UI thread.
class HomebrewCacheCleaner
{
public:
    struct Failure
    {
        QString itemName;
        QString message;
        friend bool operator==(const Failure&, const Failure&) = default;
    };

    struct Result
    {
        int deletedEntryCount = 0; // entries with paths, none of them left on disk
        int failedEntryCount = 0; // all other entries
        qint64 reclaimedSize = 0; // measured on what this call really removed
        std::vector<Failure> failures;
    };

    HomebrewCacheCleaner(QString expectedRootPath, QString displayPath);

    static QString outsideRootMessage();

    // Never fails as a whole; every path that could not go is one failure, in order.
    // The caller holds access to the root for the length of the call.
    Result
    deleteEntries(const std::vector<HomebrewCacheEntry>& entries, const QString& rootPath, bool removeEmptyContainers);

    // For tests only: runs for each path after its checks passed and before it is
    // measured and removed, which is where a hostile change would have to happen.
    void setBeforeRemovalForTesting(std::function<void(const QString& path)> hook)
    {
        m_beforeRemoval = std::move(hook);
    }

private:
    QString m_expectedRootPath;
    QString m_invalidRootMessage;
    std::function<void(const QString&)> m_beforeRemoval;
};

} // namespace quillbay
