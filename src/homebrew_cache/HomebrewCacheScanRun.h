#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <atomic>
#include <optional>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheFolderSnapshot.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

// One scan of one cache folder, from listing to measured entries. Two threads list and
// examine: a helper takes downloads/ from the first moment, the calling thread the root
// and Cask/, and each helps with the other's items once its own are done, while the
// calling thread also does the work that needs names only. Everything after that runs
// on the calling thread.
class HomebrewCacheScanRun
{
public:
    using Snapshot = HomebrewCacheFolderSnapshot;
    using Item = Snapshot::Item;

    // `root` is clean.
    explicit HomebrewCacheScanRun(QString root);
    HomebrewCacheScanResult run();

private:
    // A path of an entry: what is shown and deleted, its standardized form, and, where
    // known, the listed item that a lookup of the path would give.
    struct Part
    {
        QString path;
        QString clean;
        const Snapshot* listing = nullptr;
        qsizetype index = -1;
    };

    // One readable cache name that was understood: a link (or plain item) at the top level
    // or in Cask/. The link is checked once the item's status is known.
    struct Reference
    {
        const Snapshot* listing;
        size_t index;
        size_t mergedIndex; // its package and version in the merged table
        Part part; // of the item itself
        bool hasTarget = false; // an existing item inside downloads/ of this cache
        bool hasIssue = false;
        qsizetype targetItem = -1; // the item of downloads/ the target is, if listed
        QString targetPath; // as the link gives it, for targets not found by name alone
        QString cleanTarget;
    };

    // The references of one category, package and version, merged in reference order.
    struct Merged
    {
        QString id;
        HomebrewCacheCategory category;
        QString packageIdentifier;
        QString version;
        std::vector<Part> parts;
        bool hasIssue = false;
    };

    struct EntryDraft
    {
        QString id;
        HomebrewCacheCategory category;
        std::optional<QString> packageIdentifier;
        std::optional<QString> version;
        QString displayName;
        std::vector<Part> parts;
        bool hasIssue = false;
    };

    // An item waiting to be examined; for a link of the root or Cask/, where to note the
    // item of downloads/ its text names plainly; and whether a folder is walked then.
    struct Work
    {
        Snapshot* listing;
        size_t index;
        qint32* plainTarget;
        bool walkAhead; // a folder is walked right away
    };

    // Items waiting to be examined, handed out in batches from one counter.
    struct Queue
    {
        std::vector<Work> work;
        std::atomic<size_t> next {0};
        std::atomic<bool> ready {false};
        std::atomic<size_t> done {0}; // items examined
    };

    void listDownloads();
    void drain(Queue& queue) const;
    static void publish(std::atomic<bool>& flag);
    static void awaitFlag(const std::atomic<bool>& flag);
    static void awaitExamined(const Queue& queue);
    void assignTargets();
    void checkOrder();
    void addReference(HomebrewCacheCategory category, const Snapshot& listing, size_t index);
    void collectNames();
    Part partOf(const Snapshot& listing, size_t index) const;
    void checkLink(Reference& reference);
    qint32 plainTarget(const Snapshot& listing, const Item& item) const;
    bool isExistingDownload(const QString& destination, const QString& standardized);
    std::vector<EntryDraft> drafts();
    HomebrewCacheFileSystem::Measurement measure(const std::vector<Part>& parts,
                                                 HomebrewCacheFileSystem::VisitedSet& visited) const;
    std::optional<HomebrewCacheFileSystem::Measurement>
    measureByPath(const QString& path, HomebrewCacheFileSystem::VisitedSet& visited) const;

    QString m_root;
    QString m_downloads;
    QString m_cask;
    QString m_formulaCategory;
    QString m_caskCategory;
    std::optional<QString> m_resolvedRoot; // resolved when a link first needs it
    QByteArray m_nativeDownloadsPrefix; // downloads/ with its slash, for absolute link texts
    bool m_linksByName = false; // link texts can be matched as bytes

    std::optional<Snapshot> m_rootListing;
    std::optional<Snapshot> m_caskListing;
    std::optional<Snapshot> m_downloadsListing;
    bool m_caskIsReal = false;
    bool m_downloadsIsReal = false;
    Queue m_downloadsQueue;
    Queue m_namedQueue; // the root's and Cask/'s items
    std::vector<QString> m_downloadsPaths; // by item, made by the helper
    std::atomic<bool> m_downloadsPathsReady {false};
    std::atomic<bool> m_orderReady {false}; // m_orderedKeys in ranked order
    // The collator's check of the ranked order, shared by both threads in batches of
    // pairs; read after joining the helper.
    std::atomic<size_t> m_nextPair {1};
    std::atomic<bool> m_orderDisagrees {false};
    std::vector<qint32> m_rootTargets; // plainTarget by item, -1 for none
    std::vector<qint32> m_caskTargets;

    std::vector<Reference> m_references;
    std::vector<Merged> m_merged;
    std::vector<QString> m_keys; // of m_merged, by the same index
    QHash<QString, size_t> m_mergedIndex;
    std::vector<const QString*> m_orderedKeys;
    std::vector<bool> m_claimedTopLevel; // by root item
    std::vector<Part> m_unrecognizedCask;
    // Ownership of downloads, by item of the listing or, for targets found otherwise, by
    // standardized path.
    std::vector<int> m_itemCounts;
    QSet<QString> m_cleanTargetsByPath; // of the links that took the general check
    std::vector<Part> m_shared;
    bool m_caskListingFailed = false;
};

} // namespace quillbay
