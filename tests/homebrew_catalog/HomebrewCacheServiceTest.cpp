#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "homebrew_catalog/HomebrewCacheService.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {
const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);
} // namespace

TEST(HomebrewCacheServiceTest, ValidatedManifestPrunesOnlyStaleSnapshotFiles)
{
    test::TempTree tree;
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
    EXPECT_EQ(QDir(tree.root()).entryList(QDir::Files, QDir::Name),
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

    // A folder in the way makes the atomic rename fail, and then nothing is removed.
    const auto stale
        = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, u"/v1/catalog/snapshots/old/cask.json"_s);
    test::TempTree blockedTree;
    HomebrewCacheService blocked(blockedTree.root());
    ASSERT_TRUE(blocked.store(stale, "{}", {epoch, {}, {}}).ok());
    blockedTree.mkdir(u"proxy-v1-validated-catalog-manifest.json/inner"_s);
    EXPECT_FALSE(blocked.storeValidatedManifest("{}", {}).ok());
    EXPECT_TRUE(QFile::exists(blocked.bodyPath(stale)));
}
