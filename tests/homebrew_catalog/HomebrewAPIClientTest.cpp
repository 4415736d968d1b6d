#include <QFile>
#include <QFuture>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QTcpServer>

#include <gtest/gtest.h>

#include "CatalogFixtures.h"
#include "CatalogSignature.h"
#include "HttpService.h"
#include "homebrew_catalog/HomebrewAPIClient.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

// A real HTTP server on a loopback port whose answers a test scripts per request. It records
// what it was sent, and can hold a request unanswered (to test cancellation).
class ScriptedHttpServer
{
public:
    struct Reply
    {
        int status = 200;
        QByteArray body;
        QList<std::pair<QByteArray, QByteArray>> headers;
        bool hold = false; // never answer
    };
    struct Request
    {
        QString path; // as on the wire
        QHash<QByteArray, QByteArray> headers; // lower-case names
    };

    ScriptedHttpServer()
    {
        m_server.setMissingHandler([this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
            Request seen {request.url().path(QUrl::FullyEncoded), {}};
            for (const auto& [name, value] : request.headers())
                seen.headers.insert(name.toLower(), value);
            requests.append(seen);
            const Reply reply = script ? script(seen) : Reply {404, "{}", {}, false};
            if (reply.hold)
                return m_held.push_back(std::make_unique<QHttpServerResponder>(std::move(responder)));
            services::writeResponse(responder, static_cast<QHttpServerResponder::StatusCode>(reply.status),
                                    reply.headers, reply.body);
        });
        m_port = m_server.listen(QHostAddress::LocalHost, 0);
    }

    QString baseURL() const { return u"http://127.0.0.1:%1"_s.arg(m_port); }

    std::function<Reply(const Request&)> script;
    QList<Request> requests;

private:
    QHttpServer m_server;
    quint16 m_port = 0;
    std::vector<std::unique_ptr<QHttpServerResponder>> m_held;
};

const QByteArray key("quillbay-development-catalog-signing-key-0123456789abcdef0123456");
const QDateTime fetchTime = QDateTime::fromSecsSinceEpoch(1750000000, Qt::UTC);
const HomebrewEndpoint detailEndpoint = HomebrewEndpoint::formulaDetail(u"openssl@3"_s);

std::unique_ptr<HomebrewAPIClient> makeClient(const QString& base, const QString& cacheRoot)
{
    HomebrewAPIClient::Configuration configuration;
    configuration.baseURL = QUrl(base);
    configuration.signingSecret = key;
    configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
    configuration.currentDate = [] { return fetchTime; };
    return std::make_unique<HomebrewAPIClient>(configuration, std::make_unique<HomebrewCacheService>(cacheRoot));
}

HomebrewStatus acceptAll(const QByteArray&)
{
    return homebrewSuccess();
}

HomebrewStatus refuseAll(const QByteArray&)
{
    return HomebrewError::decoding(u"refused by the test"_s);
}

HomebrewResult<QByteArray> await(QFuture<HomebrewResult<QByteArray>> future)
{
    EXPECT_TRUE(waitUntil([&] { return future.isFinished(); }, 15000));
    return future.result();
}

} // namespace

