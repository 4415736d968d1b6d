#include <QAbstractButton>
#include <QComboBox>
#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include <gtest/gtest.h>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/state/SavedSpaceStore.h"
#include "core/views/SettingsView.h"
#include "foundation/ByteCount.h"
#include "foundation/Defaults.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/Appearance.h"
#include "platform/FolderBookmark.h"
#include "platform/UserPaths.h"
#include "testsupport/ScriptedPanels.h"
#include "testsupport/TempTree.h"
#include "testsupport/TestEnvironment.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

// The application as it starts, on a temporary settings file and home folder, with the
// user at the folder panel scripted; and its settings window.
struct SettingsFixture
{
    SettingsFixture() { start(); }

    // A new process over the same settings file and home.
    void restart()
    {
        view.reset();
        app.reset();
        start();
    }

    void start()
    {
        auto scripted = std::make_unique<ScriptedPickers>();
        pickers = scripted.get();
        app = std::make_unique<QuillbayApp>(std::make_unique<SettingsDefaults>(iniPath()), std::move(scripted));
        app->viewModel().setCleanupPlatform(UserPaths::forHome(tree.path(QStringLiteral("home"))), nullptr);
        view = std::make_unique<SettingsView>(*app);
    }

    QString iniPath() const { return tree.path(QStringLiteral("defaults.ini")); }

    // What the settings file on disk says, after the pending writes went out.
    QString fileText()
    {
        dynamic_cast<SettingsDefaults&>(app->defaults()).sync();
        QFile file(iniPath());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    template <typename T> T* find(const QString& name) const { return view->findChild<T*>(name); }
    QString label(const QString& name) const
    {
        auto* found = find<QLabel>(name);
        return found ? found->text() : QStringLiteral("<missing %1>").arg(name);
    }

    void click(const QString& buttonName) const
    {
        auto* button = find<QAbstractButton>(buttonName);
        ASSERT_NE(button, nullptr) << buttonName.toStdString();
        ASSERT_TRUE(button->isEnabled()) << buttonName.toStdString();
        button->click();
    }

    TempTree tree;
    ScriptedPickers* pickers = nullptr;
    std::unique_ptr<QuillbayApp> app;
    std::unique_ptr<SettingsView> view;
};

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
    f.app->viewModel().setReleaseColumnVisible(AppViewModel::ReleaseColumn::download, false);
    for (const auto& [stored, index, shown, dark] : cases) {
        SCOPED_TRACE(index);
        setApplicationAppearance(ApplicationAppearance::system);
        f.app->defaults().setValue(QStringLiteral("AppearanceIndex"), stored);
        f.restart();
        EXPECT_EQ(f.app->viewModel().appearanceIndex(), index);
        EXPECT_EQ(f.find<QComboBox>(QStringLiteral("appearanceComboBox"))->currentText(), shown);
        f.app->windowDidAppear();
        EXPECT_EQ(windowLightness() < 80, dark);
        EXPECT_FALSE(f.app->viewModel().isReleaseColumnVisible(AppViewModel::ReleaseColumn::download));
    }
}

TEST(SettingsViewTest, SavedTotalAndTheDeveloperAndHomebrewFoldersFollowTheirStores)
{
    SettingsFixture f;
    f.app->savedSpaceStore().add(1'500'000'000);
    EXPECT_EQ(f.label(QStringLiteral("savedTotalLabel")), formatByteCount(1'500'000'000)) << "updates while open";
    f.click(QStringLiteral("resetRecordPushButton"));
    EXPECT_EQ(f.label(QStringLiteral("savedTotalLabel")), formatByteCount(0));
    EXPECT_TRUE(f.fileText().contains(QStringLiteral("TotalBytesDeleted=0")));

    const QString developer = f.tree.path(QStringLiteral("home/Library/Developer"));
    EXPECT_EQ(f.label(QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    // Once it exists and can be read, "Choose" takes it without a panel.
    f.tree.mkdir(QStringLiteral("home/Library/Developer/Xcode/DerivedData"));
    f.click(QStringLiteral("chooseDeveloperFolderPushButton"));
    ASSERT_TRUE(waitUntil([&] { return f.app->viewModel().hasFileManager() && !f.app->viewModel().scanning(); }));
    EXPECT_TRUE(f.pickers->requests.isEmpty());
    EXPECT_EQ(f.label(QStringLiteral("developerFolderLabel")), developer);
    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_EQ(f.label(QStringLiteral("developerFolderLabel")), QStringLiteral("Not Selected"));
    EXPECT_TRUE(f.find<QPushButton>(QStringLiteral("removeDeveloperFolderPushButton"))->isHidden());

    // A process that starts with a stored bookmark shows its folder before any scan opens it.
    f.app->defaults().setValue(QStringLiteral("DeveloperFolderBookmarkKey"), FolderBookmark::make(developer));
    f.restart();
    EXPECT_EQ(f.label(QStringLiteral("developerFolderLabel")), developer);
    f.click(QStringLiteral("removeDeveloperFolderPushButton"));
    EXPECT_FALSE(f.fileText().contains(QStringLiteral("DeveloperFolderBookmarkKey")));

    // The Homebrew root: which folders qualify is the store's own test; this is the wiring.
    const QString root = f.tree.mkdir(QStringLiteral("brew"));
    f.tree.writeFile(QStringLiteral("brew/bin/brew"), "#!/bin/sh\n");
    f.tree.mkdir(QStringLiteral("brew/Cellar/wget/1.24.5"));
    HomebrewInstalledPackagesStore& store = f.app->homebrewInstalledPackagesStore();
    const QString key = QStringLiteral("homebrewInstallation.rootBookmark");
    f.view->show();
    f.view->tabs()->setCurrentIndex(2);
    ASSERT_TRUE(waitUntil([&] { return !store.isLoadingAuthorization(); }));
    f.pickers->answerWith(root);
    f.click(QStringLiteral("chooseHomebrewRootPushButton"));
    ASSERT_TRUE(waitUntil([&] { return store.isAuthorized() && !store.isChoosingRoot() && !store.isScanning(); }));
    EXPECT_EQ(f.label(QStringLiteral("homebrewRootLabel")), root);
    ASSERT_TRUE(waitUntil([&] { return !f.app->defaults().dataValue(key).isEmpty(); }));
    f.click(QStringLiteral("removeHomebrewRootPushButton"));
    EXPECT_EQ(f.label(QStringLiteral("homebrewRootLabel")), QStringLiteral("Not Selected"));
    ASSERT_TRUE(waitUntil([&] { return !f.app->defaults().contains(key); }));
}
