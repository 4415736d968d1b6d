#include <QDir>
#include <QFile>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "homebrew_catalog/HomebrewCacheService.h"
#include "platform/UserPaths.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList listing(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0, Qt::UTC);

} // namespace

TEST(HomebrewCacheServiceTest, MissingFolderIsMadeAndEmptyFolderGivesDefaults)
{
    TempTree tree;
    HomebrewCacheService cache(tree.path(QStringLiteral("a/b/HomebrewCatalog")));
    const auto state = cache.readRefreshState();
    ASSERT_TRUE(state.ok());
    EXPECT_EQ(state.value(), HomebrewCacheService::RefreshState {});
    EXPECT_TRUE(tree.exists(QStringLiteral("a/b/HomebrewCatalog")));
    const auto manifest = cache.readValidatedManifest();
    ASSERT_TRUE(manifest.ok());
    EXPECT_FALSE(manifest.value().has_value());
    EXPECT_EQ(HomebrewCacheService::defaultRootPath(UserPaths::forHome(tree.root())),
              tree.root() + QStringLiteral("/.cache/Quillbay/HomebrewCatalog"));
}

TEST(HomebrewCacheServiceTest, RootThatIsAFileFailsEveryOperation)
{
    TempTree tree;
    tree.writeFile(QStringLiteral("blocked"), "not a folder");
    HomebrewCacheService cache(tree.path(QStringLiteral("blocked/HomebrewCatalog")));
    EXPECT_TRUE(cache.readRefreshState().error().isFileError());
    EXPECT_FALSE(cache.store(HomebrewEndpoint::catalogManifest(), "{}", {epoch, {}, {}}).ok());
    EXPECT_FALSE(cache.hasBody(HomebrewEndpoint::catalogManifest()).ok());
}

TEST(HomebrewCacheServiceTest, StoreWritesBodyBytesAndSidecarInReferenceDateForm)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto endpoint = HomebrewEndpoint::formulaDetail(QStringLiteral("openssl@3"));
    const QByteArray body(" {\"name\" : \"openssl@3\"}\n"); // kept byte for byte, never re-encoded
    ASSERT_TRUE(cache.store(endpoint, body, {epoch, QStringLiteral("\"abc\""), std::nullopt}).ok());

    EXPECT_EQ(readAll(tree.path(QStringLiteral("proxy-v1-formula-detail-openssl@3.json"))), body);
    const QByteArray sidecar = readAll(tree.path(QStringLiteral("proxy-v1-formula-detail-openssl@3.metadata.json")));
    EXPECT_EQ(sidecar, "{\"fetchedAt\":-978307200.0,\"etag\":\"\\\"abc\\\"\"}");

    const auto metadata = cache.readMetadata(endpoint);
    ASSERT_TRUE(metadata.ok() && metadata.value().has_value());
    EXPECT_EQ(metadata.value()->fetchedAt, epoch);
    EXPECT_EQ(metadata.value()->etag, QStringLiteral("\"abc\""));
    EXPECT_FALSE(metadata.value()->lastModified.has_value());
    EXPECT_EQ(cache.bodyPath(endpoint), tree.path(QStringLiteral("proxy-v1-formula-detail-openssl@3.json")));
}

TEST(HomebrewCacheServiceTest, SidecarDecodingTable)
{
    struct Row
    {
        const char* name;
        QByteArray json;
        bool ok;
        double seconds;
        std::optional<QString> etag;
        std::optional<QString> lastModified;
    };
    const Row rows[] = {
        {"fraction kept", "{\"fetchedAt\":757382400.25}", true, 757382400.25, {}, {}},
        {"integer date",
         "{\"fetchedAt\":0,\"lastModified\":\"Mon, 01 Jan 2001 00:00:00 GMT\"}",
         true,
         0,
         {},
         QStringLiteral("Mon, 01 Jan 2001 00:00:00 GMT")},
        {"null etag is absent", "{\"fetchedAt\":1,\"etag\":null}", true, 1, {}, {}},
        {"missing fetchedAt", "{\"etag\":\"x\"}", false, 0, {}, {}},
        {"date as text", "{\"fetchedAt\":\"2001-01-01\"}", false, 0, {}, {}},
        {"etag as number", "{\"fetchedAt\":1,\"etag\":5}", false, 0, {}, {}},
        {"truncated", "{\"fetchedAt\":1", false, 0, {}, {}},
        {"not an object", "[]", false, 0, {}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const auto decoded = HomebrewCacheService::decodeMetadata(row.json);
        ASSERT_EQ(decoded.ok(), row.ok);
        if (!row.ok)
            continue;
        EXPECT_DOUBLE_EQ(HomebrewCacheService::referenceSeconds(decoded.value().fetchedAt), row.seconds);
        EXPECT_EQ(decoded.value().etag, row.etag);
        EXPECT_EQ(decoded.value().lastModified, row.lastModified);
    }
}

TEST(HomebrewCacheServiceTest, TouchMovesOnlyTheDateAndNeverMakesASidecar)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto endpoint = HomebrewEndpoint::catalogManifest();
    ASSERT_TRUE(cache.touch(endpoint, epoch).ok());
    EXPECT_TRUE(listing(tree.root()).isEmpty());

    ASSERT_TRUE(cache.store(endpoint, "{}", {epoch, QStringLiteral("e"), QStringLiteral("l")}).ok());
    const QDateTime later = epoch.addSecs(3600);
    ASSERT_TRUE(cache.touch(endpoint, later).ok());
    const auto metadata = cache.readMetadata(endpoint);
    ASSERT_TRUE(metadata.ok() && metadata.value());
    EXPECT_EQ(*metadata.value(), (HomebrewCacheService::Metadata {later, QStringLiteral("e"), QStringLiteral("l")}));

    tree.writeFile(QStringLiteral("proxy-v1-catalog-manifest.metadata.json"), "{broken");
    EXPECT_TRUE(cache.touch(endpoint, later).error().isDecodingError());
    EXPECT_EQ(readAll(tree.path(QStringLiteral("proxy-v1-catalog-manifest.metadata.json"))), "{broken");
}

