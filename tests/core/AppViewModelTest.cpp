#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"

using namespace quillbay;
using ReleaseColumn = AppViewModel::ReleaseColumn;

TEST(AppViewModelTest, StoredValuesWinWrongTypesFallBackAndSettersWriteThrough)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("defaults.ini"));
    {
        SettingsDefaults defaults(file);
        defaults.setValue(QStringLiteral("DateColumnIsVisible"), true);
        defaults.setValue(QStringLiteral("MacOSColumnIsVisible"), QStringLiteral("nope"));
        SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
        AppViewModel model(defaults, saved);
        EXPECT_TRUE(model.isReleaseColumnVisible(ReleaseColumn::date));
        EXPECT_TRUE(model.isReleaseColumnVisible(ReleaseColumn::macOS)) << "a wrongly typed value takes the default";
        model.setOnlyRelease(false);
        model.setReleaseColumnVisible(ReleaseColumn::download, false);
        defaults.sync();
    }
    SettingsDefaults defaults(file);
    SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
    AppViewModel model(defaults, saved);
    EXPECT_FALSE(model.onlyRelease());
    EXPECT_FALSE(model.isReleaseColumnVisible(ReleaseColumn::download));
}
