#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "CacheFixture.h"
#include "foundation/LocalizedText.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheScanner.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

qint64 blocks(const QString& path)
{
    return TempTree::allocatedBytes(path);
}

} // namespace

TEST(HomebrewCacheScannerTest, ParsesCacheNamesIntoPackageAndVersion)
{
    struct Case
    {
        const char* name;
        bool isCask;
        const char* package; // nullptr: no package
        const char* version;
    };
    const Case cases[] = {
        {"wget--1.24.5.arm64_sonoma.bottle.tar.gz", false, "wget", "1.24.5"},
        {"wget_bottle_manifest--1.24.5.bottle_manifest.json", false, "wget", "1.24.5"},
        {"wget--1.24.5.arm64_sonoma.bottle.1.tar.gz", false, "wget", "1.24.5"},
        {"foo--2.0.all.bottle.tar.gz", false, "foo", "2.0"},
        {"python@3.12--3.12.1.x86_64_linux.bottle.tar.gz", false, "python@3.12", "3.12.1"},
        {"firefox--120.0.dmg", true, "firefox", "120.0"},
        // Casks keep "_bottle_manifest" in their token; only formula names lose it.
        {"odd_bottle_manifest--1.0.zip", true, "odd_bottle_manifest", "1.0"},
        {"_bottle_manifest--1.0.json", false, nullptr, nullptr},
        // The long ".incomplete" forms go whole; the short one alone would leave ".tar.gz".
        {"git--2.43.0.tar.gz.incomplete", false, "git", "2.43.0"},
        {"git--2.43.0.arm64_sonoma.bottle.tar.gz.incomplete", false, "git", "2.43.0"},
        {"jq_bottle_manifest--1.7.1.bottle_manifest.json.incomplete", false, "jq", "1.7.1"},
        {"zstd--1.5.tar.zst.incomplete", false, "zstd", "1.5"},
        {"blob--7.incomplete", false, "blob", "7"},
        // At most one suffix goes.
        {"lz--1.0.gz.tar.gz", false, "lz", "1.0.gz"},
        {"xz--5.4.tar.xz.xz", false, "xz", "5.4.tar.xz"},
        // The first marker of the list wins, at its last occurrence.
        {"m--1.0.all.arm64_sonoma", false, "m", "1.0.all"},
        {"m--1.0.arm64_a.arm64_b", false, "m", "1.0.arm64_a"},
        {"m--1.0.x86_64_linux.all", false, "m", "1.0"},
        // Only the first and last parts count.
        {"git--html--2.5.2.tar.xz", false, "git", "2.5.2"},
        {"git--git", false, "git", "git"},
        {"fmt--12.1.0", false, "fmt", "12.1.0"},
        // Separators are taken from the left: an odd dash stays with the next part.
        {"tri---1.0.tar.gz", false, "tri", "-1.0"},
        {"quad----2.0.tar.gz", false, "quad", "2.0"},
        {"edge--mid---3.0.zip", true, "edge", "-3.0"},
        // Not packages.
        {"portable-ruby-4.0.5_1.arm64_big_sur.bottle.tar.gz", false, nullptr, nullptr},
        {".DS_Store", false, nullptr, nullptr},
        {"--1.0.tar.gz", false, nullptr, nullptr},
        {"foo--", false, nullptr, nullptr},
        {"foo--.tar.gz", false, nullptr, nullptr},
        {"foo--.arm64_sonoma.bottle.tar.gz", false, nullptr, nullptr},
        {"foo--.all", false, nullptr, nullptr},
        {"foo-1.0", false, nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto parsed = HomebrewCacheScanner::parseCacheName(QString::fromUtf8(c.name), c.isCask);
        if (!c.package) {
            EXPECT_FALSE(parsed.has_value()) << qPrintable(parsed->first) << " " << qPrintable(parsed->second);
            continue;
        }
        ASSERT_TRUE(parsed.has_value());
        EXPECT_EQ(parsed->first, QString::fromUtf8(c.package));
        EXPECT_EQ(parsed->second, QString::fromUtf8(c.version));
    }
}

TEST(HomebrewCacheScannerTest, AcceptsOnlyTheExpectedRealFolder)
{
    CacheFixture cache;
    cache.tree().mkdir(QStringLiteral("home/Library/Caches/HomebrewX"));
    cache.tree().writeFile(QStringLiteral("plain"), "x");
    const HomebrewCacheScanner scanner = cache.scanner();
    const QString invalid = QStringLiteral("Choose the default Homebrew cache folder at ~/Library/Caches/Homebrew.");
    const QString inaccessible = QStringLiteral("The selected Homebrew cache folder must be readable and writable.");
    struct Case
    {
        const char* label;
        QString root;
        std::optional<HomebrewCacheScannerError> error;
    };
    const Case cases[] = {
        {"the root", cache.root(), std::nullopt},
        {"the root, unclean", cache.root() + QStringLiteral("/../Homebrew/./"), std::nullopt},
        {"its parent", cache.tree().path(QStringLiteral("home/Library/Caches")),
         HomebrewCacheScannerError::invalidRoot},
        {"a child", cache.folder(QStringLiteral("downloads")), HomebrewCacheScannerError::invalidRoot},
        {"a look-alike", cache.tree().path(QStringLiteral("home/Library/Caches/HomebrewX")),
         HomebrewCacheScannerError::invalidRoot},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        const auto failure = scanner.validateRoot(c.root);
        ASSERT_EQ(failure.has_value(), c.error.has_value());
        if (failure) {
            EXPECT_EQ(failure->error, c.error);
            EXPECT_EQ(failure->description, invalid);
            const HomebrewCacheScanResult scanned = scanner.scan(c.root);
            ASSERT_TRUE(scanned.failure.has_value());
            EXPECT_TRUE(scanned.entries.empty());
        }
    }

    // The expected path itself, but a link to a real cache or no folder at all.
    CacheFixture linked;
    linked.tree().mkdir(QStringLiteral("elsewhere"));
    QDir(linked.root()).removeRecursively();
    linked.tree().symlink(QStringLiteral("home/Library/Caches/Homebrew"),
                          linked.tree().path(QStringLiteral("elsewhere")));
    auto failure = linked.scanner().validateRoot(linked.root());
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->error, HomebrewCacheScannerError::rootIsNotAccessible);
    EXPECT_EQ(failure->description, inaccessible);

    QFile::remove(linked.root());
    linked.tree().writeFile(QStringLiteral("home/Library/Caches/Homebrew"), "not a folder");
    failure = linked.scanner().validateRoot(linked.root());
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->error, HomebrewCacheScannerError::rootIsNotAccessible);

    QFile::remove(linked.root());
    failure = linked.scanner().validateRoot(linked.root());
    ASSERT_TRUE(failure.has_value());
    EXPECT_EQ(failure->error, HomebrewCacheScannerError::rootIsNotAccessible);
}

