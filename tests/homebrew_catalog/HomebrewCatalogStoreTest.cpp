#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTcpServer>
#include <QThread>

#include <gtest/gtest.h>

#include "CatalogFixtures.h"
#include "CatalogServiceFixture.h"
#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;
using Fixture = CatalogServiceFixture;

namespace {

const QString refreshFailed = u"Some Homebrew data could not be updated. Cached data is shown when available."_s;
const QString validatedManifest = u"proxy-v1-validated-catalog-manifest.json"_s;

const QList<Fixture::Formula> formulaeA {
    {u"wget"_s, u"Internet file retriever"_s},
    {u"curl"_s, u"Get a file from an HTTP server"_s, u"8.5.0"_s, 1},
    {u"openssl@3"_s, u"Cryptography and SSL/TLS Toolkit"_s},
};
const QList<Fixture::Cask> casksA {
    {u"firefox"_s, u"Mozilla Firefox"_s, u"Web browser"_s},
    {u"iterm2"_s, u"iTerm2"_s, u"Terminal emulator"_s},
};

// A store as the application builds it, on a cache folder and settings file under `root`.
struct StoreUnderTest
{
    StoreUnderTest(const QString& base, const QString& root, QDateTime* clock)
        : defaults(root + u"/settings.ini"_s)
        , store(makeCatalogStore(base, root + u"/cache"_s, defaults, clock))
    {
    }

    bool idle() const
    {
        return store->hasLoaded() && !store->hasLoadTask() && !store->isRefreshing() && !store->isLoading()
            && !store->isFiltering();
    }

    bool waitForCatalog() const
    {
        return waitUntil([&] { return idle() && store->catalogGeneration() > 0; });
    }

    SettingsDefaults defaults;
    std::unique_ptr<HomebrewCatalogStore> store;
};

QString snapshotCacheName(const QString& id, HomebrewCatalogKind kind)
{
    return HomebrewEndpoint::catalogSnapshot(kind, u"/v1/catalog/snapshots/%1/%2.json"_s.arg(id, rawValue(kind)))
               .cacheStem()
        + u".json"_s;
}

bool settle(const HomebrewCatalogStore& store, const QFuture<void>& future)
{
    return waitUntil([&] { return future.isFinished() && !store.isFiltering(); }, 15000);
}

class CatalogStoreTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        service.publish(u"A"_s, formulaeA, casksA, {{u"curl"_s, u"1,444,028"_s}, {u"wget"_s, u"98,765"_s}});
    }

    std::unique_ptr<StoreUnderTest> storeAt(const QString& base)
    {
        return std::make_unique<StoreUnderTest>(base, tree.root(), &clock);
    }
    QString cacheFile(const QString& name) const { return tree.path(u"cache/"_s + name); }
    bool cached(const QString& id, HomebrewCatalogKind kind) const
    {
        return QFile::exists(cacheFile(snapshotCacheName(id, kind)));
    }

    Fixture service;
    TempTree tree;
    const QDateTime start = QDateTime::fromSecsSinceEpoch(1750000000, Qt::UTC);
    QDateTime clock = start;
};

} // namespace

