#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "CacheFixture.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QString kOutside = QStringLiteral("The cache item is outside the authorized Homebrew cache folder.");
const QString kInvalidRoot = QStringLiteral("Choose the default Homebrew cache folder at ~/Library/Caches/Homebrew.");

HomebrewCacheEntry entry(const QString& id, const QStringList& paths)
{
    HomebrewCacheEntry e;
    e.id = id;
    e.displayName = id;
    e.paths = paths;
    return e;
}

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
        {"a sibling", parent + QStringLiteral("/Other"), QStringLiteral("Other")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        HomebrewCacheCleaner cleaner(cache.root(), QLatin1String(CacheFixture::displayPath));
        const auto result = cleaner.deleteEntries(entries, c.root, true);
        EXPECT_EQ(std::tuple(result.deletedEntryCount, result.failedEntryCount, result.reclaimedSize),
                  std::tuple(0, 2, 0));
        EXPECT_EQ(result.failures, (std::vector {HomebrewCacheCleaner::Failure {c.itemName, kInvalidRoot}}));
        EXPECT_TRUE(cache.exists(QStringLiteral("downloads/aa--x")));
    }

    // The cache folder was replaced by a link to a look-alike since the scan.
    cache.outsideFile(QStringLiteral("lookalike/downloads/aa--x"), 8192);
    QDir(cache.root()).removeRecursively();
    cache.tree().symlink(QStringLiteral("home/Library/Caches/Homebrew"), cache.outside(QStringLiteral("lookalike")));
    HomebrewCacheCleaner cleaner(cache.root(), QLatin1String(CacheFixture::displayPath));
    const auto result = cleaner.deleteEntries(entries, cache.root(), true);
    EXPECT_EQ(result.failedEntryCount, 2);
    EXPECT_EQ(result.failures.size(), 1u);
    EXPECT_TRUE(QFile::exists(cache.outside(QStringLiteral("lookalike/downloads/aa--x"))));
}

TEST(HomebrewCacheCleanerTest, RefusesPathsThatAreNotInsideTheRoot)
{
    CacheFixture cache;
    const QString secret = cache.outsideFile(QStringLiteral("dir/secret"), 8192);
    cache.link(QStringLiteral("through"), cache.outside(QStringLiteral("dir")));
    const QString fine = cache.file(QStringLiteral("fine"), 4096);
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
        // Nothing is there, so the entry counts as gone, refused or not.
        {"a look-alike prefix", cache.root() + QStringLiteral("-old/x"), QStringLiteral("x"), 2, true},
        {"below a link out", cache.path(QStringLiteral("through/secret")), QStringLiteral("secret"), 1, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        HomebrewCacheCleaner cleaner(cache.root(), QLatin1String(CacheFixture::displayPath));
        const std::vector<HomebrewCacheEntry> entries {entry(QStringLiteral("bad"), {c.path}),
                                                       entry(QStringLiteral("fine"), {fine})};
        const auto result = cleaner.deleteEntries(entries, cache.root(), true);
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
        const qint64 containers
            = (c.downloadsGone ? TempTree::allocatedBytes(cache.path(QStringLiteral("downloads"))) : 0)
            + (c.caskGone ? TempTree::allocatedBytes(cache.path(QStringLiteral("Cask"))) : 0);
        HomebrewCacheCleaner cleaner(cache.root(), QLatin1String(CacheFixture::displayPath));
        const auto result
            = cleaner.deleteEntries({entry(QStringLiteral("x"), {item})}, cache.root(), c.removeEmptyContainers);
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

    HomebrewCacheCleaner cleaner(cache.root(), QLatin1String(CacheFixture::displayPath));
    const auto result = cleaner.deleteEntries(
        {entry(QStringLiteral("stuck"), {stuck}), entry(QStringLiteral("free"), {free})}, cache.root(), false);
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_EQ(result.failures.front().itemName, QStringLiteral("item"));
    EXPECT_TRUE(result.failures.front().message.contains(QStringLiteral("Permission denied")))
        << qPrintable(result.failures.front().message);
    EXPECT_EQ(result.reclaimedSize, 8192) << "measured, not removed, not counted";
    EXPECT_EQ(result.deletedEntryCount, 1);
    EXPECT_TRUE(QFile::exists(stuck));
}