TEST(HomebrewCacheScannerTest, EmptyCacheYieldsNoEntriesAndNoOutline)
{
    CacheFixture cache;
    const auto entries = cache.scan();
    EXPECT_TRUE(entries.empty());
    EXPECT_TRUE(HomebrewCacheScanner::makeOutline(entries).empty());
    // Empty containers belong to nobody either.
    cache.folder(QStringLiteral("downloads"));
    cache.folder(QStringLiteral("Cask"));
    EXPECT_TRUE(cache.scan().empty());
}

TEST(HomebrewCacheScannerTest, SortsLinksIntoPackagesSharedAndUnrecognized)
{
    CacheFixture cache;
    // wget: a relative bottle link and an absolute manifest link merge into one entry.
    const QString bottle = cache.file(QStringLiteral("downloads/aa11--wget--1.0.arm64_sonoma.bottle.tar.gz"), 40960);
    const QString manifest = cache.file(QStringLiteral("downloads/bb22--wget_bottle_manifest--1.0.json"), 4096);
    const QString wgetLink = cache.link(QStringLiteral("wget--1.0.arm64_sonoma.bottle.tar.gz"),
                                        QStringLiteral("downloads/aa11--wget--1.0.arm64_sonoma.bottle.tar.gz"));
    const QString manifestLink = cache.link(QStringLiteral("wget_bottle_manifest--1.0.bottle_manifest.json"), manifest);
    // firefox as a cask (link from Cask/ with ../) and as a formula of the same name.
    const QString dmg = cache.file(QStringLiteral("downloads/cc33--Firefox 120.0.dmg"), 81920);
    const QString caskLink
        = cache.link(QStringLiteral("Cask/firefox--120.0.dmg"), QStringLiteral("../downloads/cc33--Firefox 120.0.dmg"));
    const QString formulaFile = cache.file(QStringLiteral("firefox--120.0.tar.gz"), 8192);
    // Two versions of node point at one download: it belongs to neither.
    const QString shared = cache.file(QStringLiteral("downloads/dd44--node.tar.gz"), 12288);
    const QString node1 = cache.link(QStringLiteral("node--1.0.tar.gz"), QStringLiteral("downloads/dd44--node.tar.gz"));
    const QString node2 = cache.link(QStringLiteral("node--1.1.tar.gz"), shared);
    // Suspect links: dangling, out of the cache, into Cask/, and through a link in downloads/.
    const QString dangling = cache.link(QStringLiteral("curl--8.0.tar.gz"), QStringLiteral("downloads/missing"));
    const QString secret = cache.outsideFile(QStringLiteral("secret.tar.gz"), 65536);
    const QString outLink = cache.link(QStringLiteral("jq--1.7.tar.gz"), secret);
    const QString caskTarget = cache.file(QStringLiteral("Cask/zsh-blob"), 4096);
    const QString intoCask = cache.link(QStringLiteral("zsh--5.9.tar.gz"), QStringLiteral("Cask/zsh-blob"));
    const QString relay = cache.link(QStringLiteral("downloads/ee55--relay"), secret);
    const QString viaRelay = cache.link(QStringLiteral("evil--1.0.tar.gz"), QStringLiteral("downloads/ee55--relay"));
    const QString sibling = cache.file(QStringLiteral("downloads-old/ff66--x"), 4096);
    const QString toSibling = cache.link(QStringLiteral("sib--1.0.tar.gz"), QStringLiteral("downloads-old/ff66--x"));
    // Left-overs and unrecognized items.
    const QString stray = cache.file(QStringLiteral("downloads/0123abcd--stray.zip"), 4096);
    const QString hidden = cache.file(QStringLiteral("downloads/.hidden"), 4096);
    const QString caskStray = cache.file(QStringLiteral("Cask/no-version.zip"), 4096);
    const QString api = cache.file(QStringLiteral("api/formula.jws.json"), 20480);
    const QString dsStore = cache.file(QStringLiteral(".DS_Store"), 4096);
    const QString legacy = cache.file(QStringLiteral("foo--.tar.gz"), 4096);

    const auto entries = cache.scan();
    const QString root = cache.root();
    const QStringList expectedOrder {
        QStringLiteral("package:cask:firefox:120.0"), QStringLiteral("package:formula:curl:8.0"),
        QStringLiteral("package:formula:evil:1.0"),   QStringLiteral("package:formula:firefox:120.0"),
        QStringLiteral("package:formula:jq:1.7"),     QStringLiteral("package:formula:node:1.0"),
        QStringLiteral("package:formula:node:1.1"),   QStringLiteral("package:formula:sib:1.0"),
        QStringLiteral("package:formula:wget:1.0"),   QStringLiteral("package:formula:zsh:5.9"),
        QStringLiteral("other:shared-downloads"),     QStringLiteral("other:unrecognized-downloads"),
        QStringLiteral("other:unrecognized-cask"),
    };
    QStringList ids = entryIds(entries);
    ASSERT_GE(ids.size(), expectedOrder.size());
    EXPECT_EQ(ids.mid(0, expectedOrder.size()), expectedOrder);
    // Left-overs follow in listing order, which the system decides.
    EXPECT_EQ(pathSet(ids.mid(expectedOrder.size())),
              (QSet<QString> {QStringLiteral("other:path:") + root + QStringLiteral("/api"),
                              QStringLiteral("other:path:") + root + QStringLiteral("/.DS_Store"),
                              QStringLiteral("other:path:") + root + QStringLiteral("/foo--.tar.gz"),
                              QStringLiteral("other:path:") + root + QStringLiteral("/downloads-old")}));

    struct Expectation
    {
        const char* id;
        QStringList paths;
        bool hasIssue;
        qint64 size;
    };
    const Expectation expectations[] = {
        {"package:formula:wget:1.0",
         {wgetLink, bottle, manifestLink, manifest},
         false,
         blocks(wgetLink) + blocks(bottle) + blocks(manifestLink) + blocks(manifest)},
        {"package:cask:firefox:120.0", {caskLink, dmg}, false, blocks(caskLink) + blocks(dmg)},
        {"package:formula:firefox:120.0", {formulaFile}, false, blocks(formulaFile)},
        {"package:formula:node:1.0", {node1}, false, blocks(node1)},
        {"package:formula:node:1.1", {node2}, false, blocks(node2)},
        {"other:shared-downloads", {root + QStringLiteral("/downloads/dd44--node.tar.gz")}, false, blocks(shared)},
        {"package:formula:curl:8.0", {dangling}, true, blocks(dangling)},
        {"package:formula:jq:1.7", {outLink}, true, blocks(outLink)},
        {"package:formula:zsh:5.9", {intoCask}, true, blocks(intoCask)},
        {"package:formula:evil:1.0", {viaRelay}, true, blocks(viaRelay)},
        {"package:formula:sib:1.0", {toSibling}, true, blocks(toSibling)},
        {"other:unrecognized-downloads", {stray, hidden, relay}, false, blocks(stray) + blocks(hidden) + blocks(relay)},
        // Cask/zsh-blob has no version: unrecognized, though a formula link points at it.
        {"other:unrecognized-cask", {caskStray, caskTarget}, false, blocks(caskStray) + blocks(caskTarget)},
    };
    for (const Expectation& e : expectations) {
        SCOPED_TRACE(e.id);
        const HomebrewCacheEntry* entry = findEntry(entries, QLatin1String(e.id));
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(pathSet(entry->paths), pathSet(e.paths));
        EXPECT_EQ(entry->paths.size(), e.paths.size()) << "no path twice";
        EXPECT_EQ(entry->hasIssue, e.hasIssue);
        EXPECT_EQ(entry->allocatedSize, e.size);
        EXPECT_FALSE(entry->isIncomplete);
    }
    const HomebrewCacheEntry* wget = findEntry(entries, QStringLiteral("package:formula:wget:1.0"));
    EXPECT_EQ(wget->category, HomebrewCacheCategory::formula);
    EXPECT_EQ(wget->packageIdentifier, QStringLiteral("wget"));
    EXPECT_EQ(wget->version, QStringLiteral("1.0"));
    EXPECT_EQ(wget->displayName, QStringLiteral("wget"));
    const HomebrewCacheEntry* sharedEntry = findEntry(entries, QStringLiteral("other:shared-downloads"));
    EXPECT_EQ(sharedEntry->displayName, QStringLiteral("Shared Downloads"));
    EXPECT_FALSE(sharedEntry->packageIdentifier.has_value());
    EXPECT_EQ(findEntry(entries, QStringLiteral("package:cask:firefox:120.0"))->category, HomebrewCacheCategory::cask);
    EXPECT_EQ(findEntry(entries, QStringLiteral("other:path:") + root + QStringLiteral("/.DS_Store"))->displayName,
              QStringLiteral(".DS_Store"));

    // Nothing outside the cache is ever an entry's path, and every byte in it is counted once.
    qint64 total = 0;
    for (const HomebrewCacheEntry& entry : entries) {
        for (const QString& path : entry.paths)
            EXPECT_FALSE(path.startsWith(cache.outside(QString()))) << qPrintable(path);
        total += entry.allocatedSize.value_or(0);
    }
    const qint64 containers = blocks(root + QStringLiteral("/downloads")) + blocks(root + QStringLiteral("/Cask"));
    EXPECT_EQ(total, allocatedBytesBelow(root) - containers);
}

