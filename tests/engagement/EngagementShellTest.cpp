#include <QAbstractButton>
#include <QAction>
#include <QGuiApplication>
#include <QHostAddress>
#include <QHttpServer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QToolButton>

#include <gtest/gtest.h>

#include "VersionChecking/VersionManager.h"
#include "core/QuillbayApp.h"
#include "core/views/AppShell.h"
#include "core/views/ContentView.h"
#include "core/views/EngagementSurfaces.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/views/ForceUpdateAlert.h"
#include "engagement/views/MainSidebarFooter.h"
#include "engagement/views/PurchaseView.h"
#include "foundation/BuildConfig.h"
#include "foundation/Defaults.h"
#include "foundation/Secrets.h"
#include "testsupport/TestEnvironment.h"
#include "update/UpdateEndpoint.h"

using namespace quillbay;
using namespace Qt::StringLiterals;

namespace {

struct Shell
{
    QTemporaryDir dir;
    QuillbayApp app {std::make_unique<SettingsDefaults>(dir.filePath(u"defaults.ini"_s))};
    AppShell shell {app};
    int quits = 0;

    Shell()
    {
        app.setQuitAction([this] { ++quits; });
    }
};

} // namespace

TEST(EngagementShellTest, TheFooterOpensTheTipSheetOnce)
{
    Shell s;
    s.shell.openWindow();
    ContentView* window = s.shell.window();
    auto* footer = window->findChild<MainSidebarFooter*>();
    ASSERT_NE(footer, nullptr);
    ASSERT_TRUE(test::waitUntil([&] { return footer->isVisible(); }, 2000));

    footer->findChild<QToolButton*>(u"leaveTipHoverButton"_s)->click();
    ASSERT_TRUE(test::waitUntil([&] { return window->engagement()->purchaseView() != nullptr; }, 2000));
    PurchaseView* sheet = window->engagement()->purchaseView();
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_TRUE(s.app.engagementPromptStore().isPresentingPurchaseView());

    // Asking again while it is open does not stack a second window.
    s.shell.findChild<QAction*>(u"leaveTipAction"_s)->trigger();
    EXPECT_EQ(window->findChildren<PurchaseView*>().size(), 1);

    sheet->findChild<QPushButton*>(u"notNowPushButton"_s)->click();
    EXPECT_FALSE(s.app.engagementPromptStore().isPresentingPurchaseView());
    ASSERT_TRUE(test::waitUntil([&] { return window->engagement()->purchaseView() == nullptr; }, 2000));

    // The menu command opens it again.
    s.shell.findChild<QAction*>(u"leaveTipAction"_s)->trigger();
    EXPECT_TRUE(s.app.engagementPromptStore().isPresentingPurchaseView());
    ASSERT_NE(window->engagement()->purchaseView(), nullptr);
}

TEST(EngagementShellTest, ARequiredUpdateFoundAtFirstAppearanceEndsTheRunBehindItsAlert)
{
    // The update service, on the address and with the secret this build is configured for.
    const QUrl serviceURL(QStringLiteral(QUILLBAY_UPDATE_URL));
    if (serviceURL.host() != u"127.0.0.1"_s)
        GTEST_SKIP() << "this build's update service is not on loopback";
    QHttpServer server;
    services::UpdateEndpointConfig config;
    config.signatureSecret = QString::fromUtf8(secrets::updateSecret.unmask());
    config.appID = QStringLiteral(QUILLBAY_APP_ID);
    config.latestVersion = u"999.0"_s;
    config.updateURL = u"https://quillbay.example/download"_s;
    config.versionsThatMustUpdate = {QStringLiteral(QUILLBAY_VERSION)};
    services::registerUpdateEndpoint(server, config);
    if (server.listen(QHostAddress::LocalHost, static_cast<quint16>(serviceURL.port())) == 0)
        GTEST_SKIP() << "port " << serviceURL.port() << " is taken (a running service); the endpoint cannot stand in";

    Shell s;
    EXPECT_FALSE(s.app.didCheckVersion());
    s.shell.openWindow();
    ContentView* window = s.shell.window();
    ASSERT_TRUE(test::waitUntil([&] { return window->engagement()->forceUpdateAlert() != nullptr; }, 10000));
    EXPECT_TRUE(s.app.isForceUpdateAlertPresented());
    ForceUpdateAlert* alert = window->engagement()->forceUpdateAlert();
    EXPECT_TRUE(alert->isVisible());
    EXPECT_EQ(alert->informativeText(),
              u"This update is required to continue using %1.\n\nCurrent Version: %2"_s.arg(
                  QGuiApplication::applicationDisplayName(), QStringLiteral(QUILLBAY_VERSION)));
    // The footer offers no optional update while a required one is known.
    EXPECT_TRUE(window->findChild<QToolButton*>(u"updateHoverButton"_s)->isHidden());

    // A second appearance runs no second check.
    window->hide();
    s.shell.openWindow();
    EXPECT_TRUE(s.app.didCheckVersion());

    alert->quitButton()->click();
    EXPECT_EQ(s.quits, 1);
}
