#include <QDir>
#include <QFile>
#include <cstdio>

#include <gtest/gtest.h>

#include "UnprivilegedUser.h"
#include "foundation/Defaults.h"
#include "homebrew_installed/HomebrewInstallationBookmarkService.h"
#include "platform/FolderBookmark.h"
#include "testsupport/TempTree.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

const QString kKey = u"homebrewInstallation.rootBookmark"_s;
using Error = HomebrewInstallationBookmarkError;
using Outcome = HomebrewInstallationBookmarkService::RestoreOutcome;

std::optional<QString> restoredPath(const Outcome& outcome)
{
    if (const auto* error = std::get_if<Error>(&outcome)) {
        ADD_FAILURE() << "restore failed: " << errorDescription(*error).toStdString();
        return std::nullopt;
    }
    return std::get<std::optional<QString>>(outcome);
}

std::optional<Error> restoreError(const Outcome& outcome)
{
    const auto* error = std::get_if<Error>(&outcome);
    return error ? std::optional(*error) : std::nullopt;
}

// Puts a new folder at the same path, so a bookmark of the old one becomes stale. The old
// folder is moved aside rather than removed, so its inode cannot be handed out again.
void replaceFolder(TempTree& tree, const QString& relative)
{
    tree.mkdir(relative + u".new"_s);
    ASSERT_EQ(std::rename(QFile::encodeName(tree.path(relative)).constData(),
                          QFile::encodeName(tree.path(relative + u".old"_s)).constData()),
              0);
    ASSERT_EQ(std::rename(QFile::encodeName(tree.path(relative + u".new"_s)).constData(),
                          QFile::encodeName(tree.path(relative)).constData()),
              0);
}

} // namespace

TEST(HomebrewInstallationBookmarkServiceTest, SavesRestoresAndClearsAcrossLaunches)
{
    TempTree tree;
    const QString ini = tree.path(u"defaults.ini"_s);
    const QString root = tree.mkdir(u"brew"_s);
    {
        SettingsDefaults defaults(ini);
        HomebrewInstallationBookmarkService service(defaults, kKey);
        EXPECT_EQ(restoredPath(service.restoreRootURL()), std::nullopt);
        EXPECT_EQ(service.saveRootURL(root), std::nullopt);
        defaults.sync();
    }
    {
        SettingsDefaults defaults(ini);
        HomebrewInstallationBookmarkService service(defaults, kKey);
        EXPECT_EQ(restoredPath(service.restoreRootURL()), root);
        service.clearRootURL();
        defaults.sync();
    }
    SettingsDefaults defaults(ini);
    EXPECT_FALSE(defaults.contains(kKey));
    EXPECT_EQ(restoredPath(HomebrewInstallationBookmarkService(defaults, kKey).restoreRootURL()), std::nullopt);
}

TEST(HomebrewInstallationBookmarkServiceTest, AReplacedFolderIsRenewedOnRestore)
{
    TempTree tree;
    SettingsDefaults defaults(tree.path(u"defaults.ini"_s));
    HomebrewInstallationBookmarkService service(defaults, kKey);
    const QString root = tree.mkdir(u"brew"_s);
    ASSERT_EQ(service.saveRootURL(root), std::nullopt);
    const QByteArray before = defaults.dataValue(kKey);

    replaceFolder(tree, u"brew"_s);
    ASSERT_TRUE(FolderBookmark::resolve(before)->isStale);
    EXPECT_EQ(restoredPath(service.restoreRootURL()), root);
    const QByteArray after = defaults.dataValue(kKey);
    EXPECT_NE(after, before);
    EXPECT_FALSE(FolderBookmark::resolve(after)->isStale);
}

TEST(HomebrewInstallationBookmarkServiceTest, DamagedBookmarksFailToResolve)
{
    struct Case
    {
        const char* name;
        QVariant stored;
    };
    TempTree tree;
    const QString gone = tree.mkdir(u"gone"_s);
    const QByteArray goneBookmark = FolderBookmark::make(gone);
    ASSERT_FALSE(goneBookmark.isEmpty());
    ASSERT_TRUE(QDir(gone).removeRecursively());
    const Case cases[] = {
        {"folder removed", goneBookmark},
        {"garbage bytes", QByteArray("\x00\x01not a bookmark", 16)},
        {"truncated", goneBookmark.left(goneBookmark.size() / 2)},
        {"empty data", QByteArray()},
        {"a text value", u"/opt/homebrew"_s},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SettingsDefaults defaults(tree.path(u"defaults.ini"_s));
        defaults.setValue(kKey, c.stored);
        EXPECT_EQ(restoreError(HomebrewInstallationBookmarkService(defaults, kKey).restoreRootURL()),
                  Error::couldNotResolveBookmark);
        // Removing a dead bookmark is the store's decision, not the service's.
        EXPECT_TRUE(defaults.contains(kKey));
    }
}

TEST(HomebrewInstallationBookmarkServiceTest, SavingAMissingFolderFailsAndKeepsTheFormerBookmark)
{
    TempTree tree;
    SettingsDefaults defaults(tree.path(u"defaults.ini"_s));
    HomebrewInstallationBookmarkService service(defaults, kKey);
    const QString root = tree.mkdir(u"brew"_s);
    ASSERT_EQ(service.saveRootURL(root), std::nullopt);
    EXPECT_EQ(service.saveRootURL(tree.path(u"missing"_s)), Error::couldNotCreateBookmark);
    EXPECT_EQ(restoredPath(service.restoreRootURL()), root);
    EXPECT_EQ(errorDescription(Error::couldNotCreateBookmark),
              u"The Homebrew folder authorization could not be saved."_s);
    EXPECT_EQ(errorDescription(Error::couldNotResolveBookmark),
              u"The saved Homebrew folder authorization is no longer valid."_s);
    EXPECT_EQ(errorDescription(Error::accessDenied), u"The Homebrew folder could not be accessed."_s);
}

TEST(HomebrewInstallationBookmarkServiceTest, AStaleBookmarkOfAClosedFolderIsDenied)
{
    TempTree tree;
    UnprivilegedUser::makeReachable(tree.root());
    SettingsDefaults defaults(tree.path(u"defaults.ini"_s));
    HomebrewInstallationBookmarkService service(defaults, kKey);
    const QString root = tree.mkdir(u"brew"_s);
    ASSERT_EQ(service.saveRootURL(root), std::nullopt);
    replaceFolder(tree, u"brew"_s);
    tree.chmod(u"brew"_s, 0);
    const QByteArray before = defaults.dataValue(kKey);

    Outcome outcome;
    {
        const UnprivilegedUser user;
        if (!user.permissionsApply())
            GTEST_SKIP() << "cannot drop root privileges to close a folder: " << user.failure().toStdString();
        outcome = service.restoreRootURL();
    }
    EXPECT_EQ(restoreError(outcome), Error::accessDenied);
    EXPECT_EQ(defaults.dataValue(kKey), before);
}
