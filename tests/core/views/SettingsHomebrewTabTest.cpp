#include <QLabel>
#include <QTabWidget>
#include <QTcpServer>

#include <gtest/gtest.h>

#include "CatalogServiceFixture.h"
#include "SettingsFixture.h"
#include "homebrew_catalog/HomebrewAPIClient.h"
#include "homebrew_catalog/HomebrewCacheService.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

using namespace quillbay;
using namespace quillbay::test;

namespace {

const QByteArray catalogKey("quillbay-development-catalog-signing-key-0123456789abcdef0123456");

const QList<CatalogServiceFixture::Formula> formulae {
    {QStringLiteral("wget"), QStringLiteral("Internet file retriever")},
    {QStringLiteral("curl"), QStringLiteral("Get a file from an HTTP server")},
};
const QList<CatalogServiceFixture::Cask> casks {
    {QStringLiteral("firefox"), QStringLiteral("Mozilla Firefox"), QStringLiteral("Web browser")},
};

// The application's stores, but a catalog that talks to the given address.
struct CatalogSettings
{
    explicit CatalogSettings(const QString& baseURL)
    {
        HomebrewAPIClient::Configuration configuration;
        configuration.baseURL = QUrl(baseURL);
        configuration.signingSecret = catalogKey;
        configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
        configuration.currentDate = [] { return QDateTime::currentDateTimeUtc(); };
        catalog = std::make_unique<HomebrewCatalogStore>(
            std::make_unique<HomebrewAPIClient>(
                configuration, std::make_unique<HomebrewCacheService>(f.tree.path(QStringLiteral("catalog-cache")))),
            HomebrewCatalogProcessor(), f.app->defaults());
        QuillbayApp& app = *f.app;
        const SettingsStores stores {app.defaults(),
                                     app.viewModel(),
                                     app.savedSpaceStore(),
                                     app.engagementPromptStore(),
                                     *catalog,
                                     app.homebrewInstalledPackagesStore(),
                                     app.homebrewCacheCleanupStore(),
                                     app.pickers(),
                                     app.workspace()};
        view = std::make_unique<SettingsView>(stores);
    }
    ~CatalogSettings() { view.reset(); }
    QString text(const QString& name) const { return view->findChild<QLabel*>(name)->text(); }
    auto* forceRefresh() const { return view->findChild<QPushButton*>(QStringLiteral("forceRefreshPushButton")); }
    bool idle() const { return catalog->hasLoaded() && !catalog->hasLoadTask() && !catalog->isRefreshing(); }

    SettingsFixture f;
    std::unique_ptr<HomebrewCatalogStore> catalog;
    std::unique_ptr<SettingsView> view;
};

QString unusedLoopbackAddress()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort());
}

} // namespace

// What the validators and snapshots do is the store's own test; this is what the tab shows.
TEST(SettingsHomebrewTabTest, ForceRefreshShowsItsProgressTheNewSnapshotAndAFailure)
{
    CatalogServiceFixture service;
    service.publish(QStringLiteral("A"), formulae, casks);
    for (const bool online : {true, false}) {
        SCOPED_TRACE(online ? "online" : "offline");
        CatalogSettings s(online ? service.baseURL() : unusedLoopbackAddress());
        s.view->tabs()->setCurrentIndex(2);
        // Showing the window brings the catalog up, as its own screen would.
        s.view->show();
        ASSERT_TRUE(waitUntil([&] { return s.idle(); }, 15000));

        if (online)
            service.publish(QStringLiteral("B"), formulae.mid(0, 1), casks);
        s.forceRefresh()->click();
        EXPECT_FALSE(s.forceRefresh()->isEnabled()) << "one refresh at a time";
        ASSERT_TRUE(waitUntil([&] { return s.idle() && !s.catalog->isFiltering(); }, 15000));
        EXPECT_TRUE(s.forceRefresh()->isEnabled());
        EXPECT_NE(s.text(QStringLiteral("lastCheckedLabel")), QStringLiteral("Never"));
        EXPECT_EQ(s.text(QStringLiteral("lastSuccessfulUpdateLabel")) != QStringLiteral("Never"), online);
        auto* error = s.view->findChild<QLabel*>(QStringLiteral("catalogErrorLabel"));
        EXPECT_EQ(error->isVisibleTo(s.view.get()), !online);
        if (online) {
            EXPECT_EQ(s.catalog->allFormulae().size(), 1) << "the new snapshot is on show";
        } else {
            EXPECT_EQ(error->text(), s.catalog->refreshErrorMessage().value_or(QStringLiteral("<none>")));
            EXPECT_FALSE(error->text().isEmpty());
        }
    }
}

// Which folders qualify and how the root is restored is the store's own test; this is the tab's wiring.
TEST(SettingsHomebrewTabTest, HomebrewRootChooseShowsItAndRemoveForgetsIt)
{
    SettingsFixture f;
    const QString root = f.tree.mkdir(QStringLiteral("brew"));
    f.tree.writeFile(QStringLiteral("brew/bin/brew"), "#!/bin/sh\n");
    f.tree.mkdir(QStringLiteral("brew/Cellar/wget/1.24.5"));
    HomebrewInstalledPackagesStore& store = f.app->homebrewInstalledPackagesStore();
    const QString key = QStringLiteral("homebrewInstallation.rootBookmark");
    auto rootText = [&] { return f.find<QLabel>(QStringLiteral("homebrewRootLabel"))->text(); };
    f.view->show();
    f.view->tabs()->setCurrentIndex(2);
    ASSERT_TRUE(waitUntil([&] { return !store.isLoadingAuthorization(); }));
    f.pickers->answerWith(root);
    f.click(QStringLiteral("chooseHomebrewRootPushButton"));
    ASSERT_TRUE(waitUntil([&] { return store.isAuthorized() && !store.isChoosingRoot() && !store.isScanning(); }));
    EXPECT_EQ(rootText(), root);
    ASSERT_TRUE(waitUntil([&] { return !f.app->defaults().dataValue(key).isEmpty(); }));
    f.click(QStringLiteral("removeHomebrewRootPushButton"));
    EXPECT_EQ(rootText(), QStringLiteral("Not Selected"));
    ASSERT_TRUE(waitUntil([&] { return !f.app->defaults().contains(key); }));
}
