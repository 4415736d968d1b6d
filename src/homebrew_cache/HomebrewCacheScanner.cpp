#include "homebrew_cache/HomebrewCacheScanner.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>

#include <unistd.h>

#include "foundation/LocalizedText.h"
#include "foundation/PathContainment.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheFolderSnapshot.h"

namespace quillbay {

namespace {

using FS = HomebrewCacheFileSystem;

// One readable cache link (or plain item with a package name) that was understood.
struct ReferenceDraft
{
    HomebrewCacheCategory category;
    QString packageIdentifier;
    QString version;
    QStringList paths;
    std::optional<QString> targetPath; // verified: an existing item inside downloads/
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
    bool hasIssue = false;
};

QString localized(const char* text)
{
    return QCoreApplication::translate("HomebrewCache", text);
}

// Repeats by standardized path dropped; the first occurrence stays as it was given.
QStringList withoutRepeats(const QStringList& paths)
{
    QSet<QString> seen;
    QStringList unique;
    unique.reserve(paths.size());
    for (const QString& path : paths) {
        const QString clean = FS::cleanPath(path);
        if (!seen.contains(clean)) {
            seen.insert(clean);
            unique.append(path);
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
    bool isExistingDownload(const QString& destination) const;
    FS::Measurement measure(const QStringList& paths, FS::VisitedSet& visited) const;
    void collectTopLevel();
    void collectCask();
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
    QSet<QString> m_claimedTopLevel;
    QStringList m_unrecognizedCask;
    bool m_caskListingFailed = false;
};

// The destination is inside the cache once links are resolved, lies lexically in
// downloads/, and exists.
bool ScanRun::isExistingDownload(const QString& destination) const
{
    const QString standardized = FS::cleanPath(destination);
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
        return {std::nullopt, true};
    if (isExistingDownload(*item.linkDestination))
        return {item.linkDestination, false};
    return {std::nullopt, true};
}

FS::Measurement ScanRun::measure(const QStringList& paths, FS::VisitedSet& visited) const
{
    FS::Measurement total;
    for (const QString& path : paths) {
        std::optional<FS::Measurement> one;
        const QString clean = FS::cleanPath(path);
        const QStringView parent = QStringView(clean).left(std::max<qsizetype>(0, clean.lastIndexOf(QLatin1Char('/'))));
        const HomebrewCacheFolderSnapshot* listing = nullptr;
        if (parent == m_root)
            listing = &m_rootListing;
        else if (parent == m_downloads && m_downloadsListing)
            listing = &*m_downloadsListing;
        else if (parent == m_cask && m_caskListing)
            listing = &*m_caskListing;
        const Item* item = listing ? listing->find(clean) : nullptr;
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

void ScanRun::collectTopLevel()
{
    for (const Item& item : m_rootListing.items()) {
        if (item.name == QLatin1StringView("downloads") || item.name == QLatin1StringView("Cask"))
            continue;
        // Only formula links live at the top level: a cask link lying here counts as one.
        const auto parsed = HomebrewCacheScanner::parseCacheName(item.name, false);
        if (!parsed)
            continue;
        const LinkCheck link = checkLink(item);
        m_references.push_back(ReferenceDraft {HomebrewCacheCategory::formula,
                                               parsed->first,
                                               parsed->second,
                                               {item.path},
                                               link.targetPath,
                                               link.hasIssue});
        m_claimedTopLevel.insert(item.path); // listing paths are clean
    }
}

void ScanRun::collectCask()
{
    if (!m_caskIsReal)
        return;
    if (!m_caskListing) {
        // Nothing inside can be told apart; the folder goes as one unrecognized item.
        m_unrecognizedCask = {m_cask};
        m_caskListingFailed = true;
        return;
    }
    for (const Item& item : m_caskListing->items()) {
        const auto parsed = HomebrewCacheScanner::parseCacheName(item.name, true);
        if (!parsed) {
            m_unrecognizedCask.append(item.path);
            continue;
        }
        const LinkCheck link = checkLink(item);
        m_references.push_back(ReferenceDraft {
            HomebrewCacheCategory::cask, parsed->first, parsed->second, {item.path}, link.targetPath, link.hasIssue});
    }
}

std::vector<EntryDraft> ScanRun::drafts()
{
    collectTopLevel();
    collectCask();

    // A download that exactly one reference points at belongs to it; one that several
    // point at belongs to none of them, so that deleting one version never takes a file
    // another still uses.
    QHash<QString, int> targetCounts;
    for (const ReferenceDraft& reference : m_references) {
        if (reference.targetPath)
            ++targetCounts[FS::cleanPath(*reference.targetPath)];
    }
    QSet<QString> claimedTargets;
    QStringList sharedTargets;
    QHash<QString, ReferenceDraft> merged;
    for (ReferenceDraft& reference : m_references) {
        if (reference.targetPath) {
            const QString target = FS::cleanPath(*reference.targetPath);
            if (targetCounts.value(target) == 1) {
                reference.paths.append(*reference.targetPath);
                claimedTargets.insert(target);
            } else {
                sharedTargets.append(*reference.targetPath);
            }
        }
        const QString key = rawValue(reference.category) + QLatin1Char(':') + reference.packageIdentifier
            + QLatin1Char(':') + reference.version;
        const auto found = merged.find(key);
        if (found == merged.end()) {
            merged.insert(key, std::move(reference));
        } else {
            found->paths.append(reference.paths);
            found->hasIssue = found->hasIssue || reference.hasIssue;
        }
    }

    // Keys are unique, so no tie needs a stable order. Sort keys make the thousands of
    // comparisons byte comparisons.
    QCollator& collator = standardCollator();
    std::vector<std::pair<QCollatorSortKey, const QString*>> ordered;
    ordered.reserve(size_t(merged.size()));
    for (auto it = merged.cbegin(); it != merged.cend(); ++it)
        ordered.emplace_back(collator.sortKey(it.key()), &it.key());
    std::sort(ordered.begin(), ordered.end(),
              [](const auto& a, const auto& b) { return a.first.compare(b.first) < 0; });

    std::vector<EntryDraft> drafts;
    drafts.reserve(ordered.size() + 4);
    for (const auto& [sortKey, key] : ordered) {
        const ReferenceDraft& reference = merged.value(*key);
        drafts.push_back(EntryDraft {QStringLiteral("package:") + *key, reference.category, reference.packageIdentifier,
                                     reference.version, reference.packageIdentifier, withoutRepeats(reference.paths),
                                     reference.hasIssue});
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
                                          m_downloadsListing ? &*m_downloadsListing : nullptr});

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

HomebrewCacheScanner::HomebrewCacheScanner(QString expectedRootPath, QString displayPath)
    : m_expectedRootPath(std::move(expectedRootPath))
    , m_displayPath(std::move(displayPath))
{
}

QString HomebrewCacheScanner::description(HomebrewCacheScannerError error) const
{
    switch (error) {
    case HomebrewCacheScannerError::invalidRoot:
        return QCoreApplication::translate("HomebrewCache", "Choose the default Homebrew cache folder at %1.")
            .arg(m_displayPath);
    case HomebrewCacheScannerError::rootIsNotAccessible:
        break;
    }
    return QCoreApplication::translate("HomebrewCache",
                                       "The selected Homebrew cache folder must be readable and writable.");
}

std::optional<HomebrewCacheScanFailure> HomebrewCacheScanner::validateRoot(const QString& rootPath) const
{
    const auto fail = [this](HomebrewCacheScannerError error) {
        return std::optional {HomebrewCacheScanFailure {error, description(error)}};
    };
    // Exactly the expected folder: not a parent, not a child, not a look-alike elsewhere.
    if (FS::cleanPath(rootPath) != FS::cleanPath(m_expectedRootPath))
        return fail(HomebrewCacheScannerError::invalidRoot);
    const QByteArray native = QFile::encodeName(rootPath);
    struct stat followed
    {
    };
    if (::stat(native.constData(), &followed) != 0 || !S_ISDIR(followed.st_mode))
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    // A cache folder that is a link could lead anywhere.
    if (FS::isSymbolicLink(rootPath))
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    if (::access(native.constData(), R_OK) != 0 || ::access(native.constData(), W_OK) != 0)
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    return std::nullopt;
}

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
