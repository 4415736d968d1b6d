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

struct Answer
{
    int status = 0;
    QByteArray body;
    QByteArray etag;
    QByteArray lastModified;
};

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

    Answer get(const QByteArray& path,
               std::optional<QByteArray> timestamp,
               std::optional<QByteArray> signature,
               const QList<std::pair<QByteArray, QByteArray>>& extra = {},
               const QByteArray& verb = "GET")
    {
        QNetworkRequest request(QUrl::fromEncoded("http://127.0.0.1:" + QByteArray::number(port) + path));
        if (timestamp)
            request.setRawHeader("x-quillbay-timestamp", *timestamp);
        if (signature)
            request.setRawHeader("x-quillbay-signature", *signature);
        for (const auto& [name, value] : extra)
            request.setRawHeader(name, value);
        QNetworkReply* reply = network.sendCustomRequest(request, verb);
        EXPECT_TRUE(waitUntil([&] { return reply->isFinished(); }));
        Answer answer {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(),
                       reply->rawHeader("ETag"), reply->rawHeader("Last-Modified")};
        reply->deleteLater();
        return answer;
    }

    Answer signedGet(const QByteArray& path,
                     const QList<std::pair<QByteArray, QByteArray>>& extra = {},
                     const QByteArray& verb = "GET")
    {
        return get(path, QByteArray::number(serverNow), HomebrewAPIClient::signature(key, path, serverNow), extra,
                   verb);
    }

    TempTree tree;
    std::unique_ptr<CatalogServer> catalog;
    ServicesServer server;
    quint16 port = 0;
    QNetworkAccessManager network;
};

} // namespace

TEST_F(ServedCatalog, EveryBadSignatureGets401)
{
    const QByteArray path("/v1/catalog/manifest.json");
    const QByteArray now = QByteArray::number(serverNow);
    const auto sign
        = [](const QByteArray& signedPath, qint64 at) { return HomebrewAPIClient::signature(key, signedPath, at); };
    struct Row
    {
        const char* name;
        std::optional<QByteArray> timestamp;
        std::optional<QByteArray> signature;
        int status;
    };
    const Row rows[] = {
        {"edge of the window", QByteArray::number(serverNow - 300), sign(path, serverNow - 300), 200},
        {"no headers", std::nullopt, std::nullopt, 401},
        {"too old", QByteArray::number(serverNow - 301), sign(path, serverNow - 301), 401},
        {"too far ahead", QByteArray::number(serverNow + 301), sign(path, serverNow + 301), 401},
        {"signed for another path", now, sign("/v1/details/formula/wget.json", serverNow), 401},
        {"signed with another key", now, HomebrewAPIClient::signature("another-key", path, serverNow), 401},
        {"signature one digit short", now, sign(path, serverNow).chopped(1), 401},
        {"timestamp with a plus sign", "+" + now, sign(path, serverNow), 401},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(get(path, row.timestamp, row.signature).status, row.status);
    }
}

TEST_F(ServedCatalog, ConditionalRequestsGet304)
{
    const Answer first = signedGet("/v1/catalog/manifest.json");
    ASSERT_EQ(first.status, 200);
    EXPECT_TRUE(first.body.contains("\"snapshotID\":\"S1\""));
    ASSERT_FALSE(first.etag.isEmpty());
    ASSERT_FALSE(first.lastModified.isEmpty());

    struct Row
    {
        const char* name;
        QList<std::pair<QByteArray, QByteArray>> headers;
        int status;
    };
    const Row rows[] = {
        {"tag in a list", {{"If-None-Match", "\"other\", " + first.etag}}, 304},
        {"other tag, even with a matching date",
         {{"If-None-Match", "\"other\""}, {"If-Modified-Since", first.lastModified}},
         200},
        {"matching date", {{"If-Modified-Since", first.lastModified}}, 304},
        {"unreadable date", {{"If-Modified-Since", "yesterday"}}, 200},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Answer answer = signedGet("/v1/catalog/manifest.json", row.headers);
        EXPECT_EQ(answer.status, row.status);
        EXPECT_EQ(answer.etag, first.etag);
        EXPECT_EQ(answer.body.isEmpty(), row.status == 304);
    }
}

TEST_F(ServedCatalog, OnlyPublishedDocumentsAreServed)
{
    struct Row
    {
        const char* name;
        QByteArray path;
        int status;
    };
    const Row rows[] = {
        {"cask detail", "/v1/details/cask/firefox.json", 200},
        {"unknown snapshot id", "/v1/catalog/snapshots/S0/formula.json", 404},
        {"unknown package", "/v1/details/formula/nope.json", 404},
        {"climbing out by encoded dots", "/v1/details/formula/..%2F..%2Fmanifest.json", 404},
        {"encoded dot segments read back as another path than was signed", "/v1/catalog/snapshots/%2E%2E/manifest.json",
         401},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(signedGet(row.path).status, row.status);
    }
    const Answer detail = signedGet("/v1/details/formula/openssl%403.json"); // an encoded at sign
    EXPECT_EQ(detail.status, 200);
    EXPECT_TRUE(detail.body.contains("\"name\":\"openssl@3\""));
    EXPECT_EQ(signedGet("/v1/catalog/manifest.json", {}, "POST").status, 405);
}
