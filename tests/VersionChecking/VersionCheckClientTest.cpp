#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include "UpdateFixture.h"
#include "VersionChecking/VersionCheckClient.h"
#include "VersionChecking/VersionCheckConfiguration.h"
#include "VersionChecking/VersionCheckSigning.h"
#include "testsupport/LogCapture.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// Values with blanks and capitals: they travel as they are and are signed trimmed and in
// lower case.
VersionCheckConfiguration configurationFor(const QString& baseURL)
{
    VersionCheckConfiguration configuration;
    configuration.baseURL = QUrl(baseURL);
    configuration.appID = u" ABC "_s;
    configuration.platform = u"macOS"_s;
    configuration.channel = u"Prod\n"_s;
    configuration.signatureSecret = u"0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef"_s;
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

// What a check came to: the answer encoded again, or the failure's text.
QString outcome(const std::optional<VersionCheckClient::Result>& result)
{
    if (!result)
        return u"(never finished)"_s;
    if (const auto* info = std::get_if<AppVersionInfo>(&*result))
        return QString::fromUtf8(info->encode());
    return failureDescription(std::get<VersionCheckFailure>(*result));
}

} // namespace

TEST(VersionCheckClientTest, TurnsEachServerAnswerIntoItsResult)
{
    test::ScriptedUpdateServer server;
    QNetworkAccessManager network;
    VersionCheckClient client(configurationFor(server.baseURL(u"/service/"_s)), network,
                              [] { return qint64(1700000000); });

    struct Case
    {
        const char* name;
        int status;
        QByteArray body;
        QString expected; // the answer encoded again, or a part of the failure text
    };
    const QString good = uR"({"update_url":"x","force_update":true,"update_available":false})"_s;
    const Case cases[] = {
        {"good answer", 200, good.toUtf8(), good},
        {"service down with a body", 503, "down", u"Version check failed with status 503: down"_s},
        {"truncated", 200, R"({"update_url":"u","force_update":fal)", u"not valid JSON"_s},
        {"a key missing", 200, R"({"update_url":"x","force_update":false})", u"update_available"_s},
        {"number is not a boolean", 200, R"({"update_url":"u","force_update":1,"update_available":true})",
         u"force_update"_s},
        // A status body is shown only when it is UTF-8.
        {"service down, body not UTF-8", 500, "\xff\xfe\x00oops"_ba, u"Version check failed with status 500."_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        server.answer(c.status, c.body);
        const QString text = outcome(runCheck(client, u"1.2.3 "_s));
        EXPECT_TRUE(text.contains(c.expected)) << text.toStdString();
    }

    ASSERT_EQ(server.received().size(), std::size(cases));
    // Raw values in this order; the signature was computed outside this program.
    const auto& first = server.received().front();
    EXPECT_EQ(first.url.path(), u"/service/api/app-version/check"_s);
    const QList<QPair<QString, QString>> expectedItems {
        {u"app_id"_s, u" ABC "_s},
        {u"platform"_s, u"macOS"_s},
        {u"channel"_s, u"Prod\n"_s},
        {u"current_version"_s, u"1.2.3 "_s},
    };
    EXPECT_EQ(QUrlQuery(first.url).queryItems(QUrl::FullyDecoded), expectedItems);
    EXPECT_EQ(first.timestamp, "1700000000");
    EXPECT_EQ(first.signature, "cb23fc48408574e3fe8cd10b5e05e4602ebbfa3ab15449345f4c89bdee8cb5ab");
    // Non-ASCII key and fields: lowercasing is Unicode-aware and the bytes are UTF-8 (computed
    // outside this program with openssl dgst -sha256 -hmac).
    EXPECT_EQ(VersionCheckSigning::signature(u"clé-ünïcode"_s,
                                             {u"GET"_s, u"/api/app-version/check"_s, u"\t ÉVÉ "_s, u"macos"_s,
                                              u" Beta\r\n"_s, u" 3.1 (β)\t"_s, u"0"_s}),
              "6ce60cd1ed18e71cf903f2d2b4ebe72467e4e1abc4d2cb7c7428dbc5f6e09277");

    // No URL can be built from an invalid base.
    VersionCheckClient broken(configurationFor(u"http://[::1"_s), network);
    EXPECT_EQ(outcome(runCheck(broken, u"1.0"_s)), u"Unable to build the version check URL."_s);
}

TEST(VersionCheckClientTest, AStopCancelsAHangingRequestAndARefusalIsATransportError)
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

    // Once nothing listens, the transport failure goes to the caller as it is.
    silent.close();
    const auto refused = runCheck(client, u"1.0"_s);
    ASSERT_TRUE(refused.has_value());
    ASSERT_TRUE(std::holds_alternative<VersionCheckFailure>(*refused));
    const auto* transport = std::get_if<VersionCheckTransportError>(&std::get<VersionCheckFailure>(*refused));
    ASSERT_NE(transport, nullptr);
    EXPECT_EQ(transport->code, int(QNetworkReply::ConnectionRefusedError));
}