TEST_F(CatalogStoreTest, FirstLoadThenNotModifiedRoundThenANewPair)
{
    auto s = storeAt(service.baseURL());
    HomebrewCatalogStore& store = *s->store;

    QSignalSpy generations(&store, &HomebrewCatalogStore::catalogGenerationChanged);
    store.loadIfNeeded();
    store.loadIfNeeded(); // a second call while loading starts nothing
    ASSERT_TRUE(s->waitForCatalog());
    EXPECT_FALSE(store.refreshErrorMessage().has_value());
    // Installs first, the unknown count last; curl's summary version carries its revision.
    EXPECT_EQ(identifiers(store.formulae()), strings({"curl", "wget", "openssl@3"}));
    EXPECT_EQ(store.formulae()[0].analytics.thirtyDays, 1444028);
    EXPECT_EQ(store.formulae()[0].version, u"8.5.0_1");
    EXPECT_EQ(identifiers(store.casks()), strings({"iterm2", "firefox"}));
    EXPECT_EQ(store.summariesByRoute().size(), 5);
    EXPECT_EQ(store.summary({HomebrewCatalogKind::cask, u"firefox"_s})->displayName, u"Mozilla Firefox");
    EXPECT_EQ(store.lastCheckDate(), clock);
    EXPECT_EQ(store.lastSuccessfulRefreshDate(), clock);
    EXPECT_EQ(service.requests().size(), 3);
    EXPECT_TRUE(readFile(cacheFile(validatedManifest)).contains("\"snapshotID\":\"A\""));

    // Within a day nothing more is asked.
    store.loadIfNeeded();
    EXPECT_FALSE(store.hasLoadTask());

    // Force refresh still sends validators; every answer is a 304 and the catalog is applied again.
    const qint64 before = store.catalogGeneration();
    ASSERT_TRUE(settle(store, store.forceRefresh()));
    ASSERT_EQ(service.requests().size(), 6);
    for (int i = 3; i < 6; ++i)
        EXPECT_FALSE(service.requests()[i].ifNoneMatch.isEmpty()) << service.requests()[i].path.toStdString();
    EXPECT_GT(store.catalogGeneration(), before);
    EXPECT_EQ(identifiers(store.formulae()), strings({"curl", "wget", "openssl@3"}));

    // A new pair replaces the catalog and the stale snapshot files.
    service.publish(u"B"_s, formulaeA.mid(0, 2), casksA + QList<Fixture::Cask> {{u"zoom"_s, u"Zoom"_s, {}}});
    ASSERT_TRUE(settle(store, store.forceRefresh()));
    EXPECT_FALSE(store.refreshErrorMessage().has_value());
    EXPECT_EQ(store.allFormulae().size(), 2);
    EXPECT_EQ(store.casks().size(), 3);
    EXPECT_FALSE(store.summary({HomebrewCatalogKind::formula, u"openssl@3"_s}).has_value());
    EXPECT_TRUE(readFile(cacheFile(validatedManifest)).contains("\"snapshotID\":\"B\""));
    EXPECT_FALSE(cached(u"A"_s, HomebrewCatalogKind::formula));
    EXPECT_TRUE(cached(u"B"_s, HomebrewCatalogKind::cask));
    EXPECT_GE(generations.count(), 3);

    // A new start reads the verified cache; it asks again only once a whole day has passed.
    for (const qint64 hoursLater : {23, 24}) {
        SCOPED_TRACE(hoursLater);
        clock = start.addSecs(hoursLater * 3600);
        const qsizetype askedBefore = service.requests().size();
        auto next = storeAt(service.baseURL());
        next->store->loadIfNeeded();
        ASSERT_TRUE(next->waitForCatalog());
        EXPECT_EQ(next->store->allFormulae().size(), 2);
        EXPECT_EQ(service.requests().size() > askedBefore, hoursLater == 24);
        EXPECT_FALSE(next->store->refreshErrorMessage().has_value());
    }
}

