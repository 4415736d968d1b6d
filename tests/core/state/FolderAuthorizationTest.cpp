#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "core/state/FolderAuthorization.h"
#include "foundation/Defaults.h"
#include "platform/FolderBookmark.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {
const QString kKey = QStringLiteral("DeveloperFolderBookmarkKey");
struct Harness
{
    TempTree tree;
    SettingsDefaults defaults {tree.path(QStringLiteral("defaults.ini"))};
    ScriptedPickers pickers;
    ScriptedAlerts alerts;
    FolderAuthorization authorization {defaults};
    // The folder asked for does not exist yet: with no sandbox, an existing folder needs
    // no authorization, so this is the only way to reach the bookmark and the panel.
    QString wanted = tree.path(QStringLiteral("home/Library/Developer"));

    Harness() { authorization.setPanels(&pickers, &alerts); }

    // Runs one request to its end and returns its answer.
    std::optional<QString> request(const QByteArray& data, bool interactive)
    {
        bool answered = false;
        std::optional<QString> result;
        authorization.authorizedFolder(wanted, data, QStringLiteral("message"), kKey, interactive,
                                       [&](std::optional<QString> folder) {
                                           answered = true;
                                           result = folder;
                                       });
        EXPECT_TRUE(waitUntil([&] { return answered; }));
        return result;
    }
};
} // namespace

TEST(FolderAuthorizationTest, ReachableFolderAndBookmarksNeedNoPanel)
{
    Harness h;
    const QString other = h.tree.mkdir(QStringLiteral("Other"));
    const QString replaced = h.tree.mkdir(QStringLiteral("Replaced"));
    const QByteArray staleData = FolderBookmark::make(replaced);
    ASSERT_TRUE(QDir().mkdir(replaced + QStringLiteral("2")));
    ASSERT_TRUE(QDir().rmdir(replaced));
    ASSERT_TRUE(QDir().rename(replaced + QStringLiteral("2"), replaced));
    const struct
    {
        const char* name;
        bool createWanted;
        QByteArray data;
        std::optional<QString> expected;
        bool keyRewritten;
    } cases[] = {
        {"reachable folder, no bookmark, silent", true, {}, h.wanted, false},
        {"no folder, no bookmark, silent", false, {}, std::nullopt, false},
        {"unreadable bookmark, silent", false, "junk", std::nullopt, false},
        {"bookmark resolves", false, FolderBookmark::make(other), other, false},
        {"stale bookmark is renewed under the key", false, staleData, replaced, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        h.defaults.remove(kKey);
        QDir(h.wanted).removeRecursively();
        if (c.createWanted)
            h.tree.mkdir(QStringLiteral("home/Library/Developer"));
        EXPECT_EQ(h.request(c.data, false), c.expected);
        EXPECT_EQ(h.defaults.contains(kKey), c.keyRewritten);
        if (c.keyRewritten) {
            EXPECT_FALSE(FolderBookmark::resolve(h.defaults.dataValue(kKey))->isStale);
        }
    }
    EXPECT_TRUE(h.pickers.requests.isEmpty()) << "no panel ever opens without an interactive request";
    EXPECT_TRUE(h.alerts.requests.isEmpty());
}

TEST(FolderAuthorizationTest, PanelMustReturnTheFolderAskedFor)
{
    Harness h;
    const QString elsewhere = h.tree.mkdir(QStringLiteral("Elsewhere"));
    h.defaults.setValue(kKey, QByteArray("old junk"));
    // An unreadable bookmark in an interactive request falls through to the panel. The
    // user first picks another folder, is told so, presses "Repeat", and then creates
    // and picks the right one.
    h.pickers.answerWith(elsewhere);
    h.alerts.pressButton(0);
    h.pickers.answerWith([&](const Pickers::FolderRequest&) -> std::optional<QString> {
        EXPECT_FALSE(h.defaults.contains(kKey)) << "the key was cleared before the alert";
        h.tree.mkdir(QStringLiteral("home/Library/Developer"));
        return h.wanted + QStringLiteral("/");
    });
    EXPECT_EQ(h.request("old junk", true), h.wanted + QStringLiteral("/"));

    ASSERT_EQ(h.pickers.requests.size(), 2);
    EXPECT_EQ(h.pickers.requests[0].directory, h.wanted);
    ASSERT_EQ(h.alerts.requests.size(), 1);
    EXPECT_EQ(h.alerts.requests[0].messageText,
              QStringLiteral("Can't get access to ") + h.wanted + QStringLiteral(" folder"));
    const auto stored = FolderBookmark::resolve(h.defaults.dataValue(kKey));
    ASSERT_TRUE(stored);
    EXPECT_EQ(QDir::cleanPath(stored->path), h.wanted);
}

TEST(FolderAuthorizationTest, CancellingThePanelOrTheAlertGivesNothing)
{
    // {first pick, alerts shown}: the panel closed without a folder; a wrong folder, then Cancel.
    const std::pair<std::optional<QString>, int> cases[] = {{std::nullopt, 0}, {QStringLiteral("/"), 1}};
    for (const auto& [firstPick, alertsShown] : cases) {
        SCOPED_TRACE(alertsShown);
        Harness h;
        h.pickers.answerWith(firstPick);
        h.alerts.pressButton(1);
        EXPECT_EQ(h.request({}, true), std::nullopt);
        EXPECT_EQ(h.pickers.requests.size(), 1);
        EXPECT_EQ(h.alerts.requests.size(), alertsShown);
        EXPECT_FALSE(h.defaults.contains(kKey));
    }
    Harness h;
    h.authorization.setPanels(nullptr, nullptr);
    EXPECT_EQ(h.request({}, true), std::nullopt) << "without a panel to show the request simply fails";
}
