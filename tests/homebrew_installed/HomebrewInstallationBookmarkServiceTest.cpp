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

using Error = HomebrewInstallationBookmarkError;
using Service = HomebrewInstallationBookmarkService;
using Outcome = Service::RestoreOutcome;

Service::Restored restored(const Outcome& outcome)
{
    if (const auto* error = std::get_if<Error>(&outcome)) {
        ADD_FAILURE() << "restore failed: " << errorDescription(*error).toStdString();
        return {};
    }
    return std::get<Service::Restored>(outcome);
}

std::optional<Error> restoreError(const Outcome& outcome)
{
    const auto* error = std::get_if<Error>(&outcome);
    return error ? std::optional(*error) : std::nullopt;
}

QByteArray bookmark(const Service::BookmarkOutcome& outcome)
{
    if (const auto* error = std::get_if<Error>(&outcome)) {
        ADD_FAILURE() << "bookmark failed: " << errorDescription(*error).toStdString();
        return {};
    }
    return std::get<QByteArray>(outcome);
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

TEST(HomebrewInstallationBookmarkServiceTest, BookmarkBytesRoundTripThroughTheDefaultsFile)
{
    TempTree tree;
    const QString ini = tree.path(u"defaults.ini"_s);
    const QString root = tree.mkdir(u"brew"_s);
    const Service service;
    const auto nothing = restored(service.restoreRootURL(std::nullopt));
    EXPECT_EQ(nothing.path, std::nullopt);
    EXPECT_EQ(nothing.renewedBookmark, std::nullopt);
    {
        // The bytes survive the way the store keeps them: a data value in the settings file.
        SettingsDefaults defaults(ini);
        defaults.setValue(u"homebrewInstallation.rootBookmark"_s, bookmark(service.makeRootBookmark(root)));
        defaults.sync();
    }
    const SettingsDefaults defaults(ini);
    const auto back = restored(service.restoreRootURL(defaults.dataValue(u"homebrewInstallation.rootBookmark"_s)));
    EXPECT_EQ(back.path, root);
    EXPECT_EQ(back.renewedBookmark, std::nullopt);
}

TEST(HomebrewInstallationBookmarkServiceTest, AReplacedFolderIsRenewedOnRestore)
{
    TempTree tree;
    const Service service;
    const QString root = tree.mkdir(u"brew"_s);
    const QByteArray before = bookmark(service.makeRootBookmark(root));
    ASSERT_FALSE(before.isEmpty());

    replaceFolder(tree, u"brew"_s);
    ASSERT_TRUE(FolderBookmark::resolve(before)->isStale);
    const auto renewed = restored(service.restoreRootURL(before));
    EXPECT_EQ(renewed.path, root);
    ASSERT_TRUE(renewed.renewedBookmark.has_value());
    EXPECT_NE(*renewed.renewedBookmark, before);
    EXPECT_FALSE(FolderBookmark::resolve(*renewed.renewedBookmark)->isStale);
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
        // Through the settings file, as the store reads them: a text value arrives as no data.
        SettingsDefaults defaults(tree.path(u"defaults.ini"_s));
        defaults.setValue(u"key"_s, c.stored);
        EXPECT_EQ(restoreError(Service().restoreRootURL(defaults.dataValue(u"key"_s))), Error::couldNotResolveBookmark);
    }
}

TEST(HomebrewInstallationBookmarkServiceTest, AMissingFolderGivesNoBookmark)
{
    TempTree tree;
    EXPECT_EQ(std::get<Error>(Service().makeRootBookmark(tree.path(u"missing"_s))), Error::couldNotCreateBookmark);
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
    const Service service;
    const QString root = tree.mkdir(u"brew"_s);
    const QByteArray before = bookmark(service.makeRootBookmark(root));
    replaceFolder(tree, u"brew"_s);
    tree.chmod(u"brew"_s, 0);

    Outcome outcome;
    {
        const UnprivilegedUser user;
        if (!user.permissionsApply())
            GTEST_SKIP() << "cannot drop root privileges to close a folder: " << user.failure().toStdString();
        outcome = service.restoreRootURL(before);
    }
    EXPECT_EQ(restoreError(outcome), Error::accessDenied);
}
