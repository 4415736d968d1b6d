#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QSet>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/AppShell.h"
#include "core/views/ContentView.h"
#include "core/views/SidebarItem.h"
#include "core/views/ToastOverlay.h"
#include "foundation/Defaults.h"
#include "testsupport/TestEnvironment.h"
#include "testsupport/WidgetAudit.h"

using namespace quillbay;

namespace {
struct Shell
{
    QTemporaryDir dir;
    QuillbayApp app {std::make_unique<SettingsDefaults>(dir.filePath(QStringLiteral("defaults.ini")))};
    AppShell shell {app};
};
} // namespace

TEST(ContentViewTest, ToastShowsForThreeSecondsAndANewMessageRestartsTheCount)
{
    Shell s;
    s.shell.openWindow();
    ToastOverlay* toast = s.shell.window()->toast();
    s.app.viewModel().setToast(QStringLiteral("First"));
    QElapsedTimer clock;
    clock.start();
    ASSERT_TRUE(test::waitUntil([&] { return clock.elapsed() > 2000; }, 3000));
    s.app.viewModel().setToast(QStringLiteral("Second"));
    const qint64 restartedAt = clock.elapsed();
    // The first message's three seconds pass; the second still shows.
    ASSERT_TRUE(test::waitUntil([&] { return clock.elapsed() > 3500; }, 4000));
    EXPECT_EQ(toast->text(), QStringLiteral("Second"));
    ASSERT_TRUE(test::waitUntil([&] { return toast->text().isEmpty(); }, 4000));
    EXPECT_GE(clock.elapsed() - restartedAt, 2990);
    EXPECT_FALSE(s.app.viewModel().toastMessage().has_value()) << "dismissal clears the message";
}

TEST(ContentViewTest, CtrlAndANumberOpenEachToolOnItsOwnScreenAndClosingKeepsTheState)
{
    Shell s;
    s.shell.openWindow();
    ContentView* window = s.shell.window();
    auto* sidebar = window->findChild<QTreeWidget*>(QStringLiteral("sidebarTreeWidget"));
    ASSERT_NE(sidebar, nullptr);
    const Tool inSidebarOrder[] = {Tool::xcodeReleases,   Tool::assetsMaker,       Tool::xcodeCleanup,
                                   Tool::homebrewCatalog, Tool::homebrewInstalled, Tool::homebrewCleanup};
    QSet<QWidget*> screens;
    // From the last tool backwards, so that every key has to move the selection.
    for (int number = 6; number >= 1; --number) {
        const Tool tool = inSidebarOrder[number - 1];
        SCOPED_TRACE(sidebarItem(tool).title.toStdString());
        ASSERT_TRUE(test::pressKey(window, QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_0 + number))));
        EXPECT_EQ(window->selection(), sidebarItem(tool).id);
        screens.insert(window->currentScreen());
        QApplication::processEvents();
        EXPECT_EQ(test::controlsWithoutAccessibleName(window), "");
    }
    EXPECT_EQ(screens.size(), 6) << "the two cleanup rows are distinct tools";
    // Headings are not selectable destinations.
    sidebar->setCurrentItem(sidebar->topLevelItem(0));
    EXPECT_EQ(window->selection(), sidebarItem(Tool::xcodeReleases).id);

    // Closing keeps the process; the menu command brings back the same window and screen.
    QWidget* screen = window->currentScreen();
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
    window->close();
    s.shell.openWindowAction()->trigger();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(s.shell.window(), window);
    EXPECT_EQ(window->currentScreen(), screen);
    EXPECT_TRUE(s.app.didCheckVersion()) << "the first appearance ran the start-up work once";
}
