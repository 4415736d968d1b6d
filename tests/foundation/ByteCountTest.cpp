#include <QLocale>
#include <limits>

#include <gtest/gtest.h>

#include "foundation/ByteCount.h"

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
        EXPECT_EQ(quillbay::formatByteCount(bytes).toStdString(), text);
    }
}
