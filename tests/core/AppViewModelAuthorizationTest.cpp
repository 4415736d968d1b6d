#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include "core/state/URLBookmarkManager.h"
#include "platform/FolderBookmark.h"
#include "testsupport/CleanupFlowFixture.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {
const QString kKey = QStringLiteral("DeveloperFolderBookmarkKey");
} // namespace

TEST(AppViewModelAuthorizationTest, SilentRequestsNeverShowAPanel)
{
    const struct
    {
        const char* name;
        int tree; // 0 nothing, 1 a Developer folder without Xcode, 2 the full tree
        QByteArray storedKey;
        bool expectAuthorized;
        bool expectFileManager;
    } cases[] = {
        {"no Developer folder, no bookmark", 0, {}, false, false},
        {"no Developer folder, an unusable bookmark on record", 0, "junk", true, false},
        {"a Developer folder without Xcode", 1, {}, false, false},
        {"a Developer folder that can be reached", 2, {}, true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        CleanupFlowFixture f;
        if (c.tree == 1)
            f.tree.mkdir(QStringLiteral("home/Library/Developer"));
        if (c.tree == 2)
            f.buildDeveloperTree();
        if (!c.storedKey.isEmpty())
            f.defaults.setValue(kKey, c.storedKey);
        f.makeModel();
        EXPECT_EQ(f.model->isDeveloperFolderAuthorized(), !c.storedKey.isEmpty()) << "read from the key alone";
        f.model->requestDeveloperFolderAuthorization(false);
        ASSERT_TRUE(waitUntil([&] { return !f.model->isRequestingDeveloperFolderAuthorization(); }));
        ASSERT_TRUE(f.waitForIdle());
        EXPECT_EQ(f.model->isDeveloperFolderAuthorized(), c.expectAuthorized);
        EXPECT_EQ(f.model->hasFileManager(), c.expectFileManager);
        EXPECT_TRUE(f.pickers.requests.isEmpty());
        EXPECT_EQ(f.model->localFiles().size(), c.expectFileManager ? 6 : 0) << "a built manager scans at once";
    }
}

TEST(AppViewModelAuthorizationTest, ChooseTakesOnlyTheFolderAskedForAndACancelLosesNothing)
{
    CleanupFlowFixture f;
    // The default folder is missing; the bookmark on record leads to a Developer folder
    // elsewhere, which is what the first request finds.
    f.tree.writeFile(QStringLiteral("elsewhere/Developer/Xcode/DerivedData/.keep"), "");
    const QString elsewhere = f.tree.path(QStringLiteral("elsewhere/Developer"));
    const QByteArray bookmark = FolderBookmark::make(elsewhere);
    f.defaults.setValue(kKey, bookmark);
    f.model->requestDeveloperFolderAuthorization(false);
    ASSERT_TRUE(f.waitForIdle());
    ASSERT_TRUE(waitUntil([&] { return f.model->hasFileManager() && !f.model->scanning(); }));
    EXPECT_EQ(f.model->developerFolderPath(), elsewhere);

    f.pickers.cancelNext();
    f.model->chooseDeveloperFolder();
    EXPECT_FALSE(f.model->hasFileManager()) << "the manager is set aside while the panel is open";
    ASSERT_TRUE(waitUntil([&] { return !f.model->isRequestingDeveloperFolderAuthorization(); }));
    EXPECT_EQ(f.pickers.requests.size(), 1);
    EXPECT_TRUE(f.model->hasFileManager());
    EXPECT_EQ(f.model->developerFolderPath(), elsewhere);
    EXPECT_EQ(f.defaults.dataValue(kKey), bookmark);

    // Only the folder asked for is taken: a wrong one brings the alert, "Repeat" the panel again.
    f.pickers.answerWith(elsewhere);
    f.alerts.pressButton(0);
    f.pickers.answerWith([&](const Pickers::FolderRequest&) -> std::optional<QString> {
        EXPECT_FALSE(f.defaults.contains(kKey)) << "the key was cleared before the alert";
        f.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
        return f.developer + QStringLiteral("/");
    });
    f.model->chooseDeveloperFolder();
    ASSERT_TRUE(waitUntil([&] { return !f.model->isRequestingDeveloperFolderAuthorization(); }));
    ASSERT_TRUE(waitUntil([&] { return f.model->hasFileManager() && !f.model->scanning(); }));
    ASSERT_EQ(f.pickers.requests.size(), 3);
    EXPECT_EQ(f.pickers.requests[1].directory, f.developer);
    ASSERT_EQ(f.alerts.requests.size(), 1);
    EXPECT_EQ(f.alerts.requests[0].messageText,
              QStringLiteral("Can't get access to ") + f.developer + QStringLiteral(" folder"));
    const auto stored = FolderBookmark::resolve(f.defaults.dataValue(kKey));
    ASSERT_TRUE(stored);
    EXPECT_EQ(QDir::cleanPath(stored->path), f.developer);
}

TEST(AppViewModelAuthorizationTest, CustomFoldersAreSavedScannedAndRemovedWithoutDeleting)
{
    CleanupFlowFixture f;
    f.buildDeveloperTree();
    const QString custom = f.tree.mkdir(QStringLiteral("Builds"));
    const QString customProject = f.addDerivedData(QStringLiteral("Custom_Project"), 30000, custom);
    f.model->requestDeveloperFolderAuthorization(false);
    ASSERT_TRUE(waitUntil([&] { return f.model->hasFileManager(); }));
    ASSERT_TRUE(f.waitForIdle());
    EXPECT_EQ(f.find(QStringLiteral("Custom Project")), nullptr);

    // A folder that can't be reached: the alert, and nothing is added.
    f.pickers.answerWith(f.tree.path(QStringLiteral("Gone")));
    f.model->addCustomFolder(AppViewModel::CustomFolderKind::derivedData);
    ASSERT_TRUE(waitUntil([&] { return f.pickers.answered == 1; }));
    EXPECT_TRUE(f.model->settingViewAlert());
    EXPECT_EQ(f.model->settingViewAlertTitle(), QStringLiteral("Can't choose this folder"));
    EXPECT_TRUE(f.model->customDerivedDataFolders().isEmpty());
    f.model->dismissSettingViewAlert();

    f.pickers.answerWith(custom);
    f.model->addCustomFolder(AppViewModel::CustomFolderKind::derivedData);
    ASSERT_TRUE(waitUntil([&] { return f.pickers.answered == 2; }));
    ASSERT_TRUE(f.waitForIdle());
    ASSERT_NE(f.find(QStringLiteral("Custom Project")), nullptr) << "the new folder is scanned at once";
    const URLBookmarkManager bookmarks(UserPaths::forHome(f.home).programDataFolder());
    ASSERT_EQ(bookmarks.load(URLBookmarkManager::File::customDerivedData).size(), 1);
    EXPECT_TRUE(bookmarks.load(URLBookmarkManager::File::customArchives).isEmpty());

    // A new model loads the list at construction and scans it.
    f.makeModel();
    ASSERT_EQ(f.model->customDerivedDataFolders().size(), 1);
    f.model->requestDeveloperFolderAuthorization(false);
    ASSERT_TRUE(waitUntil([&] { return f.model->hasFileManager(); }));
    ASSERT_TRUE(f.waitForIdle());
    EXPECT_NE(f.find(QStringLiteral("Custom Project")), nullptr);
    f.model->removeCustomFolders(AppViewModel::CustomFolderKind::derivedData,
                                 {f.model->customDerivedDataFolders()[0].id});
    EXPECT_TRUE(f.model->scanning());
    ASSERT_TRUE(f.waitForIdle());
    EXPECT_EQ(f.find(QStringLiteral("Custom Project")), nullptr);
    EXPECT_TRUE(bookmarks.load(URLBookmarkManager::File::customDerivedData).isEmpty());
    EXPECT_TRUE(QFile::exists(customProject)) << "removing a location deletes nothing";
}
