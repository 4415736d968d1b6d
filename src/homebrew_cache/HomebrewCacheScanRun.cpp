#include "homebrew_cache/HomebrewCacheScanRun.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringBuilder>
#include <algorithm>
#include <thread>

#include "homebrew_cache/HomebrewCacheKeyOrder.h"
#include "homebrew_cache/HomebrewCacheNameParts.h"

namespace quillbay {

using namespace Qt::StringLiterals;

namespace {

using FS = HomebrewCacheFileSystem;

QString childPath(const QString& folder, const QString& name)
{
    return folder.endsWith(QLatin1Char('/')) ? folder + name : folder + QLatin1Char('/') + name;
}

QLatin1StringView latin1(std::string_view bytes)
{
    return QLatin1StringView(bytes.data(), qsizetype(bytes.size()));
}

// The merge key of a parsed name, "<category>:<package>:<version>", made in one piece,
// and where package and version lie in it.
struct MergeKey
{
    QString key;
    qsizetype packageSize;
    qsizetype versionSize;
};

MergeKey mergeKey(const QString& category, QStringView package, QStringView version)
{
    return {category % u':' % package % u':' % version, package.size(), version.size()};
}

// For an ASCII name, by the rules of parseCacheName, without making text of the parts.
std::optional<MergeKey> asciiMergeKey(const QString& category, std::string_view name, bool isCask)
{
    const auto parts = parseCacheNameParts(name, isCask);
    if (!parts)
        return std::nullopt;
    std::string_view package = name.substr(0, parts->packageSize);
    const std::string_view version = name.substr(parts->versionStart, parts->versionSize);
    std::string unmarked;
    if (parts->hasManifestMark) {
        constexpr std::string_view mark = "_bottle_manifest";
        for (size_t at = 0;;) {
            const size_t found = package.find(mark, at);
            unmarked.append(package.substr(at, found == package.npos ? package.npos : found - at));
            if (found == package.npos)
                break;
            at = found + mark.size();
        }
        package = unmarked;
    }
    return MergeKey {category % u':' % latin1(package) % u':' % latin1(version), qsizetype(package.size()),
                     qsizetype(version.size())};
}

} // namespace

HomebrewCacheScanRun::HomebrewCacheScanRun(QString root)
    : m_root(std::move(root))
    , m_downloads(childPath(m_root, QStringLiteral("downloads")))
    , m_cask(childPath(m_root, QStringLiteral("Cask")))
    , m_formulaCategory(rawValue(HomebrewCacheCategory::formula))
    , m_caskCategory(rawValue(HomebrewCacheCategory::cask))
{
    // An absolute link text that is the downloads folder's bytes, a slash and a plain name
    // decodes to that very path, which is clean, only when the folder's path is ASCII,
    // absolute and clean.
    m_nativeDownloadsPrefix = QFile::encodeName(m_downloads + QLatin1Char('/'));
    m_linksByName = m_root.startsWith(QLatin1Char('/'))
        && std::all_of(m_nativeDownloadsPrefix.cbegin(), m_nativeDownloadsPrefix.cend(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; })
        && FS::cleanPath(m_downloads) == m_downloads;
}

// Batches from one counter: a thread that starts late or runs slow (links cost a second
// call) simply takes fewer. Each item is written by exactly one thread. Links of the root
// and Cask/ are matched against the names of downloads/ right away, which needs that
// folder's index: its queue is ready only once the index is.
void HomebrewCacheScanRun::drain(Queue& queue) const
{
    awaitFlag(queue.ready);
    awaitFlag(m_downloadsQueue.ready);
    constexpr size_t kBatch = 32;
    const size_t size = queue.work.size();
    for (;;) {
        const size_t first = queue.next.fetch_add(kBatch, std::memory_order_relaxed);
        if (first >= size)
            return;
        const size_t last = std::min(size, first + kBatch);
        for (size_t i = first; i < last; ++i) {
            const Work& work = queue.work[i];
            work.listing->examine(work.index);
            const Item& item = work.listing->items()[work.index];
            if (work.plainTarget && item.hasStatus && S_ISLNK(item.status.mode))
                *work.plainTarget = plainTarget(*work.listing, item);
            if (work.walkAhead)
                work.listing->walkAhead(work.index);
        }
        if (queue.done.fetch_add(last - first, std::memory_order_acq_rel) + (last - first) == size)
            queue.done.notify_all();
    }
}

// The helper's part: downloads/ is the largest folder and needs no names work, so it is
// listed, indexed by name for the links, and examined from the first moment; the paths
// of its items are made while the others work.
void HomebrewCacheScanRun::listDownloads()
{
    m_downloadsIsReal = FS::isRealDirectory(m_downloads);
    if (m_downloadsIsReal)
        m_downloadsListing = Snapshot::list(m_downloads);
    if (m_downloadsListing) {
        m_downloadsListing->indexAsciiNames();
        const size_t count = m_downloadsListing->items().size();
        m_downloadsQueue.work.reserve(count);
        for (size_t i = 0; i < count; ++i)
            m_downloadsQueue.work.push_back(Work {&*m_downloadsListing, i, nullptr, true});
    }
    publish(m_downloadsQueue.ready);
    if (m_downloadsListing) {
        const size_t count = m_downloadsListing->items().size();
        m_downloadsPaths.reserve(count);
        for (size_t i = 0; i < count; ++i)
            m_downloadsPaths.push_back(m_downloadsListing->path(m_downloadsListing->items()[i]));
    }
    publish(m_downloadsPathsReady);
}

void HomebrewCacheScanRun::publish(std::atomic<bool>& flag)
{
    flag.store(true, std::memory_order_release);
    flag.notify_all();
}

// What was written before the flag was published is visible after this returns.
void HomebrewCacheScanRun::awaitFlag(const std::atomic<bool>& flag)
{
    while (!flag.load(std::memory_order_acquire))
        flag.wait(false, std::memory_order_acquire);
}

void HomebrewCacheScanRun::awaitExamined(const Queue& queue)
{
    for (size_t done = queue.done.load(std::memory_order_acquire); done < queue.work.size();
         done = queue.done.load(std::memory_order_acquire))
        queue.done.wait(done, std::memory_order_acquire);
}

// Comparing with the collator costs as much as the rest of the names work, so both
// threads take batches of adjacent pairs until one disagrees or none are left.
void HomebrewCacheScanRun::checkOrder()
{
    awaitFlag(m_orderReady);
    constexpr size_t kBatch = 256;
    const size_t size = m_orderedKeys.size();
    while (!m_orderDisagrees.load(std::memory_order_relaxed)) {
        const size_t first = m_nextPair.fetch_add(kBatch, std::memory_order_relaxed);
        if (first >= size)
            return;
        if (!isInStandardOrder(m_orderedKeys, first, std::min(size, first + kBatch)))
            m_orderDisagrees.store(true, std::memory_order_relaxed);
    }
}

HomebrewCacheScanResult HomebrewCacheScanRun::run()
{
    // The helper lists and examines downloads/, helps with the root's and Cask/'s items,
    // and then checks the package order with the collator while this thread assigns the
    // links' targets, and helps with that after.
    std::jthread helper([this] {
        listDownloads();
        drain(m_downloadsQueue);
        drain(m_namedQueue);
        checkOrder();
    });
    QString listingError;
    m_rootListing = Snapshot::list(m_root, &listingError);
    if (!m_rootListing) {
        publish(m_namedQueue.ready);
        publish(m_orderReady);
        helper.join();
        return {{},
                HomebrewCacheScanFailure {
                    std::nullopt,
                    QCoreApplication::translate("HomebrewCache", "The folder “%1” couldn’t be opened. %2")
                        .arg(m_root.section(QLatin1Char('/'), -1), listingError)}};
    }
    m_caskIsReal = FS::isRealDirectory(m_cask);
    if (m_caskIsReal)
        m_caskListing = Snapshot::list(m_cask);
    m_rootTargets.assign(m_rootListing->items().size(), -1);
    for (size_t i = 0; i < m_rootTargets.size(); ++i) {
        // The folders themselves are measured only when they could not be listed.
        const std::string_view name = m_rootListing->nameBytes(m_rootListing->items()[i]);
        const bool isContainer = name == "downloads" || name == "Cask";
        m_namedQueue.work.push_back(Work {&*m_rootListing, i, &m_rootTargets[i], !isContainer});
    }
    if (m_caskListing) {
        m_caskTargets.assign(m_caskListing->items().size(), -1);
        for (size_t i = 0; i < m_caskTargets.size(); ++i)
            m_namedQueue.work.push_back(Work {&*m_caskListing, i, &m_caskTargets[i], true});
    }
    publish(m_namedQueue.ready);
    collectNames();
    publish(m_orderReady);
    drain(m_namedQueue);
    drain(m_downloadsQueue);
    awaitExamined(m_namedQueue);
    awaitExamined(m_downloadsQueue);
    awaitFlag(m_downloadsPathsReady);
    assignTargets();
    checkOrder();
    helper.join();
    if (m_orderDisagrees.load(std::memory_order_relaxed))
        sortByCollationKeys(m_orderedKeys);

    std::vector<EntryDraft> all = drafts();
    // One visited set for the whole scan, in draft order: a file reachable from two
    // entries counts for the first of them only.
    FS::VisitedSet visited;
    visited.reserve(m_namedQueue.work.size() + m_downloadsQueue.work.size() + 1024);
    std::vector<HomebrewCacheEntry> entries;
    entries.reserve(all.size());
    for (EntryDraft& draft : all) {
        const FS::Measurement measured = measure(draft.parts, visited);
        std::optional<qint64> size = measured.allocatedSize;
        if (measured.allocatedSize == 0 && measured.hasIssue)
            size.reset();
        QStringList paths;
        paths.reserve(qsizetype(draft.parts.size()));
        for (Part& part : draft.parts)
            paths.append(std::move(part.path));
        entries.push_back(HomebrewCacheEntry {std::move(draft.id), draft.category, std::move(draft.packageIdentifier),
                                              std::move(draft.version), std::move(draft.displayName), std::move(paths),
                                              size, measured.isIncomplete, draft.hasIssue || measured.hasIssue});
    }
    return {std::move(entries), std::nullopt};
}

HomebrewCacheScanRun::Part HomebrewCacheScanRun::partOf(const Snapshot& listing, size_t index) const
{
    const Item& item = listing.items()[index];
    // Items of downloads/ come here only once the helper has made their paths; the root's
    // and Cask/'s already while it may still be listing, so those are told apart first.
    const bool isNamed = &listing == &*m_rootListing || (m_caskListing && &listing == &*m_caskListing);
    const bool made = !isNamed && index < m_downloadsPaths.size();
    QString path = made ? m_downloadsPaths[index] : listing.path(item);
    // Two non-ASCII names may decode to one text; a lookup of the path then decides.
    return Part {path, path, &listing, item.isAscii ? qsizetype(index) : -1};
}

void HomebrewCacheScanRun::addReference(HomebrewCacheCategory category, const Snapshot& listing, size_t index)
{
    const Item& item = listing.items()[index];
    const bool isCask = category == HomebrewCacheCategory::cask;
    const QString& categoryName = isCask ? m_caskCategory : m_formulaCategory;
    std::optional<MergeKey> parsed;
    if (item.isAscii) {
        parsed = asciiMergeKey(categoryName, listing.nameBytes(item), isCask);
    } else if (const auto pair = HomebrewCacheScanner::parseCacheName(listing.name(item), isCask)) {
        parsed = mergeKey(categoryName, pair->first, pair->second);
    }
    if (!parsed) {
        if (isCask)
            m_unrecognizedCask.push_back(partOf(listing, index));
        return;
    }
    // The merge key joins category, package and version; the first reference of a key
    // gives the merged draft its package and version.
    QString& key = parsed->key;
    const auto found = m_mergedIndex.constFind(key);
    size_t slot = m_merged.size();
    if (found == m_mergedIndex.cend()) {
        m_mergedIndex.insert(key, slot);
        const qsizetype packageStart = categoryName.size() + 1;
        m_merged.push_back(Merged {u"package:"_s % key,
                                   category,
                                   key.mid(packageStart, parsed->packageSize),
                                   key.mid(packageStart + parsed->packageSize + 1, parsed->versionSize),
                                   {},
                                   false});
        m_merged.back().parts.reserve(2); // a link and its download, nearly always
        m_keys.push_back(std::move(key));
    } else {
        slot = *found;
    }
    m_references.push_back(Reference {&listing, index, slot, partOf(listing, index), false, false, -1, {}, {}});
    if (&listing == &*m_rootListing)
        m_claimedTopLevel[index] = true;
}

// Everything that depends on names alone: which items are references of which package
// and version, and the order of the packages. Runs while the items are being examined,
// so it touches no status.
void HomebrewCacheScanRun::collectNames()
{
    const Snapshot& root = *m_rootListing;
    m_claimedTopLevel.assign(root.items().size(), false);
    m_mergedIndex.reserve(qsizetype(root.items().size() + (m_caskListing ? m_caskListing->items().size() : 0)));
    m_references.reserve(root.items().size() + (m_caskListing ? m_caskListing->items().size() : 0));
    for (size_t i = 0; i < root.items().size(); ++i) {
        const std::string_view name = root.nameBytes(root.items()[i]);
        if (name == "downloads" || name == "Cask")
            continue;
        // Only formula links live at the top level: a cask link lying here counts as one.
        addReference(HomebrewCacheCategory::formula, root, i);
    }
    if (m_caskIsReal && !m_caskListing) {
        // Nothing inside can be told apart; the folder goes as one unrecognized item.
        m_unrecognizedCask = {Part {m_cask, m_cask}};
        m_caskListingFailed = true;
    } else if (m_caskIsReal) {
        for (size_t i = 0; i < m_caskListing->items().size(); ++i)
            addReference(HomebrewCacheCategory::cask, *m_caskListing, i);
    }
    m_orderedKeys.reserve(m_keys.size());
    for (const QString& key : m_keys)
        m_orderedKeys.push_back(&key);
    sortByRank(m_orderedKeys); // checked by the helper
}

} // namespace quillbay
