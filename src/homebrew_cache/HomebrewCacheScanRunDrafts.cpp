#include <QCoreApplication>
#include <QSet>
#include <algorithm>
#include <array>

#include "foundation/PathContainment.h"
#include "homebrew_cache/HomebrewCacheScanRun.h"

namespace quillbay {

namespace {

using FS = HomebrewCacheFileSystem;

QString localized(const char* text)
{
    return QCoreApplication::translate("HomebrewCache", text);
}

bool isAsciiText(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Repeats by standardized path dropped; the first occurrence stays as it was given.
template <typename Parts> Parts withoutRepeats(Parts parts)
{
    if (parts.size() < 2)
        return parts;
    // Nearly every entry has one or two paths, where a set costs more than comparing.
    constexpr size_t kFewPaths = 8;
    if (parts.size() <= kFewPaths) {
        bool repeats = false;
        for (size_t i = 1; i < parts.size() && !repeats; ++i) {
            for (size_t j = 0; j < i && !repeats; ++j)
                repeats = parts[j].clean == parts[i].clean;
        }
        if (!repeats)
            return parts;
    }
    Parts unique;
    unique.reserve(parts.size());
    if (parts.size() <= kFewPaths) {
        for (auto& part : parts) {
            if (std::none_of(unique.begin(), unique.end(),
                             [&part](const auto& kept) { return kept.clean == part.clean; }))
                unique.push_back(std::move(part));
        }
        return unique;
    }
    QSet<QString> seen;
    for (auto& part : parts) {
        if (!seen.contains(part.clean)) {
            seen.insert(part.clean);
            unique.push_back(std::move(part));
        }
    }
    return unique;
}

} // namespace

// The item of downloads/ a link names by a plain relative or absolute text, or -1 when
// the link needs the general check. Such a text standardizes to the item's own path, so
// where that item exists and is no link both ways agree.
qint32 HomebrewCacheScanRun::plainTarget(const Snapshot& listing, const Item& item) const
{
    if (!m_linksByName || !m_downloadsListing)
        return -1;
    std::string_view text(item.linkText);
    const std::string_view absolute(m_nativeDownloadsPrefix.constData(), size_t(m_nativeDownloadsPrefix.size()));
    std::string_view relative;
    if (&listing == &*m_rootListing)
        relative = "downloads/";
    else if (m_caskListing && &listing == &*m_caskListing)
        relative = "../downloads/";
    else
        return -1;
    if (text.starts_with(absolute))
        text.remove_prefix(absolute.size());
    else if (text.starts_with(relative))
        text.remove_prefix(relative.size());
    else
        return -1;
    if (text.empty() || text == "." || text == ".." || text.find('/') != text.npos || !isAsciiText(text))
        return -1;
    return qint32(m_downloadsListing->findAscii(text));
}

// The destination is inside the cache once links are resolved, lies lexically in
// downloads/, and exists.
bool HomebrewCacheScanRun::isExistingDownload(const QString& destination, const QString& standardized)
{
    if (!isPathInside(standardized, m_downloads))
        return false;
    // Most links name a plain file right in downloads/: what the listing saw answers all
    // three questions without asking the disk again.
    if (m_downloadsListing && standardized.size() > m_downloads.size() + 1
        && standardized.indexOf(QLatin1Char('/'), m_downloads.size() + 1) < 0) {
        const Item* target = m_downloadsListing->find(standardized);
        if (target && target->hasStatus && !S_ISLNK(target->status.mode))
            return true;
    }
    if (!m_resolvedRoot)
        m_resolvedRoot = resolvedPath(m_root);
    return isPathInside(resolvedPath(standardized), *m_resolvedRoot) && FS::fileExists(destination);
}

// A plain item (or one that can't be examined) has no target and no issue; a link must
// lead to an existing item inside downloads/ of this very cache.
void HomebrewCacheScanRun::checkLink(Reference& reference)
{
    const Item& item = reference.listing->items()[reference.index];
    if (!item.hasStatus || !S_ISLNK(item.status.mode))
        return;
    const qint32 plain = (reference.listing == &*m_rootListing ? m_rootTargets : m_caskTargets)[reference.index];
    if (plain >= 0) {
        const Item& target = m_downloadsListing->items()[size_t(plain)];
        if (target.hasStatus && !S_ISLNK(target.status.mode)) {
            reference.hasTarget = true;
            reference.targetItem = plain;
            return;
        }
    }
    const std::optional<QString> destination = reference.listing->linkDestination(item);
    if (!destination) {
        reference.hasIssue = true;
        return;
    }
    QString standardized = FS::cleanPath(*destination);
    if (!isExistingDownload(*destination, standardized)) {
        reference.hasIssue = true;
        return;
    }
    reference.hasTarget = true;
    if (m_downloadsListing) {
        if (const Item* target = m_downloadsListing->find(standardized))
            reference.targetItem = target - m_downloadsListing->items().data();
    }
    reference.targetPath = *destination;
    reference.cleanTarget = std::move(standardized);
}

void HomebrewCacheScanRun::assignTargets()
{
    // A download that exactly one reference points at belongs to it; one that several
    // point at belongs to none of them, so that deleting one version never takes a file
    // another still uses. Targets count by their standardized path: a listed item of
    // downloads/ stands for its own path.
    m_itemCounts.assign(m_downloadsListing ? m_downloadsListing->items().size() : 0, 0);
    QHash<QString, int> pathCounts;
    for (Reference& reference : m_references) {
        checkLink(reference);
        if (!reference.hasTarget)
            continue;
        if (reference.targetItem >= 0)
            ++m_itemCounts[size_t(reference.targetItem)];
        else
            ++pathCounts[reference.cleanTarget];
        if (!reference.cleanTarget.isEmpty())
            m_cleanTargetsByPath.insert(reference.cleanTarget);
    }
    for (const Reference& reference : m_references) {
        Merged& merged = m_merged[reference.mergedIndex];
        merged.parts.push_back(reference.part);
        merged.hasIssue = merged.hasIssue || reference.hasIssue;
        if (!reference.hasTarget)
            continue;
        Part target;
        int count = 0;
        if (reference.targetItem >= 0) {
            count = m_itemCounts[size_t(reference.targetItem)];
            target = partOf(*m_downloadsListing, size_t(reference.targetItem));
        } else {
            count = pathCounts.value(reference.cleanTarget);
        }
        if (!reference.targetPath.isEmpty()) {
            // As the link gives it; found again by path when measured.
            target = Part {reference.targetPath, reference.cleanTarget};
        }
        if (count == 1)
            merged.parts.push_back(std::move(target));
        else
            m_shared.push_back(std::move(target));
    }
}

std::vector<HomebrewCacheScanRun::EntryDraft> HomebrewCacheScanRun::drafts()
{
    std::vector<EntryDraft> drafts;
    drafts.reserve(m_orderedKeys.size() + 4);
    for (const QString* key : m_orderedKeys) {
        Merged& merged = m_merged[size_t(key - m_keys.data())];
        drafts.push_back(EntryDraft {merged.id, merged.category, merged.packageIdentifier, merged.version,
                                     merged.packageIdentifier, withoutRepeats(std::move(merged.parts)),
                                     merged.hasIssue});
    }

    std::vector<Part> shared = withoutRepeats(std::move(m_shared));
    if (!shared.empty()) {
        drafts.push_back(EntryDraft {QStringLiteral("other:shared-downloads"), HomebrewCacheCategory::other,
                                     std::nullopt, std::nullopt, localized("Shared Downloads"), std::move(shared),
                                     false});
    }

    if (m_downloadsIsReal) {
        const QString id = QStringLiteral("other:unrecognized-downloads");
        const QString title = localized("Unrecognized Downloads");
        if (m_downloadsListing) {
            std::vector<Part> unclaimed;
            for (size_t i = 0; i < m_itemCounts.size(); ++i) {
                if (m_itemCounts[i] > 0)
                    continue;
                Part part = partOf(*m_downloadsListing, i);
                if (!m_cleanTargetsByPath.isEmpty() && m_cleanTargetsByPath.contains(part.path))
                    continue;
                unclaimed.push_back(std::move(part));
            }
            if (!unclaimed.empty()) {
                drafts.push_back(EntryDraft {id, HomebrewCacheCategory::other, std::nullopt, std::nullopt, title,
                                             withoutRepeats(std::move(unclaimed)), false});
            }
        } else {
            drafts.push_back(EntryDraft {id,
                                         HomebrewCacheCategory::other,
                                         std::nullopt,
                                         std::nullopt,
                                         title,
                                         {Part {m_downloads, m_downloads}},
                                         true});
        }
    }

    if (!m_unrecognizedCask.empty()) {
        drafts.push_back(EntryDraft {QStringLiteral("other:unrecognized-cask"), HomebrewCacheCategory::other,
                                     std::nullopt, std::nullopt, localized("Unrecognized Cask Cache"),
                                     withoutRepeats(std::move(m_unrecognizedCask)), m_caskListingFailed});
    }

    // Everything else at the top level stands on its own. A "downloads" or "Cask" that is
    // a link or a plain file is such an item too, with nothing under it classified.
    const Snapshot& root = *m_rootListing;
    for (size_t i = 0; i < root.items().size(); ++i) {
        if (m_claimedTopLevel[i])
            continue;
        const Item& item = root.items()[i];
        const std::string_view name = root.nameBytes(item);
        if ((name == "downloads" && m_downloadsIsReal) || (name == "Cask" && m_caskIsReal))
            continue;
        Part part = partOf(root, i);
        drafts.push_back(EntryDraft {QStringLiteral("other:path:") + part.path,
                                     HomebrewCacheCategory::other,
                                     std::nullopt,
                                     std::nullopt,
                                     root.name(item),
                                     {std::move(part)},
                                     false});
    }
    return drafts;
}

// Paths that are no listed item of known index are looked up as they stand in the
// listing of the folder they start with, else cleaned and looked up by their parent
// folder, else measured from the disk.
std::optional<FS::Measurement> HomebrewCacheScanRun::measureByPath(const QString& path, FS::VisitedSet& visited) const
{
    const auto startsIn = [&path](const QString& folder) {
        return path.size() > folder.size() + 1 && path.at(folder.size()) == u'/' && path.startsWith(folder);
    };
    const Snapshot* listing = startsIn(m_downloads) && m_downloadsListing ? &*m_downloadsListing
        : startsIn(m_cask) && m_caskListing                               ? &*m_caskListing
                                                                          : &*m_rootListing;
    const Item* item = listing->find(path);
    if (!item) {
        const QString clean = FS::cleanPath(path);
        const QStringView parent = QStringView(clean).left(std::max<qsizetype>(0, clean.lastIndexOf(QLatin1Char('/'))));
        listing = nullptr;
        if (parent == m_root)
            listing = &*m_rootListing;
        else if (parent == m_downloads && m_downloadsListing)
            listing = &*m_downloadsListing;
        else if (parent == m_cask && m_caskListing)
            listing = &*m_caskListing;
        item = listing ? listing->find(clean) : nullptr;
    }
    if (item && item->hasStatus)
        return listing->measure(*item, visited);
    return FS::measure(path, visited);
}

FS::Measurement HomebrewCacheScanRun::measure(const std::vector<Part>& parts, FS::VisitedSet& visited) const
{
    FS::Measurement total;
    for (const Part& part : parts) {
        std::optional<FS::Measurement> one;
        if (part.listing && part.index >= 0) {
            const Item& item = part.listing->items()[size_t(part.index)];
            one = item.hasStatus ? part.listing->measure(item, visited) : FS::measure(part.path, visited);
        } else {
            one = measureByPath(part.path, visited);
        }
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

} // namespace quillbay