TEST(HomebrewCacheScannerTest, CountsHardLinksAndRepeatedItemsOnce)
{
    CacheFixture cache;
    const QString download = cache.file(QStringLiteral("downloads/aa--pkg--1.0.tar.gz"), 65536);
    cache.link(QStringLiteral("pkg--1.0.tar.gz"), QStringLiteral("downloads/aa--pkg--1.0.tar.gz"));
    // A second name for the same file, unclaimed, and one deep in a left-over folder.
    cache.hardlink(QStringLiteral("downloads/zz--copy"), QStringLiteral("downloads/aa--pkg--1.0.tar.gz"));
    cache.folder(QStringLiteral("left/over"));
    cache.hardlink(QStringLiteral("left/over/again"), QStringLiteral("downloads/aa--pkg--1.0.tar.gz"));
    const QString own = cache.file(QStringLiteral("left/own"), 8192);

    const auto entries = cache.scan();
    const HomebrewCacheEntry* package = findEntry(entries, QStringLiteral("package:formula:pkg:1.0"));
    const HomebrewCacheEntry* unrecognized = findEntry(entries, QStringLiteral("other:unrecognized-downloads"));
    const HomebrewCacheEntry* left
        = findEntry(entries, QStringLiteral("other:path:") + cache.path(QStringLiteral("left")));
    ASSERT_TRUE(package && unrecognized && left);
    EXPECT_EQ(package->allocatedSize, blocks(download) + blocks(cache.path(QStringLiteral("pkg--1.0.tar.gz"))));
    // The hard link was counted with the package; what is left of it here is nothing.
    EXPECT_EQ(unrecognized->allocatedSize, 0);
    EXPECT_FALSE(unrecognized->hasIssue);
    EXPECT_EQ(left->allocatedSize,
              blocks(cache.path(QStringLiteral("left"))) + blocks(cache.path(QStringLiteral("left/over")))
                  + blocks(own));
}

