#include <limits>

#include <gtest/gtest.h>

#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

XcodeRelease decodeOne(const QByteArray& json)
{
    const auto releases = decodeXcodeReleases('[' + json + ']');
    if (!releases || releases->size() != 1) {
        ADD_FAILURE() << "fixture does not decode: " << json.constData();
        return {};
    }
    return releases->first();
}

XcodeRelease withMaturity(const QByteArray& releaseMap)
{
    return decodeOne(R"j({"name": "Xcode", "requires": "14.0", "date": {"day": 1, "month": 2, "year": 2024},
        "version": {"build": "15E204a", "number": "15.3", "release": )j"
                     + releaseMap + "}}");
}

const QByteArray kRich = R"j({
  "name": "Xcode (Apple Silicon)", "requires": "15.6", "date": {"day": 12, "month": 12, "year": 2025},
  "compilers": {"swift": [{"build": "6.2.3.3.21", "number": "6.2.3"}]},
  "links": {"download": {"url": "https://example.test/Xcode_26.2.xip"},
            "notes": {"url": "https://example.test/notes"}},
  "sdks": {"iOS": [{"build": "23C53", "number": "26.2"}, {"build": "ZZZ", "number": "99"}],
           "macOS": [{"build": "25C57", "number": "26.2"}], "tvOS": [{"build": "", "number": "26.2"}],
           "visionOS": [{"build": "23N301", "number": "26.2"}], "watchOS": [{"build": "23S303"}]},
  "version": {"build": "17C52", "number": "26.2", "release": {"rc": 1}}
})j";

const QByteArray kBare = R"j({"name": "Xcode 4 (Apple Silicon) (Apple Silicon)", "requires": "10.6.8",
  "date": {"day": 30, "month": 2, "year": 2011}, "compilers": {"clang": [{"number": "3.0"}]},
  "links": {}, "sdks": {"macOS": [], "iOS": [{"number": "5.0"}]}})j";

} // namespace

TEST(XcodeReleaseTextTest, ReleaseLabelLowercasesTheKeyButKeepsOddities)
{
    struct Case
    {
        QByteArray map;
        QString label;
        bool isFinal;
    };
    const Case cases[] = {
        {R"j({"release": true})j", QStringLiteral("Release"), true},
        {R"j({"Release": true})j", QStringLiteral("Release"), false},
        {R"j({"release": 1})j", QStringLiteral("Release 1"), false},
        {R"j({"BETA": true})j", QStringLiteral("Beta"), false},
        {R"j({"RC": 2})j", QStringLiteral("RC 2"), false},
        {R"j({"gm": false})j", QString(), false},
        {R"j({"gmSeed": -1})j", QStringLiteral(" -1"), false},
        {R"j({})j", QStringLiteral("unknown"), false},
        {R"j({"beta": 4, "release": true})j", QStringLiteral("Beta 4"), true},
        // Integer first, then boolean, anything else unknown.
        {R"j({"beta": 2.0})j", QStringLiteral("unknown"), false},
        {R"j({"beta": 18446744073709551615})j", QStringLiteral("unknown"), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.map.constData());
        const XcodeRelease release = withMaturity(c.map);
        EXPECT_EQ(releaseLabel(release.version->release), c.label);
        EXPECT_EQ(cellText(release, Column::release, false), c.label);
        EXPECT_EQ(cellText(release, Column::release, true), c.label);
        EXPECT_EQ(isFinalRelease(release), c.isFinal);
    }
}

