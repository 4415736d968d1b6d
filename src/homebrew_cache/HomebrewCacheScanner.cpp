#include "homebrew_cache/HomebrewCacheScanner.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <array>

#include "foundation/PathContainment.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheFolderSnapshot.h"
#include "homebrew_cache/HomebrewCacheKeyOrder.h"

namespace quillbay {

namespace {

using FS = HomebrewCacheFileSystem;

// One readable cache name that was understood: a link (or plain item) at the top level
// or in Cask/. The link is checked once the item's status is known.
struct ReferenceDraft
{
    const HomebrewCacheFolderSnapshot::Item* item;
    size_t mergedIndex; // its package and version in the merged table
    std::optional<QString> targetPath; // verified: an existing item inside downloads/
    QString cleanTarget;
    bool hasIssue = false;
};

// The references of one category, package and version, merged in reference order.
struct MergedDraft
{
    QString key;
    HomebrewCacheCategory category;
    QString packageIdentifier;
    QString version;
    QStringList paths;
    QStringList cleanPaths; // the same, standardized
    bool hasIssue = false;
};

// An entry before measuring.
struct EntryDraft
{
    QString id;
    HomebrewCacheCategory category;
    std::optional<QString> packageIdentifier;
    std::optional<QString> version;
    QString displayName;
    QStringList paths;
    bool hasIssue = false;
};

struct LinkCheck
{
    std::optional<QString> targetPath;
    QString cleanTarget;
    bool hasIssue = false;
};

QString localized(const char* text)
{
    return QCoreApplication::translate("HomebrewCache", text);
}

// Repeats by standardized path dropped; the first occurrence stays as it was given.
// `cleanPaths`, when given, holds the standardized form of each path.
QStringList withoutRepeats(const QStringList& paths, const QStringList* cleanPaths = nullptr)
{
    if (paths.size() < 2)
        return paths;
    const auto standardized
        = [&paths, cleanPaths](qsizetype i) { return cleanPaths ? cleanPaths->at(i) : FS::cleanPath(paths.at(i)); };
    // Nearly every entry has one or two paths, where a set costs more than comparing.
    constexpr qsizetype kFewPaths = 8;
    if (paths.size() <= kFewPaths) {
        std::array<QString, kFewPaths> clean;
        QStringList unique;
        qsizetype kept = 0;
        for (qsizetype i = 0; i < paths.size(); ++i) {
            QString path = standardized(i);
            if (std::find(clean.begin(), clean.begin() + kept, path) != clean.begin() + kept)
                continue;
            clean[size_t(kept++)] = std::move(path);
            unique.append(paths.at(i));
        }
        return kept == paths.size() ? paths : unique;
    }
    QSet<QString> seen;
    QStringList unique;
    unique.reserve(paths.size());
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString clean = standardized(i);
        if (!seen.contains(clean)) {
            seen.insert(clean);
            unique.append(paths.at(i));
        }
    }
    return unique;
}

QString childPath(const QString& folder, const QString& name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

class ScanRun
{
public:
    ScanRun(QString root, HomebrewCacheFolderSnapshot rootListing)
        : m_root(std::move(root))
        , m_resolvedRoot(resolvedPath(m_root))
        , m_downloads(childPath(m_root, QStringLiteral("downloads")))
        , m_cask(childPath(m_root, QStringLiteral("Cask")))
        , m_rootListing(std::move(rootListing))
    {
    }

    std::vector<HomebrewCacheEntry> run();

private:
    using Item = HomebrewCacheFolderSnapshot::Item;

    LinkCheck checkLink(const Item& item) const;
    bool isExistingDownload(const QString& destination, const QString& standardized) const;
    FS::Measurement measure(const QStringList& paths, FS::VisitedSet& visited) const;
    void addReference(HomebrewCacheCategory category, std::pair<QString, QString> parsed, const Item& item);
    void collectNames();
    std::vector<EntryDraft> drafts();

    QString m_root;
    QString m_resolvedRoot;
    QString m_downloads;
    QString m_cask;
    HomebrewCacheFolderSnapshot m_rootListing;
    std::optional<HomebrewCacheFolderSnapshot> m_caskListing;
    std::optional<HomebrewCacheFolderSnapshot> m_downloadsListing;
    bool m_caskIsReal = false;
    bool m_downloadsIsReal = false;
    std::vector<ReferenceDraft> m_references;
    std::vector<MergedDraft> m_merged;
    QHash<QString, size_t> m_mergedIndex;
    std::vector<const QString*> m_orderedKeys;
    QSet<QString> m_claimedTopLevel;
    QStringList m_unrecognizedCask;
    bool m_caskListingFailed = false;
};

// The destination is inside the cache once links are resolved, lies lexically in
// downloads/, and exists.
bool ScanRun::isExistingDownload(const QString& destination, const QString& standardized) const
{
    if (!isPathInside(standardized, m_downloads))
        return false;
    // Most links name a plain file right in downloads/: what the listing saw answers all
    // three questions without asking the disk again.
    if (m_downloadsListing && standardized.size() > m_downloads.size() + 1
        && standardized.indexOf(QLatin1Char('/'), m_downloads.size() + 1) < 0) {
        const Item* target = m_downloadsListing->find(standardized);
        if (target && target->hasStatus && !S_ISLNK(target->status.st_mode))
            return true;
    }
    return isPathInside(resolvedPath(standardized), m_resolvedRoot) && FS::fileExists(destination);
}

// A plain item (or one that can't be examined) has no target and no issue; a link must
// lead to an existing item inside downloads/ of this very cache.
LinkCheck ScanRun::checkLink(const Item& item) const
{
    if (!item.hasStatus || !S_ISLNK(item.status.st_mode))
        return {};
    if (!item.linkDestination)
        return {std::nullopt, {}, true};
    QString standardized = FS::cleanPath(*item.linkDestination);
    if (isExistingDownload(*item.linkDestination, standardized))
        return {item.linkDestination, std::move(standardized), false};
    return {std::nullopt, {}, true};
}

FS::Measurement ScanRun::measure(const QStringList& paths, FS::VisitedSet& visited) const
{
    FS::Measurement total;
    for (const QString& path : paths) {
        std::optional<FS::Measurement> one;
        // Listing paths are clean, so a path found as it stands in the listing of the
        // folder it starts with is that item; anything else is cleaned and looked up by
        // its parent folder.
        const auto startsIn = [&path](const QString& folder) {
            return path.size() > folder.size() + 1 && path.at(folder.size()) == u'/' && path.startsWith(folder);
        };
        const HomebrewCacheFolderSnapshot* listing = startsIn(m_downloads) && m_downloadsListing ? &*m_downloadsListing
            : startsIn(m_cask) && m_caskListing                                                  ? &*m_caskListing
                                                                                                 : &m_rootListing;
        const Item* item = listing->find(path);
        if (!item) {
            const QString clean = FS::cleanPath(path);
            const QStringView parent
                = QStringView(clean).left(std::max<qsizetype>(0, clean.lastIndexOf(QLatin1Char('/'))));
            listing = nullptr;
            if (parent == m_root)
                listing = &m_rootListing;
            else if (parent == m_downloads && m_downloadsListing)
                listing = &*m_downloadsListing;
            else if (parent == m_cask && m_caskListing)
                listing = &*m_caskListing;
            item = listing ? listing->find(clean) : nullptr;
        }
        if (item && item->hasStatus)
            one = listing->measure(*item, visited);
        else
            one = FS::measure(path, visited);
        if (!one) {
            total.hasIssue = true;
            continue;
        }
        if (__builtin_add_overflow(total.allocatedSize, one->allocatedSize, &total.allocatedSize))
            qFatal("Homebrew cache size overflow");
        total.isIncomplete = total.isIncomplete || one->isIncomplete;
        total.hasIssue = total.hasIssue || one->hasIssue;
    }
    return total;
}

void ScanRun::addReference(HomebrewCacheCategory category, std::pair<QString, QString> parsed, const Item& item)
{
    // The merge key joins category, package and version; the first reference of a key
    // gives the merged draft its package and version.
    QString key = rawValue(category) + u':' + parsed.first + u':' + parsed.second;
    const auto found = m_mergedIndex.constFind(key);
    size_t slot = m_merged.size();
    if (found == m_mergedIndex.cend()) {
        m_mergedIndex.insert(key, slot);
        m_merged.push_back(
            MergedDraft {std::move(key), category, std::move(parsed.first), std::move(parsed.second), {}, {}, false});
    } else {
        slot = *found;
    }
    m_references.push_back(ReferenceDraft {&item, slot, std::nullopt, {}, false});
}

// Everything that depends on names alone: which items are references of which package
// and version, and the order of the packages. Runs while the items are being examined,
// so it touches no status.
void ScanRun::collectNames()
{
    for (const Item& item : m_rootListing.items()) {
        if (item.name == QLatin1StringView("downloads") || item.name == QLatin1StringView("Cask"))
            continue;
        // Only formula links live at the top level: a cask link lying here counts as one.
        auto parsed = HomebrewCacheScanner::parseCacheName(item.name, false);
        if (!parsed)
            continue;
        addReference(HomebrewCacheCategory::formula, std::move(*parsed), item);
        m_claimedTopLevel.insert(item.path); // listing paths are clean
    }
    if (m_caskIsReal && !m_caskListing) {
        // Nothing inside can be told apart; the folder goes as one unrecognized item.
        m_unrecognizedCask = {m_cask};
        m_caskListingFailed = true;
    } else if (m_caskIsReal) {
        for (const Item& item : m_caskListing->items()) {
            auto parsed = HomebrewCacheScanner::parseCacheName(item.name, true);
            if (parsed)
                addReference(HomebrewCacheCategory::cask, std::move(*parsed), item);
            else
                m_unrecognizedCask.append(item.path);
        }
    }
    m_orderedKeys.reserve(m_merged.size());
    for (const MergedDraft& merged : m_merged)
        m_orderedKeys.push_back(&merged.key);
    sortInStandardOrder(m_orderedKeys);
}

std::vector<EntryDraft> ScanRun::drafts()
{
    // A download that exactly one reference points at belongs to it; one that several
    // point at belongs to none of them, so that deleting one version never takes a file
    // another still uses.
    QHash<QString, int> targetCounts;
    for (ReferenceDraft& reference : m_references) {
        LinkCheck link = checkLink(*reference.item);
        reference.targetPath = std::move(link.targetPath);
        reference.cleanTarget = std::move(link.cleanTarget);
        reference.hasIssue = link.hasIssue;
        if (reference.targetPath)
            ++targetCounts[reference.cleanTarget];
    }
    QSet<QString> claimedTargets;
    QStringList sharedTargets;
    for (const ReferenceDraft& reference : m_references) {
        MergedDraft& merged = m_merged[reference.mergedIndex];
        merged.paths.append(reference.item->path);
        merged.cleanPaths.append(reference.item->path); // listing paths are clean
        if (reference.targetPath) {
            if (targetCounts.value(reference.cleanTarget) == 1) {
                merged.paths.append(*reference.targetPath);
                merged.cleanPaths.append(reference.cleanTarget);
                claimedTargets.insert(reference.cleanTarget);
            } else {
                sharedTargets.append(*reference.targetPath);
            }
        }
        merged.hasIssue = merged.hasIssue || reference.hasIssue;
    }

    std::vector<EntryDraft> drafts;
    drafts.reserve(m_orderedKeys.size() + 4);
    for (const QString* key : m_orderedKeys) {
        const MergedDraft& merged = m_merged[*m_mergedIndex.constFind(*key)];
        drafts.push_back(EntryDraft {QStringLiteral("package:") + *key, merged.category, merged.packageIdentifier,
                                     merged.version, merged.packageIdentifier,
                                     withoutRepeats(merged.paths, &merged.cleanPaths), merged.hasIssue});
    }

    const QStringList shared = withoutRepeats(sharedTargets);
    QSet<QString> sharedPaths;
    for (const QString& path : shared)
        sharedPaths.insert(FS::cleanPath(path));
    if (!shared.isEmpty()) {
        drafts.push_back(EntryDraft {QStringLiteral("other:shared-downloads"), HomebrewCacheCategory::other,
                                     std::nullopt, std::nullopt, localized("Shared Downloads"), shared, false});
    }

    if (m_downloadsIsReal) {
        const QString id = QStringLiteral("other:unrecognized-downloads");
        const QString title = localized("Unrecognized Downloads");
        if (m_downloadsListing) {
            QStringList unclaimed;
            for (const Item& item : m_downloadsListing->items()) {
                if (!claimedTargets.contains(item.path) && !sharedPaths.contains(item.path))
                    unclaimed.append(item.path);
            }
            if (!unclaimed.isEmpty()) {
                drafts.push_back(EntryDraft {id, HomebrewCacheCategory::other, std::nullopt, std::nullopt, title,
                                             withoutRepeats(unclaimed), false});
            }
        } else {
            drafts.push_back(
                EntryDraft {id, HomebrewCacheCategory::other, std::nullopt, std::nullopt, title, {m_downloads}, true});
        }
    }

    if (!m_unrecognizedCask.isEmpty()) {
        drafts.push_back(EntryDraft {QStringLiteral("other:unrecognized-cask"), HomebrewCacheCategory::other,
                                     std::nullopt, std::nullopt, localized("Unrecognized Cask Cache"),
                                     withoutRepeats(m_unrecognizedCask), m_caskListingFailed});
    }

    // Everything else at the top level stands on its own. A "downloads" or "Cask" that is
    // a link or a plain file is such an item too, with nothing under it classified.
    for (const Item& item : m_rootListing.items()) {
        const QString& standardized = item.path;
        if (m_claimedTopLevel.contains(standardized))
            continue;
        if ((item.name == QLatin1StringView("downloads") && m_downloadsIsReal)
            || (item.name == QLatin1StringView("Cask") && m_caskIsReal))
            continue;
        drafts.push_back(EntryDraft {QStringLiteral("other:path:") + standardized,
                                     HomebrewCacheCategory::other,
                                     std::nullopt,
                                     std::nullopt,
                                     item.name,
                                     {item.path},
                                     false});
    }
    return drafts;
}

std::vector<HomebrewCacheEntry> ScanRun::run()
{
    m_caskIsReal = FS::isRealDirectory(m_cask);
    if (m_caskIsReal)
        m_caskListing = HomebrewCacheFolderSnapshot::list(m_cask);
    m_downloadsIsReal = FS::isRealDirectory(m_downloads);
    if (m_downloadsIsReal)
        m_downloadsListing = HomebrewCacheFolderSnapshot::list(m_downloads);
    HomebrewCacheFolderSnapshot::examine({&m_rootListing, m_caskListing ? &*m_caskListing : nullptr,
                                          m_downloadsListing ? &*m_downloadsListing : nullptr},
                                         [this] { collectNames(); });

    const std::vector<EntryDraft> all = drafts();
    // One visited set for the whole scan, in draft order: a file reachable from two
    // entries counts for the first of them only.
    FS::VisitedSet visited;
    std::vector<HomebrewCacheEntry> entries;
    entries.reserve(all.size());
    for (const EntryDraft& draft : all) {
        const FS::Measurement measured = measure(draft.paths, visited);
        std::optional<qint64> size = measured.allocatedSize;
        if (measured.allocatedSize == 0 && measured.hasIssue)
            size.reset();
        entries.push_back(HomebrewCacheEntry {draft.id, draft.category, draft.packageIdentifier, draft.version,
                                              draft.displayName, draft.paths, size, measured.isIncomplete,
                                              draft.hasIssue || measured.hasIssue});
    }
    return entries;
}

} // namespace

HomebrewCacheScanResult HomebrewCacheScanner::scan(const QString& rootPath) const
{
    if (auto failure = validateRoot(rootPath))
        return {{}, std::move(failure)};
    const QString root = FS::cleanPath(rootPath);
    QString listingError;
    auto rootListing = HomebrewCacheFolderSnapshot::list(root, &listingError);
    if (!rootListing) {
        return {{},
                HomebrewCacheScanFailure {
                    std::nullopt,
                    QCoreApplication::translate("HomebrewCache", "The folder “%1” couldn’t be opened. %2")
                        .arg(root.section(QLatin1Char('/'), -1), listingError)}};
    }
    return {ScanRun(root, std::move(*rootListing)).run(), std::nullopt};
}

} // namespace quillbay
