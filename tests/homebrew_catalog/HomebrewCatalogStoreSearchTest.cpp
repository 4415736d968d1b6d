#include <QFile>

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

// A loaded store over a small published catalog.
class LoadedStore : public ::testing::Test
{
protected:
    void SetUp() override
    {
        service.publish(
            u"A"_s,
            {{u"wget"_s, u"Internet file retriever"_s},
             {u"wgetpaste"_s, u"Paste to pastebins"_s},
             {u"curl"_s, u"Get a file from an HTTP server"_s},
             {u"python@3.10"_s, u"Interpreted language"_s},
             {u"python@3.9"_s, u"Interpreted language"_s}},
            {{u"firefox"_s, u"Mozilla Firefox"_s, u"Web browser"_s}, {u"wget-gui"_s, u"Wget GUI"_s, u"Downloader"_s}},
            {{u"curl"_s, u"30"_s}, {u"wget"_s, u"20"_s}});
        defaults = std::make_unique<SettingsDefaults>(tree.path(u"settings.ini"_s));
        store = makeCatalogStore(service.baseURL(), tree.path(u"cache"_s), *defaults, &clock);
        store->loadIfNeeded();
        ASSERT_TRUE(
            waitUntil([&] { return store->hasLoaded() && !store->hasLoadTask() && store->catalogGeneration() > 0; }));
    }

    bool waitForSearch()
    {
        return waitUntil([&] { return !store->isFiltering(); });
    }

    Fixture service;
    TempTree tree;
    QDateTime clock = QDateTime::fromSecsSinceEpoch(1750000000, Qt::UTC);
    std::unique_ptr<SettingsDefaults> defaults;
    std::unique_ptr<HomebrewCatalogStore> store;
};

} // namespace

TEST_F(LoadedStore, TypingIsDebouncedOnlyTheNewestSearchPublishesAndHistoryIsKept)
{
    const qint64 catalogGeneration = store->catalogGeneration();
    const qint64 searchGeneration = store->searchResultGeneration();
    store->setSearchText(u"w"_s);
    store->setSearchText(u"wg"_s);
    store->setSearchText(u" WGET "_s);
    EXPECT_TRUE(store->isFiltering());
    EXPECT_TRUE(store->hasSearchQuery());
    ASSERT_TRUE(waitForSearch());
    EXPECT_EQ(store->searchResultGeneration(), searchGeneration + 1);
    EXPECT_EQ(store->catalogGeneration(), catalogGeneration); // the sort was current
    EXPECT_EQ(identifiers(store->formulaSearchResults()), strings({"wget", "wgetpaste"}));
    EXPECT_EQ(identifiers(store->caskSearchResults()), strings({"wget-gui"}));

    // A sort change under a live query sorts and searches again, without waiting.
    // (Its tasks may finish before the call returns, so watch the flag as it changes.)
    QList<bool> filtering;
    QObject::connect(store.get(), &HomebrewCatalogStore::changed, store.get(),
                     [&] { filtering.append(store->isFiltering()); });
    store->setSortOption(HomebrewSortOption::nameDescending);
    ASSERT_TRUE(waitForSearch());
    EXPECT_EQ(identifiers(store->formulaSearchResults()), strings({"wgetpaste", "wget"}));
    EXPECT_EQ(store->catalogGeneration(), catalogGeneration + 1);
    EXPECT_EQ(store->searchResultGeneration(), searchGeneration + 2);
    EXPECT_TRUE(filtering.contains(true));
    EXPECT_FALSE(filtering.last());

    // Names compare numbers by value; the query ignores diacritics; the version is not searched.
    store->setSortOption(HomebrewSortOption::nameAscending);
    store->setSearchText(u"1.0"_s);
    ASSERT_TRUE(waitForSearch());
    EXPECT_TRUE(store->formulaSearchResults().isEmpty());
    store->setSearchText(u"PYTH\u00d6N"_s);
    ASSERT_TRUE(waitForSearch());
    EXPECT_EQ(identifiers(store->formulaSearchResults()), strings({"python@3.9", "python@3.10"}));

    // Clearing the field empties the results at once, with no task since the sort is current.
    store->setSearchText(u"  "_s);
    EXPECT_FALSE(store->isFiltering());
    EXPECT_TRUE(store->formulaSearchResults().isEmpty());
    EXPECT_FALSE(store->hasSearchQuery());

    // A blank query is never recorded; the history keeps the newest 20 and persists.
    store->recordSearch();
    EXPECT_TRUE(store->searchHistory().isEmpty());

    for (int i = 1; i <= 21; ++i) {
        store->setSearchText(u"query %1"_s.arg(i));
        store->recordSearch();
    }
    ASSERT_EQ(store->searchHistory().size(), 20);
    EXPECT_EQ(store->searchHistory().first(), u"query 21");
    EXPECT_EQ(store->searchHistory().last(), u"query 2");

    // A new store reads the same list back; a cleared one removes the key.
    auto reopened = makeCatalogStore(service.baseURL(), tree.path(u"cache"_s), *defaults, &clock);
    EXPECT_EQ(reopened->searchHistory(), store->searchHistory());
    store->clearSearchHistory();
    EXPECT_FALSE(defaults->contains(u"homebrewCatalog.searchHistory"_s));
    ASSERT_TRUE(waitForSearch());
}

