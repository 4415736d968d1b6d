#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CatalogFixtures.h"
#include "homebrew_catalog/HomebrewCacheService.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

QStringList listing(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);

} // namespace

TEST(HomebrewCacheServiceTest, RootThatIsAFileFailsEveryOperation)
{
    TempTree tree;
    tree.writeFile(u"blocked"_s, "not a folder");
    HomebrewCacheService cache(tree.path(u"blocked/HomebrewCatalog"_s));
    EXPECT_TRUE(cache.readRefreshState().error().isFileError());
    EXPECT_FALSE(cache.store(HomebrewEndpoint::catalogManifest(), "{}", {epoch, {}, {}}).ok());
    EXPECT_FALSE(cache.hasBody(HomebrewEndpoint::catalogManifest()).ok());
}

TEST(HomebrewCacheServiceTest, TouchNeverMakesASidecarNorRepairsABrokenOne)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto endpoint = HomebrewEndpoint::catalogManifest();
    ASSERT_TRUE(cache.touch(endpoint, epoch).ok());
    EXPECT_TRUE(listing(tree.root()).isEmpty());

    tree.writeFile(u"proxy-v1-catalog-manifest.metadata.json"_s, "{broken");
    EXPECT_TRUE(cache.touch(endpoint, epoch.addSecs(3600)).error().isDecodingError());
    EXPECT_EQ(readFile(tree.path(u"proxy-v1-catalog-manifest.metadata.json"_s)), "{broken");
}

TEST(HomebrewCacheServiceTest, RefreshStateKeepsTheOtherDateAndStaysCorrupt)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const QDateTime check = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
    const auto afterCheck = cache.recordCheck(check);
    ASSERT_TRUE(afterCheck.ok());
    EXPECT_EQ(readFile(tree.path(u"refresh-state.json"_s)), "{\"lastCheckDate\":721692800.0}");

    const auto afterSuccess = cache.recordSuccess(check.addSecs(10));
    ASSERT_TRUE(afterSuccess.ok());
    EXPECT_EQ(afterSuccess.value().lastCheckDate, check);
    EXPECT_EQ(afterSuccess.value().lastSuccessfulRefreshDate, check.addSecs(10));
    EXPECT_EQ(cache.readRefreshState().value(), afterSuccess.value());

    tree.writeFile(u"refresh-state.json"_s, "{\"lastCheckDate\":\"yesterday\"}");
    EXPECT_FALSE(cache.readRefreshState().ok());
    EXPECT_FALSE(cache.recordCheck(check).ok());
    EXPECT_FALSE(cache.recordSuccess(check).ok());
    EXPECT_EQ(readFile(tree.path(u"refresh-state.json"_s)), "{\"lastCheckDate\":\"yesterday\"}");
}

TEST(HomebrewCacheServiceTest, ValidatedManifestPrunesOnlyStaleSnapshotFiles)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto formulaA
        = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula, u"/v1/catalog/snapshots/A/formula.json"_s);
    const auto caskA
        = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, u"/v1/catalog/snapshots/A/cask.json"_s);
    const auto formulaB
        = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula, u"/v1/catalog/snapshots/B/formula.json"_s);
    for (const auto& endpoint : {formulaA, caskA, formulaB})
        ASSERT_TRUE(cache.store(endpoint, "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.store(HomebrewEndpoint::formulaDetail(u"wget"_s), "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.store(HomebrewEndpoint::catalogManifest(), "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.recordCheck(epoch).ok());
    tree.writeFile(formulaA.cacheStem() + u".partial"_s, "x"); // kept stem, other extension
    tree.writeFile(u"unrelated.txt"_s, "x");

    ASSERT_TRUE(cache.storeValidatedManifest("{\"m\":1}", {formulaA, caskA}).ok());
    EXPECT_EQ(listing(tree.root()),
              (QStringList {
                  u"proxy-v1-cask-catalog--v1-catalog-snapshots-A-cask.json.json"_s,
                  u"proxy-v1-cask-catalog--v1-catalog-snapshots-A-cask.json.metadata.json"_s,
                  u"proxy-v1-catalog-manifest.json"_s,
                  u"proxy-v1-catalog-manifest.metadata.json"_s,
                  u"proxy-v1-formula-catalog--v1-catalog-snapshots-A-formula.json.json"_s,
                  u"proxy-v1-formula-catalog--v1-catalog-snapshots-A-formula.json.metadata.json"_s,
                  u"proxy-v1-formula-detail-wget.json"_s,
                  u"proxy-v1-formula-detail-wget.metadata.json"_s,
                  u"proxy-v1-validated-catalog-manifest.json"_s,
                  u"refresh-state.json"_s,
                  u"unrelated.txt"_s,
              }));
    EXPECT_EQ(cache.readValidatedManifest().value(), QByteArray("{\"m\":1}"));
}

TEST(HomebrewCacheServiceTest, FailedManifestWriteRemovesNothing)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto stale
        = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, u"/v1/catalog/snapshots/old/cask.json"_s);
    ASSERT_TRUE(cache.store(stale, "{}", {epoch, {}, {}}).ok());
    // A folder in the way makes the atomic rename fail.
    tree.mkdir(u"proxy-v1-validated-catalog-manifest.json/inner"_s);
    EXPECT_FALSE(cache.storeValidatedManifest("{}", {}).ok());
    EXPECT_TRUE(QFile::exists(cache.bodyPath(stale)));
}
