#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <cstring>

#include <gtest/gtest.h>
#include <unistd.h>

#include "CacheFixture.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QString kOutside = QStringLiteral("The cache item is outside the authorized Homebrew cache folder.");
const QString kInvalidRoot = QStringLiteral("Choose the default Homebrew cache folder at ~/Library/Caches/Homebrew.");

qint64 blocks(std::initializer_list<QString> paths)
{
    qint64 total = 0;
    for (const QString& path : paths)
        total += TempTree::allocatedBytes(path);
    return total;
}

HomebrewCacheEntry entry(const QString& id, const QStringList& paths)
{
    HomebrewCacheEntry e;
    e.id = id;
    e.displayName = id;
    e.paths = paths;
    return e;
}

// Every item outside with its size: not one byte there may go.
QStringList snapshot(const QString& folder)
{
    QStringList items;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        items << path + QLatin1Char(' ') + QString::number(TempTree::allocatedBytes(path));
    }
    items.sort();
    return items;
}

class Cleaner
{
public:
    explicit Cleaner(CacheFixture& cache)
        : m_cache(cache)
        , m_cleaner(cache.root(), QLatin1String(CacheFixture::displayPath))
        , m_outsideBefore(snapshot(cache.outside(QString())))
    {
    }
    ~Cleaner() { EXPECT_EQ(snapshot(m_cache.outside(QString())), m_outsideBefore) << "something outside changed"; }

    HomebrewCacheCleaner& operator*() { return m_cleaner; }
    HomebrewCacheCleaner* operator->() { return &m_cleaner; }

private:
    CacheFixture& m_cache;
    HomebrewCacheCleaner m_cleaner;
    QStringList m_outsideBefore;
};

} // namespace