TEST_F(LoadedStore, DetailsComeFromTheCacheFirstAndRevalidateAfterADay)
{
    const HomebrewPackageRoute wget {HomebrewCatalogKind::formula, u"wget"_s};
    const auto detailRequests = [&] {
        return std::count_if(service.requests().begin(), service.requests().end(),
                             [](const auto& seen) { return seen.path.startsWith(u"/v1/details/"); });
    };

    // First open: nothing cached, an unconditional fetch. A second call while loading does nothing.
    auto first = store->loadDetail(HomebrewCatalogKind::formula, u"wget"_s);
    auto second = store->loadDetail(HomebrewCatalogKind::formula, u"wget"_s);
    EXPECT_TRUE(second.isFinished());
    EXPECT_TRUE(store->detailLoadingRoutes().contains(wget));
    ASSERT_TRUE(waitUntil([&] { return first.isFinished(); }));
    EXPECT_EQ(detailRequests(), 1);
    ASSERT_TRUE(store->detail(wget).has_value());
    EXPECT_EQ(store->detail(wget)->installCommand(), u"brew install wget");
    EXPECT_FALSE(store->detailErrors().contains(wget));

    struct Row
    {
        const char* name;
        qint64 hoursLater;
        int requests;
    };
    const QDateTime fetched = clock;
    for (const Row& row : {Row {"23 hours: no request", 23, 1}, Row {"24 hours: a conditional request", 24, 2}}) {
        SCOPED_TRACE(row.name);
        clock = fetched.addSecs(row.hoursLater * 3600);
        auto load = store->loadDetail(HomebrewCatalogKind::formula, u"wget"_s);
        ASSERT_TRUE(waitUntil([&] { return load.isFinished(); }));
        EXPECT_EQ(detailRequests(), row.requests);
        EXPECT_TRUE(store->detail(wget).has_value());
    }
    EXPECT_FALSE(service.requests().last().ifNoneMatch.isEmpty());

    // A corrupt cached file is stepped over and replaced by a good answer.
    tree.writeFile(u"cache/proxy-v1-formula-detail-wget.json"_s, "{\"name\":");
    auto repaired = store->loadDetail(HomebrewCatalogKind::formula, u"wget"_s);
    ASSERT_TRUE(waitUntil([&] { return repaired.isFinished(); }));
    EXPECT_EQ(detailRequests(), 3);
    EXPECT_TRUE(service.requests().last().ifNoneMatch.isEmpty());
    EXPECT_TRUE(readFile(tree.path(u"cache/proxy-v1-formula-detail-wget.json"_s)).startsWith("{\"name\":\"wget\""));

    // A package the service does not have: the error is kept for the page, no detail appears.
    const HomebrewPackageRoute missing {HomebrewCatalogKind::cask, u"no-such-cask"_s};
    auto absent = store->loadDetail(missing.kind, missing.identifier);
    ASSERT_TRUE(waitUntil([&] { return absent.isFinished(); }));
    EXPECT_EQ(store->detailErrors().value(missing), u"Homebrew returned HTTP status 404.");
    EXPECT_FALSE(store->detail(missing).has_value());
    EXPECT_FALSE(store->detailLoadingRoutes().contains(missing));
}
