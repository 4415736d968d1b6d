#include "homebrew_cache/HomebrewCacheScanner.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <map>

#include <unistd.h>

#include "foundation/LocalizedText.h"
#include "foundation/PathContainment.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"

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
        if (!seen.contains(standardizedPath(path))) {
            seen.insert(standardizedPath(path));
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
    explicit ScanRun(QString root)
        : m_root(std::move(root))
        , m_resolvedRoot(resolvedPath(m_root))
        , m_downloads(childPath(m_root, QStringLiteral("downloads")))
        , m_cask(childPath(m_root, QStringLiteral("Cask")))
    {
    }

    std::vector<HomebrewCacheEntry> run(const QStringList& rootNames);

private:
    // A plain item (or one that can't be examined) has no target and no issue; a link must
    // lead to an existing item inside downloads/ of this very cache.
    LinkCheck checkLink(const QString& item) const
    {
        const auto st = FS::fileStatus(item);
        if (!st || !S_ISLNK(st->st_mode))
            return {};
        const auto destination = FS::symbolicLinkDestination(item);
        if (!destination)
            return {std::nullopt, true};
        const bool valid = isPathInside(resolvedPath(standardizedPath(*destination)), m_resolvedRoot)
            && FS::isInside(*destination, m_downloads, false) && FS::fileExists(*destination);
        return valid ? LinkCheck {destination, false} : LinkCheck {std::nullopt, true};
    }

    void collectTopLevel(const QStringList& rootNames);
    void collectCask();
    std::vector<EntryDraft> drafts(const QStringList& rootNames);

    QString m_root;
    QString m_resolvedRoot;
    QString m_downloads;
    QString m_cask;
    std::vector<ReferenceDraft> m_references;
    QSet<QString> m_claimedTopLevel;
    QStringList m_unrecognizedCask;
    bool m_caskListingFailed = false;
};

void ScanRun::collectTopLevel(const QStringList& rootNames)
{
    for (const QString& name : rootNames) {
        if (name == QLatin1StringView("downloads") || name == QLatin1StringView("Cask"))
            continue;
        // Only formula links live at the top level: a cask link lying here counts as one.
        const auto parsed = HomebrewCacheScanner::parseCacheName(name, false);
        if (!parsed)
            continue;
        const QString item = childPath(m_root, name);
        const LinkCheck link = checkLink(item);
        m_references.push_back(ReferenceDraft {
            HomebrewCacheCategory::formula, parsed->first, parsed->second, {item}, link.targetPath, link.hasIssue});
        m_claimedTopLevel.insert(standardizedPath(item));
    }
}

void ScanRun::collectCask()
{
    if (!FS::isRealDirectory(m_cask))
        return;
    const auto names = FS::contentsOfDirectory(m_cask);
    if (!names) {
        // Nothing inside can be told apart; the folder goes as one unrecognized item.
        m_unrecognizedCask = {m_cask};
        m_caskListingFailed = true;
        return;
    }
    for (const QString& name : *names) {
        const QString item = childPath(m_cask, name);
        const auto parsed = HomebrewCacheScanner::parseCacheName(name, true);
        if (!parsed) {
            m_unrecognizedCask.append(item);
            continue;
        }
        const LinkCheck link = checkLink(item);
        m_references.push_back(ReferenceDraft {
            HomebrewCacheCategory::cask, parsed->first, parsed->second, {item}, link.targetPath, link.hasIssue});
    }
}

