#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace quillbay {

// Declaration order is the order of the outline's top level.
enum class HomebrewCacheCategory {
    formula,
    cask,
    other,
};

QString rawValue(HomebrewCacheCategory category);

// One row that can be selected and deleted. The id depends only on names and paths, so an
// entry keeps it across scans for as long as its items exist.
struct HomebrewCacheEntry
{
    QString id;
    HomebrewCacheCategory category = HomebrewCacheCategory::other;
    std::optional<QString> packageIdentifier; // formula name or cask token; absent on other
    std::optional<QString> version; // cleaned version; absent on other
    QString displayName;
    QStringList paths; // everything deleted with this entry, no standardized path twice
    // Bytes on disk; absent only when nothing was measured because measuring failed.
    std::optional<qint64> allocatedSize;
    bool isIncomplete = false;
    bool hasIssue = false;

    friend bool operator==(const HomebrewCacheEntry&, const HomebrewCacheEntry&) = default;
};

// A row of the outline: a category, a package, or a leaf standing for one entry.
struct HomebrewCacheNode
{
    QString id;
    QString title;
    std::optional<qint64> allocatedSize;
    QStringList entryIDs; // every entry at or under this node
    // Absent on a leaf; a leaf is never an empty folder.
    std::optional<std::vector<HomebrewCacheNode>> children;

    friend bool operator==(const HomebrewCacheNode&, const HomebrewCacheNode&) = default;
};

} // namespace quillbay
