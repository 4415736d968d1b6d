#include <QFile>

#include <gtest/gtest.h>

#include "CacheFixture.h"
#include "foundation/LocalizedText.h"
#include "homebrew_cache/HomebrewCacheScanner.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

qint64 blocks(std::initializer_list<QString> paths)
{
    qint64 total = 0;
    for (const QString& path : paths)
        total += TempTree::allocatedBytes(path);
    return total;
}

// Everything in the cache but the two container folders themselves.
qint64 cacheContentBytes(const CacheFixture& cache)
{
    return allocatedBytesBelow(cache.root()) - blocks({cache.path(u"downloads"_s), cache.path(u"Cask"_s)});
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
        // Casks keep "_bottle_manifest" in their token; only formula names lose it.
        {"odd_bottle_manifest--1.0.zip", true, "odd_bottle_manifest", "1.0"},
        {"_bottle_manifest--1.0.json", false, nullptr, nullptr},
        // The long ".incomplete" forms go whole; the short one alone would leave ".tar.gz".
        {"git--2.43.0.arm64_sonoma.bottle.tar.gz.incomplete", false, "git", "2.43.0"},
        // At most one suffix goes.
        {"lz--1.0.gz.tar.gz", false, "lz", "1.0.gz"},
        // The first marker of the list wins, at its last occurrence.
        {"m--1.0.x86_64_linux.all", false, "m", "1.0"},
        // Only the first and last parts count; separators are taken from the left.
        {"git--html--2.5.2.tar.xz", false, "git", "2.5.2"},
        {"tri---1.0.tar.gz", false, "tri", "-1.0"},
        // Not packages.
        {"portable-ruby-4.0.5_1.arm64_big_sur.bottle.tar.gz", false, nullptr, nullptr},
        {"--1.0.tar.gz", false, nullptr, nullptr},
        {"foo--.tar.gz", false, nullptr, nullptr},
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
    const HomebrewCacheScanner scanner = cache.scanner();
    struct Case
    {
        const char* label;
        QString root;
        bool valid;
    };
    const Case cases[] = {
        {"the root", cache.root(), true},
        {"the root, unclean", cache.root() + u"/../Homebrew/./"_s, true},
        {"its parent", cache.tree().path(u"home/Library/Caches"_s), false},
        {"a child", cache.folder(u"downloads"_s), false},
        {"a look-alike", cache.tree().mkdir(u"home/Library/Caches/HomebrewX"_s), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        const auto failure = scanner.validateRoot(c.root);
        ASSERT_EQ(failure.has_value(), !c.valid);
        if (failure) {
            EXPECT_EQ(failure->error, HomebrewCacheScannerError::invalidRoot);
            EXPECT_EQ(failure->description,
                      u"Choose the default Homebrew cache folder at ~/Library/Caches/Homebrew."_s);
            const HomebrewCacheScanResult scanned = scanner.scan(c.root);
            ASSERT_TRUE(scanned.failure.has_value());
            EXPECT_TRUE(scanned.entries.empty());
        }
    }
}

TEST(HomebrewCacheScannerTest, SortsLinksIntoPackagesSharedAndUnrecognized)
{
    CacheFixture cache;
    // wget: a relative bottle link and an absolute manifest link merge into one entry.
    const QString bottle = cache.file(u"downloads/aa11--wget--1.0.arm64_sonoma.bottle.tar.gz"_s, 40960);
    const QString manifest = cache.file(u"downloads/bb22--wget_bottle_manifest--1.0.json"_s);
    const QString wgetLink = cache.link(u"wget--1.0.arm64_sonoma.bottle.tar.gz"_s,
                                        u"downloads/aa11--wget--1.0.arm64_sonoma.bottle.tar.gz"_s);
    const QString manifestLink = cache.link(u"wget_bottle_manifest--1.0.bottle_manifest.json"_s, manifest);
    // firefox as a cask (link from Cask/ with ../) and as a formula of the same name.
    const QString dmg = cache.file(u"downloads/cc33--Firefox 120.0.dmg"_s, 81920);
    const QString caskLink = cache.link(u"Cask/firefox--120.0.dmg"_s, u"../downloads/cc33--Firefox 120.0.dmg"_s);
    const QString formulaFile = cache.file(u"firefox--120.0.tar.gz"_s, 8192);
    // Two versions of node point at one download: it belongs to neither.
    const QString shared = cache.file(u"downloads/dd44--node.tar.gz"_s, 12288);
    const QString node1 = cache.link(u"node--1.0.tar.gz"_s, u"downloads/dd44--node.tar.gz"_s);
    const QString node2 = cache.link(u"node--1.1.tar.gz"_s, shared);
    // Suspect links: dangling, out of the cache, into Cask/, through a link in downloads/,
    // into a look-alike of downloads/.
    const QString dangling = cache.link(u"curl--8.0.tar.gz"_s, u"downloads/missing"_s);
    const QString secret = cache.outsideFile(u"secret.tar.gz"_s, 65536);
    const QString outLink = cache.link(u"jq--1.7.tar.gz"_s, secret);
    const QString caskTarget = cache.file(u"Cask/zsh-blob"_s);
    const QString intoCask = cache.link(u"zsh--5.9.tar.gz"_s, u"Cask/zsh-blob"_s);
    const QString relay = cache.link(u"downloads/ee55--relay"_s, secret);
    const QString viaRelay = cache.link(u"evil--1.0.tar.gz"_s, u"downloads/ee55--relay"_s);
    cache.file(u"downloads-old/ff66--x"_s);
    const QString toSibling = cache.link(u"sib--1.0.tar.gz"_s, u"downloads-old/ff66--x"_s);
    // Left-overs and unrecognized items.
    const QString stray = cache.file(u"downloads/0123abcd--stray.zip"_s);
    const QString hidden = cache.file(u"downloads/.hidden"_s);
    const QString caskStray = cache.file(u"Cask/no-version.zip"_s);
    for (const QString& name : {u"api/formula.jws.json"_s, u".DS_Store"_s, u"foo--.tar.gz"_s})
        cache.file(name);
    // A second name for the wget bottle deep in a left-over folder counts nothing there.
    cache.hardlink(u"left/over/again"_s, u"downloads/aa11--wget--1.0.arm64_sonoma.bottle.tar.gz"_s);
    const QString own = cache.file(u"left/own"_s, 8192);
    // Incomplete downloads: directly in a package's paths and deep in a measured folder.
    cache.file(u"downloads/bb--git--2.0.tar.gz.incomplete"_s, 8192);
    cache.link(u"git--2.0.tar.gz.incomplete"_s, u"downloads/bb--git--2.0.tar.gz.incomplete"_s);
    cache.file(u"partial/deeper/x.zip.incomplete"_s);

    const auto entries = cache.scan();
    const QStringList ids = entryIds(entries);
    const QStringList expectedOrder {
        u"package:cask:firefox:120.0"_s,    u"package:formula:curl:8.0"_s, u"package:formula:evil:1.0"_s,
        u"package:formula:firefox:120.0"_s, u"package:formula:git:2.0"_s,  u"package:formula:jq:1.7"_s,
        u"package:formula:node:1.0"_s,      u"package:formula:node:1.1"_s, u"package:formula:sib:1.0"_s,
        u"package:formula:wget:1.0"_s,      u"package:formula:zsh:5.9"_s,  u"other:shared-downloads"_s,
        u"other:unrecognized-downloads"_s,  u"other:unrecognized-cask"_s,
    };
    ASSERT_GE(ids.size(), expectedOrder.size());
    EXPECT_EQ(ids.mid(0, expectedOrder.size()), expectedOrder);
    // Left-overs follow in listing order, which the system decides.
    QSet<QString> leftOvers;
    for (const char* name : {"api", ".DS_Store", "foo--.tar.gz", "downloads-old", "left", "partial"})
        leftOvers << u"other:path:"_s + cache.path(QLatin1String(name));
    EXPECT_EQ(pathSet(ids.mid(expectedOrder.size())), leftOvers);

    struct Expectation
    {
        const char* id;
        QStringList paths;
        bool hasIssue;
    };
    const Expectation expectations[] = {
        {"package:formula:wget:1.0", {wgetLink, bottle, manifestLink, manifest}, false},
        {"package:cask:firefox:120.0", {caskLink, dmg}, false},
        {"package:formula:firefox:120.0", {formulaFile}, false},
        {"package:formula:node:1.0", {node1}, false},
        {"package:formula:node:1.1", {node2}, false},
        {"other:shared-downloads", {cache.root() + u"/downloads/dd44--node.tar.gz"_s}, false},
        {"package:formula:curl:8.0", {dangling}, true},
        {"package:formula:jq:1.7", {outLink}, true},
        {"package:formula:zsh:5.9", {intoCask}, true},
        {"package:formula:evil:1.0", {viaRelay}, true},
        {"package:formula:sib:1.0", {toSibling}, true},
        {"other:unrecognized-downloads", {stray, hidden, relay}, false},
        // Cask/zsh-blob has no version: unrecognized, though a formula link points at it.
        {"other:unrecognized-cask", {caskStray, caskTarget}, false},
    };
    for (const Expectation& e : expectations) {
        SCOPED_TRACE(e.id);
        const HomebrewCacheEntry* entry = findEntry(entries, QLatin1String(e.id));
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(pathSet(entry->paths), pathSet(e.paths));
        EXPECT_EQ(entry->paths.size(), e.paths.size()) << "no path twice";
        EXPECT_EQ(entry->hasIssue, e.hasIssue);
        qint64 size = 0;
        for (const QString& path : e.paths)
            size += TempTree::allocatedBytes(path);
        EXPECT_EQ(entry->allocatedSize, size);
        EXPECT_FALSE(entry->isIncomplete);
    }
    const HomebrewCacheEntry* wget = findEntry(entries, u"package:formula:wget:1.0"_s);
    EXPECT_EQ(std::tuple(wget->category, wget->packageIdentifier, wget->version, wget->displayName),
              std::tuple(HomebrewCacheCategory::formula, std::optional(u"wget"_s), std::optional(u"1.0"_s), u"wget"_s));
    const HomebrewCacheEntry* sharedEntry = findEntry(entries, u"other:shared-downloads"_s);
    EXPECT_EQ(sharedEntry->displayName, u"Shared Downloads"_s);
    EXPECT_FALSE(sharedEntry->packageIdentifier.has_value());
    EXPECT_EQ(findEntry(entries, u"package:cask:firefox:120.0"_s)->category, HomebrewCacheCategory::cask);
    const QString left = cache.path(u"left"_s);
    EXPECT_EQ(findEntry(entries, u"other:path:"_s + left)->allocatedSize,
              blocks({left, cache.path(u"left/over"_s), own}));
    EXPECT_TRUE(findEntry(entries, u"package:formula:git:2.0"_s)->isIncomplete);
    EXPECT_TRUE(findEntry(entries, u"other:path:"_s + cache.path(u"partial"_s))->isIncomplete);
    EXPECT_FALSE(findEntry(entries, u"other:path:"_s + left)->isIncomplete);

    // The outline: categories in their order, packages grouped with versions newest first,
    // sums of their entries.
    const auto roots = HomebrewCacheScanner::makeOutline(entries);
    ASSERT_EQ(roots.size(), 3u);
    EXPECT_EQ(std::tuple(roots[0].title, roots[1].title, roots[2].title),
              std::tuple(u"Formula"_s, u"Cask"_s, u"Other Cache"_s));
    const auto node = std::find_if(roots[0].children->begin(), roots[0].children->end(),
                                   [](const HomebrewCacheNode& n) { return n.id == u"package-node:formula:node"_s; });
    ASSERT_NE(node, roots[0].children->end());
    ASSERT_EQ(node->children->size(), 2u);
    EXPECT_EQ(std::tuple((*node->children)[0].title, (*node->children)[1].title), std::tuple(u"1.1"_s, u"1.0"_s));
    EXPECT_EQ(node->allocatedSize,
              *findEntry(entries, u"package:formula:node:1.0"_s)->allocatedSize
                  + *findEntry(entries, u"package:formula:node:1.1"_s)->allocatedSize);
    EXPECT_EQ(roots[1].allocatedSize, findEntry(entries, u"package:cask:firefox:120.0"_s)->allocatedSize);

    // Nothing outside the cache is ever an entry's path, and every byte in it counts once.
    qint64 total = 0;
    for (const HomebrewCacheEntry& entry : entries) {
        for (const QString& path : entry.paths)
            EXPECT_FALSE(path.startsWith(cache.outside(QString()))) << qPrintable(path);
        total += entry.allocatedSize.value_or(0);
    }
    EXPECT_EQ(total, cacheContentBytes(cache));
}

TEST(HomebrewCacheScannerTest, ContainersThatAreLinksOrFilesAreNotWalked)
{
    CacheFixture cache;
    cache.outsideFile(u"real-downloads/aa--wget--1.0.tar.gz"_s, 409600);
    cache.link(u"downloads"_s, cache.outside(u"real-downloads"_s));
    cache.link(u"wget--1.0.tar.gz"_s, u"downloads/aa--wget--1.0.tar.gz"_s);
    cache.file(u"Cask"_s);

    const auto entries = cache.scan();
    const QString downloadsId = u"other:path:"_s + cache.path(u"downloads"_s);
    EXPECT_EQ(pathSet(entryIds(entries)),
              (QSet<QString> {u"package:formula:wget:1.0"_s, downloadsId, u"other:path:"_s + cache.path(u"Cask"_s)}));
    // The link leads through a link out of the cache: suspect, and the download is not its.
    const HomebrewCacheEntry* wget = findEntry(entries, u"package:formula:wget:1.0"_s);
    EXPECT_TRUE(wget->hasIssue);
    EXPECT_EQ(wget->paths, QStringList {cache.path(u"wget--1.0.tar.gz"_s)});
    const HomebrewCacheEntry* downloads = findEntry(entries, downloadsId);
    EXPECT_EQ(downloads->displayName, u"downloads"_s);
    EXPECT_EQ(downloads->allocatedSize, blocks({cache.path(u"downloads"_s)}));
    EXPECT_LT(*downloads->allocatedSize, 409600) << "the foreign folder is not measured";
}

TEST(HomebrewCacheScannerTest, RealCacheNamesParseAsHomebrewMeansThem)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    QFile list(shared + u"/names/homebrew-cache-names.txt"_s);
    ASSERT_TRUE(list.open(QIODevice::ReadOnly));
    CacheFixture cache;
    QStringList lines;
    for (const QByteArray& raw : list.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#'))) {
            lines << line;
            cache.file(line);
        }
    }
    ASSERT_GT(lines.size(), 60);
    // Homebrew's own links for two of the downloads, named as it names them.
    const QString automake = u"downloads/cbd9fb298ac58ddd98b7d9b90bf3c2957d0feca6f850d40c33fe3ce714ec5ada--automake--"
                             u"1.16.5.arm64_ventura.bottle.tar.gz"_s;
    const QString firefox
        = u"downloads/382608000536d61f64e4a147e764c559ce144c3f04dd0f05209549d3bf118f1a--Firefox 86.0b3.dmg"_s;
    cache.link(u"automake--1.16.5.arm64_ventura.bottle.tar.gz"_s, automake);
    cache.link(u"Cask/firefox@beta--86.0b3.dmg"_s, u"../"_s + firefox);

    const auto entries = cache.scan();
    // Top-level names with "--" are formula links; Cask/ names are cask links; downloads
    // belong to the package whose link points there and are otherwise unrecognized.
    const std::pair<const char*, QString> cases[] = {
        {"package:formula:fmt:12.1.0", u"fmt--12.1.0"_s},
        {"package:cask:claude:2.1.187", u"Cask/claude--2.1.187"_s},
        {"package:cask:emacs:25.3", u"Cask/emacs--25.3.dmg"_s},
        {"package:cask:BlackHole2ch-0.6.1.pkg:0.6.1", u"Cask/BlackHole2ch-0.6.1.pkg--0.6.1.pkg"_s},
        {"package:formula:git:man-2.5.2", u"git--man-2.5.2.tar.xz"_s},
        {"package:formula:valgrind:git", u"valgrind--git"_s},
        {"package:cask:piposs:1.0.3", u"Cask/piposs--1.0.3.zip"_s},
        {"package:formula:git:git", u"git--git"_s},
        {"package:formula:git:html-2.5.2", u"git--html-2.5.2.tar.xz"_s},
        {"package:formula:openni2:patch-e0be30b6b9296939306155580df1ac7912d3f949.patch",
         u"openni2--patch-e0be30b6b9296939306155580df1ac7912d3f949.patch"_s},
        {"package:cask:copilot-darwin-arm64.tar.gz:1.0.34", u"Cask/copilot-darwin-arm64.tar.gz--1.0.34.tar.gz"_s},
        {"package:formula:automake:1.16.5", u"automake--1.16.5.arm64_ventura.bottle.tar.gz"_s},
        {"package:formula:automake:1.16.5", automake},
        {"package:cask:firefox@beta:86.0b3", firefox},
        {"other:unrecognized-downloads",
         u"downloads/b121fce845422e8d6002e6968285593312527586ff85399b56362b64b1c4e107--Spectacle 1.2.zip"_s},
    };
    QSet<QString> placed;
    for (const auto& [id, relative] : cases) {
        SCOPED_TRACE(qPrintable(relative));
        const HomebrewCacheEntry* entry = findEntry(entries, QLatin1String(id));
        ASSERT_NE(entry, nullptr) << id;
        EXPECT_TRUE(entry->paths.contains(cache.path(relative)));
        EXPECT_FALSE(entry->hasIssue);
        placed << cache.path(relative);
    }
    // Every other real name is an item of its own at the top level (legacy flat names,
    // api/, bootsnap/, the old "Casks" folder), or an unrecognized download.
    for (const QString& line : lines) {
        if (placed.contains(cache.path(line)))
            continue;
        SCOPED_TRACE(qPrintable(line));
        const QString top = line.section(QLatin1Char('/'), 0, 0);
        const bool download = top == u"downloads"_s;
        const HomebrewCacheEntry* entry
            = findEntry(entries, download ? u"other:unrecognized-downloads"_s : u"other:path:"_s + cache.path(top));
        ASSERT_NE(entry, nullptr);
        EXPECT_TRUE(entry->paths.contains(cache.path(download ? line : top)));
        EXPECT_EQ(entry->category, HomebrewCacheCategory::other);
    }
}
