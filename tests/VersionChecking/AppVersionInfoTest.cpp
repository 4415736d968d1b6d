#include <gtest/gtest.h>

#include "VersionChecking/AppVersionInfo.h"
#include "VersionChecking/VersionCheckError.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

TEST(AppVersionInfoTest, DecodesOnlyCompleteTypedAnswers)
{
    struct Case
    {
        const char* name;
        QByteArray json;
        std::optional<AppVersionInfo> expected; // none: a decoding failure
        QString failureMentions;
    };
    const Case cases[] = {
        {"complete",
         R"({"update_url":"https://x.test/u","force_update":false,"update_available":true})",
         AppVersionInfo {u"https://x.test/u"_s, false, true},
         {}},
        {"unknown keys ignored, any order",
         R"({"latest":"9.9","update_available":false,"force_update":true,"update_url":"","extra":{"a":[1]}})",
         AppVersionInfo {u""_s, true, false},
         {}},
        {"update_available missing while force_update is false",
         R"({"update_url":"https://x.test","force_update":false})", std::nullopt, u"update_available"_s},
        {"update_url missing", R"({"force_update":false,"update_available":true})", std::nullopt, u"update_url"_s},
        {"null is not a value", R"({"update_url":null,"force_update":false,"update_available":true})", std::nullopt,
         u"update_url"_s},
        {"number is not a boolean", R"({"update_url":"u","force_update":1,"update_available":true})", std::nullopt,
         u"force_update"_s},
        {"text is not a boolean", R"({"update_url":"u","force_update":false,"update_available":"true"})", std::nullopt,
         u"update_available"_s},
        {"array at the top", R"([{"update_url":"u","force_update":false,"update_available":true}])", std::nullopt,
         u"object"_s},
        {"truncated", R"({"update_url":"u","force_update":fal)", std::nullopt, u"JSON"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto decoded = AppVersionInfo::decode(c.json);
        if (c.expected) {
            ASSERT_TRUE(std::holds_alternative<AppVersionInfo>(decoded));
            EXPECT_EQ(std::get<AppVersionInfo>(decoded), *c.expected);
        } else {
            ASSERT_TRUE(std::holds_alternative<AppVersionDecodingError>(decoded));
            EXPECT_TRUE(std::get<AppVersionDecodingError>(decoded).description.contains(c.failureMentions))
                << std::get<AppVersionDecodingError>(decoded).description.toStdString();
        }
    }
}

TEST(AppVersionInfoTest, EncodesTheKeysInDeclaredOrderAndReadsBack)
{
    const AppVersionInfo info {u"https://x.test/a?b=\"c\"&d=é"_s, true, false};
    const QByteArray json = info.encode();
    EXPECT_EQ(json, R"({"update_url":"https://x.test/a?b=\"c\"&d=é","force_update":true,"update_available":false})"_ba);
    const auto decoded = AppVersionInfo::decode(json);
    ASSERT_TRUE(std::holds_alternative<AppVersionInfo>(decoded));
    EXPECT_EQ(std::get<AppVersionInfo>(decoded), info);
}

// The other texts are checked where the client produces them.
TEST(VersionCheckErrorTest, AStatusBodyIsShownOnlyWhenItIsUtf8)
{
    const std::pair<VersionCheckError, QString> cases[] = {
        {VersionCheckError::httpStatus(503, ""), u"Version check failed with status 503."_s},
        {VersionCheckError::httpStatus(500, "\xff\xfe\x00oops"_ba), u"Version check failed with status 500."_s},
        {VersionCheckError::httpStatus(418, "t\xc3\xa9"), u"Version check failed with status 418: té"_s},
    };
    for (const auto& [error, expected] : cases) {
        SCOPED_TRACE(expected.toStdString());
        EXPECT_EQ(failureDescription(VersionCheckFailure(error)), expected);
    }
}
