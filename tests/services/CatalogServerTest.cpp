#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>

#include <gtest/gtest.h>

#include "CatalogImporter.h"
#include "CatalogServer.h"
#include "ServicesServer.h"
#include "homebrew_catalog/HomebrewAPIClient.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::services;
using namespace quillbay::test;

namespace {

const QByteArray key("quillbay-development-catalog-signing-key-0123456789abcdef0123456");
constexpr qint64 serverNow = 1750000000;

using Headers = QList<std::pair<QByteArray, QByteArray>>;

struct Answer
{
    int status = 0;
    QByteArray body;
    QByteArray etag;
    QByteArray lastModified;
};

Headers signedAt(const QByteArray& path, qint64 at, const QByteArray& timestamp = {})
{
    return {{"x-quillbay-timestamp", timestamp.isEmpty() ? QByteArray::number(at) : timestamp},
            {"x-quillbay-signature", HomebrewAPIClient::signature(key, path, at)}};
}

class ServedCatalog : public ::testing::Test
{
protected:
    void SetUp() override
    {
        tree.writeFile(QStringLiteral("in/formula.json"), R"([{"name":"openssl@3","desc":"TLS"},{"name":"wget"}])");
        tree.writeFile(QStringLiteral("in/cask.json"), R"([{"token":"firefox","name":["Firefox"]}])");
        CatalogImporter::Options options;
        options.inputDir = tree.path(QStringLiteral("in"));
        options.dataDir = tree.path(QStringLiteral("data"));
        options.snapshotID = QStringLiteral("S1");
        ASSERT_TRUE(CatalogImporter::run(options).ok);
        catalog = std::make_unique<CatalogServer>(
            CatalogServer::Configuration {options.dataDir, key, 300, [] { return serverNow; }});
        server.addService(catalog.get());
        port = server.listen(QHostAddress::LocalHost, 0);
        ASSERT_NE(port, 0);
    }

    // Signed properly for the path unless headers are given.
    Answer get(const QByteArray& path, std::optional<Headers> headers = std::nullopt, const QByteArray& verb = "GET")
    {
        QNetworkRequest request(QUrl::fromEncoded("http://127.0.0.1:" + QByteArray::number(port) + path));
        for (const auto& [name, value] : headers.value_or(signedAt(path, serverNow)))
            request.setRawHeader(name, value);
        QNetworkReply* reply = network.sendCustomRequest(request, verb);
        EXPECT_TRUE(waitUntil([&] { return reply->isFinished(); }));
        Answer answer {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(),
                       reply->rawHeader("ETag"), reply->rawHeader("Last-Modified")};
        reply->deleteLater();
        return answer;
    }

    TempTree tree;
    std::unique_ptr<CatalogServer> catalog;
    ServicesServer server;
    quint16 port = 0;
    QNetworkAccessManager network;
};

} // namespace

TEST_F(ServedCatalog, OnlyWellSignedRequestsForPublishedDocumentsAreServedConditionally)
{
    const QByteArray path("/v1/catalog/manifest.json");
    const QByteArray now = QByteArray::number(serverNow);
    struct Row
    {
        const char* name;
        QByteArray path;
        std::optional<Headers> headers;
        int status;
    };
    const Row rows[] = {
        {"edge of the window", path, signedAt(path, serverNow - 300), 200},
        {"no headers", path, Headers(), 401},
        {"too old", path, signedAt(path, serverNow - 301), 401},
        {"too far ahead", path, signedAt(path, serverNow + 301), 401},
        {"signed for another path", path, {{{"x-quillbay-timestamp", now}, signedAt("/v1/x", serverNow)[1]}}, 401},
        {"signature one digit short",
         path,
         {{{"x-quillbay-timestamp", now},
           {"x-quillbay-signature", HomebrewAPIClient::signature(key, path, serverNow).chopped(1)}}},
         401},
        {"timestamp with a plus sign", path, signedAt(path, serverNow, "+" + now), 401},
        {"cask detail", "/v1/details/cask/firefox.json", std::nullopt, 200},
        {"unknown snapshot id", "/v1/catalog/snapshots/S0/formula.json", std::nullopt, 404},
        {"unknown package", "/v1/details/formula/nope.json", std::nullopt, 404},
        {"climbing out by encoded dots", "/v1/details/formula/..%2F..%2Fmanifest.json", std::nullopt, 404},
        {"encoded dot segments read back as another path than was signed", "/v1/catalog/snapshots/%2E%2E/manifest.json",
         std::nullopt, 401},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(get(row.path, row.headers).status, row.status);
    }
    const Answer detail = get("/v1/details/formula/openssl%403.json"); // an encoded at sign
    EXPECT_EQ(detail.status, 200);
    EXPECT_TRUE(detail.body.contains("\"name\":\"openssl@3\""));
    EXPECT_EQ(get(path, std::nullopt, "POST").status, 405);

    // Conditional requests: the tag decides when it is sent, otherwise the date.
    const Answer first = get(path);
    ASSERT_EQ(first.status, 200);
    EXPECT_TRUE(first.body.contains("\"snapshotID\":\"S1\""));
    ASSERT_FALSE(first.etag.isEmpty());
    ASSERT_FALSE(first.lastModified.isEmpty());
    const std::pair<Headers, int> conditions[] = {
        {{{"If-None-Match", "\"other\", " + first.etag}}, 304}, // the tag in a list
        {{{"If-None-Match", "\"other\""}, {"If-Modified-Since", first.lastModified}}, 200}, // the tag wins
        {{{"If-Modified-Since", first.lastModified}}, 304},
        {{{"If-Modified-Since", "yesterday"}}, 200},
    };
    for (const auto& [headers, status] : conditions) {
        SCOPED_TRACE(headers.constFirst().second.toStdString());
        const Answer answer = get(path, signedAt(path, serverNow) + headers);
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.etag, first.etag);
        EXPECT_EQ(answer.body.isEmpty(), status == 304);
    }
}
