#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/ByteCount.h"
#include "foundation/LocalizedText.h"

using namespace quillbay;

TEST(ByteCountTest, FormatsInDecimalFileStyle)
{
    QLocale::setDefault(QLocale::c());
    // 999'500 rounds up into the next unit, never "1,000 KB".
    const std::pair<qint64, const char*> cases[] = {{0, "Zero KB"},
                                                    {1, "1 byte"},
                                                    {1500, "2 KB"},
                                                    {999'500, "1 MB"},
                                                    {1'234'567'890, "1.23 GB"},
                                                    {-2'000, "-2 KB"},
                                                    {std::numeric_limits<qint64>::max(), "9.22 EB"}};
    for (const auto& [bytes, text] : cases) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(formatByteCount(bytes).toStdString(), text);
    }
}

TEST(LocalizedTextTest, ContainsFoldsCaseAndMarksAndCompareOrdersNumbersByValue)
{
    const std::tuple<const char*, const char*, bool> cases[] = {
        {"Café Crème", "creme", true},
        {"ﬁle-roller", "file", true}, // compatibility ligature decomposes
        {"python", "pyhton", false},
        {"anything", "", true},
    };
    for (const auto& [haystack, needle, contains] : cases) {
        SCOPED_TRACE(haystack);
        EXPECT_EQ(localizedStandardContains(QString::fromUtf8(haystack), QString::fromUtf8(needle)), contains);
    }
    QStringList names {QStringLiteral("python@3.10"), QStringLiteral("Python@3.9"), QStringLiteral("A10"),
                       QStringLiteral("a2")};
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return localizedStandardCompare(a, b) < 0; });
    EXPECT_EQ(names,
              (QStringList {QStringLiteral("a2"), QStringLiteral("A10"), QStringLiteral("Python@3.9"),
                            QStringLiteral("python@3.10")}));
}
