#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include "testsupport/TestEnvironment.h"
#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

using namespace quillbay;

// The published feed read by a second, independent JSON reader is the reference: every
// release must come through in feed order with the values that reader sees.
TEST(RealFeedTest, EveryPublishedReleaseDecodesInFeedOrder)
{
    QUILLBAY_REQUIRE_SHARED_DATA(shared);
    const auto read = [&](const char* name) {
        QFile file(shared + QStringLiteral("/xcodereleases/") + QLatin1String(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    };
    const QByteArray bytes = read("data.json");
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
    // An older snapshot with one clang entry that has a build but no number is rejected
    // whole rather than guessed at.
    EXPECT_FALSE(decodeXcodeReleases(read("data-2018.json")).has_value());
}