TEST(HomebrewCacheScannerTest, MarksIncompleteDownloadsWhereverTheyLie)
{
    CacheFixture cache;
    // Directly in the paths.
    cache.file(QStringLiteral("downloads/aa--git--2.0.tar.gz.incomplete"), 8192);
    cache.link(QStringLiteral("git--2.0.tar.gz.incomplete"),
               QStringLiteral("downloads/aa--git--2.0.tar.gz.incomplete"));
    // Deep in a measured folder.
    cache.file(QStringLiteral("partial/deeper/x.zip.incomplete"), 4096);
    // Hard link to an incomplete file counted earlier by a package entry: still incomplete.
    cache.file(QStringLiteral("downloads/bb--vim--9.0.tar.gz"), 8192);
    cache.link(QStringLiteral("vim--9.0.tar.gz"), QStringLiteral("downloads/bb--vim--9.0.tar.gz"));
    cache.hardlink(QStringLiteral("downloads/cc--late.incomplete"),
                   QStringLiteral("downloads/aa--git--2.0.tar.gz.incomplete"));

    const auto entries = cache.scan();
    struct Case
    {
        QString id;
        bool incomplete;
    };
    const Case cases[] = {
        {QStringLiteral("package:formula:git:2.0"), true},
        {QStringLiteral("package:formula:vim:9.0"), false},
        {QStringLiteral("other:path:") + cache.path(QStringLiteral("partial")), true},
        {QStringLiteral("other:unrecognized-downloads"), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.id));
        const HomebrewCacheEntry* entry = findEntry(entries, c.id);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->isIncomplete, c.incomplete);
    }
    EXPECT_EQ(findEntry(entries, QStringLiteral("other:unrecognized-downloads"))->allocatedSize, 0);
}

