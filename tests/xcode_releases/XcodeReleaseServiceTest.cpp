#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QPromise>
#include <QTcpServer>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "FeedServer.h"
#include "foundation/BuildConfig.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"
#include "xcode_releases/XcodeReleaseService.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QString kAppCategory = QStringLiteral(QUILLBAY_BUNDLE_IDENTIFIER ".App");

QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

XcodeReleaseFetchResult fetch(XcodeReleaseService& service)
{
    QFuture<XcodeReleaseFetchResult> future = service.fetchReleaseData();
    EXPECT_TRUE(waitUntil([&] { return future.isFinished(); }));
    if (!future.isFinished() || future.isCanceled() || future.resultCount() == 0)
        return {{}, QStringLiteral("no result"), std::nullopt};
    return future.result();
}

ino_t inodeOf(const QString& path)
{
    struct stat info
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_ino : 0;
}

struct Fixture
{
    TempTree tree;
    FeedServer server;
    QString cachePath = tree.writeFile(QStringLiteral("Caches/xcodereleases.json"), "previous bytes");
    SerialExecutor<CacheManager> cache {std::make_unique<CacheManager>(cachePath)};
    std::unique_ptr<XcodeReleaseService> service = XcodeReleaseService::createWithNetwork(server.feedURL(), cache);
};

} // namespace

