#include <QLocale>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/ByteCount.h"

using quillbay::formatByteCount;

TEST(ByteCountTest, FormatsInDecimalFileStyle)
{
    QLocale::setDefault(QLocale::c());
    const std::pair<qint64, const char*> cases[] = {
        {0, "Zero KB"},        {1, "1 byte"},
        {1000, "1 KB"},        {1500, "2 KB"},
        {999'499, "999 KB"},   {999'500, "1 MB"}, // rounds up into the next unit, never "1,000 KB"
        {1'250'000, "1.3 MB"}, {1'234'567'890, "1.23 GB"},
        {-2'000, "-2 KB"},     {std::numeric_limits<qint64>::max(), "9.22 EB"},
    };
    for (const auto& [bytes, text] : cases) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(formatByteCount(bytes).toStdString(), text);
    }
}