TEST(HomebrewCacheScannerTest, ContainersThatAreLinksOrFilesAreNotWalked)
{
    CacheFixture cache;
    cache.outsideFile(QStringLiteral("real-downloads/aa--wget--1.0.tar.gz"), 409600);
    cache.link(QStringLiteral("downloads"), cache.outside(QStringLiteral("real-downloads")));
    cache.link(QStringLiteral("wget--1.0.tar.gz"), QStringLiteral("downloads/aa--wget--1.0.tar.gz"));
    cache.file(QStringLiteral("Cask"), 4096);

    const auto entries = cache.scan();
    const QString downloadsId = QStringLiteral("other:path:") + cache.path(QStringLiteral("downloads"));
    const QString caskId = QStringLiteral("other:path:") + cache.path(QStringLiteral("Cask"));
    EXPECT_EQ(pathSet(entryIds(entries)),
              (QSet<QString> {QStringLiteral("package:formula:wget:1.0"), downloadsId, caskId}));
    // The link leads through a link out of the cache: suspect, and the download is not its.
    const HomebrewCacheEntry* wget = findEntry(entries, QStringLiteral("package:formula:wget:1.0"));
    EXPECT_TRUE(wget->hasIssue);
    EXPECT_EQ(wget->paths, QStringList {cache.path(QStringLiteral("wget--1.0.tar.gz"))});
    const HomebrewCacheEntry* downloads = findEntry(entries, downloadsId);
    EXPECT_EQ(downloads->displayName, QStringLiteral("downloads"));
    EXPECT_EQ(downloads->allocatedSize, blocks(cache.path(QStringLiteral("downloads"))));
    EXPECT_LT(*downloads->allocatedSize, 409600) << "the foreign folder is not measured";
}

