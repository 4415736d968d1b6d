#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "CacheFixture.h"
#include "homebrew_cache/HomebrewCacheCleaner.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

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
