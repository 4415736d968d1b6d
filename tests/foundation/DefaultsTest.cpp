#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "foundation/Defaults.h"

using namespace quillbay;

// Typed reads must survive a round trip through a real settings file, where every scalar
// comes back as text.
TEST(DefaultsTest, TypedReadsSurviveAReopenedFile)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("defaults.ini"));
    const qint64 big = 9223372036854775807LL;
    {
        SettingsDefaults defaults(file);
        defaults.setValue(QStringLiteral("storedFalse"), false);
        defaults.setValue(QStringLiteral("number"), big);
        defaults.setValue(QStringLiteral("text"), QStringLiteral("yes"));
        defaults.setValue(QStringLiteral("data"), QByteArray("\x00\x01\xff", 3));
        defaults.sync();
    }
    SettingsDefaults reopened(file);
    EXPECT_FALSE(reopened.boolValue(QStringLiteral("storedFalse"), true)) << "a stored false stays false";
    EXPECT_TRUE(reopened.boolValue(QStringLiteral("text"), true)) << "wrong type: the fallback";
    EXPECT_FALSE(reopened.boolValue(QStringLiteral("number"), false));
    EXPECT_EQ(reopened.integerValue(QStringLiteral("number"), 0), big);
    EXPECT_EQ(reopened.integerValue(QStringLiteral("text"), 7), 7);
    EXPECT_EQ(reopened.dataValue(QStringLiteral("data")), QByteArray("\x00\x01\xff", 3));
    EXPECT_TRUE(reopened.dataValue(QStringLiteral("text")).isEmpty());
    reopened.remove(QStringLiteral("number"));
    EXPECT_FALSE(reopened.contains(QStringLiteral("number")));
}