TEST(HomebrewAPIClientTest, SignedFetchReplacesACorruptSidecarThenAsksConditionally)
{
    TempTree tree;
    ScriptedHttpServer server;
    server.script = [](const ScriptedHttpServer::Request&) {
        return ScriptedHttpServer::Reply {
            200, "{\"name\":\"openssl@3\"}", {{"ETag", "\"v1\""}, {"Last-Modified", "Tue, 01 Jul 2025 00:00:00 GMT"}}};
    };
    // A corrupt sidecar makes the first request unconditional, without an error.
    tree.writeFile(detailEndpoint.cacheStem() + u".metadata.json"_s, "{\"etag\":\"no date\"");
    const auto client = makeClient(server.baseURL(), tree.root());

    const auto first = await(client->fetch(detailEndpoint, true, acceptAll));
    ASSERT_TRUE(first.ok()) << first.error().debugDescription().toStdString();
    EXPECT_EQ(first.value(), "{\"name\":\"openssl@3\"}");
    ASSERT_EQ(server.requests.size(), 1);
    const auto& sent = server.requests[0];
    EXPECT_EQ(sent.path, u"/v1/details/formula/openssl%403.json");
    EXPECT_EQ(sent.headers.value("accept"), "application/json");
    EXPECT_FALSE(sent.headers.contains("if-none-match"));
    EXPECT_TRUE(services::catalogSignatureIsValid(key, sent.path.toUtf8(), sent.headers.value("x-quillbay-timestamp"),
                                                  sent.headers.value("x-quillbay-signature"),
                                                  QDateTime::currentSecsSinceEpoch(), 60));

    const HomebrewCacheService cache(tree.root());
    EXPECT_EQ(readFile(cache.bodyPath(detailEndpoint)), "{\"name\":\"openssl@3\"}");
    const auto metadata = cache.readMetadata(detailEndpoint);
    ASSERT_TRUE(metadata.ok() && metadata.value());
    EXPECT_EQ(*metadata.value(),
              (HomebrewCacheService::Metadata {fetchTime, u"\"v1\""_s, u"Tue, 01 Jul 2025 00:00:00 GMT"_s}));

    ASSERT_TRUE(await(client->fetch(detailEndpoint, true, acceptAll)).ok());
    ASSERT_EQ(server.requests.size(), 2);
    EXPECT_EQ(server.requests[1].headers.value("if-none-match"), "\"v1\"");
    EXPECT_EQ(server.requests[1].headers.value("if-modified-since"), "Tue, 01 Jul 2025 00:00:00 GMT");

    ASSERT_TRUE(await(client->fetch(detailEndpoint, false, acceptAll)).ok());
    EXPECT_FALSE(server.requests[2].headers.contains("if-none-match"));

    // Computed once, independently of this code, with OpenSSL:
    //   printf 'GET\n<path>\n<timestamp>' | openssl dgst -sha256 -hmac "<key>"
    EXPECT_EQ(HomebrewAPIClient::signature(key, "/v1/details/formula/openssl%403.json", -5),
              "50c1ab80ccdd959d022d4ef03262a0220126824ff5b178766fe35f482ea27414");
}

