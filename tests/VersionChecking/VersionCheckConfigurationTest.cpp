#include <gtest/gtest.h>

#include "VersionChecking/VersionCheckConfiguration.h"
#include "testsupport/LogCapture.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// 64 bytes: the length the update service signs with.
const QByteArray secret64 = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";

} // namespace

TEST(VersionCheckConfigurationTest, IsMadeOnlyFromAnAddressAndA64ByteUtf8Secret)
{
    struct Case
    {
        const char* name;
        QString url;
        QByteArray secret;
        bool valid;
    };
    const Case cases[] = {
        {"https address", u"https://updates.example.com"_s, secret64, true},
        // 62 ASCII bytes and a two-byte letter: 63 characters, 64 bytes.
        {"loopback with path, multibyte secret", u"http://127.0.0.1:8765/service/"_s, secret64.left(62) + "\xc3\xa9"_ba,
         true},
        {"empty address", u""_s, secret64, false},
        {"unbalanced bracket", u"https://[::1/x"_s, secret64, false},
        {"secret one byte short", u"https://updates.example.com"_s, secret64.left(63), false},
        {"secret one byte long", u"https://updates.example.com"_s, secret64 + "0", false},
        // 64 characters but 65 bytes: the length is counted in bytes.
        {"64 characters, 65 bytes", u"https://updates.example.com"_s, secret64.left(63) + "\xc3\xa9"_ba, false},
        {"secret not UTF-8", u"https://updates.example.com"_s, secret64.left(62) + "\xc3\x28"_ba, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto configuration = VersionCheckConfiguration::make(c.url, c.secret, u"123"_s);
        ASSERT_EQ(configuration.has_value(), c.valid);
        if (configuration) {
            EXPECT_EQ(configuration->baseURL, QUrl(c.url));
            EXPECT_EQ(configuration->signatureSecret, QString::fromUtf8(c.secret));
            EXPECT_EQ(configuration->appID, u"123"_s);
        }
    }
}

TEST(VersionCheckConfigurationTest, AnInvalidConfigurationFallsBackToTheDisabledOneWithOneLogLine)
{
    test::LogCapture log(u".VersionChecking"_s);
    const VersionCheckConfiguration fallback = VersionCheckConfiguration::orDisabled(std::nullopt);
    EXPECT_EQ(fallback.baseURL, QUrl(u"file:///"_s));
    EXPECT_EQ(fallback.appID, u"disabled"_s);
    EXPECT_EQ(fallback.channel, u"disabled"_s);
    EXPECT_TRUE(fallback.signatureSecret.isEmpty());
    EXPECT_EQ(log.criticalMessages(),
              QStringList {u"Version checking is disabled because its configuration is invalid."_s});

    const auto good = VersionCheckConfiguration::make(u"https://u.example"_s, secret64, u"1"_s);
    ASSERT_TRUE(good.has_value());
    EXPECT_EQ(VersionCheckConfiguration::orDisabled(good), *good);
    EXPECT_EQ(log.criticalMessages().size(), 1) << "a valid configuration logs nothing";
}
