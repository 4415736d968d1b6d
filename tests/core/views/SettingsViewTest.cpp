#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

#include "SettingsFixture.h"
#include "core/state/SavedSpaceStore.h"
#include "core/views/AppShell.h"
#include "core/views/ContentView.h"
#include "engagement/EngagementPromptStore.h"
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

TEST(SettingsViewTest, AppearanceAppliesAtOnceAndIsWritten)
{
    SystemAppearanceAfterwards restore;
    SettingsFixture f;
    const QPalette systemPalette = QGuiApplication::palette();
    f.view->show();
    auto* picker = f.find<QComboBox>(QStringLiteral("appearanceComboBox"));
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->currentText(), QStringLiteral("System"));

    // The user steps down the list with the keyboard, as a real picker is driven.
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(f.app->viewModel().appearanceIndex(), 1);
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
    EXPECT_EQ(f.app->viewModel().appearanceIndex(), 0);
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::Window), systemPalette.color(QPalette::Window));
    EXPECT_EQ(QGuiApplication::palette().color(QPalette::Text), systemPalette.color(QPalette::Text));
}

TEST(SettingsViewTest, AStoredIndexOutsideTheTableShowsDark)
{
    SystemAppearanceAfterwards restore;
    struct Case
    {
        const char* name;
        QVariant stored;
        qint64 index;
        QString picker;
        bool dark;
    };
    const Case cases[] = {
        {"above the table", qint64(7), 7, QStringLiteral("Dark"), true},
        {"negative", qint64(-1), -1, QStringLiteral("Dark"), true},
        {"not a number", QStringLiteral("dark"), 0, QStringLiteral("System"), false},
        {"light", qint64(1), 1, QStringLiteral("Light"), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        setApplicationAppearance(ApplicationAppearance::system);
        SettingsFixture f;
        f.app->defaults().setValue(QStringLiteral("AppearanceIndex"), c.stored);
        f.restart();
        EXPECT_EQ(f.app->viewModel().appearanceIndex(), c.index);
        EXPECT_EQ(f.find<QComboBox>(QStringLiteral("appearanceComboBox"))->currentText(), c.picker);
        f.app->windowDidAppear();
        EXPECT_EQ(windowLightness() < 80, c.dark);
    }
}

TEST(SettingsViewTest, SavedTotalFollowsTheStoreAndResetRecordZeroesItOnDisk)
{
    SettingsFixture f;
    SavedSpaceStore& saved = f.app->savedSpaceStore();
    saved.add(1'500'000'000);
    EXPECT_EQ(label(f, QStringLiteral("savedTotalLabel")), formatByteCount(1'500'000'000)) << "updates while open";

    f.click(QStringLiteral("resetRecordPushButton"));
    EXPECT_EQ(saved.totalBytes(), 0);
    EXPECT_EQ(label(f, QStringLiteral("savedTotalLabel")), formatByteCount(0));
    EXPECT_TRUE(f.fileText().contains(QStringLiteral("TotalBytesDeleted=0")));

    f.click(QStringLiteral("leaveTipPushButton"));
    EXPECT_TRUE(f.app->engagementPromptStore().isPresentingPurchaseView());
}

TEST(SettingsViewTest, DeveloperFolderChooseShowsThePathAndRemoveForgetsIt)
{
    SettingsFixture f;
    const QString developer = f.tree.path(QStringLiteral("home/Library/Developer"));
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    EXPECT_TRUE(f.find<QPushButton>(QStringLiteral("removeDeveloperFolderPushButton"))->isHidden());

    // Once it exists and can be read, "Choose" takes it without a panel.
    f.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
    f.click(QStringLiteral("chooseDeveloperFolderPushButton"));
    ASSERT_TRUE(waitUntil([&] { return f.app->viewModel().hasFileManager() && !f.app->viewModel().scanning(); }));
    EXPECT_TRUE(f.pickers->requests.isEmpty());
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), developer);
    EXPECT_FALSE(f.find<QPushButton>(QStringLiteral("removeDeveloperFolderPushButton"))->isHidden());

    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    EXPECT_FALSE(f.app->viewModel().hasFileManager());
    EXPECT_TRUE(f.find<QPushButton>(QStringLiteral("removeDeveloperFolderPushButton"))->isHidden());

    // A process that starts with a stored bookmark shows its folder before any scan opens it.
    f.app->defaults().setValue(QStringLiteral("DeveloperFolderBookmarkKey"), FolderBookmark::make(developer));
    f.restart();
    EXPECT_FALSE(f.app->viewModel().hasFileManager());
    EXPECT_EQ(label(f, QStringLiteral("developerFolderLabel")), developer);
    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_FALSE(f.app->defaults().contains(QStringLiteral("DeveloperFolderBookmarkKey")));
    EXPECT_FALSE(f.fileText().contains(QStringLiteral("DeveloperFolderBookmarkKey")));
}

TEST(SettingsViewTest, CustomFoldersAreAddedSavedAndRemovedAndABadChoiceIsReported)
{
    struct Case
    {
        const char* name;
        QString section;
        QString file;
        std::function<const QList<URLBookmark>&(const AppViewModel&)> list;
    };
    const Case cases[] = {
        {"derived data", QStringLiteral("derivedDataSettingsSection"), QStringLiteral("customDerivedDataURLs.json"),
         [](const AppViewModel& m) -> const QList<URLBookmark>& { return m.customDerivedDataFolders(); }},
        {"archives", QStringLiteral("archivesSettingsSection"), QStringLiteral("customArchivesURLs.json"),
         [](const AppViewModel& m) -> const QList<URLBookmark>& { return m.customArchivesFolders(); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SettingsFixture f;
        const QString custom = f.tree.mkdir(QStringLiteral("home/Builds"));
        auto* section = f.find<QWidget>(c.section);
        ASSERT_NE(section, nullptr);
        auto* list = section->findChild<QListWidget*>(QStringLiteral("scanLocationsListWidget"));
        auto* add = section->findChild<QPushButton*>(QStringLiteral("addLocationPushButton"));
        auto* remove = section->findChild<QPushButton*>(QStringLiteral("removeLocationsPushButton"));
        ASSERT_EQ(list->count(), 1) << "only the default path";
        list->item(0)->setSelected(true);
        EXPECT_FALSE(list->item(0)->isSelected()) << "the default path can't be selected";
        EXPECT_FALSE(remove->isEnabled());

        // A folder that can't be reached: the message, and nothing is added.
        f.pickers->answerWith(f.tree.path(QStringLiteral("home/Gone")));
        add->click();
        QMessageBox* box = f.waitForMessage();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->text(), QStringLiteral("Can't choose this folder"));
        EXPECT_EQ(box->informativeText(), QStringLiteral("Access to this folder is denied."));
        box->buttons().first()->click();
        ASSERT_TRUE(waitUntil([&] { return !f.app->viewModel().settingViewAlert(); }));
        EXPECT_TRUE(c.list(f.app->viewModel()).isEmpty());

        f.pickers->answerWith(custom);
        add->click();
        ASSERT_TRUE(waitUntil([&] { return list->count() == 2; }));
        EXPECT_EQ(list->item(1)->text(), custom);
        const QString saved = QDir(f.paths().programDataFolder()).filePath(c.file);
        QFile file(saved);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(QString::fromUtf8(file.readAll()).contains(custom));
        file.close();

        // The list is read back by a new process; then removed from the screen.
        f.restart();
        section = f.find<QWidget>(c.section);
        list = section->findChild<QListWidget*>(QStringLiteral("scanLocationsListWidget"));
        remove = section->findChild<QPushButton*>(QStringLiteral("removeLocationsPushButton"));
        ASSERT_EQ(list->count(), 2);
        list->item(1)->setSelected(true);
        ASSERT_TRUE(remove->isEnabled());
        remove->click();
        EXPECT_EQ(list->count(), 1);
        EXPECT_TRUE(c.list(f.app->viewModel()).isEmpty());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(QString::fromUtf8(file.readAll()).contains(custom));
    }
}

TEST(SettingsViewTest, TheShellOpensOneSettingsWindowFromTheFooterAndTheMenu)
{
    TempTree tree;
    QuillbayApp app(std::make_unique<SettingsDefaults>(tree.path(QStringLiteral("defaults.ini"))));
    AppShell shell(app);
    shell.openWindow();
    EXPECT_EQ(shell.settingsView(), nullptr) << "built on first use";
    EXPECT_EQ(shell.openSettingsAction()->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Comma));

    auto* footerButton = shell.window()->findChild<QAbstractButton*>(QStringLiteral("settingsHoverButton"));
    ASSERT_NE(footerButton, nullptr);
    footerButton->click();
    SettingsView* settings = shell.settingsView();
    ASSERT_NE(settings, nullptr);
    EXPECT_TRUE(settings->isVisible());
    EXPECT_EQ(settings->tabs()->count(), 3);
    EXPECT_NE(settings->findChild<QWidget*>(QStringLiteral("homebrewCacheSettingsSection")), nullptr);

    // Escape closes it; the menu command brings back the same window.
    QTest::keyClick(settings, Qt::Key_Escape);
    EXPECT_FALSE(settings->isVisible());
    shell.openSettingsAction()->trigger();
    EXPECT_EQ(shell.settingsView(), settings);
    EXPECT_TRUE(settings->isVisible());
    footerButton->click();
    EXPECT_EQ(shell.settingsView(), settings);
    EXPECT_EQ(shell.window()->findChildren<SettingsView*>().size(), 1);
}