TEST(HomebrewCacheScannerTest, UnreadableFoldersDegradeToIssuesNotFailures)
{
    CacheFixture cache;
    cache.file(QStringLiteral("downloads/aa--wget--1.0.tar.gz"), 8192);
    cache.link(QStringLiteral("wget--1.0.tar.gz"), QStringLiteral("downloads/aa--wget--1.0.tar.gz"));
    cache.file(QStringLiteral("Cask/firefox--1.0.dmg"), 4096);
    cache.file(QStringLiteral("locked/inside"), 65536);
    cache.tree().chmod(QStringLiteral("home/Library/Caches/Homebrew/downloads"), 0);
    cache.tree().chmod(QStringLiteral("home/Library/Caches/Homebrew/Cask"), 0);
    cache.tree().chmod(QStringLiteral("home/Library/Caches/Homebrew/locked"), 0);

    const PermissionsApply permissions;
    if (!permissions.active())
        GTEST_SKIP() << "file permissions cannot be made to apply to this root thread";
    const auto entries = cache.scan();

    // The link's target can't be checked through a closed folder: suspect, link only.
    const HomebrewCacheEntry* wget = findEntry(entries, QStringLiteral("package:formula:wget:1.0"));
    ASSERT_NE(wget, nullptr);
    EXPECT_TRUE(wget->hasIssue);
    EXPECT_EQ(wget->paths.size(), 1);

    struct Case
    {
        QString id;
        QString path;
    };
    const Case cases[] = {
        {QStringLiteral("other:unrecognized-downloads"), cache.path(QStringLiteral("downloads"))},
        {QStringLiteral("other:unrecognized-cask"), cache.path(QStringLiteral("Cask"))},
        {QStringLiteral("other:path:") + cache.path(QStringLiteral("locked")), cache.path(QStringLiteral("locked"))},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(qPrintable(c.id));
        const HomebrewCacheEntry* entry = findEntry(entries, c.id);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->paths, QStringList {c.path});
        EXPECT_TRUE(entry->hasIssue);
        // The folder's own blocks are known, so the size is present though incomplete.
        EXPECT_EQ(entry->allocatedSize, blocks(c.path));
    }
}

TEST(HomebrewCacheScannerTest, VanishedItemsHaveNoSizeAndAnIssue)
{
    CacheFixture cache;
    HomebrewCacheFileSystem::VisitedSet visited;
    const auto gone = HomebrewCacheFileSystem::measure(QStringList {cache.path(QStringLiteral("gone"))}, visited);
    EXPECT_EQ(gone.allocatedSize, 0);
    EXPECT_TRUE(gone.hasIssue);
    // An empty list is no problem at all.
    const auto none = HomebrewCacheFileSystem::measure(QStringList {}, visited);
    EXPECT_EQ(none.allocatedSize, 0);
    EXPECT_FALSE(none.hasIssue);
}

