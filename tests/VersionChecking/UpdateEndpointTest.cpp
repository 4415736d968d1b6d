#include <QHostAddress>
#include <QHttpServer>
#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QUrlQuery>

#include <gtest/gtest.h>

#include "VersionChecking/VersionCheckSigning.h"
#include "VersionChecking/VersionManager.h"
#include "testsupport/LogCapture.h"
#include "update/UpdateEndpoint.h"

using namespace quillbay;
using namespace quillbay::services;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kNow = 1'750'000'000;

UpdateEndpointConfig config()
{
    UpdateEndpointConfig c;
    c.signatureSecret = u"endpoint-secret"_s;
    c.appID = u"6443543821"_s;
    c.latestVersion = u"2.3.0"_s;
    c.updateURL = u"https://apps.apple.com/app/id6443543821"_s;
    c.versionsThatMustUpdate = {u"1.0.0"_s, u"1.0.1"_s};
    c.clock = [] { return kNow; };
    return c;
}

struct Request
{
    QString appID = u"6443543821"_s;
    QString version = u"2.0.0"_s;
    qint64 timestamp = kNow;
    QString signedVersion = {}; // what the signature covers; the sent version when empty
    QString path = u"/api/app-version/check"_s;
    QByteArray sentTimestamp = {}; // the header as sent; the signed one when empty
};

UpdateEndpointReply send(const Request& r, const UpdateEndpointConfig& c = config())
{
    QUrlQuery query;
    query.addQueryItem(u"app_id"_s, r.appID);
    query.addQueryItem(u"platform"_s, u"macos"_s);
    query.addQueryItem(u"channel"_s, u"prod"_s);
    query.addQueryItem(u"current_version"_s, r.version);
    const QString timestamp = QString::number(r.timestamp);
    const QByteArray signature
        = VersionCheckSigning::signature(c.signatureSecret,
                                         {u"GET"_s, u"/api/app-version/check"_s, r.appID, u"macos"_s, u"prod"_s,
                                          r.signedVersion.isEmpty() ? r.version : r.signedVersion, timestamp});
    return answerUpdateCheck(c, r.path, query, r.sentTimestamp.isEmpty() ? timestamp.toLatin1() : r.sentTimestamp,
                             signature);
}

// 63 characters and 64 bytes: the length that counts is in bytes.
const QString kSecret = u"shared-update-secret-of-sixty-four-bytes-0123456789abcdef01234é"_s;

// The service and the program, each with its own copy of the agreed values, over loopback.
struct Deployment
{
    QHttpServer server;
    quint16 port = 0;
    QNetworkAccessManager network;
    QList<QUrl> opened;

    Deployment()
    {
        UpdateEndpointConfig config;
        config.signatureSecret = kSecret;
        config.appID = u"6443543821"_s;
        config.latestVersion = u"3.0.0"_s;
        config.updateURL = u"https://quillbay.example/download"_s;
        config.versionsThatMustUpdate = {u"2.0.0"_s};
        registerUpdateEndpoint(server, config);
        port = server.listen(QHostAddress::LocalHost, 0);
        EXPECT_NE(port, 0);
    }

    // Starts one check of `version` and waits for its end.
    std::unique_ptr<VersionManager> checked(const QString& version, const QString& secret = kSecret)
    {
        const auto configuration
            = VersionCheckConfiguration::make(u"http://127.0.0.1:%1"_s.arg(port), secret.toUtf8(), u" 6443543821 "_s);
        EXPECT_TRUE(configuration.has_value());
        EXPECT_EQ(VersionCheckConfiguration::orDisabled(configuration), *configuration);
        auto manager = std::make_unique<VersionManager>(VersionCheckClient(*configuration, network), version,
                                                        [this](const QUrl& url) { opened << url; });
        QSignalSpy finished(manager.get(), &VersionManager::checkFinished);
        manager->startCheck();
        EXPECT_TRUE(finished.wait(10000));
        return manager;
    }
};

} // namespace

