#include <QClipboard>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <cerrno>
#include <cstring>

#include "CatalogViewFixture.h"
#include "core/views/UnavailablePanel.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/Pickers.h"

using namespace quillbay;
using namespace quillbay::test;
using namespace Qt::StringLiterals;

namespace {

const HomebrewPackageRoute wget {HomebrewCatalogKind::formula, u"wget"_s};

// The visible section titles of the page, top to bottom.
QStringList sectionTitles(const HomebrewPackageDetailView& view)
{
    QStringList titles;
    for (QGroupBox* box : view.form()->findChildren<QGroupBox*>())
        if (!box->isHidden())
            titles << box->title();
    return titles;
}

bool hasLoaded(const HomebrewCatalogStore& store, const HomebrewPackageRoute& route)
{
    return store.detail(route).has_value() && !store.detailLoadingRoutes().contains(route);
}

QPushButton* linkTo(const HomebrewPackageDetailView& view, const QString& identifier)
{
    for (QPushButton* button : view.form()->findChildren<QPushButton*>(u"dependencyLinkPushButton"_s))
        if (button->text() == identifier)
            return button;
    return nullptr;
}

class DetailViewTest : public CatalogViewFixture
{
protected:
    void SetUp() override
    {
        CatalogViewFixture::SetUp();
        store->loadIfNeeded();
        ASSERT_TRUE(waitUntil([&] { return store->catalogGeneration() > 0 && !store->hasLoadTask(); }));
    }
};

// Folder panels are never opened by the package page.
class NoPickers final : public Pickers
{
public:
    void chooseFolder(const FolderRequest&, Answer answer) override { answer(std::nullopt); }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override { answer(std::nullopt); }
};

} // namespace

TEST_F(DetailViewTest, FollowingDependenciesPushesBackPopsAndCopyReadsCopiedForTwoSeconds)
{
    HomebrewPackageDetailView view(*store, workspace, wget);
    QSignalSpy closes(&view, &HomebrewPackageDetailView::closeRequested);
    view.resize(700, 900);
    view.show();
    ASSERT_TRUE(waitUntil([&] { return hasLoaded(*store, wget); }));
    EXPECT_EQ(view.title(), u"wget"_s);
    EXPECT_EQ(sectionTitles(view),
              (QStringList {u"Overview"_s, u"Install Command"_s, u"Installation Statistics"_s, u"Dependencies"_s}));

    auto* copy = view.findChild<QPushButton*>(u"copyInstallCommandPushButton"_s);
    ASSERT_NE(copy, nullptr);
    QApplication::clipboard()->setText(u"something else"_s);
    QElapsedTimer clock;
    clock.start();
    copy->click();
    EXPECT_EQ(QApplication::clipboard()->text(), u"brew install wget"_s);
    EXPECT_EQ(copy->text(), u"Copied"_s);
    ASSERT_TRUE(waitUntil([&] { return copy->text() == u"Copy Install Command"_s; }, 4000));
    EXPECT_GE(clock.elapsed(), 1900);

    QPushButton* link = linkTo(view, u"openssl@3"_s);
    ASSERT_NE(link, nullptr);
    link->click();
    const HomebrewPackageRoute openssl {HomebrewCatalogKind::formula, u"openssl@3"_s};
    EXPECT_EQ(view.depth(), 2);
    EXPECT_EQ(view.route(), openssl);
    ASSERT_TRUE(waitUntil([&] { return hasLoaded(*store, openssl) && view.title() == u"openssl@3"_s; }));
    // openssl@3 has no dependencies of its own.
    EXPECT_EQ(sectionTitles(view), (QStringList {u"Overview"_s, u"Install Command"_s, u"Installation Statistics"_s}));

    auto* back = view.findChild<QAbstractButton*>(u"backToolButton"_s);
    back->click();
    EXPECT_EQ(view.route(), wget);
    EXPECT_EQ(view.depth(), 1);
    EXPECT_NE(linkTo(view, u"libidn2"_s), nullptr);
    EXPECT_EQ(closes.count(), 0);
    back->click();
    EXPECT_EQ(closes.count(), 1);
}

