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
    // {key, fallback, expected}
    const std::tuple<const char*, bool, bool> bools[] = {
        {"storedFalse", true, false}, // a stored false stays false
        {"storedTrue", false, true},  {"missing", true, true}, {"text", true, true}, // wrong type: the fallback
        {"number", false, false},
    };
    for (const auto& [key, fallback, expected] : bools) {
        SCOPED_TRACE(key);
        EXPECT_EQ(reopened.boolValue(QLatin1String(key), fallback), expected);
    }
    EXPECT_EQ(reopened.integerValue(QStringLiteral("number"), 0), 9223372036854775807LL);
    EXPECT_EQ(reopened.integerValue(QStringLiteral("text"), 7), 7);
    EXPECT_EQ(reopened.integerValue(QStringLiteral("storedTrue"), 7), 7);
    EXPECT_EQ(reopened.dataValue(QStringLiteral("data")), QByteArray("\x00\x01\xff", 3));
    EXPECT_TRUE(reopened.dataValue(QStringLiteral("text")).isEmpty());
    reopened.remove(QStringLiteral("number"));
    EXPECT_FALSE(reopened.contains(QStringLiteral("number")));
}
