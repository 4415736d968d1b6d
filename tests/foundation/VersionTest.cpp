#include <gtest/gtest.h>

#include "foundation/Version.h"

using namespace quillbay;

TEST(VersionTest, ParsesTwoOrThreeNumbers)
{
    struct Case
    {
        const char* text;
        const char* printed; // nullptr: no parse
    };
    const Case cases[] = {
        {"1.2", "1.2"},
        {"1.2.3", "1.2.3"},
        {"1..2", "1.2"},
        {"1...2.3", "1.2.3"},
        {".1.2.", "1.2"},
        {"15.0.1", "15.0.1"},
        {"1", nullptr},
        {"1.2.3.4", nullptr},
        {"1.x", nullptr},
        {"1.2.3.4.5", nullptr},
        {"-1.2", nullptr},
        {" 1.2", nullptr},
        {"18446744073709551615.0", "18446744073709551615.0"},
        {"18446744073709551616.0", nullptr},
        {"", nullptr},
        {"...", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const auto v = Version::parse(QString::fromUtf8(c.text));
        if (c.printed) {
            ASSERT_TRUE(v.has_value());
            EXPECT_EQ(v->description().toStdString(), c.printed);
        } else {
            EXPECT_FALSE(v.has_value());
        }
    }
}

TEST(VersionTest, AbsentPatchComparesAsZero)
{
    const auto v = [](const char* t) { return *Version::parse(QString::fromUtf8(t)); };
    EXPECT_EQ(v("1.2"), v("1.2.0"));
    EXPECT_FALSE(v("1.2") < v("1.2.0"));
    EXPECT_FALSE(v("1.2.0") < v("1.2"));
    EXPECT_GT(v("1.2.1"), v("1.2"));
    EXPECT_LT(v("1.9"), v("1.10"));
    EXPECT_LT(v("1.10.5"), v("2.0"));
    EXPECT_LE(v("1.2"), v("1.2.0"));
    EXPECT_GE(v("1.2"), v("1.2.0"));
}

TEST(VersionTest, AppleBuildSplitsMajorMinorDaily)
{
    struct Case
    {
        const char* text;
        std::optional<qint64> major;
        const char* minor;
        const char* daily;
    };
    const Case cases[] = {
        {"21B74", 21, "B", "74"},     {"17A5305f", 17, "A", "5305f"},       {"(21B74)", std::nullopt, "(", "21B74)"},
        {"16", 16, nullptr, nullptr}, {"", std::nullopt, nullptr, nullptr}, {" 9A", 9, "A", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const AppleBuild b(QString::fromUtf8(c.text));
        EXPECT_EQ(b.major, c.major);
        EXPECT_EQ(b.minor.has_value(), c.minor != nullptr);
        if (c.minor) {
            EXPECT_EQ(QString(*b.minor), QString::fromUtf8(c.minor));
        }
        EXPECT_EQ(b.daily.has_value(), c.daily != nullptr);
        if (c.daily) {
            EXPECT_EQ(*b.daily, QString::fromUtf8(c.daily));
        }
        EXPECT_EQ(b.description(), QString::fromUtf8(c.text));
    }
}

TEST(VersionTest, AppleBuildOrdering)
{
    const auto b = [](const char* t) { return AppleBuild(QString::fromUtf8(t)); };
    EXPECT_LT(b("(21B74)"), b("(21B90)"));
    EXPECT_LT(b("20C65"), b("21A5"));
    EXPECT_LT(b("21A99"), b("21B1"));
    EXPECT_LT(b("21B100"), b("21B74")) << "daily compares as text";
    EXPECT_LT(b("(9A)"), b("1A")) << "an absent major counts as 0";
    EXPECT_FALSE(b("21B74") < b("21B74"));
    EXPECT_EQ(b("21B74"), b("21B74"));
    EXPECT_EQ(b("21B"), AppleBuild(QStringLiteral("21B"))) << "absent daily equals empty";
}

TEST(VersionTest, AppleBuildMixedMinorIsAPreconditionFailure)
{
    EXPECT_DEATH({ (void)(AppleBuild(QStringLiteral("21")) < AppleBuild(QStringLiteral("21B"))); }, "");
}

TEST(VersionTest, UnknownSizeOrdersFirst)
{
    EXPECT_LT(Size::unknown(), Size::value(0));
    EXPECT_EQ(Size::unknown(), Size::unknown());
    EXPECT_FALSE(Size::unknown() < Size::unknown());
    EXPECT_LT(Size::value(-1), Size::value(0));
    EXPECT_NE(Size::value(0), Size::unknown());
}
