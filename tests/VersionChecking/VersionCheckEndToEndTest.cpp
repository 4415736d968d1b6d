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
        auto manager = std::make_unique<VersionManager>(VersionCheckClient(*configuration, network), version,
                                                        [this](const QUrl& url) { opened << url; });
        QSignalSpy finished(manager.get(), &VersionManager::checkFinished);
        manager->startCheck();
        EXPECT_TRUE(finished.wait(10000));
        return manager;
    }
};

} // namespace

TEST(VersionCheckEndToEndTest, TheServiceAnswersWhatItsConfigurationSaysToSignedChecksOnly)
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
}
