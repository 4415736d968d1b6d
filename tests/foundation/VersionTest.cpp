#include <gtest/gtest.h>

#include "foundation/Version.h"

using namespace quillbay;

TEST(VersionTest, ParsesTwoOrThreeNumbersAndOrdersAnAbsentPatchAsZero)
{
    for (const char* text : {"1", "1.2.3.4", " 1.2", "-1.2", "...", "18446744073709551616.0"})
        EXPECT_FALSE(Version::parse(QString::fromUtf8(text))) << text;
    for (const char* text : {"1.2.3", "18446744073709551615.0"})
        EXPECT_EQ(Version::parse(QString::fromUtf8(text))->description(), QString::fromUtf8(text));
    EXPECT_EQ(Version::parse(QStringLiteral("1..2"))->description(), QStringLiteral("1.2"));
    const auto v = [](const char* t) { return *Version::parse(QString::fromUtf8(t)); };
    EXPECT_EQ(v("1.2"), v("1.2.0"));
    EXPECT_GT(v("1.2.1"), v("1.2"));
    EXPECT_LT(v("1.9"), v("1.10"));
    EXPECT_LT(Size::unknown(), Size::value(-1)) << "an unknown size orders first";
}

TEST(VersionTest, AppleBuildSplitsMajorMinorDailyAndOrders)
{
    const std::tuple<const char*, std::optional<qint64>, std::optional<QChar>, std::optional<QString>> cases[] = {
        {"17A5305f", 17, u'A', QStringLiteral("5305f")},
        {"(21B74)", std::nullopt, u'(', QStringLiteral("21B74)")},
        {"16", 16, std::nullopt, std::nullopt},
        {"", std::nullopt, std::nullopt, std::nullopt},
    };
    for (const auto& [text, major, minor, daily] : cases) {
        SCOPED_TRACE(text);
        const AppleBuild b(QString::fromUtf8(text));
        EXPECT_EQ(b.major, major);
        EXPECT_EQ(b.minor, minor);
        EXPECT_EQ(b.daily, daily);
        EXPECT_EQ(b.description(), QString::fromUtf8(text));
    }
    const auto b = [](const char* t) { return AppleBuild(QString::fromUtf8(t)); };
    EXPECT_LT(b("21A99"), b("21B1"));
    EXPECT_LT(b("21B100"), b("21B74")) << "daily compares as text";
    EXPECT_LT(b("(9A)"), b("1A")) << "an absent major counts as 0";
    EXPECT_FALSE(b("21B74") < b("21B74"));
    EXPECT_DEATH({ (void)(b("21") < b("21B")); }, "") << "mixed minor is a precondition failure";
}
