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
    {
        SettingsDefaults defaults(file);
        defaults.setValue(QStringLiteral("storedFalse"), false);
        defaults.setValue(QStringLiteral("storedTrue"), true);
        defaults.setValue(QStringLiteral("number"), qint64(9223372036854775807LL));
        defaults.setValue(QStringLiteral("text"), QStringLiteral("yes"));
        defaults.setValue(QStringLiteral("data"), QByteArray("\x00\x01\xff", 3));
        defaults.sync();
    }
    SettingsDefaults reopened(file);
    struct BoolCase
    {
        const char* key;
        bool fallback;
        bool expected;
    };
    const BoolCase bools[] = {
        {"storedFalse", true, false}, // a stored false stays false
        {"storedTrue", false, true},  {"missing", true, true}, {"text", true, true}, // wrong type: the fallback
        {"number", false, false},
    };
    for (const BoolCase& c : bools) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(reopened.boolValue(QLatin1String(c.key), c.fallback), c.expected);
    }
    EXPECT_EQ(reopened.integerValue(QStringLiteral("number"), 0), 9223372036854775807LL);
    EXPECT_EQ(reopened.integerValue(QStringLiteral("text"), 7), 7);
    EXPECT_EQ(reopened.integerValue(QStringLiteral("storedTrue"), 7), 7);
    EXPECT_EQ(reopened.dataValue(QStringLiteral("data")), QByteArray("\x00\x01\xff", 3));
    EXPECT_TRUE(reopened.dataValue(QStringLiteral("text")).isEmpty());
    reopened.remove(QStringLiteral("number"));
    EXPECT_FALSE(reopened.contains(QStringLiteral("number")));
}
