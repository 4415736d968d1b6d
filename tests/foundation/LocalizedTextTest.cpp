#include <QStringList>
#include <algorithm>

#include <gtest/gtest.h>

#include "foundation/LocalizedText.h"

using namespace quillbay;

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
