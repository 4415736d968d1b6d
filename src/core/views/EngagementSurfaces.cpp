#include "core/views/EngagementSurfaces.h"

#include <QGuiApplication>
#include <QWidget>

#include "VersionChecking/VersionManager.h"
#include "core/QuillbayApp.h"
#include "core/state/SavedSpaceStore.h"
#include "core/views/SymbolIcons.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/FeedbackMail.h"
#include "engagement/views/ForceUpdateAlert.h"
#include "engagement/views/MainSidebarFooter.h"
#include "engagement/views/PurchaseView.h"
#include "foundation/BuildConfig.h"
#include "foundation/ByteCount.h"
#include "platform/SystemVersion.h"
#include "platform/Workspace.h"

namespace quillbay {

namespace {

// The application's web pages live beside its support page.
QUrl sitePage(const QString& path)
{
    QUrl url(QStringLiteral(QUILLBAY_SUPPORT_URL));
    url.setPath(path);
    url.setQuery(QString());
    return url;
}

} // namespace

EngagementSurfaces::EngagementSurfaces(QuillbayApp& app, QWidget* window)
    : QObject(window)
    , m_app(app)
    , m_window(window)
{
    MainSidebarFooter::Actions actions;
    actions.openSettings = [this] { emit settingsRequested(); };
    actions.openUrl = [&app](const QUrl& url) { app.workspace().openUrl(url); };
    actions.sendFeedbackMail = [&app] {
        FeedbackMail {QStringLiteral(QUILLBAY_SUPPORT_EMAIL), QGuiApplication::applicationDisplayName(),
                      QStringLiteral(QUILLBAY_VERSION), operatingSystemVersion()}
            .send(app.workspace());
    };
    actions.quit = [&app] { app.quitApplication(); };
    actions.reviewPage = QUrl(QStringLiteral("https://apps.apple.com/app/id") + QStringLiteral(QUILLBAY_APP_ID));
    actions.privacyPolicy = sitePage(QStringLiteral("/privacy"));
    actions.termsOfUse = sitePage(QStringLiteral("/terms"));
    m_footer = new MainSidebarFooter(app.versionManager(), app.engagementPromptStore(), std::move(actions), &symbolIcon,
                                     window);

    connect(&app.engagementPromptStore(), &EngagementPromptStore::isPresentingPurchaseViewChanged, this,
            &EngagementSurfaces::presentPurchaseView);
    connect(&app, &QuillbayApp::forceUpdateAlertPresentedChanged, this, &EngagementSurfaces::presentForceUpdateAlert);
}

PurchaseView* EngagementSurfaces::purchaseView() const
{
    return m_purchaseView;
}

ForceUpdateAlert* EngagementSurfaces::forceUpdateAlert() const
{
    return m_forceUpdateAlert;
}

void EngagementSurfaces::presentPurchaseView(bool presenting)
{
    if (!presenting) {
        if (m_purchaseView)
            m_purchaseView->close();
        return;
    }
    if (m_purchaseView)
        return;
    m_purchaseView = new PurchaseView(m_app.purchaseService(), formatByteCount(m_app.savedSpaceStore().totalBytes()),
                                      QGuiApplication::applicationDisplayName(), &symbolIcon, m_window);
    m_purchaseView->setAttribute(Qt::WA_DeleteOnClose);
    m_purchaseView->setWindowModality(Qt::WindowModal);
    connect(m_purchaseView, &QDialog::finished, this,
            [this] { m_app.engagementPromptStore().setPresentingPurchaseView(false); });
    m_purchaseView->open();
}

void EngagementSurfaces::presentForceUpdateAlert(bool presented)
{
    if (!presented || m_forceUpdateAlert)
        return;
    m_forceUpdateAlert = new ForceUpdateAlert(
        m_app.versionManager(), QGuiApplication::applicationDisplayName(), [this] { m_app.quitApplication(); },
        m_window);
    m_forceUpdateAlert->setAttribute(Qt::WA_DeleteOnClose);
    m_forceUpdateAlert->open();
}

} // namespace quillbay
