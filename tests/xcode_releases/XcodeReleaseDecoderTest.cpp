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
    const QByteArray feed = feedOf({kFullRelease, kMinimalRelease});
    const auto releases = decodeXcodeReleases(feed);
    ASSERT_TRUE(releases.has_value());
    ASSERT_EQ(releases->size(), 2);
    const XcodeRelease& full = releases->at(0);
    EXPECT_EQ(full.date, (XcodeRelease::DateInfo {12, 12, 2025}));
    ASSERT_TRUE(full.version.has_value());
    EXPECT_EQ(full.version->build, QStringLiteral("17C52"));
    ASSERT_EQ(full.version->release.size(), 1);
    EXPECT_EQ(full.version->release.first().second, XcodeRelease::BoolOrInt::fromBool(true));
    ASSERT_TRUE(full.compilers && full.compilers->swift && full.compilers->clang);
    ASSERT_EQ(full.compilers->swift->size(), 2);
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
    EXPECT_NE(minimal.id, full.id);

    // Decoding again gives equal records with new identities.
    const auto again = decodeXcodeReleases(feed);
    ASSERT_TRUE(again && again->size() == 2);
    for (qsizetype i = 0; i < 2; ++i) {
        EXPECT_TRUE(releases->at(i).hasSameContent(again->at(i)));
        EXPECT_NE(releases->at(i).id, again->at(i).id);
    }
}

TEST(XcodeReleaseDecoderTest, OneBadObjectRejectsTheWholeFeed)
{
    const QByteArray base = R"j("name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1})j";
    const struct
    {
        const char* what;
        QByteArray release; // whole object
    } cases[] = {
        {"no name", R"j({"requires": "10.8", "date": {"day": 1, "month": 1, "year": 2020}})j"},
        {"date without day", R"j({"name": "Xcode", "requires": "10.8", "date": {"month": 1, "year": 2020}})j"},
        {"day as text", R"j({"name": "Xcode", "requires": "10.8", "date": {"day": "1", "month": 1, "year": 2020}})j"},
        {"element is not an object", R"j("Xcode 1.0")j"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_FALSE(decodeXcodeReleases(feedOf({kFullRelease, c.release, kMinimalRelease})).has_value());
    }
    // Optional parts that are present but incomplete or of the wrong type.
    const char* const extras[] = {
        R"j("version": {"number": "1.0", "release": {"release": true}})j",
        R"j("version": {"build": "1A1", "number": "1.0", "release": [true]})j",
        R"j("compilers": {"swift": [{"build": "5.1"}]})j",
        R"j("links": {"download": {"architectures": ["arm64"]}})j",
        R"j("sdks": {"macOS": {"number": "1"}})j",
        R"j("links": {"download": {"url": "u", "architectures": [64]}})j",
    };
    for (const char* extra : extras) {
        SCOPED_TRACE(extra);
        const QByteArray release = '{' + base + ", " + extra + '}';
        EXPECT_FALSE(decodeXcodeReleases(feedOf({kFullRelease, release, kMinimalRelease})).has_value());
    }
}

TEST(XcodeReleaseDecoderTest, DocumentsThatAreNoArrayFail)
{
    const struct
    {
        const char* what;
        QByteArray bytes;
        bool decodes;
    } cases[] = {
        {"empty", "", false},
        {"truncated", feedOf({kFullRelease}).chopped(3), false},
        {"trailing garbage", feedOf({kMinimalRelease}) + "]", false},
        {"not JSON", "<html>503</html>", false},
        {"empty array", "[]", true},
        {"surrounding whitespace", "\n  " + feedOf({kMinimalRelease}) + "  \n", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(decodeXcodeReleases(c.bytes).has_value(), c.decodes);
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