TEST(XcodeReleaseTextTest, EveryColumnInBothForms)
{
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const XcodeRelease rich = decodeOne(kRich);
    const XcodeRelease bare = decodeOne(kBare);
    const std::optional<QString> none;
    struct Case
    {
        Column column;
        QString richShort;
        QString richLong;
        QString bareShort;
        QString bareLong;
        std::optional<QString> richBuild; // the bare release has no builds at all
    };
    const Case cases[] = {
        {Column::version, u"Xcode 26.2"_s, u"Xcode 26.2 (17C52)"_s, u"Xcode 4"_s, u"Xcode 4"_s, none},
        {Column::release, u"RC 1"_s, u"RC 1"_s, {}, {}, none},
        // February 30th rolls over as the calendar does.
        {Column::date, u"Dec 12, 2025"_s, u"Dec 12, 2025"_s, u"Mar 2, 2011"_s, u"Mar 2, 2011"_s, none},
        {Column::required, u"macOS 15.6+"_s, u"macOS 15.6+"_s, u"macOS 10.6.8+"_s, u"macOS 10.6.8+"_s, none},
        {Column::swift, u"6.2.3"_s, u"6.2.3 (6.2.3.3.21)"_s, {}, {}, u"6.2.3.3.21"_s},
        {Column::macOSSDK, u"macOS 26.2"_s, u"macOS 26.2 (25C57)"_s, {}, {}, u"25C57"_s},
        {Column::iOSSDK, u"iOS 26.2"_s, u"iOS 26.2 (23C53)"_s, u"iOS 5.0"_s, u"iOS 5.0"_s, u"23C53"_s},
        {Column::watchOSSDK, u"watchOS"_s, u"watchOS (23S303)"_s, {}, {}, u"23S303"_s},
        // An empty build shows as "()" in the long form but is no build line.
        {Column::tvOSSDK, u"tvOS 26.2"_s, u"tvOS 26.2 ()"_s, {}, {}, none},
        {Column::visionOSSDK, u"visionOS 26.2"_s, u"visionOS 26.2"_s, {}, {}, u"23N301"_s},
        {Column::download,
         u"https://example.test/Xcode_26.2.xip"_s,
         u"https://example.test/Xcode_26.2.xip"_s,
         {},
         {},
         none},
        {Column::releaseNotes, u"https://example.test/notes"_s, u"https://example.test/notes"_s, {}, {}, none},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(columnTitle(c.column).toStdString());
        EXPECT_EQ(cellText(rich, c.column, false, english), c.richShort);
        EXPECT_EQ(cellText(rich, c.column, true, english), c.richLong);
        EXPECT_EQ(cellText(bare, c.column, false, english), c.bareShort);
        EXPECT_EQ(cellText(bare, c.column, true, english), c.bareLong);
        EXPECT_EQ(buildText(rich, c.column), c.richBuild);
        EXPECT_EQ(buildText(bare, c.column), std::nullopt);
    }
}

TEST(XcodeReleaseTextTest, AppleSiliconMarkTrustsAPublishedArchitectureList)
{
    struct Case
    {
        const char* name;
        const char* architectures;
        bool expected;
    };
    const Case cases[] = {
        {"Xcode 12.2 (Apple Silicon)", R"j(["x86_64"])j", false},
        {"Xcode", R"j(["arm64"])j", true},
        {"Xcode (Apple Silicon)", R"j([])j", false},
        {"Xcode (Apple Silicon)", nullptr, true},
        {"Xcode (apple silicon)", nullptr, false},
        {"Xcode (Apple Silicon) beta", nullptr, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.name) + " " + (c.architectures ? c.architectures : "no list"));
        QByteArray download = R"j({"url": "https://example.test/x.xip")j";
        if (c.architectures)
            download += QByteArray(R"j(, "architectures": )j") + c.architectures;
        download += '}';
        const XcodeRelease release = decodeOne(QByteArray(R"j({"name": ")j") + c.name
                                               + R"j(", "requires": "1", "date": {"day": 1, "month": 1, "year": 2020},
            "links": {"download": )j" + download
                                               + "}}");
        EXPECT_EQ(isAppleSiliconOnly(release), c.expected);
    }
}

TEST(XcodeReleaseTextTest, DateTextFollowsTheLocaleAndRollsOver)
{
    struct Case
    {
        XcodeRelease::DateInfo date;
        QLocale locale;
        QString expected;
    };
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    const QLocale german(QLocale::German, QLocale::Germany);
    const Case cases[] = {
        {{12, 12, 2025}, german, u"12. Dez. 2025"_s},
        {{0, 3, 2024}, english, u"Feb 29, 2024"_s},
        {{31, 0, 2024}, english, u"Dec 31, 2023"_s},
        {{1, 1, 0}, english, QString()},
        {{1, 1, 9'000'000'000}, english, QString()},
        {{1, std::numeric_limits<qint64>::max(), 2020}, english, QString()},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.expected.toStdString());
        EXPECT_EQ(releaseDateText(c.date, c.locale), c.expected);
    }
}