TEST(HomebrewAPIClientTest, EveryFailureLeavesTheCacheAsItsRowSays)
{
    const QByteArray oldBody("{\"old\":true}");
    const QByteArray oldSidecar("{\"fetchedAt\":5.0,\"etag\":\"\\\"old\\\"\"}");
    enum class Expect { ok, invalidResponse, httpStatus, missingCached, validation, file };
    // What the request and the cache start with; blockBody puts a folder where the body goes.
    enum Setup { conditional = 1, body = 2, sidecar = 4, refuse = 8, blockBody = 16 };
    struct Row
    {
        const char* name;
        int status;
        QByteArray reply;
        int setup;
        Expect expected;
        QByteArray bodyAfter;
        QByteArray sidecarAfter;
    };
    const QByteArray missing("<missing>");
    const QByteArray touched("{\"fetchedAt\":771692800.0,\"etag\":\"\\\"old\\\"\"}");
    const int all = conditional | body | sidecar;
    const Row rows[] = {
        {"204 without a body", 204, {}, all, Expect::invalidResponse, oldBody, oldSidecar},
        {"404", 404, "{}", all, Expect::httpStatus, oldBody, oldSidecar},
        {"200 failing validation", 200, "{\"new\":1}", all | refuse, Expect::validation, oldBody, oldSidecar},
        {"200, body write fails", 200, "{\"new\":1}", conditional | sidecar | blockBody, Expect::file, {}, oldSidecar},
        {"304 without a body file", 304, {}, conditional | sidecar, Expect::missingCached, missing, oldSidecar},
        {"304 to an unconditional request uses the cache", 304, {}, body | sidecar, Expect::ok, oldBody, touched},
        {"304 with a body and no sidecar makes none", 304, {}, conditional | body, Expect::ok, oldBody, missing},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TempTree tree;
        const HomebrewCacheService cache(tree.root());
        if (row.setup & body)
            tree.writeFile(QFileInfo(cache.bodyPath(detailEndpoint)).fileName(), oldBody);
        if (row.setup & sidecar)
            tree.writeFile(QFileInfo(cache.metadataPath(detailEndpoint)).fileName(), oldSidecar);
        if (row.setup & blockBody)
            tree.mkdir(QFileInfo(cache.bodyPath(detailEndpoint)).fileName() + u"/inner"_s);
        ScriptedHttpServer server;
        server.script = [&](const ScriptedHttpServer::Request&) {
            return ScriptedHttpServer::Reply {row.status, row.reply, {}};
        };
        const auto client = makeClient(server.baseURL(), tree.root());
        const auto result = await(client->fetch(detailEndpoint, (row.setup & conditional) != 0,
                                                (row.setup & refuse) ? refuseAll : acceptAll));
        switch (row.expected) {
        case Expect::ok:
            ASSERT_TRUE(result.ok()) << result.error().debugDescription().toStdString();
            EXPECT_EQ(result.value(), oldBody);
            break;
        case Expect::invalidResponse:
            ASSERT_FALSE(result.ok());
            ASSERT_NE(result.error().apiError(), nullptr);
            EXPECT_EQ(*result.error().apiError(), HomebrewAPIError::invalidResponse());
            break;
        case Expect::httpStatus:
            ASSERT_FALSE(result.ok());
            ASSERT_NE(result.error().apiError(), nullptr);
            EXPECT_EQ(*result.error().apiError(), HomebrewAPIError::httpStatus(row.status));
            EXPECT_EQ(result.error().localizedDescription(), u"Homebrew returned HTTP status %1."_s.arg(row.status));
            break;
        case Expect::missingCached:
            ASSERT_FALSE(result.ok());
            EXPECT_EQ(result.error().localizedDescription(),
                      u"Homebrew reported no changes, but no cached data is available.");
            break;
        case Expect::validation:
            ASSERT_FALSE(result.ok());
            EXPECT_TRUE(result.error().isDecodingError());
            break;
        case Expect::file:
            ASSERT_FALSE(result.ok());
            EXPECT_TRUE(result.error().isFileError()) << result.error().debugDescription().toStdString();
            break;
        }
        if (!(row.setup & blockBody)) {
            EXPECT_EQ(readFile(cache.bodyPath(detailEndpoint)), row.bodyAfter);
        }
        EXPECT_EQ(readFile(cache.metadataPath(detailEndpoint)), row.sidecarAfter);
    }
}

TEST(HomebrewAPIClientTest, TransportFailureAndCancellationPassThroughUnchanged)
{
    TempTree tree;
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost, 0));
    const quint16 deadPort = closed.serverPort();
    closed.close();
    const auto offline = makeClient(u"http://127.0.0.1:%1"_s.arg(deadPort), tree.root());
    const auto refused = await(offline->fetch(detailEndpoint, true, acceptAll));
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(refused.error().isTransportError()) << refused.error().debugDescription().toStdString();

    ScriptedHttpServer server;
    server.script = [](const ScriptedHttpServer::Request&) { return ScriptedHttpServer::Reply {200, {}, {}, true}; };
    const auto client = makeClient(server.baseURL(), tree.root());
    std::stop_source stop;
    auto pending = client->fetch(detailEndpoint, false, acceptAll, stop.get_token());
    ASSERT_TRUE(waitUntil([&] { return server.requests.size() == 1; }));
    EXPECT_FALSE(pending.isFinished());
    stop.request_stop();
    const auto cancelled = await(pending);
    ASSERT_FALSE(cancelled.ok());
    EXPECT_TRUE(cancelled.error().isCancellation());
    EXPECT_FALSE(QFile::exists(HomebrewCacheService(tree.root()).bodyPath(detailEndpoint)));
}

TEST(HomebrewAPIClientTest, NoRequestForAPathWithoutLeadingSlash)
{
    TempTree tree;
    ScriptedHttpServer server;
    const auto client = makeClient(server.baseURL(), tree.root());
    const auto result = await(client->fetch(
        HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, u"relative/cask.json"_s), true, acceptAll));
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.error().localizedDescription(), u"The Homebrew API URL is invalid.");
    EXPECT_TRUE(server.requests.isEmpty());
}
