#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "InstalledScreenFixture.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_installed/views/HomebrewInstalledPackageTable.h"
#include "homebrew_installed/views/HomebrewInstalledPackageTableModel.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesContent.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesView.h"
#include "homebrew_installed/views/HomebrewInstalledSettingsSection.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;
using State = HomebrewInstalledContentState;

namespace {

class HomebrewInstalledPackagesViewTest : public ::testing::Test, protected InstalledScreenFixture
{
protected:
    void showView()
    {
        view = std::make_unique<HomebrewInstalledPackagesView>(*installed, *catalog);
        view->resize(900, 600);
        // Every content state the page passes through, in order, without repeats.
        QObject::connect(installed.get(), &HomebrewInstalledPackagesStore::stateChanged, view.get(), [this] {
            if (seen.isEmpty() || seen.last() != state())
                seen.append(state());
        });
        view->show();
    }

    void authorizeThroughPanel()
    {
        pickers.answers.push_back(root());
        view->findChild<QPushButton*>(u"chooseFolderPushButton"_s)->click();
        ASSERT_TRUE(waitUntil([&] { return installed->hasScannedThisLaunch() && installedIdle(); }));
    }

    // The usual machine, launched, shown and authorized.
    void showAuthorizedUsualPackages()
    {
        publishCatalog();
        installUsualPackages();
        launch();
        showView();
        ASSERT_TRUE(waitUntil([&] { return installed->hasLoadedAuthorization(); }));
        EXPECT_EQ(state(), State::authorizationRequired);
        authorizeThroughPanel();
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

    State state() const { return view->content()->state(); }
    QString panelTitle() const
    {
        return view->content()->currentWidget()->findChild<QLabel*>(u"unavailableTitleLabel"_s)->text();
    }
    HomebrewInstalledPackageTableModel& model() const { return *view->content()->table()->packageModel(); }
    // Every cell of every row as the table shows it, with the name's subtitle after a "/".
    QList<QStringList> shownRows() const
    {
        QList<QStringList> rows;
        for (int row = 0; row < model().rowCount(); ++row) {
            const QModelIndex name = model().index(row, 0);
            rows.append({name.data().toString() + u'/'
                         + name.data(HomebrewInstalledPackageTableModel::subtitleRole).toString()});
            for (int column = 1; column < HomebrewInstalledPackageTableModel::columnCount_; ++column)
                rows.last().append(model().index(row, column).data().toString());
        }
        return rows;
    }

    std::unique_ptr<HomebrewInstalledPackagesView> view;
    QList<State> seen;
};

} // namespace

TEST_F(HomebrewInstalledPackagesViewTest, AFirstVisitSearchesAFailedScanRetriesAndRemovalForgetsTheRoot)
{
    ASSERT_NO_FATAL_FAILURE(showAuthorizedUsualPackages());
    EXPECT_EQ(pickers.requests.value(0).message, u"Choose the Homebrew root folder that contains bin/brew."_s);
    // A folder being authorized is no root yet: its scan runs behind the authorization page.
    EXPECT_FALSE(seen.contains(State::scanning));
    EXPECT_EQ(seen.last(), State::table);

    // The catalog comes up by itself when the page appears, and the rows join it without
    // a rescan.
    ASSERT_TRUE(waitUntil([&] { return catalogIdle() && installedIdle() && !catalog->summariesByRoute().isEmpty(); }));
    ASSERT_TRUE(waitUntil([&] { return installed->casks().size() == 1 && installed->casks()[0].catalogSummary; }));
    EXPECT_EQ(shownRows(),
              (QList<QStringList> {{u"Mozilla Firefox/firefox"_s, u"128.0"_s, u"129.0"_s, u"Possibly Outdated"_s}}));

    QTest::mouseClick(view->findChild<QToolButton*>(u"formulaToolButton"_s), Qt::LeftButton);
    EXPECT_EQ(installed->selectedKind(), HomebrewCatalogKind::formula);
    ASSERT_TRUE(waitUntil([&] { return model().rowCount() == 3 && !model().index(0, 2).data().toString().isEmpty(); }));
    // Unknown to the catalog: a dash, no subtitle, "Status Unknown"; a revision counts as a
    // different version.
    EXPECT_EQ(shownRows(),
              (QList<QStringList> {
                  {u"curl/"_s, u"8.5.0"_s, u"8.5.0_1"_s, u"Possibly Outdated"_s},
                  {u"localtool/"_s, u"0.1"_s, u"—"_s, u"Status Unknown"_s},
                  {u"wget/"_s, u"1.25.0"_s, u"1.25.0"_s, u"Up to Date"_s},
              }));

    auto* search = view->findChild<QLineEdit*>(u"searchLineEdit"_s);
    search->setText(u"0.1"_s);
    // At once, before the typing pause ends.
    EXPECT_EQ(state(), State::filtering);
    EXPECT_EQ(view->content()->currentWidget()->objectName(), u"filteringPanel"_s);
    ASSERT_TRUE(waitUntil([&] { return !installed->isFiltering(); }));
    EXPECT_EQ(state(), State::table);
    EXPECT_EQ(shownRows(), (QList<QStringList> {{u"localtool/"_s, u"0.1"_s, u"—"_s, u"Status Unknown"_s}}));
    // Switching the kind under a live search shows the other filtered list at once; no casks
    // match though there are casks: "not found", not "no casks".
    QTest::mouseClick(view->findChild<QToolButton*>(u"caskToolButton"_s), Qt::LeftButton);
    EXPECT_NE(state(), State::filtering);
    ASSERT_TRUE(waitUntil([&] { return !installed->isFiltering(); }));
    EXPECT_EQ(state(), State::noSearchResults);
    EXPECT_EQ(panelTitle(), u"No Installed Packages Found"_s);

    // Coming back to the screen does not scan again; only a rescan sees new folders.
    install(u"Cellar/jq/1.7.1"_s);
    QSignalSpy packages(installed.get(), &HomebrewInstalledPackagesStore::packagesChanged);
    view->hide();
    view->show();
    EXPECT_FALSE(packages.wait(300));
    EXPECT_EQ(installed->rawPackages().size(), 4);

    // The next launch: bin/brew is gone, the bookmark still resolves.
    view.reset();
    ASSERT_TRUE(QFile::remove(root() + u"/bin/brew"_s));
    launch();
    installed->setSelectedKind(HomebrewCatalogKind::cask);
    showView();
    ASSERT_TRUE(waitUntil([&] { return installed->hasLoadedAuthorization() && installedIdle(); }));
    // The restored root's first scan shows the scanning page, then the failure.
    EXPECT_EQ(seen.mid(seen.indexOf(State::scanning)), (QList<State> {State::scanning, State::failed}));
    EXPECT_EQ(state(), State::failed);
    EXPECT_EQ(panelTitle(), u"Failed to load data"_s);
    EXPECT_TRUE(defaults->contains(installed->bookmarkKey()));

    tree().writeFile(u"brew/bin/brew"_s, "#!/bin/sh\n");
    view->findChild<QPushButton*>(u"retryPushButton"_s)->click();
    ASSERT_TRUE(waitUntil([&] { return installedIdle() && state() == State::table && model().rowCount() == 1; }));

    // Now a rescan fails: the table stays, with the error line above it.
    ASSERT_TRUE(QFile::remove(root() + u"/bin/brew"_s));
    QTest::mouseClick(view->findChild<QToolButton*>(u"rescanToolButton"_s), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([&] { return installedIdle() && installed->errorMessage().has_value(); }));
    EXPECT_EQ(state(), State::table);
    EXPECT_EQ(model().rowCount(), 1);
    EXPECT_TRUE(view->findChild<QWidget*>(u"errorLine"_s)->isVisible());
    EXPECT_EQ(view->findChild<QLabel*>(u"errorLineLabel"_s)->text(), installed->errorMessage().value_or(QString()));

    // Removing the authorization under a live search forgets the root and touches no file.
    search = view->findChild<QLineEdit*>(u"searchLineEdit"_s);
    search->setText(u"fire"_s);
    ASSERT_TRUE(waitUntil([&] { return installedIdle() && model().rowCount() == 1; }));
    HomebrewInstalledSettingsSection settings(*installed);
    settings.findChild<QPushButton*>(u"removeAuthorizationPushButton"_s)->click();
    EXPECT_EQ(state(), State::authorizationRequired);
    EXPECT_EQ(model().rowCount(), 0);
    EXPECT_TRUE(search->text().isEmpty());
    EXPECT_FALSE(defaults->contains(installed->bookmarkKey()));
    EXPECT_TRUE(QFileInfo::exists(root() + u"/Caskroom/firefox/128.0"_s));
    EXPECT_TRUE(QFileInfo::exists(root() + u"/Cellar/wget/1.25.0"_s));
    // Appearing again restores nothing in this launch.
    view->hide();
    view->show();
    ASSERT_TRUE(waitUntil([&] { return installedIdle(); }));
    EXPECT_EQ(state(), State::authorizationRequired);
}

TEST_F(HomebrewInstalledPackagesViewTest, ARowOpensItsPageWhichRevealsOnlyInsideTheAuthorizedRoot)
{
    install(u"Caskroom/it's-an-app/2.0"_s); // a token that needs quoting
    ASSERT_NO_FATAL_FAILURE(showAuthorizedUsualPackages());
    ASSERT_TRUE(waitUntil([&] { return catalogIdle() && installed->casks().value(1).catalogSummary; }));
    QSignalSpy requested(view.get(), &HomebrewInstalledPackagesView::packageRequested);
    ASSERT_NE(openCaskRow(1), nullptr);
    ASSERT_EQ(requested.size(), 1);
    EXPECT_EQ(requested[0][0].value<HomebrewPackageRoute>(),
              (HomebrewPackageRoute {HomebrewCatalogKind::cask, u"firefox"_s}));
    EXPECT_EQ(view->navigationDepth(), 1);
    EXPECT_TRUE(view->content()->table()->selectionModel()->selectedRows().isEmpty());
    EXPECT_EQ(view->findChild<QLabel*>(u"pageTitleLabel"_s)->text(), u"Mozilla Firefox"_s);

    EXPECT_EQ(text("installationPathLabel"), root() + u"/Caskroom/firefox/128.0"_s);
    EXPECT_EQ(text("upgradeCommandLabel"), u"brew upgrade --cask firefox"_s);
    view->currentPackagePage()->findChild<QPushButton*>(u"copyUpgradeCommandPushButton"_s)->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"brew upgrade --cask firefox"_s);

    view->goBack();
    ASSERT_NE(openCaskRow(1), nullptr);
    EXPECT_EQ(requested.size(), 2);

    // A token with an apostrophe is quoted for the shell.
    view->goBack();
    ASSERT_NE(openCaskRow(0), nullptr);
    EXPECT_EQ(text("uninstallCommandLabel"), u"brew uninstall --cask 'it'\"'\"'s-an-app'"_s);

    // Show in Finder on a page: only inside the authorized root.
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
    view->goBack();
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
