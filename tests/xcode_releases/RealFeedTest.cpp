#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <gtest/gtest.h>

#include "testsupport/TestEnvironment.h"
#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;

namespace {

QByteArray readFeed(const QString& dir, const char* name)
{
    QFile file(dir + QStringLiteral("/xcodereleases/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        ADD_FAILURE() << "cannot read " << name;
    return file.readAll();
}

QString firstString(const QJsonObject& parent, const char* listKey, const char* key)
{
    const QJsonArray list = parent.value(QLatin1String(listKey)).toArray();
    return list.isEmpty() ? QString() : list.first().toObject().value(QLatin1String(key)).toString();
}

} // namespace

// The published feed read by a second, independent JSON reader is the reference: every
// release must come through in feed order with the values that reader sees.
TEST(RealFeedTest, EveryPublishedReleaseDecodesInFeedOrder)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    const QByteArray bytes = readFeed(shared, "data.json");
    const auto releases = decodeXcodeReleases(bytes);
    ASSERT_TRUE(releases.has_value());
    const QJsonArray reference = QJsonDocument::fromJson(bytes).array();
    ASSERT_EQ(releases->size(), 410);
    ASSERT_EQ(releases->size(), reference.size());
    for (qsizetype i = 0; i < releases->size(); ++i) {
        SCOPED_TRACE(i);
        const XcodeRelease& release = releases->at(i);
        const QJsonObject object = reference.at(i).toObject();
        const QJsonObject version = object.value(u"version").toObject();
        const QJsonObject sdks = object.value(u"sdks").toObject();
        const QJsonObject links = object.value(u"links").toObject();
        EXPECT_EQ(release.name, object.value(u"name").toString());
        EXPECT_EQ(release.requires_, object.value(u"requires").toString());
        EXPECT_EQ(release.date.year, object.value(u"date").toObject().value(u"year").toInt());
        ASSERT_TRUE(release.version.has_value());
        EXPECT_EQ(release.version->build, version.value(u"build").toString());
        EXPECT_EQ(cellText(release, Column::version, true),
                  QString(release.name).remove(QStringLiteral(" (Apple Silicon)")) + u' '
                      + version.value(u"number").toString() + QStringLiteral(" (") + version.value(u"build").toString()
                      + u')');
        EXPECT_EQ(buildText(release, Column::macOSSDK).value_or(QString()), firstString(sdks, "macOS", "build"));
        EXPECT_EQ(cellText(release, Column::download, false),
                  links.value(u"download").toObject().value(u"url").toString());
        EXPECT_EQ(cellText(release, Column::releaseNotes, true),
                  links.value(u"notes").toObject().value(u"url").toString());
        for (const Column column : allColumns) {
            const QString text = cellText(release, column, false);
            EXPECT_FALSE(text.contains(u'\n')) << "cells are one line";
            if (column == Column::visionOSSDK) {
                EXPECT_EQ(cellText(release, column, true), text) << "visionOS has no long form";
            }
        }
    }
}

// Counts taken from the published feed by hand-checked tallies: 125 final releases,
// 19 "gm" entries with an empty label, 34 "gmSeed"/"dp" entries that begin with a blank.
TEST(RealFeedTest, DerivedTextsKeepTheirOdditiesAcrossTheFeed)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    const auto releases = decodeXcodeReleases(readFeed(shared, "data.json"));
    ASSERT_TRUE(releases.has_value());
    QMap<QString, int> labelKinds;
    int finals = 0;
    int appleSilicon = 0;
    int swiftCells = 0;
    int visionCells = 0;
    int macOSWordOnly = 0;
    for (const XcodeRelease& release : *releases) {
        const QString label = cellText(release, Column::release, false);
        if (label.isEmpty())
            ++labelKinds[QStringLiteral("empty")];
        else if (label.startsWith(u' '))
            ++labelKinds[QStringLiteral("blank")];
        else
            ++labelKinds[label.section(u' ', 0, 0)];
        finals += isFinalRelease(release) ? 1 : 0;
        appleSilicon += isAppleSiliconOnly(release) ? 1 : 0;
        swiftCells += cellText(release, Column::swift, false).isEmpty() ? 0 : 1;
        visionCells += cellText(release, Column::visionOSSDK, false).isEmpty() ? 0 : 1;
        macOSWordOnly += cellText(release, Column::macOSSDK, false) == u"macOS" ? 1 : 0;
        if (isFinalRelease(release)) {
            EXPECT_EQ(label, QStringLiteral("Release"));
        }
    }
    EXPECT_EQ(finals, 125);
    EXPECT_EQ(labelKinds.value(QStringLiteral("Release")), 125);
    EXPECT_EQ(labelKinds.value(QStringLiteral("Beta")), 196);
    EXPECT_EQ(labelKinds.value(QStringLiteral("RC")), 36);
    EXPECT_EQ(labelKinds.value(QStringLiteral("empty")), 19);
    EXPECT_EQ(labelKinds.value(QStringLiteral("blank")), 34);
    EXPECT_EQ(appleSilicon, 16);
    EXPECT_EQ(swiftCells, 264);
    EXPECT_EQ(visionCells, 84);
    EXPECT_EQ(macOSWordOnly, 96);

    const XcodeRelease& newest = releases->first();
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    EXPECT_EQ(cellText(newest, Column::version, false), QStringLiteral("Xcode 26.2"));
    EXPECT_EQ(cellText(newest, Column::date, false, english), QStringLiteral("Dec 12, 2025"));
    EXPECT_EQ(cellText(newest, Column::required, false), QStringLiteral("macOS 15.6+"));
    EXPECT_EQ(cellText(newest, Column::swift, true), QStringLiteral("6.2.3 (6.2.3.3.21)"));
    EXPECT_EQ(cellText(newest, Column::iOSSDK, true), QStringLiteral("iOS 26.2 (23C53)"));
    EXPECT_EQ(cellText(newest, Column::visionOSSDK, true), QStringLiteral("visionOS 26.2"));
    EXPECT_EQ(buildText(newest, Column::visionOSSDK), QStringLiteral("23N301"));
    EXPECT_TRUE(isAppleSiliconOnly(newest));
    EXPECT_EQ(cellText(releases->at(155), Column::release, false), QString()) << "{\"gm\": true}";
    EXPECT_EQ(cellText(releases->at(156), Column::release, false), QStringLiteral(" 1")) << "{\"gmSeed\": 1}";
    EXPECT_EQ(cellText(releases->at(339), Column::release, false), QStringLiteral(" 2")) << "{\"dp\": 2}";
    EXPECT_EQ(cellText(releases->at(339), Column::swift, true), QString());
}

TEST(RealFeedTest, OlderSnapshotsDecodeOrFailWhole)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    struct Case
    {
        const char* file;
        qsizetype count; // -1: rejected as a whole
    };
    const Case cases[] = {
        {"data.min.json", 410},
        {"data-older.json", 305},
        // One clang entry of 2010 has a build but no number; the strict reader rejects
        // the whole snapshot rather than guess.
        {"data-2018.json", -1},
        {"data-2020-served-min.json", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const auto releases = decodeXcodeReleases(readFeed(shared, c.file));
        EXPECT_EQ(releases ? releases->size() : -1, c.count);
    }
    const auto pretty = decodeXcodeReleases(readFeed(shared, "data.json"));
    const auto compact = decodeXcodeReleases(readFeed(shared, "data.min.json"));
    ASSERT_TRUE(pretty && compact);
    for (qsizetype i = 0; i < pretty->size(); ++i)
        EXPECT_TRUE(pretty->at(i).hasSameContent(compact->at(i))) << i;
}