TEST_F(CatalogStoreTest, ARefreshToABrokenPairKeepsTheOldCatalogAndItsFiles)
{
    // Each row publishes a new pair and breaks it: the server dies between the two snapshots,
    // or serves a snapshot altered by one byte (same size: only the hash can tell).
    struct Row
    {
        const char* name;
        const char* id;
        bool dies;
    };
    for (const Row& row : {Row {"server dies", "B", true}, Row {"one byte altered", "C", false}}) {
        SCOPED_TRACE(row.name);
        const QString id = QString::fromLatin1(row.id);
        DyingProxy proxy(static_cast<quint16>(QUrl(service.baseURL()).port()));
        auto s = storeAt(u"http://127.0.0.1:%1"_s.arg(proxy.port()));
        HomebrewCatalogStore& store = *s->store;
        store.loadIfNeeded();
        ASSERT_TRUE(s->waitForCatalog());
        const QByteArray validatedBefore = readFile(cacheFile(validatedManifest));
        const auto formulaeBefore = store.formulae();

        service.publish(id, formulaeA.mid(1), casksA.mid(1));
        if (row.dies) {
            proxy.dieOnRequestFor(u"/v1/catalog/snapshots/%1/cask.json"_s.arg(id).toUtf8());
        } else {
            const QString served = service.snapshotFile(id, u"cask"_s);
            QByteArray bytes = readFile(served);
            const qsizetype at = bytes.indexOf("iTerm2");
            ASSERT_GE(at, 0);
            bytes[at] = 'J';
            QFile::remove(served);
            QFile file(served);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        ASSERT_TRUE(settle(store, store.forceRefresh()));
        EXPECT_EQ(proxy.hasDied(), row.dies);
        EXPECT_EQ(store.refreshErrorMessage(), refreshFailed);
        EXPECT_EQ(store.formulae(), formulaeBefore);
        EXPECT_EQ(store.allCasks().size(), 2);
        EXPECT_EQ(readFile(cacheFile(validatedManifest)), validatedBefore);
        EXPECT_TRUE(validatedBefore.contains("\"snapshotID\":\"A\""));
        // The fetched manifest already follows the server; the broken snapshot is never written.
        EXPECT_TRUE(
            readFile(cacheFile(u"proxy-v1-catalog-manifest.json"_s)).contains("\"snapshotID\":\"" + id.toUtf8()));
        EXPECT_FALSE(cached(id, HomebrewCatalogKind::cask));
        EXPECT_TRUE(cached(u"A"_s, HomebrewCatalogKind::cask));
        // The failed attempt counts as a check: no retry from loadIfNeeded within the day.
        EXPECT_EQ(store.lastCheckDate(), clock);
        store.loadIfNeeded();
        EXPECT_FALSE(store.hasLoadTask());
    }
}

TEST_F(CatalogStoreTest, CorruptCacheAtStartShowsItsMessageAndStillRefreshes)
{
    {
        auto first = storeAt(service.baseURL());
        first->store->loadIfNeeded();
        ASSERT_TRUE(first->waitForCatalog());
    }
    // Same size, one byte different: only the hash can tell.
    const QString cachedFormulae = cacheFile(snapshotCacheName(u"A"_s, HomebrewCatalogKind::formula));
    QByteArray bytes = readFile(cachedFormulae);
    bytes[bytes.indexOf("wget")] = 'W';
    tree.writeFile(u"cache/"_s + QFileInfo(cachedFormulae).fileName(), bytes);
    tree.writeFile(u"cache/refresh-state.json"_s, "{\"lastCheckDate\":");

    // Offline: the refresh that follows fails too, and nothing is on show.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const QString deadBase = u"http://127.0.0.1:%1"_s.arg(closed.serverPort());
    closed.close();
    auto offline = storeAt(deadBase);
    QStringList messages;
    QObject::connect(offline->store.get(), &HomebrewCatalogStore::changed, offline->store.get(), [&] {
        const auto& message = offline->store->refreshErrorMessage();
        if (message && (messages.isEmpty() || messages.last() != *message))
            messages.append(*message);
    });
    offline->store->loadIfNeeded();
    ASSERT_TRUE(waitUntil([&] { return offline->idle() && !messages.isEmpty() && messages.last() == refreshFailed; }));
    EXPECT_EQ(messages.first(), u"The cached Homebrew data could not be read.");
    EXPECT_TRUE(offline->store->allFormulae().isEmpty());
    EXPECT_FALSE(offline->store->lastSuccessfulRefreshDate().has_value());
    EXPECT_FALSE(offline->store->catalogHasPackages(HomebrewCatalogKind::cask));
    // Online, the service answers the snapshot requests with 304, and the corrupt cached body
    // fails its check again: a 304 is never taken on trust.
    auto online = storeAt(service.baseURL());
    online->store->loadIfNeeded();
    ASSERT_TRUE(waitUntil([&] { return online->idle() && online->store->refreshErrorMessage() == refreshFailed; }));
    EXPECT_TRUE(online->store->allFormulae().isEmpty());
    // The catalog is empty, so the next appearance tries again at once; a new pair heals it.
    service.publish(u"B"_s, formulaeA, casksA);
    online->store->loadIfNeeded();
    ASSERT_TRUE(online->waitForCatalog());
    EXPECT_FALSE(online->store->refreshErrorMessage().has_value());
    EXPECT_EQ(online->store->allFormulae().size(), 3);
}

TEST_F(CatalogStoreTest, DestroyingTheStoreAtAnyPointOfALoadIsSafe)
{
    // Quitting can come at any moment of a load: during the manifest, the two snapshot
    // fetches, their validation or the cache writes. Each round stops one event later.
    for (int turns = 0; turns < 60; ++turns) {
        SCOPED_TRACE(turns);
        TempTree fresh;
        auto s = std::make_unique<StoreUnderTest>(service.baseURL(), fresh.root(), &clock);
        s->store->loadIfNeeded();
        for (int i = 0; i < turns && !s->idle(); ++i) {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            QThread::usleep(200);
        }
        s.reset();
        QCoreApplication::processEvents(); // anything still queued must find nothing to touch
    }
}
