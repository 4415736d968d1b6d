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
    EXPECT_NE(Size::value(0), Size::unknown());
}

TEST(VersionTest, AppleBuildSplitsMajorMinorDailyAndOrders)
{
    const std::tuple<const char*, std::optional<qint64>, const char*, const char*> cases[] = {
        {"17A5305f", 17, "A", "5305f"},
        {"(21B74)", std::nullopt, "(", "21B74)"},
        {"16", 16, nullptr, nullptr},
        {"", std::nullopt, nullptr, nullptr},
    };
    for (const auto& [text, major, minor, daily] : cases) {
        SCOPED_TRACE(text);
        const AppleBuild b(QString::fromUtf8(text));
        EXPECT_EQ(b.major, major);
        EXPECT_EQ(b.minor ? QString(*b.minor) : QStringLiteral("<none>"),
                  minor ? QString::fromUtf8(minor) : QStringLiteral("<none>"));
        EXPECT_EQ(b.daily.value_or(QStringLiteral("<none>")),
                  daily ? QString::fromUtf8(daily) : QStringLiteral("<none>"));
        EXPECT_EQ(b.description(), QString::fromUtf8(text));
    }
    const auto b = [](const char* t) { return AppleBuild(QString::fromUtf8(t)); };
    EXPECT_LT(b("21A99"), b("21B1"));
    EXPECT_LT(b("21B100"), b("21B74")) << "daily compares as text";
    EXPECT_LT(b("(9A)"), b("1A")) << "an absent major counts as 0";
    EXPECT_FALSE(b("21B74") < b("21B74"));
    EXPECT_DEATH({ (void)(b("21") < b("21B")); }, "") << "mixed minor is a precondition failure";
}
