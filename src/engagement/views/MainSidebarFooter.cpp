#include "engagement/views/MainSidebarFooter.h"

#include <QFrame>
#include <QMenu>
#include <QUrlQuery>
#include <QVBoxLayout>

#include "VersionChecking/VersionManager.h"
#include "engagement/EngagementPromptStore.h"

namespace quillbay {

MainSidebarFooter::MainSidebarFooter(VersionManager& versionManager,
                                     EngagementPromptStore& engagementPromptStore,
                                     Actions actions,
                                     const SymbolIconProvider& icons,
                                     QWidget* parent)
    : QWidget(parent)
    , m_versionManager(versionManager)
    , m_engagementPromptStore(engagementPromptStore)
    , m_actions(std::move(actions))
{
    setObjectName(QStringLiteral("mainSidebarFooter"));
    // Part of the sidebar: the same background as the tool list above it.
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    const auto icon = [&icons](const char* symbol) { return icons ? icons(QLatin1String(symbol)) : QIcon(); };
    const auto call = [](const std::function<void()>& f) {
        if (f)
            f();
    };

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->setSpacing(1);
    auto* rule = new QFrame(this);
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Plain);
    rule->setForegroundRole(QPalette::Mid);
    layout->addWidget(rule);

    auto* settings = new SidebarHoverButton(QStringLiteral("Settings"), icon("gearshape"), this);
    settings->setObjectName(QStringLiteral("settingsHoverButton"));
    connect(settings, &QToolButton::clicked, this, [this, call] { call(m_actions.openSettings); });
    layout->addWidget(settings);

    m_updateButton = new SidebarHoverButton(QStringLiteral("Update"), icon("arrow.down.circle.fill"), this);
    m_updateButton->setObjectName(QStringLiteral("updateHoverButton"));
    connect(m_updateButton, &QToolButton::clicked, this, &MainSidebarFooter::showUpdate);
    layout->addWidget(m_updateButton);

    auto* tip = new SidebarHoverButton(QStringLiteral("Leave a Tip"), icon("dollarsign.circle"), this);
    tip->setObjectName(QStringLiteral("leaveTipHoverButton"));
    connect(tip, &QToolButton::clicked, this, &MainSidebarFooter::showTip);
    layout->addWidget(tip);

    auto* more = new SidebarHoverButton(QStringLiteral("More"), icon("ellipsis.circle"), this);
    more->setObjectName(QStringLiteral("moreHoverButton"));
    m_moreMenu = new QMenu(more);
    m_moreMenu->setObjectName(QStringLiteral("moreMenu"));
    const auto open = [this](const QUrl& url) {
        if (m_actions.openUrl && url.isValid())
            m_actions.openUrl(url);
    };
    m_moreMenu->addAction(icon("hand.thumbsup"), QStringLiteral("Rate Me"), this,
                          [this, open] { open(writeReviewURL(m_actions.reviewPage)); });
    m_moreMenu->addAction(icon("envelope"), QStringLiteral("Help && Support"), this,
                          [this, call] { call(m_actions.sendFeedbackMail); });
    m_moreMenu->addAction(icon("list.bullet.rectangle.portrait"), QStringLiteral("Privacy Policy"), this,
                          [this, open] { open(m_actions.privacyPolicy); });
    m_moreMenu->addAction(icon("list.bullet.rectangle.portrait"), QStringLiteral("Terms of Use"), this,
                          [this, open] { open(m_actions.termsOfUse); });
    m_moreMenu->addAction(icon("power"), QStringLiteral("Quit"), this, [this, call] { call(m_actions.quit); });
    more->setMenu(m_moreMenu);
    more->setPopupMode(QToolButton::InstantPopup);
    layout->addWidget(more);

    connect(&m_versionManager, &VersionManager::updateInfoChanged, this, &MainSidebarFooter::refreshUpdate);
    refreshUpdate();
}

bool MainSidebarFooter::isUpdateAvailable() const
{
    return m_versionManager.isUpdateAvailable();
}

QUrl MainSidebarFooter::writeReviewURL(const QUrl& reviewPage)
{
    QUrl url = reviewPage;
    QUrlQuery query(url);
    query.removeAllQueryItems(QStringLiteral("action"));
    query.addQueryItem(QStringLiteral("action"), QStringLiteral("write-review"));
    url.setQuery(query);
    return url;
}

void MainSidebarFooter::showUpdate()
{
    m_versionManager.openUpdateURL();
}

void MainSidebarFooter::showTip()
{
    m_engagementPromptStore.setPresentingPurchaseView(true);
}

void MainSidebarFooter::refreshUpdate()
{
    // isHidden, not isVisible: the footer itself may not be shown yet.
    m_updateButton->setHidden(!isUpdateAvailable());
}

} // namespace quillbay
