#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

#include "SettingsFixture.h"
#include "core/state/SavedSpaceStore.h"
#include "core/views/AppShell.h"
#include "core/views/ContentView.h"
#include "foundation/ByteCount.h"
#include "platform/Appearance.h"
#include "platform/FolderBookmark.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

QString label(const SettingsFixture& f, const QString& name)
{
    auto* found = f.find<QLabel>(name);
    return found ? found->text() : QStringLiteral("<missing %1>").arg(name);
}

int windowLightness()
{
    return QGuiApplication::palette().color(QPalette::Window).lightness();
}

// Puts the application back to the system's look whatever a test left behind.
struct SystemAppearanceAfterwards
{
    ~SystemAppearanceAfterwards() { setApplicationAppearance(ApplicationAppearance::system); }
};

} // namespace

TEST(SettingsViewTest, AppearanceAppliesAtOnceIsWrittenAndABadStoredIndexIsHandled)
{
    SystemAppearanceAfterwards restore;
    SettingsFixture f;
    const QPalette systemPalette = QGuiApplication::palette();
    f.view->show();
    auto* picker = f.find<QComboBox>(QStringLiteral("appearanceComboBox"));
    ASSERT_NE(picker, nullptr);
    // The user steps down the list with the keyboard, as a real picker is driven.
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_GT(windowLightness(), 200) << "light at once";
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(f.app->viewModel().appearanceIndex(), 2);
    EXPECT_LT(windowLightness(), 80) << "dark at once";
    // Open windows take the new palette on the next pass of the event loop, before they paint.
    QCoreApplication::processEvents();
    EXPECT_LT(f.view->palette().color(QPalette::Window).lightness(), 80) << "the open window redraws dark";
    EXPECT_TRUE(f.fileText().contains(QStringLiteral("AppearanceIndex=2")));
    // Back to the system: the palette the toolkit had before any choice.
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Home);
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::Window), systemPalette.color(QPalette::Window));

    // {stored, index, picker, dark}: an index outside the table shows dark, a wrong type the system.
    const std::tuple<QVariant, qint64, QString, bool> cases[] = {
        {qint64(7), 7, QStringLiteral("Dark"), true},
        {QStringLiteral("dark"), 0, QStringLiteral("System"), false},
    };
    for (const auto& [stored, index, shown, dark] : cases) {
        SCOPED_TRACE(index);
        setApplicationAppearance(ApplicationAppearance::system);
        f.app->defaults().setValue(QStringLiteral("AppearanceIndex"), stored);
        f.restart();
        EXPECT_EQ(f.app->viewModel().appearanceIndex(), index);
        EXPECT_EQ(f.find<QComboBox>(QStringLiteral("appearanceComboBox"))->currentText(), shown);
        f.app->windowDidAppear();
        EXPECT_EQ(windowLightness() < 80, dark);
    }
}

TEST(SettingsViewTest, SavedTotalFollowsTheStoreAndResetRecordZeroesItOnDisk)
{
    SettingsFixture f;
    f.app->savedSpaceStore().add(1'500'000'000);
    EXPECT_EQ(label(f, QStringLiteral("savedTotalLabel")), formatByteCount(1'500'000'000)) << "updates while open";
    f.click(QStringLiteral("resetRecordPushButton"));
    EXPECT_EQ(label(f, QStringLiteral("savedTotalLabel")), formatByteCount(0));
    EXPECT_TRUE(f.fileText().contains(QStringLiteral("TotalBytesDeleted=0")));
}

TEST(SettingsViewTest, DeveloperFolderChooseShowsThePathAndRemoveForgetsIt)
{
    SettingsFixture f;
    const QString developer = f.tree.path(QStringLiteral("home/Library/Developer"));
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    // Once it exists and can be read, "Choose" takes it without a panel.
    f.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
    f.click(QStringLiteral("chooseDeveloperFolderPushButton"));
    ASSERT_TRUE(waitUntil([&] { return f.app->viewModel().hasFileManager() && !f.app->viewModel().scanning(); }));
    EXPECT_TRUE(f.pickers->requests.isEmpty());
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), developer);
    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    EXPECT_TRUE(f.find<QPushButton>(QStringLiteral("removeDeveloperFolderPushButton"))->isHidden());

    // A process that starts with a stored bookmark shows its folder before any scan opens it.
    f.app->defaults().setValue(QStringLiteral("DeveloperFolderBookmarkKey"), FolderBookmark::make(developer));
    f.restart();
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), developer);
    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_FALSE(f.fileText().contains(QStringLiteral("DeveloperFolderBookmarkKey")));
}

TEST(SettingsViewTest, CustomFoldersAreAddedSavedAndRemovedAndABadChoiceIsReported)
{
    SettingsFixture f;
    const QString custom = f.tree.mkdir(QStringLiteral("home/Builds"));
    auto* section = f.find<QWidget>(QStringLiteral("archivesSettingsSection"));
    ASSERT_NE(section, nullptr);
    auto* list = section->findChild<QListWidget*>(QStringLiteral("scanLocationsListWidget"));
    auto* add = section->findChild<QPushButton*>(QStringLiteral("addLocationPushButton"));
    auto* remove = section->findChild<QPushButton*>(QStringLiteral("removeLocationsPushButton"));
    ASSERT_EQ(list->count(), 1) << "only the default path";
    list->item(0)->setSelected(true);
    EXPECT_FALSE(remove->isEnabled()) << "the default path can't be removed";

    // A folder that can't be reached: the message, and nothing is added.
    f.pickers->answerWith(f.tree.path(QStringLiteral("home/Gone")));
    add->click();
    QMessageBox* box = f.waitForMessage();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), QStringLiteral("Can't choose this folder"));
    box->buttons().first()->click();
    ASSERT_TRUE(waitUntil([&] { return !f.app->viewModel().settingViewAlert(); }));
    EXPECT_TRUE(f.app->viewModel().customArchivesFolders().isEmpty());

    f.pickers->answerWith(custom);
    add->click();
    ASSERT_TRUE(waitUntil([&] { return list->count() == 2; }));
    EXPECT_EQ(list->item(1)->text(), custom);
    // Removed from the screen: the saved list no longer names it.
    list->item(1)->setSelected(true);
    ASSERT_TRUE(remove->isEnabled());
    remove->click();
    EXPECT_EQ(list->count(), 1);
    EXPECT_TRUE(f.app->viewModel().customArchivesFolders().isEmpty());
    QFile file(QDir(f.paths().programDataFolder()).filePath(QStringLiteral("customArchivesURLs.json")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_FALSE(QString::fromUtf8(file.readAll()).contains(custom));
}

TEST(SettingsViewTest, TheShellOpensOneSettingsWindowFromTheFooterAndTheMenu)
{
    TempTree tree;
    QuillbayApp app(std::make_unique<SettingsDefaults>(tree.path(QStringLiteral("defaults.ini"))));
    AppShell shell(app);
    shell.openWindow();
    auto* footerButton = shell.window()->findChild<QAbstractButton*>(QStringLiteral("settingsHoverButton"));
    ASSERT_NE(footerButton, nullptr);
    footerButton->click();
    SettingsView* settings = shell.settingsView();
    ASSERT_NE(settings, nullptr);
    QTest::keyClick(settings, Qt::Key_Escape);
    EXPECT_FALSE(settings->isVisible());
    shell.openSettingsAction()->trigger();
    EXPECT_TRUE(settings->isVisible());
    footerButton->click();
    EXPECT_EQ(shell.window()->findChildren<SettingsView*>().size(), 1) << "the same window comes back";
}
