#include <QStringList>
#include <algorithm>

#include <gtest/gtest.h>

#include "foundation/LocalizedText.h"

using namespace quillbay;

TEST(LocalizedTextTest, ContainsIgnoresCaseAndMarks)
{
    struct Case
    {
        const char* haystack;
        const char* needle;
        bool contains;
    };
    const Case cases[] = {
        {"Café Crème", "creme", true}, {"CAFE", "café", true},
        {"ﬁle-roller", "file", true}, // compatibility ligature decomposes
        {"node@20", "NODE@2", true},   {"python", "pyhton", false},
        {"anything", "", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.haystack);
        EXPECT_EQ(localizedStandardContains(QString::fromUtf8(c.haystack), QString::fromUtf8(c.needle)), c.contains);
    }
}

TEST(LocalizedTextTest, ComparesNumbersByValueAndIgnoresCase)
{
    QStringList names {QStringLiteral("python@3.10"), QStringLiteral("Python@3.9"), QStringLiteral("python@3.12"),
                       QStringLiteral("a2"), QStringLiteral("A10")};
    std::sort(names.begin(), names.end(),
              [](const QString& a, const QString& b) { return localizedStandardCompare(a, b) < 0; });
    EXPECT_EQ(names,
              (QStringList {QStringLiteral("a2"), QStringLiteral("A10"), QStringLiteral("Python@3.9"),
                            QStringLiteral("python@3.10"), QStringLiteral("python@3.12")}));
}