TEST(HomebrewCacheScannerTest, RealCacheNamesParseAsHomebrewMeansThem)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    QFile list(shared + QStringLiteral("/names/homebrew-cache-names.txt"));
    ASSERT_TRUE(list.open(QIODevice::ReadOnly));
    CacheFixture cache;
    QStringList lines;
    for (const QByteArray& raw : list.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        lines << line;
        cache.file(line, 4096);
    }
    ASSERT_GT(lines.size(), 60);
    // Homebrew's own links for two of the downloads, named as it names them.
    cache.link(
        QStringLiteral("automake--1.16.5.arm64_ventura.bottle.tar.gz"),
        QStringLiteral("downloads/cbd9fb298ac58ddd98b7d9b90bf3c2957d0feca6f850d40c33fe3ce714ec5ada--automake--1.16.5."
                       "arm64_ventura.bottle.tar.gz"));
    cache.link(QStringLiteral("Cask/firefox@beta--86.0b3.dmg"),
               QStringLiteral("../downloads/382608000536d61f64e4a147e764c559ce144c3f04dd0f05209549d3bf118f1a--Firefox "
                              "86.0b3.dmg"));

    const auto entries = cache.scan();
    struct Case
    {
        const char* id;
        const char* relativePath;
    };
    // Top-level names with "--" are formula links; Cask/ names are cask links; downloads
    // belong to the package whose link points there and are otherwise unrecognized.
    const Case cases[] = {
        {"package:formula:fmt:12.1.0", "fmt--12.1.0"},
        {"package:cask:claude:2.1.187", "Cask/claude--2.1.187"},
        {"package:cask:copilot-darwin-arm64.tar.gz:1.0.34", "Cask/copilot-darwin-arm64.tar.gz--1.0.34.tar.gz"},
        {"package:cask:emacs:25.3", "Cask/emacs--25.3.dmg"},
        {"package:cask:piposs:1.0.3", "Cask/piposs--1.0.3.zip"},
        {"package:cask:BlackHole2ch-0.6.1.pkg:0.6.1", "Cask/BlackHole2ch-0.6.1.pkg--0.6.1.pkg"},
        {"package:formula:git:git", "git--git"},
        {"package:formula:git:html-2.5.2", "git--html-2.5.2.tar.xz"},
        {"package:formula:git:man-2.5.2", "git--man-2.5.2.tar.xz"},
        {"package:formula:valgrind:git", "valgrind--git"},
        {"package:formula:openni2:patch-e0be30b6b9296939306155580df1ac7912d3f949.patch",
         "openni2--patch-e0be30b6b9296939306155580df1ac7912d3f949.patch"},
        {"package:formula:automake:1.16.5", "automake--1.16.5.arm64_ventura.bottle.tar.gz"},
        {"package:formula:automake:1.16.5",
         "downloads/cbd9fb298ac58ddd98b7d9b90bf3c2957d0feca6f850d40c33fe3ce714ec5ada--automake--1.16.5.arm64_ventura."
         "bottle.tar.gz"},
        {"package:cask:firefox@beta:86.0b3",
         "downloads/382608000536d61f64e4a147e764c559ce144c3f04dd0f05209549d3bf118f1a--Firefox 86.0b3.dmg"},
        {"other:unrecognized-downloads",
         "downloads/b121fce845422e8d6002e6968285593312527586ff85399b56362b64b1c4e107--Spectacle 1.2.zip"},
        {"other:unrecognized-downloads",
         "downloads/521aecca03103c46d7d9cd32bc600c97ed07b4c78b94d67cfa4e08562d920976--multipass-1.10.1+mac-Darwin.pkg"},
    };
    QSet<QString> placed;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.relativePath);
        const HomebrewCacheEntry* entry = findEntry(entries, QLatin1String(c.id));
        ASSERT_NE(entry, nullptr) << c.id;
        EXPECT_TRUE(entry->paths.contains(cache.path(QString::fromUtf8(c.relativePath))));
        EXPECT_FALSE(entry->hasIssue);
        placed << cache.path(QString::fromUtf8(c.relativePath));
    }
    // Every other real name is an item of its own at the top level (legacy flat names,
    // api/, bootsnap/, the old "Casks" folder), or an unrecognized download.
    for (const QString& line : lines) {
        const QString full = cache.path(line);
        if (placed.contains(full))
            continue;
        SCOPED_TRACE(qPrintable(line));
        const QString top = line.section(QLatin1Char('/'), 0, 0);
        const QString id = top == QLatin1String("downloads") ? QStringLiteral("other:unrecognized-downloads")
                                                             : QStringLiteral("other:path:") + cache.path(top);
        const HomebrewCacheEntry* entry = findEntry(entries, id);
        ASSERT_NE(entry, nullptr);
        EXPECT_TRUE(entry->paths.contains(top == QLatin1String("downloads") ? full : cache.path(top)));
        EXPECT_EQ(entry->category, HomebrewCacheCategory::other);
    }
}

