#include <gtest/gtest.h>

#include "VersionChecking/VersionCheckConfiguration.h"
#include "testsupport/LogCapture.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

// The length is counted in bytes, not characters: the service signs with 64 bytes.
TEST(VersionCheckConfigurationTest, IsMadeOnlyFromAnAddressAndA64ByteUtf8Secret)
{
    test::LogCapture log(u".VersionChecking"_s);
    const QByteArray secret64 = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";
    struct Case
    {
        const char* name;
        QString url;
        QByteArray secret;
        bool valid;
    };
    const Case cases[] = {
        {"63 characters, 64 bytes", u"http://127.0.0.1:8765/service/"_s, secret64.left(62) + "\xc3\xa9"_ba, true},
        {"unbalanced bracket", u"https://[::1/x"_s, secret64, false},
        {"secret one byte short", u"https://u.example"_s, secret64.left(63), false},
        {"64 characters, 65 bytes", u"https://u.example"_s, secret64.left(63) + "\xc3\xa9"_ba, false},
        {"secret not UTF-8", u"https://u.example"_s, secret64.left(62) + "\xc3\x28"_ba, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto configuration = VersionCheckConfiguration::make(c.url, c.secret, u"123"_s);
        ASSERT_EQ(configuration.has_value(), c.valid);
        if (configuration) {
            EXPECT_EQ(configuration->baseURL, QUrl(c.url));
            EXPECT_EQ(configuration->signatureSecret, QString::fromUtf8(c.secret));
            EXPECT_EQ(configuration->appID, u"123"_s);
            EXPECT_EQ(VersionCheckConfiguration::orDisabled(configuration), *configuration);
        }
    }

    // An invalid one falls back to the disabled configuration, with the only log line.
    const VersionCheckConfiguration fallback = VersionCheckConfiguration::orDisabled(std::nullopt);
    EXPECT_EQ(fallback.baseURL, QUrl(u"file:///"_s));
    EXPECT_EQ(fallback.appID, u"disabled"_s);
    EXPECT_EQ(fallback.channel, u"disabled"_s);
    EXPECT_TRUE(fallback.signatureSecret.isEmpty());
    EXPECT_EQ(log.criticalMessages(),
              QStringList {u"Version checking is disabled because its configuration is invalid."_s});
}
