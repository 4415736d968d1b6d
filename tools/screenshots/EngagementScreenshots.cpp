#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerResponse>
#include <QMenu>
#include <QNetworkAccessManager>
#include <QTemporaryDir>
#include <QTimer>

#include "VersionChecking/VersionManager.h"
#include "core/QuillbayApp.h"
#include "core/views/ContentView.h"
#include "core/views/SymbolIcons.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/PurchaseService.h"
#include "engagement/views/ForceUpdateAlert.h"
#include "engagement/views/MainSidebarFooter.h"
#include "engagement/views/PurchaseView.h"
#include "foundation/Defaults.h"
#include "platform/TipStore.h"
#include "testsupport/TestEnvironment.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

namespace {

// A store with the three tips at fixed prices; a purchase always goes through.
class FixtureTipStore final : public TipStore
{
public:
    QList<TipProduct> products;

    void loadProducts(const QStringList&) override
    {
        QTimer::singleShot(0, this, [this] { emit productsLoaded(products); });
    }
    void purchase(const QString& id) override
    {
        QTimer::singleShot(0, this, [this, id] {
            emit purchaseFinished(id, PurchaseOutcome::succeeded, {TipTransaction {1, id, true, {}}});
        });
    }
    void finish(const TipTransaction&) override { }
};

QList<TipProduct> tipProducts()
{
    return {
        {QStringLiteral("tidewell.donation.0"), QStringLiteral("Coffee"), QStringLiteral("$0.99"), 0.99},
        {QStringLiteral("tidewell.donation.1"), QStringLiteral("Donut"), QStringLiteral("$2.99"), 2.99},
        {QStringLiteral("tidewell.donation.2"), QStringLiteral("Pizza"), QStringLiteral("$9.99"), 9.99},
    };
}

// A version manager that has heard the given answer from a loopback service.
struct AnsweredVersionManager
{
    QHttpServer server;
    QNetworkAccessManager network;
    std::unique_ptr<VersionManager> manager;

    AnsweredVersionManager(const QString& version, bool forceUpdate, bool updateAvailable)
    {
        const QByteArray body = QStringLiteral(R"({"update_url":"https://quillbay.app/download","force_update":%1,)"
                                               R"("update_available":%2})")
                                    .arg(forceUpdate ? QStringLiteral("true") : QStringLiteral("false"),
                                         updateAvailable ? QStringLiteral("true") : QStringLiteral("false"))
                                    .toUtf8();
        server.route(QStringLiteral("/api/app-version/check"),
                     [body] { return QHttpServerResponse("application/json", body); });
        const quint16 port = server.listen(QHostAddress::LocalHost, 0);
        VersionCheckConfiguration configuration;
        configuration.baseURL = QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port));
        configuration.appID = QStringLiteral("1");
        configuration.signatureSecret = QStringLiteral("screenshots");
        manager
            = std::make_unique<VersionManager>(VersionCheckClient(configuration, network), version, [](const QUrl&) {});
        manager->startCheck();
        test::waitUntil([this] { return manager->updateInfo().has_value(); }, 5000);
    }
};

void renderFooters(const QString& outDir, EngagementPromptStore& engagement)
{
    for (const auto& [available, name] :
         {std::pair {false, "engagement-sidebar-footer"}, std::pair {true, "engagement-sidebar-footer-update"}}) {
        AnsweredVersionManager updates(QStringLiteral("1.4.2"), false, available);
        MainSidebarFooter footer(*updates.manager, engagement, {}, &symbolIcon);
        footer.setFixedWidth(230);
        save(&footer, outDir, QLatin1String(name));
        if (available) {
            QMenu* menu = footer.moreMenu();
            menu->adjustSize();
            save(menu, outDir, QStringLiteral("engagement-sidebar-footer-more-menu"));
            menu->hide();
        }
    }
}

} // namespace

void renderEngagementScreenshots(const QString& outDir)
{
    QTemporaryDir home;
    SettingsDefaults defaults(home.filePath(QStringLiteral("defaults.ini")));
    EngagementPromptStore engagement(defaults, QStringLiteral("1.4.2"));

    // The tip window: with the three tips, after a tip, and where no store sells.
    {
        FixtureTipStore store;
        store.products = tipProducts();
        PurchaseService service(store, engagement);
        test::waitUntil([&] { return service.consumable().size() == 3; }, 2000);
        PurchaseView view(service, QStringLiteral("12.4 GB"), QStringLiteral("Quillbay"), &symbolIcon);
        save(&view, outDir, QStringLiteral("engagement-tip-window"));
        service.purchase(service.consumable().at(0));
        test::waitUntil([&] { return !view.toastMessage().isEmpty(); }, 2000);
        save(&view, outDir, QStringLiteral("engagement-tip-window-thanks"));
    }
    {
        const auto store = TipStore::createSystem();
        PurchaseService service(*store, engagement);
        PurchaseView view(service, QStringLiteral("Zero KB"), QStringLiteral("Quillbay"), &symbolIcon);
        test::waitUntil([] { return false; }, 50);
        save(&view, outDir, QStringLiteral("engagement-tip-window-no-store"));
    }

    renderFooters(outDir, engagement);

    {
        AnsweredVersionManager updates(QStringLiteral("1.4.2"), true, false);
        ForceUpdateAlert alert(*updates.manager, QStringLiteral("Quillbay"), [] {});
        save(&alert, outDir, QStringLiteral("engagement-forced-update-alert"));
    }

    // The whole window: the footer under the tool list.
    {
        QTemporaryDir appHome;
        QuillbayApp app(std::make_unique<SettingsDefaults>(appHome.filePath(QStringLiteral("defaults.ini"))));
        ContentView window(app);
        window.resize(1180, 760);
        save(&window, outDir, QStringLiteral("engagement-window-with-footer"));
    }
}

} // namespace quillbay::screenshots
