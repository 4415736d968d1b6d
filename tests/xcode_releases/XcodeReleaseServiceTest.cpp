#include <QDir>
#include <QFile>
#include <QTcpServer>

#include <gtest/gtest.h>

#include "ReleasesFixture.h"
#include "foundation/BuildConfig.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

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

struct Fixture
{
    TempTree tree;
    FeedServer server;
    QString cachePath = tree.writeFile(QStringLiteral("Caches/xcodereleases.json"), "previous bytes");
    SerialExecutor<CacheManager> cache {std::make_unique<CacheManager>(cachePath)};
    std::unique_ptr<XcodeReleaseService> service = XcodeReleaseService::createWithNetwork(server.feedURL(), cache);
};

} // namespace

TEST(XcodeReleaseServiceTest, SavingReplacesTheFileInOneStepOrLogsOneLine)
{
    Fixture f;
    // A second name for the old file: an in-place rewrite would change what it shows.
    const QString oldName
        = f.tree.hardlink(QStringLiteral("old-cache.json"), QStringLiteral("Caches/xcodereleases.json"));
    f.server.answer(200, otherFeed());
    ASSERT_TRUE(fetch(*f.service).succeeded());
    EXPECT_EQ(readAll(f.cachePath), otherFeed());
    EXPECT_EQ(readAll(oldName), QByteArray("previous bytes"));
    EXPECT_EQ(QDir(f.tree.path(QStringLiteral("Caches"))).entryList(QDir::Files | QDir::Hidden),
              QStringList {QStringLiteral("xcodereleases.json")})
        << "no temporary file is left behind";

    // A cache folder that is a file: the fetch still succeeds and one line is logged.
    f.tree.writeFile(QStringLiteral("Blocked"), "not a folder");
    SerialExecutor<CacheManager> blocked(
        std::make_unique<CacheManager>(f.tree.path(QStringLiteral("Blocked/xcodereleases.json"))));
    LogCapture log(QStringLiteral(QUILLBAY_BUNDLE_IDENTIFIER ".App"));
    const XcodeReleaseFetchResult result = fetch(*XcodeReleaseService::createWithNetwork(f.server.feedURL(), blocked));
    EXPECT_TRUE(result.succeeded()) << result.failureDescription().toStdString();
    EXPECT_EQ(result.data, otherFeed());
    const QStringList lines = log.criticalMessages();
    ASSERT_EQ(lines.size(), 1) << lines.join(u'\n').toStdString();
    EXPECT_TRUE(lines.first().startsWith(QStringLiteral("Failed to save Xcode release cache: ")));
}

TEST(XcodeReleaseServiceTest, CancelledAndRefusedRequestsLeaveTheCacheAlone)
{
    Fixture f;
    // A port that accepts the connection and never answers, then is closed: refused.
    QTcpServer socket;
    ASSERT_TRUE(socket.listen(QHostAddress::LocalHost));
    const QUrl url(QStringLiteral("http://127.0.0.1:%1/data.json").arg(socket.serverPort()));
    auto service = XcodeReleaseService::createWithNetwork(url, f.cache);
    QFuture<XcodeReleaseFetchResult> future = service->fetchReleaseData();
    ASSERT_TRUE(waitUntil([&] { return socket.hasPendingConnections(); }));
    service.reset();
    ASSERT_TRUE(waitUntil([&] { return future.isFinished(); }));
    EXPECT_TRUE(future.isCanceled()) << "destroying the service mid-request cancels, never reports";

    socket.close();
    const XcodeReleaseFetchResult result = fetch(*XcodeReleaseService::createWithNetwork(url, f.cache));
    EXPECT_FALSE(result.succeeded() || result.serviceError.has_value());
    ASSERT_TRUE(result.transportError.has_value()) << "transport failures pass through unchanged";
    EXPECT_FALSE(result.transportError->isEmpty());
    // Under test the public feed is never called, whatever the address.
    const QUrl publicFeed(QStringLiteral(QUILLBAY_RELEASE_FEED_URL));
    EXPECT_TRUE(fetch(*XcodeReleaseService::createWithNetwork(publicFeed, f.cache)).transportError.has_value());
    EXPECT_EQ(readAll(f.cachePath), QByteArray("previous bytes"));
}