// Thousands of items are examined on several threads while the names are sorted: the
// result must be the same as for a small cache, in the same order every time.
TEST(HomebrewCacheScannerTest, LargeCacheIsClassifiedAndMeasuredWholeAndInOrder)
{
    CacheFixture cache;
    constexpr int kFormulae = 1500;
    constexpr int kCasks = 800;
    for (int i = 0; i < kFormulae; ++i) {
        const QString version = QStringLiteral("1.%1").arg(i % 12); // 1.9 before 1.10
        const QString name = QStringLiteral("f%1--%2.arm64_sonoma.bottle.tar.gz").arg(i).arg(version);
        if (i % 100 == 7) {
            cache.link(name, QStringLiteral("downloads/missing-") + name); // dangling
            continue;
        }
        cache.file(QStringLiteral("downloads/h%1--").arg(i) + name, 4096 * (1 + i % 3));
        cache.link(name, QStringLiteral("downloads/h%1--").arg(i) + name);
    }
    // Two versions of one cask share a download: it belongs to neither.
    for (int i = 0; i < kCasks; ++i) {
        const QString target = QStringLiteral("downloads/c%1--App.dmg").arg(i / 2);
        if (i % 2 == 0)
            cache.file(target, 8192);
        cache.link(QStringLiteral("Cask/c%1--%2.dmg").arg(i / 2).arg(i % 2 == 0 ? u"2.9"_s : u"2.10"_s),
                   QStringLiteral("../") + target);
    }

    const auto entries = cache.scan();
    ASSERT_EQ(entries.size(), size_t(kFormulae + kCasks / 2 * 2 + 1)); // + shared downloads
    qsizetype formulaEntries = 0;
    qsizetype issues = 0;
    for (size_t i = 0; i < entries.size(); ++i) {
        const HomebrewCacheEntry& entry = entries[i];
        SCOPED_TRACE(qPrintable(entry.id));
        if (entry.category == HomebrewCacheCategory::formula) {
            ++formulaEntries;
            const bool dangling = entry.paths.size() == 1;
            EXPECT_EQ(entry.hasIssue, dangling);
            issues += entry.hasIssue ? 1 : 0;
        } else if (entry.category == HomebrewCacheCategory::cask) {
            EXPECT_EQ(entry.paths.size(), 1); // the link only: the download is shared
            // The same cask's 2.9 comes right before its 2.10.
            if (entry.version == u"2.9"_s) {
                ASSERT_LT(i + 1, entries.size());
                EXPECT_EQ(entries[i + 1].id, entry.id.chopped(1) + u"10"_s);
            }
        }
        if (i > 0 && entries[i - 1].category != HomebrewCacheCategory::other
            && entry.category != HomebrewCacheCategory::other) {
            EXPECT_LT(localizedStandardCompare(entries[i - 1].id, entry.id), 0);
        }
    }
    EXPECT_EQ(formulaEntries, kFormulae);
    EXPECT_EQ(issues, kFormulae / 100);
    const HomebrewCacheEntry* shared = findEntry(entries, QStringLiteral("other:shared-downloads"));
    ASSERT_TRUE(shared);
    EXPECT_EQ(shared->paths.size(), kCasks / 2);

    qint64 total = 0;
    for (const HomebrewCacheEntry& entry : entries)
        total += entry.allocatedSize.value_or(0);
    const QString root = cache.root();
    const qint64 containers = blocks(root + QStringLiteral("/downloads")) + blocks(root + QStringLiteral("/Cask"));
    EXPECT_EQ(total, allocatedBytesBelow(root) - containers);
    EXPECT_EQ(cache.scan(), entries);
}
