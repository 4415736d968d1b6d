#include <QSignalSpy>
#include <QTemporaryDir>
#include <limits>

#include <gtest/gtest.h>

#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"

using namespace quillbay;

TEST(SavedSpaceStoreTest, AddsSaturatesAndPersists)
{
    constexpr qint64 kMax = std::numeric_limits<qint64>::max();
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("defaults.ini"));
    SettingsDefaults defaults(file);
    const QString key = QStringLiteral("TotalBytesDeleted");
    defaults.setValue(key, QStringLiteral("lots"));
    {
        SavedSpaceStore store(defaults, key);
        EXPECT_EQ(store.totalBytes(), 0) << "a wrongly typed total reads as zero";
        QSignalSpy changed(&store, &SavedSpaceStore::totalBytesChanged);
        store.add(-5);
        EXPECT_EQ(defaults.value(key).toString(), QStringLiteral("lots")) << "non-positive additions write nothing";
        store.add(kMax - 10);
        store.add(11);
        EXPECT_EQ(store.totalBytes(), kMax);
        // A saturated add does not notify, but it still writes, so a stored value that
        // drifted is made current again.
        defaults.setValue(key, 7);
        store.add(1);
        EXPECT_EQ(defaults.integerValue(key, -1), kMax);
        EXPECT_EQ(changed.count(), 2);
        defaults.sync();
    }
    SettingsDefaults reopened(file);
    SavedSpaceStore again(reopened, key);
    EXPECT_EQ(again.totalBytes(), kMax);
    QSignalSpy resets(&again, &SavedSpaceStore::totalBytesChanged);
    again.reset();
    again.reset();
    EXPECT_EQ(resets.count(), 1) << "only a reset that moves the total notifies";
}
