#include <gtest/gtest.h>

#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

// One release with every key the records know, plus keys they do not.
const QByteArray kFullRelease = R"j({"_dateOrder": 20251212, "checksums": {"sha1": "cdd9"}, "requires": "15.6",
  "compilers": {"clang": [{"build": "1700.6.3.2", "number": "17.0.0", "release": {"release": true}}], "llvm": [{}],
                "swift": [{"build": "6.2.3.3.21", "number": "6.2.3"}, {"number": "6.1"}]},
  "date": {"day": 12, "month": 12, "year": 2025, "era": "AD"}, "name": "Xcode (Apple Silicon)",
  "links": {"download": {"architectures": ["arm64"], "url": "https://example.test/Xcode_26.2.xip", "size": 3},
            "notes": {"url": "https://example.test/notes"}},
  "sdks": {"iOS": [{"build": "23C53", "number": "26.2"}, {"build": "ZZZ", "number": "99"}], "macOS": [{"number": "26.2"}],
           "tvOS": [{"build": "", "number": "26.2"}], "visionOS": [], "watchOS": [{"build": "23S303"}], "driverKit": [{}]},
  "version": {"build": "17C52", "number": "26.2", "release": {"release": true}, "extra": 1}})j";

const QByteArray kMinimalRelease
    = R"j({"name": "Xcode", "requires": "10.8", "date": {"day": 5, "month": 12, "year": 2013}})j";

// Null optional values count as absent; February 30th rolls over as the calendar does.
const QByteArray kNulls = R"j({"name": "Xcode 4 (Apple Silicon) (Apple Silicon)", "requires": "10.6.8",
    "date": {"day": 30, "month": 2, "year": 2011}, "compilers": {"swift": null, "clang": [{"number": "3.0"}]},
    "links": {"download": {"url": "u", "architectures": null}, "notes": null},
    "sdks": {"macOS": [], "iOS": [{"build": null, "number": "5.0"}]}, "version": null})j";

QByteArray feedOf(std::initializer_list<QByteArray> releases)
{
    return '[' + QByteArrayList(releases).join(',') + ']';
}

XcodeRelease decodeOne(const QByteArray& json)
{
    const auto releases = decodeXcodeReleases(feedOf({json}));
    if (!releases || releases->size() != 1) {
        ADD_FAILURE() << "fixture does not decode: " << json.constData();
        return {};
    }
    return releases->first();
}

} // namespace