TEST(UpdateEndpointTest, AnswersFromItsConfigurationOnlyToSignedFreshRequests)
{
    struct Case
    {
        const char* name;
        Request request;
        int status;
        QByteArray body;
    };
    const auto answer = [](bool force, bool available) {
        return QByteArray(R"({"update_url":"https://apps.apple.com/app/id6443543821","force_update":)")
            + (force ? "true" : "false") + R"(,"update_available":)" + (available ? "true" : "false") + "}";
    };
    // Plain older and latest versions go through the whole deployment in the end-to-end test.
    const Case cases[] = {
        // Compared by number: 2.10 is newer than 2.3; a version that is no number is never older.
        {"newer than latest", {.version = u"2.10.0"_s}, 200, answer(false, false)},
        {"not a number", {.version = u"beta"_s}, 200, answer(false, false)},
        {"must update, sent with a blank", {.version = u"1.0.1 "_s}, 200, answer(true, true)},
        {"timestamp at the edge of the window", {.timestamp = kNow - 300}, 200, answer(false, true)},
        {"timestamp just past the window", {.timestamp = kNow - 301}, 401, "stale timestamp"},
        {"signature over another version",
         {.version = u"1.0.0"_s, .signedVersion = u"2.3.0"_s},
         401,
         "invalid signature"},
        {"signed for another path", {.path = u"/v2/api/app-version/check"_s}, 401, "invalid signature"},
        {"unknown app", {.appID = u"999"_s}, 404, "unknown app"},
        {"signed timestamp", {.sentTimestamp = "-1750000000"}, 401, "invalid signature"},
        {"huge timestamp", {.sentTimestamp = "99999999999999999999999"}, 401, "invalid signature"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const UpdateEndpointReply reply = send(c.request);
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(reply.body, c.body);
    }

    QUrlQuery partial;
    partial.addQueryItem(u"app_id"_s, u"6443543821"_s);
    EXPECT_EQ(answerUpdateCheck(config(), u"/api/app-version/check"_s, partial, "1750000000", QByteArray(64, 'a')).body,
              "missing query item");
}

TEST(UpdateEndpointTest, EndToEndTheServiceAnswersWhatItsConfigurationSaysToSignedChecksOnly)
{
    Deployment deployment;
    struct Case
    {
        QString version;
        bool updateAvailable;
        bool forceUpdate;
    };
    const Case cases[] = {
        {u"2.5.1"_s, true, false},
        {u"3.0"_s, false, false},
        {u"2.0.0 "_s, true, true}, // travels with its blank, signs and matches without
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.version.toStdString());
        deployment.opened.clear();
        const auto manager = deployment.checked(c.version);
        ASSERT_FALSE(manager->lastError().has_value()) << failureDescription(*manager->lastError()).toStdString();
        ASSERT_TRUE(manager->updateInfo().has_value());
        EXPECT_EQ(manager->updateInfo()->updateAvailable, c.updateAvailable);
        EXPECT_EQ(manager->isForceUpdateRequired(), c.forceUpdate);
        manager->openUpdateURL();
        EXPECT_EQ(deployment.opened, QList<QUrl> {QUrl(u"https://quillbay.example/download"_s)});
    }

    // A program signing with another secret gets the refusal as a status error.
    test::LogCapture log(u".VersionChecking"_s);
    const auto refused
        = deployment.checked(u"2.5.1"_s, u"not-the-shared-secret-but-of-the-same-length-0123456789abcdef012"_s);
    ASSERT_TRUE(refused->lastError().has_value());
    EXPECT_EQ(failureDescription(*refused->lastError()), u"Version check failed with status 401: invalid signature"_s);
    EXPECT_FALSE(refused->updateInfo().has_value());
    EXPECT_EQ(log.criticalMessages().size(), 1);

    // One byte more (64 characters), a secret that is no UTF-8 or an address that does not
    // parse make no configuration; the fallback reaches no service and logs the only line.
    const QByteArray secret = kSecret.toUtf8();
    EXPECT_FALSE(VersionCheckConfiguration::make(u"https://u.example"_s, secret + "x", u"1"_s));
    EXPECT_FALSE(VersionCheckConfiguration::make(u"https://u.example"_s, secret.left(62) + "\xc3\x28"_ba, u"1"_s));
    EXPECT_FALSE(VersionCheckConfiguration::make(u"https://[::1/x"_s, secret, u"1"_s));
    EXPECT_EQ(VersionCheckConfiguration::orDisabled(std::nullopt).baseURL, QUrl(u"file:///"_s));
    ASSERT_EQ(log.criticalMessages().size(), 2);
    EXPECT_EQ(log.criticalMessages().last(), u"Version checking is disabled because its configuration is invalid."_s);
}
