#include <QHostAddress>
#include <QHttpServer>
#include <QNetworkAccessManager>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "VersionChecking/VersionManager.h"
#include "testsupport/LogCapture.h"
#include "update/UpdateEndpoint.h"

using namespace quillbay;
using namespace quillbay::services;
using namespace Qt::StringLiterals;

namespace {

const QString kSecret = u"shared-update-secret-of-sixty-four-bytes-0123456789abcdef0123456"_s;

// The service and the program, each with its own copy of the agreed values, over loopback.
struct Deployment
{
    QHttpServer server;
    quint16 port = 0;
    QNetworkAccessManager network;
    QList<QUrl> opened;

    explicit Deployment(qint64 serverClockOffset = 0)
    {
        UpdateEndpointConfig config;
        config.signatureSecret = kSecret;
        config.appID = u"6443543821"_s;
        config.latestVersion = u"3.0.0"_s;
        config.updateURL = u"https://quillbay.example/download"_s;
        config.versionsThatMustUpdate = {u"2.0.0"_s};
        config.clock = [serverClockOffset] { return QDateTime::currentSecsSinceEpoch() + serverClockOffset; };
        registerUpdateEndpoint(server, config);
        port = server.listen(QHostAddress::LocalHost, 0);
        EXPECT_NE(port, 0);
    }

    // Starts one check of `version` and waits for its end.
    std::unique_ptr<VersionManager>
    checked(const QString& version, const QString& secret = kSecret, const QString& basePath = {})
    {
        const auto configuration = VersionCheckConfiguration::make(u"http://127.0.0.1:%1%2"_s.arg(port).arg(basePath),
                                                                   secret.toUtf8(), u" 6443543821 "_s);
        EXPECT_TRUE(configuration.has_value());
        auto manager = std::make_unique<VersionManager>(VersionCheckClient(*configuration, network), version,
                                                        [this](const QUrl& url) { opened << url; });
        QSignalSpy finished(manager.get(), &VersionManager::checkFinished);
        manager->startCheck();
        EXPECT_TRUE(finished.wait(10000));
        return manager;
    }
};

} // namespace

TEST(VersionCheckEndToEndTest, TheServiceAnswersWhatItsConfigurationSays)
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
}

TEST(VersionCheckEndToEndTest, RefusalsReachTheManagerAsStatusErrors)
{
    struct Case
    {
        const char* name;
        qint64 serverClockOffset;
        QString secret;
        QString basePath;
        QString expected;
    };
    const Case cases[] = {
        {"other secret",
         0,
         u"not-the-shared-secret-but-of-the-same-length-0123456789abcdef012"_s,
         {},
         u"Version check failed with status 401: invalid signature"_s},
        {"clocks ten minutes apart", 600, kSecret, {}, u"Version check failed with status 401: stale timestamp"_s},
        // The service has no such path; the router's own refusal comes back as it is.
        {"service under a path it does not serve", 0, kSecret, u"/service/"_s,
         u"Version check failed with status 404"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Deployment deployment(c.serverClockOffset);
        test::LogCapture log(u".VersionChecking"_s);
        const auto manager = deployment.checked(u"2.5.1"_s, c.secret, c.basePath);
        ASSERT_TRUE(manager->lastError().has_value());
        EXPECT_TRUE(failureDescription(*manager->lastError()).startsWith(c.expected))
            << failureDescription(*manager->lastError()).toStdString();
        EXPECT_FALSE(manager->updateInfo().has_value());
        EXPECT_EQ(log.criticalMessages().size(), 1);
    }
}