TEST(XcodeReleaseDecoderTest, ReadsEveryKnownKeyAndShowsEveryColumnInBothForms)
{
    const auto releases = decodeXcodeReleases(feedOf({kFullRelease, kMinimalRelease, kNulls}));
    ASSERT_TRUE(releases.has_value());
    ASSERT_EQ(releases->size(), 3);
    const XcodeRelease& full = releases->at(0);
    EXPECT_EQ(full.date, (XcodeRelease::DateInfo {12, 12, 2025}));
    ASSERT_TRUE(full.version.has_value());
    EXPECT_EQ(full.version->build, u"17C52"_s);
    ASSERT_EQ(full.version->release.size(), 1);
    EXPECT_EQ(full.version->release.first().second, XcodeRelease::BoolOrInt::fromBool(true));
    ASSERT_TRUE(full.compilers && full.compilers->swift && full.compilers->clang);
    ASSERT_EQ(full.compilers->swift->size(), 2);
    EXPECT_EQ(full.compilers->swift->at(1).build, std::nullopt);
    ASSERT_TRUE(full.sdks.has_value());
    EXPECT_EQ(full.sdks->macOS->first().build, std::nullopt);
    EXPECT_EQ(full.sdks->watchOS->first().number, std::nullopt);
    EXPECT_TRUE(full.sdks->visionOS->isEmpty());
    ASSERT_TRUE(full.links && full.links->download && full.links->notes);
    EXPECT_EQ(full.links->download->architectures, QStringList {u"arm64"_s});

    const XcodeRelease& minimal = releases->at(1);
    EXPECT_FALSE(minimal.version || minimal.sdks || minimal.links || minimal.compilers);
    EXPECT_NE(minimal.id, full.id);

    const XcodeRelease& nulls = releases->at(2);
    EXPECT_FALSE(nulls.version.has_value() || nulls.compilers->swift.has_value() || nulls.links->notes.has_value());
    EXPECT_FALSE(nulls.links->download->architectures.has_value());
    EXPECT_EQ(nulls.sdks->iOS->first(), (XcodeRelease::SDKInfo {std::nullopt, u"5.0"_s}));

    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const XcodeRelease& rich = full;
    const XcodeRelease& bare = nulls;
    const std::optional<QString> none;
    const struct
    {
        Column column;
        QString richShort, richLong, bareShort, bareLong;
        std::optional<QString> richBuild; // the bare release has no builds at all
    } cases[] = {
        {Column::version, u"Xcode 26.2"_s, u"Xcode 26.2 (17C52)"_s, u"Xcode 4"_s, u"Xcode 4"_s, none},
        {Column::date, u"Dec 12, 2025"_s, u"Dec 12, 2025"_s, u"Mar 2, 2011"_s, u"Mar 2, 2011"_s, none},
        {Column::swift, u"6.2.3"_s, u"6.2.3 (6.2.3.3.21)"_s, {}, {}, u"6.2.3.3.21"_s},
        {Column::iOSSDK, u"iOS 26.2"_s, u"iOS 26.2 (23C53)"_s, u"iOS 5.0"_s, u"iOS 5.0"_s, u"23C53"_s},
        {Column::watchOSSDK, u"watchOS"_s, u"watchOS (23S303)"_s, {}, {}, u"23S303"_s},
        // An empty build shows as "()" in the long form but is no build line.
        {Column::tvOSSDK, u"tvOS 26.2"_s, u"tvOS 26.2 ()"_s, {}, {}, none},
        {Column::download, u"https://example.test/Xcode_26.2.xip"_s, u"https://example.test/Xcode_26.2.xip"_s, u"u"_s,
         u"u"_s, none},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(columnTitle(c.column).toStdString());
        EXPECT_EQ(cellText(rich, c.column, false, english), c.richShort);
        EXPECT_EQ(cellText(rich, c.column, true, english), c.richLong);
        EXPECT_EQ(cellText(bare, c.column, false, english), c.bareShort);
        EXPECT_EQ(cellText(bare, c.column, true, english), c.bareLong);
        EXPECT_EQ(buildText(rich, c.column), c.richBuild);
        EXPECT_EQ(buildText(bare, c.column), std::nullopt);
    }
    EXPECT_EQ(releaseDateText({12, 12, 2025}, QLocale(QLocale::German, QLocale::Germany)), u"12. Dez. 2025"_s);
}

TEST(XcodeReleaseDecoderTest, BadDocumentsAndOneBadObjectRejectTheWholeFeed)
{
    const struct
    {
        QByteArray bytes;
        bool decodes;
    } documents[] = {
        {"", false},
        {feedOf({kFullRelease}).chopped(3), false},
        {feedOf({kMinimalRelease}) + "]", false},
        {"<html>503</html>", false},
        {"[]", true},
    };
    for (const auto& c : documents) {
        SCOPED_TRACE(c.bytes.constData());
        EXPECT_EQ(decodeXcodeReleases(c.bytes).has_value(), c.decodes);
    }
    const QByteArray base = R"j("name": "X", "requires": "1", "date": {"day": 1, "month": 1, "year": 1})j";
    const QByteArray releases[] = {
        R"j({"requires": "10.8", "date": {"day": 1, "month": 1, "year": 2020}})j",
        R"j({"name": "Xcode", "requires": "10.8", "date": {"day": "1", "month": 1, "year": 2020}})j",
        R"j("Xcode 1.0")j",
        '{' + base + R"j(, "version": {"number": "1.0", "release": {"release": true}}})j",
        '{' + base + R"j(, "version": {"build": "1A1", "number": "1.0", "release": [true]}})j",
        '{' + base + R"j(, "compilers": {"swift": [{"build": "5.1"}]}})j",
        '{' + base + R"j(, "links": {"download": {"architectures": ["arm64"]}}})j",
        '{' + base + R"j(, "sdks": {"macOS": {"number": "1"}}})j",
        '{' + base + R"j(, "links": {"download": {"url": "u", "architectures": [64]}}})j",
    };
    for (const QByteArray& release : releases) {
        SCOPED_TRACE(release.constData());
        EXPECT_FALSE(decodeXcodeReleases(feedOf({kFullRelease, release, kMinimalRelease})).has_value());
    }
}

