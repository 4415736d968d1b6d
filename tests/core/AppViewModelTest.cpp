#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"

using namespace quillbay;
using ReleaseColumn = AppViewModel::ReleaseColumn;

namespace {

struct Fixture
{
    QTemporaryDir dir;
    QString file = dir.filePath(QStringLiteral("defaults.ini"));
};

} // namespace

TEST(AppViewModelTest, FreshDefaultsGiveTheFirstRunColumns)
{
    Fixture f;
    SettingsDefaults defaults(f.file);
    SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
    AppViewModel model(defaults, saved);
    EXPECT_TRUE(model.onlyRelease());
    const std::pair<ReleaseColumn, bool> expected[] = {
        {ReleaseColumn::release, true},  {ReleaseColumn::date, false},         {ReleaseColumn::required, true},
        {ReleaseColumn::swift, false},   {ReleaseColumn::macOS, true},         {ReleaseColumn::iOS, true},
        {ReleaseColumn::watchOS, false}, {ReleaseColumn::tvOS, false},         {ReleaseColumn::visionOS, false},
        {ReleaseColumn::download, true}, {ReleaseColumn::releaseNotes, false},
    };
    for (const auto& [column, visible] : expected) {
        SCOPED_TRACE(AppViewModel::releaseColumnKey(column).toStdString());
        EXPECT_EQ(model.isReleaseColumnVisible(column), visible);
    }
    EXPECT_EQ(model.appearanceIndex(), 0);
    EXPECT_FALSE(model.isDeveloperFolderAuthorized());
}

TEST(AppViewModelTest, StoredValuesWinAndWrongTypesFallBack)
{
    Fixture f;
    {
        SettingsDefaults defaults(f.file);
        defaults.setValue(QStringLiteral("OnlyRelease"), false);
        defaults.setValue(QStringLiteral("ReleaseColumnIsVisible"), false);
        defaults.setValue(QStringLiteral("DateColumnIsVisible"), true);
        defaults.setValue(QStringLiteral("MacOSColumnIsVisible"), QStringLiteral("nope"));
        defaults.setValue(QStringLiteral("AppearanceIndex"), QStringLiteral("dark"));
        defaults.setValue(QStringLiteral("DeveloperFolderBookmarkKey"), QByteArray("token"));
        defaults.sync();
    }
    SettingsDefaults defaults(f.file);
    SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
    AppViewModel model(defaults, saved);
    EXPECT_FALSE(model.onlyRelease());
    EXPECT_FALSE(model.isReleaseColumnVisible(ReleaseColumn::release));
    EXPECT_TRUE(model.isReleaseColumnVisible(ReleaseColumn::date));
    EXPECT_TRUE(model.isReleaseColumnVisible(ReleaseColumn::macOS)) << "a wrongly typed value takes the default";
    EXPECT_EQ(model.appearanceIndex(), 0);
    EXPECT_TRUE(model.isDeveloperFolderAuthorized());
}

TEST(AppViewModelTest, SettersWriteThroughOnEveryAssignment)
{
    Fixture f;
    {
        SettingsDefaults defaults(f.file);
        SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
        AppViewModel model(defaults, saved);
        model.setOnlyRelease(false);
        model.setReleaseColumnVisible(ReleaseColumn::visionOS, true);
        model.setReleaseColumnVisible(ReleaseColumn::download, false);
        model.setAppearanceIndex(2);
        defaults.sync();
    }
    SettingsDefaults defaults(f.file);
    SavedSpaceStore saved(defaults, QStringLiteral("TotalBytesDeleted"));
    AppViewModel model(defaults, saved);
    EXPECT_FALSE(model.onlyRelease());
    EXPECT_TRUE(model.isReleaseColumnVisible(ReleaseColumn::visionOS));
    EXPECT_FALSE(model.isReleaseColumnVisible(ReleaseColumn::download));
    EXPECT_EQ(model.appearanceIndex(), 2);
}