TEST(HomebrewCacheServiceTest, RefreshStateKeepsTheOtherDateAndStaysCorrupt)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const QDateTime check = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
    const auto afterCheck = cache.recordCheck(check);
    ASSERT_TRUE(afterCheck.ok());
    EXPECT_EQ(readAll(tree.path(QStringLiteral("refresh-state.json"))), "{\"lastCheckDate\":721692800.0}");

    const auto afterSuccess = cache.recordSuccess(check.addSecs(10));
    ASSERT_TRUE(afterSuccess.ok());
    EXPECT_EQ(afterSuccess.value().lastCheckDate, check);
    EXPECT_EQ(afterSuccess.value().lastSuccessfulRefreshDate, check.addSecs(10));
    EXPECT_EQ(cache.readRefreshState().value(), afterSuccess.value());

    tree.writeFile(QStringLiteral("refresh-state.json"), "{\"lastCheckDate\":\"yesterday\"}");
    EXPECT_FALSE(cache.readRefreshState().ok());
    EXPECT_FALSE(cache.recordCheck(check).ok());
    EXPECT_FALSE(cache.recordSuccess(check).ok());
    EXPECT_EQ(readAll(tree.path(QStringLiteral("refresh-state.json"))), "{\"lastCheckDate\":\"yesterday\"}");
}

TEST(HomebrewCacheServiceTest, ValidatedManifestPrunesOnlyStaleSnapshotFiles)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto formulaA = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula,
                                                            QStringLiteral("/v1/catalog/snapshots/A/formula.json"));
    const auto caskA = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask,
                                                         QStringLiteral("/v1/catalog/snapshots/A/cask.json"));
    const auto formulaB = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula,
                                                            QStringLiteral("/v1/catalog/snapshots/B/formula.json"));
    for (const auto& endpoint : {formulaA, caskA, formulaB})
        ASSERT_TRUE(cache.store(endpoint, "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.store(HomebrewEndpoint::formulaDetail(QStringLiteral("wget")), "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.store(HomebrewEndpoint::catalogManifest(), "{}", {epoch, {}, {}}).ok());
    ASSERT_TRUE(cache.recordCheck(epoch).ok());
    tree.writeFile(formulaA.cacheStem() + QStringLiteral(".partial"), "x"); // kept stem, other extension
    tree.writeFile(QStringLiteral("unrelated.txt"), "x");

    ASSERT_TRUE(cache.storeValidatedManifest("{\"m\":1}", {formulaA, caskA}).ok());
    EXPECT_EQ(listing(tree.root()),
              (QStringList {
                  QStringLiteral("proxy-v1-cask-catalog--v1-catalog-snapshots-A-cask.json.json"),
                  QStringLiteral("proxy-v1-cask-catalog--v1-catalog-snapshots-A-cask.json.metadata.json"),
                  QStringLiteral("proxy-v1-catalog-manifest.json"),
                  QStringLiteral("proxy-v1-catalog-manifest.metadata.json"),
                  QStringLiteral("proxy-v1-formula-catalog--v1-catalog-snapshots-A-formula.json.json"),
                  QStringLiteral("proxy-v1-formula-catalog--v1-catalog-snapshots-A-formula.json.metadata.json"),
                  QStringLiteral("proxy-v1-formula-detail-wget.json"),
                  QStringLiteral("proxy-v1-formula-detail-wget.metadata.json"),
                  QStringLiteral("proxy-v1-validated-catalog-manifest.json"),
                  QStringLiteral("refresh-state.json"),
                  QStringLiteral("unrelated.txt"),
              }));
    EXPECT_EQ(cache.readValidatedManifest().value(), QByteArray("{\"m\":1}"));
}

TEST(HomebrewCacheServiceTest, FailedManifestWriteRemovesNothing)
{
    TempTree tree;
    HomebrewCacheService cache(tree.root());
    const auto stale = HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask,
                                                         QStringLiteral("/v1/catalog/snapshots/old/cask.json"));
    ASSERT_TRUE(cache.store(stale, "{}", {epoch, {}, {}}).ok());
    // A folder in the way makes the atomic rename fail.
    tree.mkdir(QStringLiteral("proxy-v1-validated-catalog-manifest.json/inner"));
    EXPECT_FALSE(cache.storeValidatedManifest("{}", {}).ok());
    EXPECT_TRUE(QFile::exists(cache.bodyPath(stale)));
}
