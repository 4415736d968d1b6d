#include <QDir>

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

std::optional<Error> restoreError(const Service::RestoreOutcome& outcome)
{
    const auto* error = std::get_if<Error>(&outcome);
    return error ? std::optional(*error) : std::nullopt;
}

} // namespace

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
    EXPECT_EQ(std::get<Error>(Service().makeRootBookmark(gone)), Error::couldNotCreateBookmark);
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

TEST(HomebrewInstallationBookmarkServiceTest, AStaleBookmarkOfAClosedFolderIsDenied)
{
    TempTree tree;
    UnprivilegedUser::makeReachable(tree.root());
    const QString root = tree.mkdir(u"brew"_s);
    const auto before = Service().makeRootBookmark(root);
    ASSERT_TRUE(std::holds_alternative<QByteArray>(before));
    // A new folder at the same path; the old one is kept so its inode is not reused.
    ASSERT_TRUE(QDir().rename(root, root + u".old"_s));
    tree.mkdir(u"brew"_s);
    tree.chmod(u"brew"_s, 0);

    Service::RestoreOutcome outcome;
    {
        const UnprivilegedUser user;
        if (!user.permissionsApply())
            GTEST_SKIP() << "cannot drop root privileges to close a folder: " << user.failure().toStdString();
        outcome = Service().restoreRootURL(std::get<QByteArray>(before));
    }
    EXPECT_EQ(restoreError(outcome), Error::accessDenied);
}
