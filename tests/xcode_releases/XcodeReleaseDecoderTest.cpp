#include <gtest/gtest.h>

#include "xcode_releases/XcodeReleaseDecoder.h"

using namespace quillbay;

namespace {

// One release with every key the records know, plus keys they do not.
const QByteArray kFullRelease = R"j({
  "_dateOrder": 20251212, "checksums": {"sha1": "cdd9"},
  "compilers": {"clang": [{"build": "1700.6.3.2", "number": "17.0.0", "release": {"release": true}}],
                "swift": [{"build": "6.2.3.3.21", "number": "6.2.3"}, {"number": "6.1"}],
                "llvm": [{"build": "2336.11.00"}]},
  "date": {"day": 12, "month": 12, "year": 2025, "era": "AD"},
  "links": {"download": {"architectures": ["arm64"], "url": "https://example.test/Xcode_26.2.xip", "size": 3},
            "notes": {"url": "https://example.test/notes"}},
  "name": "Xcode (Apple Silicon)",
  "requires": "15.6",
  "sdks": {"iOS": [{"build": "23C53", "number": "26.2"}], "macOS": [{"number": "26.2"}], "tvOS": [{"build": "23K50"}],
           "visionOS": [], "watchOS": [{}], "driverKit": [{"number": "25.2"}]},
  "version": {"build": "17C52", "number": "26.2", "release": {"release": true}, "extra": 1}
})j";

const QByteArray kMinimalRelease
    = R"j({"name": "Xcode", "requires": "10.8", "date": {"day": 5, "month": 12, "year": 2013}})j";

QByteArray feedOf(std::initializer_list<QByteArray> releases)
{
    QByteArrayList items(releases);
    return '[' + items.join(',') + ']';
}

} // namespace

TEST(XcodeReleaseDecoderTest, ReadsEveryKnownKeyAndIgnoresTheRest)
{
    const auto releases = decodeXcodeReleases(feedOf({kFullRelease, kMinimalRelease}));
    ASSERT_TRUE(releases.has_value());
    ASSERT_EQ(releases->size(), 2);
    const XcodeRelease& full = releases->at(0);
    EXPECT_EQ(full.name, QStringLiteral("Xcode (Apple Silicon)"));
    EXPECT_EQ(full.requires_, QStringLiteral("15.6"));
    EXPECT_EQ(full.date, (XcodeRelease::DateInfo {12, 12, 2025}));
    ASSERT_TRUE(full.version.has_value());
    EXPECT_EQ(full.version->build, QStringLiteral("17C52"));
    EXPECT_EQ(full.version->number, QStringLiteral("26.2"));
    ASSERT_EQ(full.version->release.size(), 1);
    EXPECT_EQ(full.version->release.first().first, QStringLiteral("release"));
    EXPECT_EQ(full.version->release.first().second, XcodeRelease::BoolOrInt::fromBool(true));
    ASSERT_TRUE(full.compilers && full.compilers->swift && full.compilers->clang);
    ASSERT_EQ(full.compilers->swift->size(), 2);
    EXPECT_EQ(full.compilers->swift->at(0).build, QStringLiteral("6.2.3.3.21"));
    EXPECT_EQ(full.compilers->swift->at(1).build, std::nullopt);
    ASSERT_TRUE(full.sdks.has_value());
    EXPECT_EQ(full.sdks->macOS->first().build, std::nullopt);
    EXPECT_EQ(full.sdks->tvOS->first().number, std::nullopt);
    EXPECT_TRUE(full.sdks->visionOS->isEmpty());
    EXPECT_EQ(full.sdks->watchOS->first(), XcodeRelease::SDKInfo {});
    ASSERT_TRUE(full.links && full.links->download && full.links->notes);
    EXPECT_EQ(full.links->download->architectures, QStringList {QStringLiteral("arm64")});
    EXPECT_EQ(full.links->notes->architectures, std::nullopt);

    const XcodeRelease& minimal = releases->at(1);
    EXPECT_FALSE(minimal.version || minimal.sdks || minimal.links || minimal.compilers);
    EXPECT_FALSE(minimal.id.isNull());
    EXPECT_NE(minimal.id, full.id);
}

