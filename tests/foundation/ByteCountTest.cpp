#include <QLocale>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/ByteCount.h"

using quillbay::formatByteCount;

TEST(ByteCountTest, FormatsInDecimalFileStyle)
{
    QLocale::setDefault(QLocale::c());
    struct Case
    {
        qint64 bytes;
        const char* text;
    };
    const Case cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {999, "999 bytes"},
        {1000, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},
        {999'499, "999 KB"},
        {999'500, "1 MB"}, // rounds up into the next unit, never "1,000 KB"
        {1'250'000, "1.3 MB"},
        {12'000'000, "12 MB"},
        {1'234'567'890, "1.23 GB"},
        {5'000'000'000'000, "5 TB"},
        {-2'000, "-2 KB"},
        {std::numeric_limits<qint64>::max(), "9.22 EB"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        EXPECT_EQ(formatByteCount(c.bytes).toStdString(), c.text);
    }
}