// Odd values: the maturity label lowercases the key but keeps oddities, the Apple Silicon
// mark trusts a published architecture list over the name, dates roll over or show nothing.
TEST(XcodeReleaseDecoderTest, OddMaturityArchitectureAndDateValues)
{
    const struct
    {
        QByteArray name, architectures, maturity, date;
        QString label;
        bool isFinal, appleSilicon;
        QString dateText;
    } cases[] = {
        {"Xcode 12.2 (Apple Silicon)", R"j(, "architectures": ["x86_64"])j", R"j({"Release": true})j", "0, 3, 2024",
         u"Release"_s, false, false, u"Feb 29, 2024"_s},
        {"Xcode", R"j(, "architectures": ["arm64"])j", R"j({"RC": 2})j", "31, 0, 2024", u"RC 2"_s, false, true,
         u"Dec 31, 2023"_s},
        {"Xcode (Apple Silicon)", R"j(, "architectures": [])j", R"j({"gm": false})j", "1, 1, 0", QString(), false,
         false, QString()},
        {"Xcode (Apple Silicon)", "", R"j({"gmSeed": -1})j", "1, 1, 9000000000", u" -1"_s, false, true, QString()},
        {"Xcode (apple silicon)", "", R"j({})j", "1, 9223372036854775807, 2020", u"unknown"_s, false, false, QString()},
        {"Xcode (Apple Silicon) beta", "", R"j({"beta": 4, "release": true})j", "1, 1, 2020", u"Beta 4"_s, true, false,
         u"Jan 1, 2020"_s},
        // Integer first, then boolean, anything else unknown.
        {"Xcode", "", R"j({"beta": 2.0})j", "1, 1, 2020", u"unknown"_s, false, false, u"Jan 1, 2020"_s},
        {"Xcode", "", R"j({"beta": 18446744073709551615})j", "1, 1, 2020", u"unknown"_s, false, false,
         u"Jan 1, 2020"_s},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE((c.name + c.architectures + ' ' + c.maturity + ' ' + c.date).constData());
        const QList<QByteArray> dmy = c.date.split(',');
        const XcodeRelease release = decodeOne(R"j({"name": ")j" + c.name + R"j(", "requires": "1", "date": {"day": )j"
                                               + dmy[0] + ", \"month\": " + dmy[1] + ", \"year\": " + dmy[2] + R"j(},
            "links": {"download": {"url": "https://example.test/x.xip")j"
                                               + c.architectures + R"j(}},
            "version": {"build": "1A", "number": "15.3", "release": )j"
                                               + c.maturity + "}}");
        EXPECT_EQ(cellText(release, Column::release, false), c.label);
        EXPECT_EQ(cellText(release, Column::release, true), c.label);
        EXPECT_EQ(isFinalRelease(release), c.isFinal);
        EXPECT_EQ(isAppleSiliconOnly(release), c.appleSilicon);
        EXPECT_EQ(cellText(release, Column::date, false, QLocale(QLocale::English, QLocale::UnitedStates)), c.dateText);
    }
}