TEST(XcodeReleaseDecoderTest, OneBadObjectRejectsTheWholeFeed)
{
    struct Case
    {
        const char* what;
        QByteArray release;
    };
    const Case cases[] = {
        {"no name", R"j({"requires": "10.8", "date": {"day": 1, "month": 1, "year": 2020}})j"},
        {"no requires", R"j({"name": "Xcode", "date": {"day": 1, "month": 1, "year": 2020}})j"},
        {"no date", R"j({"name": "Xcode", "requires": "10.8"})j"},
        {"date without day", R"j({"name": "Xcode", "requires": "10.8", "date": {"month": 1, "year": 2020}})j"},
        {"day as text", R"j({"name": "Xcode", "requires": "10.8", "date": {"day": "1", "month": 1, "year": 2020}})j"},
        {"day as fraction",
         R"j({"name": "Xcode", "requires": "10.8", "date": {"day": 1.5, "month": 1, "year": 2020}})j"},
        {"name is null", R"j({"name": null, "requires": "10.8", "date": {"day": 1, "month": 1, "year": 2020}})j"},
        {"name is a number", R"j({"name": 7, "requires": "10.8", "date": {"day": 1, "month": 1, "year": 2020}})j"},
        {"version without build", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "version": {"number": "1.0", "release": {"release": true}}})j"},
        {"version without number", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "version": {"build": "1A1", "release": {"release": true}}})j"},
        {"version without release", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "version": {"build": "1A1", "number": "1.0"}})j"},
        {"release is a list", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "version": {"build": "1A1", "number": "1.0", "release": [true]}})j"},
        {"swift without number", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "compilers": {"swift": [{"build": "5.1"}]}})j"},
        {"clang without number", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "compilers": {"clang": [{"number": "1"}, {"build": "2"}]}})j"},
        {"download without url", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "links": {"download": {"architectures": ["arm64"]}}})j"},
        {"notes without url", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "links": {"notes": {}}})j"},
        {"links of the wrong type", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "links": "https://example.test"})j"},
        {"sdk list is an object", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "sdks": {"macOS": {"number": "1"}}})j"},
        {"sdk number is a number", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "sdks": {"iOS": [{"number": 17}]}})j"},
        {"architecture is a number", R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "links": {"download": {"url": "u", "architectures": [64]}}})j"},
        {"element is not an object", R"j("Xcode 1.0")j"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_FALSE(decodeXcodeReleases(feedOf({kFullRelease, c.release, kMinimalRelease})).has_value());
    }
}

TEST(XcodeReleaseDecoderTest, DocumentsThatAreNoArrayFail)
{
    struct Case
    {
        const char* what;
        QByteArray bytes;
        bool decodes;
    };
    const Case cases[] = {
        {"empty", "", false},
        {"object", "{}", false},
        {"text", "\"[]\"", false},
        {"truncated", feedOf({kFullRelease}).chopped(3), false},
        {"trailing garbage", feedOf({kMinimalRelease}) + "]", false},
        {"not JSON", "<html>503</html>", false},
        {"empty array", "[]", true},
        {"surrounding whitespace", "\n  " + feedOf({kMinimalRelease}) + "  \n", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(decodeXcodeReleases(c.bytes).has_value(), c.decodes);
    }
}

TEST(XcodeReleaseDecoderTest, MaturityValuesAreIntegerThenBooleanThenUnknown)
{
    struct Case
    {
        const char* json;
        XcodeRelease::BoolOrInt expected;
    };
    const Case cases[] = {
        {"3", XcodeRelease::BoolOrInt::fromInt(3)},
        {"-2", XcodeRelease::BoolOrInt::fromInt(-2)},
        {"true", XcodeRelease::BoolOrInt::fromBool(true)},
        {"false", XcodeRelease::BoolOrInt::fromBool(false)},
        {"\"x\"", XcodeRelease::BoolOrInt::unknown()},
        {"{\"n\": 1}", XcodeRelease::BoolOrInt::unknown()},
        {"2.5", XcodeRelease::BoolOrInt::unknown()},
        {"null", XcodeRelease::BoolOrInt::unknown()},
        {"18446744073709551615", XcodeRelease::BoolOrInt::unknown()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.json);
        const QByteArray release = R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
            "version": {"build": "1A1", "number": "1.0", "release": {"beta": )j"
            + QByteArray(c.json) + "}}}";
        const auto releases = decodeXcodeReleases(feedOf({release}));
        ASSERT_TRUE(releases.has_value());
        EXPECT_EQ(releases->first().version->release.first().second, c.expected);
    }
}

TEST(XcodeReleaseDecoderTest, NullOptionalValuesCountAsAbsent)
{
    const QByteArray release = R"j({"name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1},
        "compilers": {"swift": null}, "links": {"download": {"url": "u", "architectures": null}, "notes": null},
        "sdks": {"iOS": [{"build": null, "number": "17.0"}]}, "version": null})j";
    const auto releases = decodeXcodeReleases(feedOf({release}));
    ASSERT_TRUE(releases.has_value());
    const XcodeRelease& r = releases->first();
    EXPECT_FALSE(r.version.has_value());
    EXPECT_FALSE(r.compilers->swift.has_value());
    EXPECT_FALSE(r.links->notes.has_value());
    EXPECT_FALSE(r.links->download->architectures.has_value());
    EXPECT_EQ(r.sdks->iOS->first(), (XcodeRelease::SDKInfo {std::nullopt, QStringLiteral("17.0")}));
}

TEST(XcodeReleaseDecoderTest, DecodingTwiceGivesEqualRecordsWithNewIdentities)
{
    const QByteArray feed = feedOf({kFullRelease, kMinimalRelease});
    const auto first = decodeXcodeReleases(feed);
    const auto second = decodeXcodeReleases(feed);
    ASSERT_TRUE(first && second);
    ASSERT_EQ(first->size(), second->size());
    for (qsizetype i = 0; i < first->size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_TRUE(first->at(i).hasSameContent(second->at(i)));
        EXPECT_NE(first->at(i).id, second->at(i).id);
    }
}