TEST(HomebrewCacheCleanerTest, RefusesTheWholeCallWithoutTheRealExpectedRoot)
{
    CacheFixture cache;
    cache.file(QStringLiteral("downloads/aa--x"), 8192);
    cache.tree().mkdir(QStringLiteral("home/Library/Caches/Other"));
    const QString parent = cache.tree().path(QStringLiteral("home/Library/Caches"));
    const std::vector<HomebrewCacheEntry> entries {
        entry(QStringLiteral("a"), {cache.path(QStringLiteral("downloads/aa--x"))}), entry(QStringLiteral("b"), {})};
    struct Case
    {
        const char* label;
        QString root;
        QString itemName;
    };
    const Case cases[] = {
        {"the parent", parent, QStringLiteral("Caches")},
        {"a child", cache.path(QStringLiteral("downloads")), QStringLiteral("downloads")},
        {"a sibling", parent + QStringLiteral("/Other"), QStringLiteral("Other")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        Cleaner cleaner(cache);
        const auto result = cleaner->deleteEntries(entries, c.root, true);
        EXPECT_EQ(std::tuple(result.deletedEntryCount, result.failedEntryCount, result.reclaimedSize),
                  std::tuple(0, 2, 0));
        EXPECT_EQ(result.failures, (std::vector {HomebrewCacheCleaner::Failure {c.itemName, kInvalidRoot}}));
        EXPECT_TRUE(cache.exists(QStringLiteral("downloads/aa--x")));
    }

    // The cache folder was replaced by a link to a look-alike since the scan.
    cache.outsideFile(QStringLiteral("lookalike/downloads/aa--x"), 8192);
    QDir(cache.root()).removeRecursively();
    cache.tree().symlink(QStringLiteral("home/Library/Caches/Homebrew"), cache.outside(QStringLiteral("lookalike")));
    Cleaner cleaner(cache);
    const auto result = cleaner->deleteEntries(entries, cache.root(), true);
    EXPECT_EQ(result.failedEntryCount, 2);
    EXPECT_EQ(result.failures.size(), 1u);
    EXPECT_TRUE(QFile::exists(cache.outside(QStringLiteral("lookalike/downloads/aa--x"))));
}

TEST(HomebrewCacheCleanerTest, RemovesSelectedItemsAndLinksAsLinks)
{
    CacheFixture cache;
    const QString bottle = cache.file(QStringLiteral("downloads/aa--wget--1.0.tar.gz"), 65536);
    const QString link
        = cache.link(QStringLiteral("wget--1.0.tar.gz"), QStringLiteral("downloads/aa--wget--1.0.tar.gz"));
    const QString secret = cache.outsideFile(QStringLiteral("secret.tar.gz"), 65536);
    const QString outLink = cache.link(QStringLiteral("jq--1.7.tar.gz"), secret);
    const QString folderLink = cache.link(QStringLiteral("stuff"), cache.outside(QString()));
    const QString kept = cache.file(QStringLiteral("downloads/bb--kept"), 4096);
    // Hard links between two selected entries count once.
    const QString hard = cache.file(QStringLiteral("downloads/cc--hard"), 32768);
    const QString hard2 = cache.hardlink(QStringLiteral("downloads/dd--hard2"), QStringLiteral("downloads/cc--hard"));
    const qint64 expected = blocks({bottle, link, outLink, folderLink, hard});

    Cleaner cleaner(cache);
    const std::vector<HomebrewCacheEntry> entries {
        entry(QStringLiteral("wget"), {link, bottle}), entry(QStringLiteral("jq"), {outLink}),
        entry(QStringLiteral("stuff"), {folderLink}),  entry(QStringLiteral("h1"), {hard}),
        entry(QStringLiteral("h2"), {hard2}),
    };
    const auto result = cleaner->deleteEntries(entries, cache.root(), false);
    EXPECT_EQ(std::pair(result.deletedEntryCount, result.failedEntryCount), std::pair(5, 0));
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(result.reclaimedSize, expected);
    for (const char* gone : {"wget--1.0.tar.gz", "downloads/aa--wget--1.0.tar.gz", "jq--1.7.tar.gz", "stuff",
                             "downloads/cc--hard", "downloads/dd--hard2"}) {
        SCOPED_TRACE(gone);
        EXPECT_FALSE(cache.exists(QLatin1String(gone)));
    }
    EXPECT_TRUE(QFile::exists(kept));
    EXPECT_TRUE(QFile::exists(secret)) << "the link went, not its target";
}

TEST(HomebrewCacheCleanerTest, PlansEachPathOnceAndCoveredPathsWithTheirFolder)
{
    CacheFixture cache;
    const QString deep = cache.file(QStringLiteral("downloads/aa--pkg--1.0.tar.gz"), 65536);
    const QString link = cache.link(QStringLiteral("pkg--1.0.tar.gz"), QStringLiteral("downloads/aa--pkg--1.0.tar.gz"));
    cache.file(QStringLiteral("downloads/zz--other"), 8192);
    const QString downloads = cache.path(QStringLiteral("downloads"));
    const QString shared = cache.file(QStringLiteral("shared.bin"), 16384);
    const qint64 expected = blocks({downloads, link, shared}) + allocatedBytesBelow(downloads);

    Cleaner cleaner(cache);
    // The failed-listing form of the unrecognized downloads holds the folder itself; the
    // package's deeper path goes with it. A path written two ways is one path.
    const std::vector<HomebrewCacheEntry> entries {
        entry(QStringLiteral("package"), {link, deep}),
        entry(QStringLiteral("unrecognized"), {downloads}),
        entry(QStringLiteral("one"), {shared}),
        entry(QStringLiteral("two"), {cache.root() + QStringLiteral("/downloads/../shared.bin")}),
    };
    const auto result = cleaner->deleteEntries(entries, cache.root(), false);
    EXPECT_TRUE(result.failures.empty());
    EXPECT_EQ(result.deletedEntryCount, 4);
    EXPECT_EQ(result.reclaimedSize, expected);
    EXPECT_FALSE(cache.exists(QStringLiteral("downloads")));
    EXPECT_FALSE(cache.exists(QStringLiteral("shared.bin")));
}

TEST(HomebrewCacheCleanerTest, RefusesPathsThatAreNotInsideTheRoot)
{
    CacheFixture cache;
    const QString secret = cache.outsideFile(QStringLiteral("dir/secret"), 8192);
    cache.link(QStringLiteral("through"), cache.outside(QStringLiteral("dir")));
    const QString fine = cache.file(QStringLiteral("fine"), 4096);
    cache.folder(QStringLiteral("sub"));
    struct Case
    {
        const char* label;
        QString path;
        QString itemName;
        int deleted; // the refused entry counts by what is left of it, and "fine" goes...
        bool fineGoes; // ...unless the refused path covered it in the plan
    };
    const Case cases[] = {
        {"the root itself", cache.root(), QStringLiteral("Homebrew"), 0, false},
        {"the root, unclean", cache.root() + QStringLiteral("/sub/.."), QStringLiteral("Homebrew"), 0, false},
        {"outside", secret, QStringLiteral("secret"), 1, true},
        {"dot-dot out", cache.root() + QStringLiteral("/../../../../outside/dir/secret"), QStringLiteral("secret"), 1,
         true},
        // Nothing is there, so the entry counts as gone, refused or not.
        {"a look-alike prefix", cache.root() + QStringLiteral("-old/x"), QStringLiteral("x"), 2, true},
        {"below a link out", cache.path(QStringLiteral("through/secret")), QStringLiteral("secret"), 1, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        Cleaner cleaner(cache);
        const std::vector<HomebrewCacheEntry> entries {entry(QStringLiteral("bad"), {c.path}),
                                                       entry(QStringLiteral("fine"), {fine})};
        const auto result = cleaner->deleteEntries(entries, cache.root(), true);
        ASSERT_EQ(result.failures.size(), 1u);
        EXPECT_EQ(result.failures.front(), (HomebrewCacheCleaner::Failure {c.itemName, kOutside}));
        EXPECT_EQ(result.deletedEntryCount, c.deleted);
        EXPECT_EQ(result.failedEntryCount, 2 - c.deleted);
        EXPECT_EQ(QFile::exists(fine), !c.fineGoes);
        EXPECT_TRUE(QFile::exists(cache.root()));
        EXPECT_TRUE(QFile::exists(secret));
        cache.file(QStringLiteral("fine"), 4096);
    }
}

TEST(HomebrewCacheCleanerTest, AFolderSwappedForALinkAfterTheChecksLeadsNowhere)
{
    struct Case
    {
        const char* label;
        const char* entryPath; // below the root
        const char* file; // what lies there, below the root
        const char* swapped; // the folder that becomes a link out between check and removal
    };
    const Case cases[] = {
        {"the parent", "downloads/pkg/file", "downloads/pkg/file", "downloads/pkg"},
        {"a grandparent", "downloads/a/b/c/file", "downloads/a/b/c/file", "downloads/a"},
        {"the item itself", "downloads/pkg", "downloads/pkg/file", "downloads/pkg"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        CacheFixture cache;
        cache.file(QLatin1String(c.file), 8192);
        const QString swapped = cache.path(QLatin1String(c.swapped));
        // The outside holds the same names, so a walk that followed the link would find them.
        cache.outsideFile(QStringLiteral("twin") + QString::fromLatin1(c.file).mid(qsizetype(std::strlen(c.swapped))),
                          65536);
        Cleaner cleaner(cache);
        int calls = 0;
        qint64 linkBytes = -1;
        cleaner->setBeforeRemovalForTesting([&](const QString&) {
            ++calls;
            QDir(swapped).removeRecursively();
            ASSERT_EQ(::symlink(QFile::encodeName(cache.outside(QStringLiteral("twin"))).constData(),
                                QFile::encodeName(swapped).constData()),
                      0);
            linkBytes = TempTree::allocatedBytes(swapped);
        });
        const auto result = cleaner->deleteEntries(
            {entry(QStringLiteral("e"), {cache.path(QLatin1String(c.entryPath))})}, cache.root(), false);
        EXPECT_EQ(calls, 1);
        if (QLatin1String(c.entryPath) == QLatin1String(c.swapped)) {
            // Only the link that now stands there goes.
            EXPECT_TRUE(result.failures.empty());
            EXPECT_EQ(result.reclaimedSize, linkBytes);
            EXPECT_EQ(result.deletedEntryCount, 1);
            EXPECT_FALSE(cache.exists(QLatin1String(c.swapped)));
        } else {
            ASSERT_EQ(result.failures.size(), 1u);
            EXPECT_EQ(result.failures.front(), (HomebrewCacheCleaner::Failure {QStringLiteral("file"), kOutside}));
            EXPECT_EQ(result.reclaimedSize, 0);
            EXPECT_EQ(result.failedEntryCount, 1);
        }
    }
}

TEST(HomebrewCacheCleanerTest, RemovesEmptyContainersOnlyWhenAskedAndEmpty)
{
    struct Case
    {
        const char* label;
        bool removeEmptyContainers;
        bool hiddenFileInDownloads;
        bool caskIsALink;
        bool downloadsGone;
        bool caskGone;
    };
    const Case cases[] = {
        {"not asked", false, false, false, false, false},
        {"asked", true, false, false, true, true},
        {"a hidden file stays", true, true, false, false, true},
        {"a linked Cask is no container", true, false, true, true, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        CacheFixture cache;
        const QString item = cache.file(QStringLiteral("downloads/aa--x"), 8192);
        if (c.hiddenFileInDownloads)
            cache.file(QStringLiteral("downloads/.keep"), 0);
        if (c.caskIsALink)
            cache.link(QStringLiteral("Cask"), cache.outside(QString()));
        else
            cache.folder(QStringLiteral("Cask"));
        const qint64 containers = (c.downloadsGone ? blocks({cache.path(QStringLiteral("downloads"))}) : 0)
            + (c.caskGone ? blocks({cache.path(QStringLiteral("Cask"))}) : 0);
        Cleaner cleaner(cache);
        const auto result
            = cleaner->deleteEntries({entry(QStringLiteral("x"), {item})}, cache.root(), c.removeEmptyContainers);
        EXPECT_TRUE(result.failures.empty());
        EXPECT_EQ(result.reclaimedSize, 8192 + containers);
        EXPECT_EQ(cache.exists(QStringLiteral("downloads")), !c.downloadsGone);
        EXPECT_EQ(cache.exists(QStringLiteral("Cask")), !c.caskGone);
    }
}

TEST(HomebrewCacheCleanerTest, AFailedRemovalIsReportedAndAddsNothing)
{
    CacheFixture cache;
    const QString stuck = cache.file(QStringLiteral("locked/item"), 16384);
    const QString free = cache.file(QStringLiteral("free.zip"), 8192);
    cache.tree().chmod(QStringLiteral("home/Library/Caches/Homebrew/locked"), 0555);
    const PermissionsApply permissions;
    if (!permissions.active())
        GTEST_SKIP() << "file permissions cannot be made to apply to this root thread";

    Cleaner cleaner(cache);
    const auto result = cleaner->deleteEntries(
        {entry(QStringLiteral("stuck"), {stuck}), entry(QStringLiteral("free"), {free})}, cache.root(), false);
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_EQ(result.failures.front().itemName, QStringLiteral("item"));
    EXPECT_TRUE(result.failures.front().message.contains(QStringLiteral("Permission denied")))
        << qPrintable(result.failures.front().message);
    EXPECT_EQ(result.reclaimedSize, 8192) << "measured, not removed, not counted";
    EXPECT_EQ(result.deletedEntryCount, 1);
    EXPECT_TRUE(QFile::exists(stuck));
}
