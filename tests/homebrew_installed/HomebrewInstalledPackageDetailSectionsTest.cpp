#include <QClipboard>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "InstalledScreenFixture.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_installed/views/HomebrewInstalledPackageTable.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesContent.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesView.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

class HomebrewInstalledPackageDetailSectionsTest : public ::testing::Test, protected InstalledScreenFixture
{
protected:
    void SetUp() override
    {
        publishCatalog();
        installUsualPackages();
        install(u"Caskroom/it's-an-app/2.0"_s);
        launch();
        view = std::make_unique<HomebrewInstalledPackagesView>(*installed, *catalog);
        view->resize(900, 640);
        view->show();
        ASSERT_TRUE(waitUntil([&] { return installed->hasLoadedAuthorization(); }));
        pickers.answers.push_back(root());
        installed->chooseRoot();
        ASSERT_TRUE(waitUntil([&] {
            return installedIdle() && catalogIdle() && installed->casks().size() == 2
                && installed->casks()[1].catalogSummary;
        }));
    }

    // Opens a row of the cask table the way a user does: by selecting it.
    HomebrewInstalledPackageDetailSections* openCaskRow(int row)
    {
        HomebrewInstalledPackageTable* table = view->content()->table();
        const QRect cell = table->visualRect(table->model()->index(row, 0));
        QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, cell.center());
        return view->findChild<HomebrewInstalledPackageDetailSections*>();
    }

    QString text(const char* objectName) const
    {
        return view->currentPackagePage()->findChild<QLabel*>(QString::fromLatin1(objectName))->text();
    }
    QPushButton* button(const char* objectName) const
    {
        return view->currentPackagePage()->findChild<QPushButton*>(QString::fromLatin1(objectName));
    }

    std::unique_ptr<HomebrewInstalledPackagesView> view;
};

} // namespace

TEST_F(HomebrewInstalledPackageDetailSectionsTest, SelectingARowOpensItsPageAndTheRowOpensAgainAfterGoingBack)
{
    QSignalSpy requested(view.get(), &HomebrewInstalledPackagesView::packageRequested);
    HomebrewInstalledPackageDetailSections* sections = openCaskRow(1);
    ASSERT_NE(sections, nullptr);
    ASSERT_EQ(requested.size(), 1);
    EXPECT_EQ(requested[0][0].value<HomebrewPackageRoute>(),
              (HomebrewPackageRoute {HomebrewCatalogKind::cask, u"firefox"_s}));
    EXPECT_EQ(view->navigationDepth(), 1);
    EXPECT_TRUE(view->content()->table()->selectionModel()->selectedRows().isEmpty());
    EXPECT_EQ(view->findChild<QLabel*>(u"pageTitleLabel"_s)->text(), u"Mozilla Firefox"_s);

    EXPECT_EQ(text("catalogVersionLabel"), u"129.0"_s);
    EXPECT_EQ(text("updateStatusLabel"), u"Possibly Outdated"_s);
    EXPECT_EQ(text("installationPathLabel"), root() + u"/Caskroom/firefox/128.0"_s);
    EXPECT_EQ(text("upgradeCommandLabel"), u"brew upgrade --cask firefox"_s);
    button("copyUpgradeCommandPushButton")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"brew upgrade --cask firefox"_s);

    view->goBack();
    EXPECT_EQ(view->navigationDepth(), 0);
    EXPECT_EQ(view->findChild<QLabel*>(u"pageTitleLabel"_s)->text(), u"Installed"_s);
    ASSERT_NE(openCaskRow(1), nullptr);
    EXPECT_EQ(requested.size(), 2);

    // A package unknown to the catalog, with an apostrophe in its token.
    view->goBack();
    ASSERT_NE(openCaskRow(0), nullptr);
    EXPECT_EQ(text("catalogVersionLabel"), u"—"_s);
    EXPECT_EQ(text("updateStatusLabel"), u"Status Unknown"_s);
    EXPECT_EQ(text("uninstallCommandLabel"), u"brew uninstall --cask 'it'\"'\"'s-an-app'"_s);
}

TEST_F(HomebrewInstalledPackageDetailSectionsTest, ShowInFinderRevealsOnlyInsideTheAuthorizedRoot)
{
    struct Case
    {
        const char* name;
        std::function<void(HomebrewInstalledPackage&)> prepare;
        std::optional<QString> failure;
    };
    const Case cases[] = {
        {"inside the root", [](HomebrewInstalledPackage&) {}, std::nullopt},
        {"a row pointing out through ..",
         [this](HomebrewInstalledPackage& package) { package.installationURL = root() + u"/Caskroom/../../home"_s; },
         u"The installation folder is outside the authorized Homebrew root."_s},
        {"a link inside the root pointing out",
         [this](HomebrewInstalledPackage& package) {
             tree().mkdir(u"away/1.0"_s);
             tree().symlink(u"brew/Caskroom/escape"_s, u"../../away"_s);
             package.installationURL = root() + u"/Caskroom/escape/1.0"_s;
         },
         u"The installation folder is outside the authorized Homebrew root."_s},
        {"authorization removed in settings", [this](HomebrewInstalledPackage&) { installed->removeAuthorization(); },
         u"Authorize the Homebrew root folder again."_s},
    };
    const HomebrewInstalledPackage firefox = installed->casks()[1];
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        workspace.revealed.clear();
        HomebrewInstalledPackage package = firefox;
        c.prepare(package);
        view->openPackage(package);
        view->currentPackagePage()->findChild<QToolButton*>(u"showInFinderToolButton"_s)->click();
        auto* failed = view->currentPackagePage()->findChild<QGroupBox*>(u"actionFailedGroupBox"_s);
        if (c.failure) {
            ASSERT_TRUE(waitUntil([&] { return failed->isVisible(); }));
            EXPECT_EQ(text("actionFailedLabel"), *c.failure);
            EXPECT_TRUE(workspace.revealed.isEmpty());
        } else {
            ASSERT_TRUE(waitUntil([&] { return !workspace.revealed.isEmpty(); }));
            EXPECT_EQ(workspace.revealed, (QList<QStringList> {{package.installationURL}}));
            EXPECT_FALSE(failed->isVisible());
        }
        // Leaving the page takes the failure with it.
        view->goBack();
        EXPECT_FALSE(installed->operationErrorMessage().has_value());
    }
}
