#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include "ScriptedUpdateServer.h"
#include "VersionChecking/VersionCheckClient.h"
#include "VersionChecking/VersionCheckSigning.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

VersionCheckConfiguration configurationFor(const QString& baseURL)
{
    VersionCheckConfiguration configuration;
    configuration.baseURL = QUrl(baseURL);
    configuration.appID = u"123456"_s;
    configuration.signatureSecret = u"client-test-secret"_s;
    return configuration;
}

std::optional<VersionCheckClient::Result>
runCheck(VersionCheckClient& client, const QString& version, std::stop_token token = {})
{
    QObject context;
    std::optional<VersionCheckClient::Result> result;
    client.check(version, token, &context, [&](VersionCheckClient::Result r) { result = std::move(r); });
    if (!test::waitUntil([&] { return result.has_value(); }, 15000))
        return std::nullopt;
    return result;
}

} // namespace

TEST(VersionCheckClientTest, TurnsEachServerAnswerIntoItsResult)
{
    test::ScriptedUpdateServer server;
    QNetworkAccessManager network;
    VersionCheckClient client(configurationFor(server.baseURL()), network, [] { return qint64(1700000123); });

    struct Case
    {
        const char* name;
        int status;
        QByteArray body;
        std::optional<AppVersionInfo> info;
        QString failure;
    };
    const Case cases[] = {
        {"good answer",
         200,
         R"({"update_url":"https://u.test/dl","force_update":false,"update_available":true})",
         AppVersionInfo {u"https://u.test/dl"_s, false, true},
         {}},
        {"any 2xx is good",
         203,
         R"({"update_url":"x","force_update":true,"update_available":false,"n":1})",
         AppVersionInfo {u"x"_s, true, false},
         {}},
        {"service down with a body", 503, "down", std::nullopt, u"Version check failed with status 503: down"_s},
        {"service down without a body", 503, "", std::nullopt, u"Version check failed with status 503."_s},
        {"rejected signature", 401, "invalid signature", std::nullopt,
         u"Version check failed with status 401: invalid signature"_s},
        {"2xx with a missing key", 200, R"({"update_url":"x","force_update":false})", std::nullopt,
         u"update_available"_s},
        {"2xx with HTML", 200, "<html>maintenance</html>", std::nullopt, u"not valid JSON"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        server.answer(c.status, c.body);
        const auto result = runCheck(client, u"1.4.0"_s);
        ASSERT_TRUE(result.has_value()) << "the check never finished";
        if (c.info) {
            ASSERT_TRUE(std::holds_alternative<AppVersionInfo>(*result));
            EXPECT_EQ(std::get<AppVersionInfo>(*result), *c.info);
        } else {
            ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*result));
            const QString description = failureDescription(std::get<VersionCheckFailure>(*result));
            EXPECT_TRUE(description.contains(c.failure)) << description.toStdString();
        }
    }

    // What went over the wire: the path, the four query items and the two headers, signed
    // as the service recomputes them.
    ASSERT_EQ(server.received().size(), std::size(cases));
    const auto& first = server.received().front();
    EXPECT_EQ(first.url.path(), u"/api/app-version/check"_s);
    EXPECT_EQ(QUrlQuery(first.url).queryItemValue(u"current_version"_s), u"1.4.0"_s);
    EXPECT_EQ(first.timestamp, "1700000123");
    EXPECT_EQ(first.signature,
              VersionCheckSigning::hmacSHA256Hex(
                  "client-test-secret", "GET\n/api/app-version/check\n123456\nmacos\nprod\n1.4.0\n1700000123"));
}

TEST(VersionCheckClientTest, FailuresBeforeAnyHttpAnswer)
{
    QNetworkAccessManager network;

    // Nothing listens: the transport failure goes to the caller as it is.
    VersionCheckClient refused(configurationFor(u"http://127.0.0.1:%1"_s.arg(test::closedPort())), network);
    auto result = runCheck(refused, u"1.0"_s);
    ASSERT_TRUE(result.has_value());
    ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*result));
    const auto* transport = std::get_if<VersionCheckTransportError>(&std::get<VersionCheckFailure>(*result));
    ASSERT_NE(transport, nullptr);
    EXPECT_EQ(transport->code, int(QNetworkReply::ConnectionRefusedError));

    // A file answers without being an HTTP response.
    QTemporaryDir root;
    ASSERT_TRUE(QDir(root.path()).mkpath(u"api/app-version"_s));
    QFile file(root.filePath(u"api/app-version/check"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"update_url":"x","force_update":true,"update_available":true})");
    file.close();
    VersionCheckClient local(configurationFor(QUrl::fromLocalFile(root.path()).toString()), network);
    result = runCheck(local, u"1.0"_s);
    ASSERT_TRUE(result.has_value());
    ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*result));
    EXPECT_EQ(failureDescription(std::get<VersionCheckFailure>(*result)),
              u"The version check response was not an HTTP response."_s);

    // No URL can be built from an invalid base.
    VersionCheckClient broken(configurationFor(u"http://[::1"_s), network);
    EXPECT_FALSE(broken.makeRequest(u"1.0"_s, 0).has_value());
    result = runCheck(broken, u"1.0"_s);
    ASSERT_TRUE(result.has_value());
    ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*result));
    EXPECT_EQ(failureDescription(std::get<VersionCheckFailure>(*result)), u"Unable to build the version check URL."_s);
}

TEST(VersionCheckClientTest, AStopAbortsAHangingRequestAsACancellation)
{
    // A server that accepts and never answers.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost, 0));
    QNetworkAccessManager network;
    VersionCheckClient client(configurationFor(u"http://127.0.0.1:%1"_s.arg(silent.serverPort())), network);
    std::stop_source stop;
    QObject context;
    std::optional<VersionCheckClient::Result> result;
    client.check(u"1.0"_s, stop.get_token(), &context, [&](VersionCheckClient::Result r) { result = std::move(r); });
    ASSERT_TRUE(test::waitUntil([&] { return silent.hasPendingConnections(); }, 5000));
    EXPECT_FALSE(result.has_value());
    stop.request_stop();
    ASSERT_TRUE(test::waitUntil([&] { return result.has_value(); }, 5000));
    ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*result));
    EXPECT_TRUE(isCancellation(std::get<VersionCheckFailure>(*result)));

    // A token stopped before the check starts cancels it too.
    result.reset();
    client.check(u"1.0"_s, stop.get_token(), &context, [&](VersionCheckClient::Result r) { result = std::move(r); });
    ASSERT_TRUE(test::waitUntil([&] { return result.has_value(); }, 5000));
    EXPECT_TRUE(isCancellation(std::get<VersionCheckFailure>(*result)));
}

TEST(VersionCheckClientTest, NoAnswerReachesAContextThatIsGone)
{
    test::ScriptedUpdateServer server;
    server.answer(200, R"({"update_url":"x","force_update":false,"update_available":false})");
    QNetworkAccessManager network;
    VersionCheckClient client(configurationFor(server.baseURL()), network);
    bool called = false;
    {
        QObject context;
        client.check(u"1.0"_s, {}, &context, [&](VersionCheckClient::Result) { called = true; });
    }
    ASSERT_TRUE(test::waitUntil([&] { return server.received().size() == 1; }, 5000));
    // Give the reply time to arrive and be dropped.
    test::waitUntil([] { return false; }, 300);
    EXPECT_FALSE(called);
}
