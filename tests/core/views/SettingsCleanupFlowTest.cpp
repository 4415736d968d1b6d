#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

#include "core/QuillbayApp.h"
#include "core/views/SettingsView.h"
#include "testsupport/CleanupFlowFixture.h"
#include "xcode_cleanup/views/CleanupView.h"
#include "xcode_cleanup/views/XcodeCleanupFooter.h"

using namespace quillbay;
using namespace quillbay::test;

// The cleanup screen and the settings window share one view model and one settings file;
// the Homebrew stores come from an application of their own.
TEST(SettingsCleanupFlowTest, AfterTheResetBothCleanupDialogsAppearAgain)
{
    CleanupFlowFixture f;
    f.buildDeveloperTree();
    f.workspace.running = {QStringLiteral("com.apple.dt.Xcode")};
    f.defaults.setValue(QStringLiteral("SuppressXcodeIsRunningAlert"), true);
    f.defaults.setValue(QStringLiteral("SuppressDeleteWarningAlert"), true);
    QuillbayApp app(std::make_unique<SettingsDefaults>(f.tree.path(QStringLiteral("other.ini"))));
    const SettingsStores stores {f.defaults,
                                 *f.model,
                                 f.saved,
                                 app.engagementPromptStore(),
                                 app.homebrewCatalogStore(),
                                 app.homebrewInstalledPackagesStore(),
                                 app.homebrewCacheCleanupStore(),
                                 f.pickers,
                                 f.workspace};
    QWidget window;
    auto* cleanup = new CleanupView(*f.model, &window);
    f.model->setCleanupPanels(&f.pickers, &f.alerts);
    window.resize(900, 600);
    window.show();
    ASSERT_TRUE(waitUntil([&] { return f.model->hasFileManager(); }));
    ASSERT_TRUE(f.waitForIdle());

    SettingsView settings(stores);
    settings.show();
    settings.findChild<QPushButton*>(QStringLiteral("resetWarningsPushButton"))->click();

    f.model->selectAll(true);
    ASSERT_GT(f.model->selectedSize(), 0);
    auto* remove = cleanup->findChild<QPushButton*>(QStringLiteral("deletePushButton"));
    ASSERT_NE(remove, nullptr);
    ASSERT_TRUE(remove->isEnabled());
    remove->click();
    QApplication::processEvents();
    XcodeCleanupFooter* footer = cleanup->footer();
    ASSERT_TRUE(footer->isShowingXcodeRunningWarning()) << "the running warning is back";
    QPushButton* proceed = nullptr;
    for (QAbstractButton* button : footer->xcodeRunningWarning()->buttons())
        if (button->text() == QStringLiteral("Continue"))
            proceed = qobject_cast<QPushButton*>(button);
    ASSERT_NE(proceed, nullptr);
    proceed->click();
    ASSERT_TRUE(waitUntil([&] { return footer->isShowingDeletionConfirmation(); })) << "and so is the confirmation";
    footer->deletionConfirmation()->reject();
    ASSERT_TRUE(waitUntil([&] { return !footer->isShowingDeletionConfirmation(); }));
    EXPECT_FALSE(f.model->cleaning());
    EXPECT_TRUE(QFileInfo::exists(f.other)) << "nothing was deleted";
}
