#include <gtest/gtest.h>

#include "LogCapture.h"
#include "VersionChecking/VersionCheckConfiguration.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

TEST(VersionCheckConfigurationTest, IsMadeOnlyFromAnAddressAndUtf8Secret)
{
    struct Case
    {
        const char* name;
        QString url;
        QByteArray secret;
        bool valid;
    };
    const Case cases[] = {
        {"https address", u"https://updates.example.com"_s, "secret", true},
        {"loopback with path", u"http://127.0.0.1:8765/service/"_s, "s\xc3\xa9"_ba, true},
        {"empty address", u""_s, "secret", false},
        {"no scheme", u"updates.example.com"_s, "secret", false},
        {"unbalanced bracket", u"https://[::1/x"_s, "secret", false},
        {"secret not UTF-8", u"https://updates.example.com"_s, "\xc3\x28"_ba, false},
        {"truncated sequence", u"https://updates.example.com"_s, "abc\xe2\x82"_ba, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto configuration = VersionCheckConfiguration::make(c.url, c.secret, u"123"_s);
        ASSERT_EQ(configuration.has_value(), c.valid);
        if (configuration) {
            EXPECT_EQ(configuration->baseURL, QUrl(c.url));
            EXPECT_EQ(configuration->signatureSecret, QString::fromUtf8(c.secret));
            EXPECT_EQ(configuration->path, u"/api/app-version/check"_s);
            EXPECT_EQ(configuration->platform, u"macos"_s);
            EXPECT_EQ(configuration->channel, u"prod"_s);
            EXPECT_EQ(configuration->appID, u"123"_s);
        }
    }
}

TEST(VersionCheckConfigurationTest, AnInvalidConfigurationFallsBackToTheDisabledOneWithOneLogLine)
{
    test::LogCapture log(u".VersionChecking"_s);
    const VersionCheckConfiguration fallback = VersionCheckConfiguration::orDisabled(std::nullopt);
    EXPECT_EQ(fallback.baseURL, QUrl(u"file:///"_s));
    EXPECT_EQ(fallback.path, u"/api/app-version/check"_s);
    EXPECT_EQ(fallback.appID, u"disabled"_s);
    EXPECT_EQ(fallback.platform, u"macos"_s);
    EXPECT_EQ(fallback.channel, u"disabled"_s);
    EXPECT_TRUE(fallback.signatureSecret.isEmpty());
    EXPECT_EQ(log.criticalMessages(),
              QStringList {u"Version checking is disabled because its configuration is invalid."_s});

    const auto good = VersionCheckConfiguration::make(u"https://u.example"_s, "k", u"1"_s);
    ASSERT_TRUE(good.has_value());
    EXPECT_EQ(VersionCheckConfiguration::orDisabled(good), *good);
    EXPECT_EQ(log.criticalMessages().size(), 1) << "a valid configuration logs nothing";
}