TEST(XcodeReleaseServiceTest, StatusAndBodyDecideAndOnlyGoodFeedsReachTheCache)
{
    struct Case
    {
        const char* what;
        int status;
        QByteArray body;
        std::optional<XcodeReleaseServiceError> error;
    };
    const Case cases[] = {
        {"200 with a feed", 200, smallFeed(), std::nullopt},
        {"299 with a feed", 299, smallFeed(), std::nullopt},
        {"204 without a body", 204, {}, XcodeReleaseServiceError::invalidCatalog()},
        {"300 with a feed", 300, smallFeed(), XcodeReleaseServiceError::httpStatus(300)},
        {"200 with []", 200, "[]", XcodeReleaseServiceError::invalidCatalog()},
        {"200 with a truncated feed", 200, smallFeed().left(120), XcodeReleaseServiceError::invalidCatalog()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Fixture f;
        f.server.answer(c.status, c.body);
        const XcodeReleaseFetchResult result = fetch(*f.service);
        EXPECT_EQ(f.server.requestCount(), 1);
        EXPECT_FALSE(result.transportError.has_value()) << result.transportError.value_or(QString()).toStdString();
        EXPECT_EQ(result.serviceError, c.error);
        if (c.error) {
            EXPECT_TRUE(result.data.isEmpty());
            EXPECT_EQ(readAll(f.cachePath), QByteArray("previous bytes")) << "a refused answer never reaches the cache";
        } else {
            EXPECT_EQ(result.data, c.body);
            EXPECT_EQ(readAll(f.cachePath), c.body) << "the cache holds the body byte for byte";
        }
    }
}

TEST(XcodeReleaseServiceTest, AnswersThatAreNotHTTPAreRefused)
{
    Fixture f;
    // A transport that answers without any HTTP exchange.
    int loads = 0;
    XcodeReleaseService injected(
        QUrl(QStringLiteral("https://feed.invalid/data.json")), f.cache, [&loads](const QUrl&) {
            ++loads;
            QPromise<XcodeReleaseLoadResult> promise;
            promise.start();
            promise.addResult(XcodeReleaseLoadResult {XcodeReleaseResponse {smallFeed(), std::nullopt}, {}});
            promise.finish();
            return promise.future();
        });
    const XcodeReleaseFetchResult result = fetch(injected);
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(result.serviceError, XcodeReleaseServiceError::invalidResponse());
    EXPECT_EQ(readAll(f.cachePath), QByteArray("previous bytes"));
}

TEST(XcodeReleaseServiceTest, TransportFailuresPassThroughUnchanged)
{
    Fixture f;
    // A port that was listening a moment ago and is closed now: connection refused.
    QTcpServer probe;
    ASSERT_TRUE(probe.listen(QHostAddress::LocalHost));
    const QUrl closed(QStringLiteral("http://127.0.0.1:%1/data.json").arg(probe.serverPort()));
    probe.close();
    auto service = XcodeReleaseService::createWithNetwork(closed, f.cache);
    const XcodeReleaseFetchResult result = fetch(*service);
    EXPECT_FALSE(result.succeeded());
    EXPECT_FALSE(result.serviceError.has_value());
    ASSERT_TRUE(result.transportError.has_value());
    EXPECT_FALSE(result.transportError->isEmpty());
    EXPECT_EQ(readAll(f.cachePath), QByteArray("previous bytes"));

    // Under test the public feed is never called, whatever the address.
    auto publicService
        = XcodeReleaseService::createWithNetwork(QUrl(QStringLiteral(QUILLBAY_RELEASE_FEED_URL)), f.cache);
    EXPECT_TRUE(fetch(*publicService).transportError.has_value());
}

TEST(XcodeReleaseServiceTest, AnUnwritableCacheLogsOneLineAndTheFetchSucceeds)
{
    struct Case
    {
        const char* what;
        std::function<QString(TempTree&)> prepare; // returns the cache file path
    };
    const Case cases[] = {
        {"folder missing", [](TempTree& tree) { return tree.path(QStringLiteral("gone/xcodereleases.json")); }},
        {"folder is a file",
         [](TempTree& tree) {
             tree.writeFile(QStringLiteral("Caches"), "not a folder");
             return tree.path(QStringLiteral("Caches/xcodereleases.json"));
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TempTree tree;
        FeedServer server;
        server.answer(200, smallFeed());
        SerialExecutor<CacheManager> cache(std::make_unique<CacheManager>(c.prepare(tree)));
        auto service = XcodeReleaseService::createWithNetwork(server.feedURL(), cache);
        LogCapture log(kAppCategory);
        const XcodeReleaseFetchResult result = fetch(*service);
        EXPECT_TRUE(result.succeeded()) << result.failureDescription().toStdString();
        EXPECT_EQ(result.data, smallFeed());
        const QStringList lines = log.criticalMessages();
        ASSERT_EQ(lines.size(), 1) << lines.join(u'\n').toStdString();
        EXPECT_TRUE(lines.first().startsWith(QStringLiteral("Failed to save Xcode release cache: ")));
    }
}

TEST(XcodeReleaseServiceTest, SavingReplacesTheFileInOneStep)
{
    Fixture f;
    // A second name for the old file: an in-place rewrite would change what it shows.
    const QString oldName
        = f.tree.hardlink(QStringLiteral("old-cache.json"), QStringLiteral("Caches/xcodereleases.json"));
    const ino_t before = inodeOf(f.cachePath);
    f.server.answer(200, otherFeed());
    ASSERT_TRUE(fetch(*f.service).succeeded());
    EXPECT_EQ(readAll(f.cachePath), otherFeed());
    EXPECT_EQ(readAll(oldName), QByteArray("previous bytes"));
    EXPECT_NE(inodeOf(f.cachePath), before);
    EXPECT_EQ(QDir(f.tree.path(QStringLiteral("Caches"))).entryList(QDir::Files | QDir::Hidden),
              QStringList {QStringLiteral("xcodereleases.json")})
        << "no temporary file is left behind";
}

TEST(XcodeReleaseServiceTest, DestroyingTheServiceMidRequestCancelsCleanly)
{
    TempTree tree;
    SerialExecutor<CacheManager> cache(std::make_unique<CacheManager>(tree.path(QStringLiteral("c.json"))));
    // A server that accepts the connection and never answers.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    auto service = XcodeReleaseService::createWithNetwork(
        QUrl(QStringLiteral("http://127.0.0.1:%1/data.json").arg(silent.serverPort())), cache);
    QFuture<XcodeReleaseFetchResult> future = service->fetchReleaseData();
    ASSERT_TRUE(waitUntil([&] { return silent.hasPendingConnections(); }));
    service.reset();
    ASSERT_TRUE(waitUntil([&] { return future.isFinished(); }));
    EXPECT_TRUE(future.isCanceled());
    EXPECT_FALSE(QFile::exists(tree.path(QStringLiteral("c.json"))));
}