TEST_F(DetailViewTest, TerminalLaunchFailuresShowTheAlert)
{
    struct Case
    {
        const char* name;
        std::optional<QString> terminalPath;
        std::optional<QString> launchFailure;
        std::optional<QString> alertText;
    };
    const Case cases[] = {
        {"not installed", std::nullopt, std::nullopt, QString::fromLocal8Bit(std::strerror(ENOENT))},
        {"fails to start", u"/Applications/Terminal.app"_s, u"Permission denied"_s, u"Permission denied"_s},
        {"starts", u"/Applications/Terminal.app"_s, std::nullopt, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        workspace.terminalPath = c.terminalPath;
        workspace.launchFailure = c.launchFailure;
        workspace.launched.clear();
        HomebrewPackageDetailView view(*store, workspace, wget);
        view.show();
        view.findChild<QAbstractButton*>(u"terminalToolButton"_s)->click();
        EXPECT_EQ(workspace.launched, c.terminalPath ? QStringList {*c.terminalPath} : QStringList {});
        auto* alert = view.findChild<QMessageBox*>(u"terminalLaunchErrorMessageBox"_s);
        EXPECT_EQ(view.isShowingTerminalLaunchError(), c.alertText.has_value());
        if (!c.alertText) {
            EXPECT_EQ(alert, nullptr);
            continue;
        }
        ASSERT_NE(alert, nullptr);
        EXPECT_EQ(view.terminalLaunchErrorMessage(), *c.alertText);
        EXPECT_EQ(alert->informativeText(), *c.alertText);
        EXPECT_EQ(alert->buttons().size(), 1);
        alert->buttons().first()->click();
        EXPECT_FALSE(view.isShowingTerminalLaunchError());
    }
}

TEST_F(CatalogViewFixture, PageWithoutCatalogFallsBackToTheIdentifierAndOffersTryAgain)
{
    // Nothing listens on port 1 and nothing is cached.
    auto offline = makeStore(u"http://127.0.0.1:1"_s);
    const HomebrewPackageRoute route {HomebrewCatalogKind::cask, u"some-app"_s};
    HomebrewPackageDetailView view(*offline, workspace, route);
    view.show();
    EXPECT_EQ(view.title(), u"some-app"_s);
    EXPECT_EQ(view.currentContent()->objectName(), u"detailLoadingView"_s);
    ASSERT_TRUE(waitUntil([&] { return offline->detailErrors().contains(route); }));
    ASSERT_TRUE(waitUntil([&] { return !offline->detailLoadingRoutes().contains(route); }));
    auto* unavailable = qobject_cast<UnavailablePanel*>(view.currentContent());
    ASSERT_NE(unavailable, nullptr);
    EXPECT_EQ(unavailable->description(), offline->detailErrors().value(route));
    EXPECT_FALSE(unavailable->description().isEmpty());

    unavailable->button()->click();
    EXPECT_TRUE(offline->detailLoadingRoutes().contains(route));
    EXPECT_EQ(view.currentContent()->objectName(), u"detailLoadingView"_s);
    ASSERT_TRUE(waitUntil([&] { return !offline->detailLoadingRoutes().contains(route); }));
    EXPECT_EQ(view.currentContent(), unavailable);
}

TEST_F(DetailViewTest, InstalledPackageSectionsStandAboveTheCatalogAndFailuresLeaveWithThePage)
{
    NoPickers pickers;
    HomebrewInstalledPackagesStore installed(*defaults, QLatin1String(HomebrewInstalledPackagesStore::rootBookmarkKey),
                                             std::make_unique<HomebrewInstallationBookmarkService>(),
                                             std::make_unique<HomebrewInstallationScanner>(),
                                             std::make_unique<HomebrewInstalledPackageProcessor>(), pickers, workspace,
                                             UserPaths::forHome(tree.path(u"home"_s)));
    HomebrewInstalledPackage package;
    package.kind = HomebrewCatalogKind::formula;
    package.identifier = u"wget"_s;
    package.installedVersion = u"1.21.4"_s;
    package.installationURL = tree.path(u"brew/Cellar/wget/1.21.4"_s);
    package.catalogSummary = store->summary(wget);
    ASSERT_TRUE(package.catalogSummary.has_value());

    auto view = std::make_unique<HomebrewPackageDetailView>(*store, workspace, wget, package, &installed);
    view->show();
    // Before the details arrive the local sections already stand, above "Catalog Details".
    EXPECT_EQ(sectionTitles(*view),
              (QStringList {u"Installed Locally"_s, u"Package Commands"_s, u"Catalog Details"_s}));
    ASSERT_TRUE(waitUntil([&] { return hasLoaded(*store, wget); }));
    EXPECT_EQ(sectionTitles(*view),
              (QStringList {u"Installed Locally"_s, u"Package Commands"_s, u"Overview"_s, u"Install Command"_s,
                            u"Installation Statistics"_s, u"Dependencies"_s}));
    EXPECT_EQ(view->findChild<QLabel*>(u"updateStatusLabel"_s)->text(), u"Possibly Outdated"_s);

    // "Show in Finder" without an authorized root fails in the page, and the failure goes
    // away with the page.
    view->findChild<QAbstractButton*>(u"showInFinderToolButton"_s)->click();
    auto* failed = view->findChild<QGroupBox*>(u"actionFailedGroupBox"_s);
    ASSERT_NE(failed, nullptr);
    EXPECT_FALSE(failed->isHidden());
    EXPECT_EQ(view->findChild<QLabel*>(u"actionFailedLabel"_s)->text(), u"Authorize the Homebrew root folder again."_s);
    EXPECT_EQ(sectionTitles(*view).first(), u"Action Failed"_s);
    view.reset();
    EXPECT_FALSE(installed.operationErrorMessage().has_value());
}