std::vector<EntryDraft> ScanRun::drafts(const QStringList& rootNames)
{
    collectTopLevel(rootNames);
    collectCask();

    // A download that exactly one reference points at belongs to it; one that several
    // point at belongs to none of them, so that deleting one version never takes a file
    // another still uses.
    QHash<QString, int> targetCounts;
    for (const ReferenceDraft& reference : m_references) {
        if (reference.targetPath)
            ++targetCounts[standardizedPath(*reference.targetPath)];
    }
    QSet<QString> claimedTargets;
    QStringList sharedTargets;
    std::map<QString, ReferenceDraft> merged; // ordered later by the collator, not by map order
    for (ReferenceDraft& reference : m_references) {
        if (reference.targetPath) {
            const QString target = standardizedPath(*reference.targetPath);
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
            merged.emplace(key, std::move(reference));
        } else {
            found->second.paths.append(reference.paths);
            found->second.hasIssue = found->second.hasIssue || reference.hasIssue;
        }
    }

    std::vector<const std::pair<const QString, ReferenceDraft>*> ordered;
    ordered.reserve(merged.size());
    for (const auto& item : merged)
        ordered.push_back(&item);
    // Keys are unique, so no tie needs a stable order.
    QCollator& collator = standardCollator();
    std::sort(ordered.begin(), ordered.end(),
              [&collator](const auto* a, const auto* b) { return collator.compare(a->first, b->first) < 0; });

    std::vector<EntryDraft> drafts;
    drafts.reserve(ordered.size() + 4);
    for (const auto* item : ordered) {
        const ReferenceDraft& reference = item->second;
        drafts.push_back(EntryDraft {QStringLiteral("package:") + item->first, reference.category,
                                     reference.packageIdentifier, reference.version, reference.packageIdentifier,
                                     withoutRepeats(reference.paths), reference.hasIssue});
    }

    const QStringList shared = withoutRepeats(sharedTargets);
    QSet<QString> sharedPaths;
    for (const QString& path : shared)
        sharedPaths.insert(standardizedPath(path));
    if (!shared.isEmpty()) {
        drafts.push_back(EntryDraft {QStringLiteral("other:shared-downloads"), HomebrewCacheCategory::other,
                                     std::nullopt, std::nullopt, localized("Shared Downloads"), shared, false});
    }

    const bool downloadsIsReal = FS::isRealDirectory(m_downloads);
    if (downloadsIsReal) {
        const QString id = QStringLiteral("other:unrecognized-downloads");
        const QString title = localized("Unrecognized Downloads");
        if (const auto names = FS::contentsOfDirectory(m_downloads)) {
            QStringList unclaimed;
            for (const QString& name : *names) {
                const QString item = childPath(m_downloads, name);
                const QString standardized = standardizedPath(item);
                if (!claimedTargets.contains(standardized) && !sharedPaths.contains(standardized))
                    unclaimed.append(item);
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
    const bool caskIsReal = FS::isRealDirectory(m_cask);
    for (const QString& name : rootNames) {
        const QString item = childPath(m_root, name);
        const QString standardized = standardizedPath(item);
        if (m_claimedTopLevel.contains(standardized))
            continue;
        if ((name == QLatin1StringView("downloads") && downloadsIsReal)
            || (name == QLatin1StringView("Cask") && caskIsReal))
            continue;
        drafts.push_back(EntryDraft {QStringLiteral("other:path:") + standardized,
                                     HomebrewCacheCategory::other,
                                     std::nullopt,
                                     std::nullopt,
                                     name,
                                     {item},
                                     false});
    }
    return drafts;
}

std::vector<HomebrewCacheEntry> ScanRun::run(const QStringList& rootNames)
{
    const std::vector<EntryDraft> all = drafts(rootNames);
    // One visited set for the whole scan, in draft order: a file reachable from two
    // entries counts for the first of them only.
    FS::VisitedSet visited;
    std::vector<HomebrewCacheEntry> entries;
    entries.reserve(all.size());
    for (const EntryDraft& draft : all) {
        const FS::Measurement measured = FS::measure(draft.paths, visited);
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
    if (standardizedPath(rootPath) != standardizedPath(m_expectedRootPath))
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
    const QString root = standardizedPath(rootPath);
    QString listingError;
    const auto rootNames = FS::contentsOfDirectory(root, &listingError);
    if (!rootNames) {
        return {{},
                HomebrewCacheScanFailure {
                    std::nullopt,
                    QCoreApplication::translate("HomebrewCache", "The folder “%1” couldn’t be opened. %2")
                        .arg(root.section(QLatin1Char('/'), -1), listingError)}};
    }
    return {ScanRun(root).run(*rootNames), std::nullopt};
}

} // namespace quillbay
