#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "AssetTestImages.h"
#include "assets_maker/AssetFolderTools.h"
#include "assets_maker/AssetMakerError.h"
#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "foundation/Defaults.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using Option = AppIconOption;
using S = AssetScale;

namespace {

struct Store
{
    test::TempTree tree;
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    SavedSpaceStore saved {defaults, QStringLiteral("TotalBytesDeleted")};
    AppViewModel model {defaults, saved};
    test::RecordingWorkspace workspace;
    QSignalSpy successes {&model, &AppViewModel::successfulActionCompleted};

    Store() { model.setAssetsWorkspace(&workspace); }

    QString toast() const { return model.toastMessage().value_or(QString()); }
    bool waitForRun()
    {
        return test::waitUntil([this] { return !model.generatingAssets(); });
    }
    QUrl file(const QString& name, const QByteArray& bytes) { return QUrl::fromLocalFile(tree.writeFile(name, bytes)); }
};

const QByteArray kImage = test::cornerMarkedPng(64, 64, QColor(255, 0, 0), QColor(0, 0, 255));

} // namespace

TEST(AppViewModelAssetsTest, DroppedFilesAreCheckedAndNamedByTheirBaseName)
{
    Store s;
    const QString exists = AssetMakerError::fileExists().localizedDescription();
    const QString corrupt = AssetMakerError::corruptFile().localizedDescription();
    const std::pair<QUrl, QString> drops[] = {
        {s.file(QStringLiteral("Photo.png"), kImage), QString()},
        {s.file(QStringLiteral("photo.jpg"), kImage), exists},
        {s.file(QStringLiteral("cut.png"), kImage.left(kImage.size() / 2)), corrupt},
        {QUrl(QStringLiteral("https://example.com/a.png")), corrupt},
        {s.file(QStringLiteral("Cafe\u0301.png"), kImage), QString()},
        {s.file(QStringLiteral("café.png"), kImage), exists},
    };
    for (const auto& [url, toast] : drops) {
        SCOPED_TRACE(url.toString().toStdString());
        s.model.clearToast();
        s.model.addImageSetFile(url);
        EXPECT_EQ(s.toast(), toast);
    }
    ASSERT_EQ(s.model.imageSet().size(), 2);
    EXPECT_EQ(s.model.imageSet()[0].fileName, QStringLiteral("Photo"));

    s.model.removeImageSetItem(s.model.imageSet()[0].id);
    ASSERT_EQ(s.model.imageSet().size(), 1);
    s.model.addImageSetFile(s.file(QStringLiteral("photo.jpg"), kImage));
    EXPECT_EQ(s.model.imageSet().size(), 2) << "the name is free again";
}

TEST(AppViewModelAssetsTest, AFailedRunShowsItsTextAndLeavesThePartialOutput)
{
    Store s;
    // No image yet: the run ends before it starts.
    s.model.setIOSSelection(Option::allSize);
    s.model.generateAppIcons(s.tree.path(QStringLiteral("a")));
    EXPECT_EQ(s.toast(), AssetMakerError::noSuchFile().localizedDescription());
    EXPECT_FALSE(s.model.generatingAssets());
    const QString templates = s.tree.mkdir(QStringLiteral("templates"));
    test::writeTemplate(templates, QStringLiteral("macOS_contents.json"),
                        R"({"images" : [ {"idiom" : "mac", "size" : "16x16", "filename" : "m.png"} ]})");
    test::writeTemplate(templates, QStringLiteral("iOS_allSize_contents.json"), "{ truncated");
    s.model.setAssetTemplateFolder(templates);
    s.model.setAppIconImage(kImage);
    s.model.setMacOSSelection(Option::allSize);
    s.model.setIOSSelection(Option::allSize);
    const QString out = s.tree.path(QStringLiteral("Assets"));
    s.model.generateAppIcons(out);
    ASSERT_TRUE(s.waitForRun());
    EXPECT_EQ(s.toast(), AssetMakerError::corruptData().localizedDescription());
    EXPECT_EQ(s.successes.size(), 0);
    EXPECT_TRUE(s.workspace.revealed.isEmpty());
    EXPECT_TRUE(QFileInfo::exists(out + QStringLiteral("/macOS/AppIcon.appiconset/m.png")));
    EXPECT_FALSE(s.model.isAppIconGenerationDisabled()) << "a new run can start";
}

TEST(AppViewModelAssetsTest, AnImageSetRunUsesTheInputsAsTheyWereAtItsStartAndRunsOnce)
{
    Store s;
    s.model.addImageSetFile(s.file(QStringLiteral("one.png"), kImage));
    s.model.addImageSetFile(s.file(QStringLiteral("two.png"), kImage));
    s.model.setScaleSelected(S::x1, false);
    const QString out = s.tree.path(QStringLiteral("Images"));
    s.model.generateImageSet(out);
    EXPECT_TRUE(s.model.generatingAssets());
    EXPECT_TRUE(s.model.isImageSetGenerationDisabled());
    // A second start while it runs is ignored.
    s.model.generateImageSet(s.tree.path(QStringLiteral("Second")));
    // Changes after the start don't reach the running copy.
    s.model.removeImageSetItem(s.model.imageSet()[1].id);
    s.model.setScaleSelected(S::x1, true);
    ASSERT_TRUE(s.waitForRun());
    EXPECT_EQ(QDir(out).entryList(QDir::Files),
              (QStringList {QStringLiteral("one@2x.png"), QStringLiteral("one@3x.png"), QStringLiteral("two@2x.png"),
                            QStringLiteral("two@3x.png")}));
    EXPECT_EQ(s.successes.size(), 1);
    EXPECT_EQ(s.workspace.revealed, (QList<QStringList> {{out}}));
    EXPECT_FALSE(s.model.toastMessage());
    EXPECT_FALSE(QFileInfo::exists(s.tree.path(QStringLiteral("Second"))));
    EXPECT_EQ(s.model.imageSet().size(), 1) << "the inputs stay on screen";
}
