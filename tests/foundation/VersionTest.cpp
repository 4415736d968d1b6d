#include <gtest/gtest.h>

#include "foundation/Version.h"

using namespace quillbay;

TEST(VersionTest, ParsesTwoOrThreeNumbers)
{
    const std::pair<const char*, const char*> cases[] = {
        // {text, printed}; printed nullptr: no parse
        {"1.2", "1.2"},
        {"1.2.3", "1.2.3"},
        {"1..2", "1.2"},
        {".1.2.", "1.2"},
        {"1", nullptr},
        {"1.2.3.4", nullptr},
        {"1.x", nullptr},
        {"-1.2", nullptr},
        {" 1.2", nullptr},
        {"18446744073709551615.0", "18446744073709551615.0"},
        {"18446744073709551616.0", nullptr},
        {"...", nullptr},
    };
    for (const auto& [text, printed] : cases) {
        SCOPED_TRACE(text);
        const auto v = Version::parse(QString::fromUtf8(text));
        ASSERT_EQ(v.has_value(), printed != nullptr);
        if (printed) {
            EXPECT_EQ(v->description().toStdString(), printed);
        }
    }
    const auto v = [](const char* t) { return *Version::parse(QString::fromUtf8(t)); };
    EXPECT_EQ(v("1.2"), v("1.2.0")) << "an absent patch compares as zero";
    EXPECT_FALSE(v("1.2") < v("1.2.0"));
    EXPECT_GT(v("1.2.1"), v("1.2"));
    EXPECT_LT(v("1.9"), v("1.10"));
}

TEST(VersionTest, AppleBuildSplitsMajorMinorDailyAndOrders)
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
        EXPECT_EQ(b.minor ? QString(*b.minor) : QString(), QString::fromUtf8(c.minor));
        EXPECT_EQ(b.minor.has_value(), c.minor != nullptr);
        EXPECT_EQ(b.daily.value_or(QString()), QString::fromUtf8(c.daily));
        EXPECT_EQ(b.daily.has_value(), c.daily != nullptr);
        EXPECT_EQ(b.description(), QString::fromUtf8(c.text));
    }
    const auto b = [](const char* t) { return AppleBuild(QString::fromUtf8(t)); };
    EXPECT_LT(b("20C65"), b("21A5"));
    EXPECT_LT(b("21A99"), b("21B1"));
    EXPECT_LT(b("21B100"), b("21B74")) << "daily compares as text";
    EXPECT_LT(b("(9A)"), b("1A")) << "an absent major counts as 0";
    EXPECT_FALSE(b("21B74") < b("21B74"));
    EXPECT_EQ(b("21B"), b("21B")) << "absent daily equals empty";
    EXPECT_DEATH({ (void)(b("21") < b("21B")); }, "") << "mixed minor is a precondition failure";
}

TEST(VersionTest, UnknownSizeOrdersFirst)
{
    EXPECT_LT(Size::unknown(), Size::value(-1));
    EXPECT_EQ(Size::unknown(), Size::unknown());
    EXPECT_FALSE(Size::unknown() < Size::unknown());
    EXPECT_NE(Size::value(0), Size::unknown());
}
