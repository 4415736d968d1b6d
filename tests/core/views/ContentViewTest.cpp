#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/AppShell.h"
#include "core/views/ContentView.h"
#include "core/views/SettingsView.h"
#include "core/views/SidebarItem.h"
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

    // One settings window, from the footer and from the menu.
    auto* footerButton = window->findChild<QAbstractButton*>(QStringLiteral("settingsHoverButton"));
    ASSERT_NE(footerButton, nullptr);
    footerButton->click();
    SettingsView* settings = s.shell.settingsView();
    ASSERT_NE(settings, nullptr);
    QTest::keyClick(settings, Qt::Key_Escape);
    EXPECT_FALSE(settings->isVisible());
    s.shell.openSettingsAction()->trigger();
    EXPECT_TRUE(settings->isVisible());
    footerButton->click();
    EXPECT_EQ(window->findChildren<SettingsView*>().size(), 1) << "the same window comes back";
}
