#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

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
        EXPECT_EQ(release.name, object.value(u"name").toString());
        EXPECT_EQ(release.requires_, object.value(u"requires").toString());
        EXPECT_EQ(release.date.year, object.value(u"date").toObject().value(u"year").toInt());
        ASSERT_TRUE(release.version.has_value());
        EXPECT_EQ(release.version->build, version.value(u"build").toString());
        EXPECT_EQ(cellText(release, Column::version, true),
                  QString(release.name).remove(QStringLiteral(" (Apple Silicon)")) + u' '
                      + version.value(u"number").toString() + QStringLiteral(" (") + version.value(u"build").toString()
                      + u')');
        for (const Column column : allColumns)
            EXPECT_FALSE(cellText(release, column, false).contains(u'\n')) << "cells are one line";
    }
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
