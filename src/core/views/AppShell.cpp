#include "core/views/AppShell.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSystemTrayIcon>

#include "core/QuillbayApp.h"
#include "core/views/ContentView.h"
#include "core/views/EngagementSurfaces.h"
#include "core/views/SettingsView.h"
#include "engagement/EngagementPromptStore.h"
#include "foundation/BuildConfig.h"
#include "platform/Workspace.h"

namespace quillbay {

AppShell::AppShell(QuillbayApp& app, QObject* parent)
    : QObject(parent)
    , m_app(app)
    , m_window(new ContentView(app))
    , m_openWindow(new QAction(QStringLiteral("Open Window"), this))
    , m_quit(new QAction(QStringLiteral("Quit"), this))
    , m_openSettings(new QAction(QStringLiteral("Settings..."), this))
    , m_leaveTip(new QAction(QStringLiteral("Leave a Tip"), this))
    , m_helpAndSupport(new QAction(QStringLiteral("Help && Support"), this))
{
    // The process outlives its window, as a document-less desktop tool does.
    QApplication::setQuitOnLastWindowClosed(false);
    m_openWindow->setObjectName(QStringLiteral("openWindowAction"));
    m_openWindow->setShortcut(QKeySequence::New);
    m_quit->setObjectName(QStringLiteral("quitAction"));
    m_quit->setShortcut(QKeySequence::Quit);
    m_quit->setMenuRole(QAction::QuitRole);
    m_openSettings->setObjectName(QStringLiteral("openSettingsAction"));
    // Ctrl+, here is Command-comma on macOS, where the role also moves it to the
    // application menu.
    m_openSettings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    m_openSettings->setMenuRole(QAction::PreferencesRole);
    m_leaveTip->setObjectName(QStringLiteral("leaveTipAction"));
    m_helpAndSupport->setObjectName(QStringLiteral("helpAndSupportAction"));
    connect(m_openWindow, &QAction::triggered, this, &AppShell::openWindow);
    connect(m_openSettings, &QAction::triggered, this, &AppShell::openSettings);
    connect(m_window->engagement(), &EngagementSurfaces::settingsRequested, this, &AppShell::openSettings);
    connect(m_quit, &QAction::triggered, qApp, &QApplication::quit, Qt::QueuedConnection);
    connect(m_leaveTip, &QAction::triggered, this, &AppShell::leaveTipRequested);
    connect(m_helpAndSupport, &QAction::triggered, this, &AppShell::helpAndSupportRequested);
    connect(m_window, &ContentView::firstShown, &m_app, &QuillbayApp::windowDidAppear);
    // "Leave a Tip" opens the tip sheet over the window; "Help & Support" the support page.
    connect(this, &AppShell::leaveTipRequested, this, [this] {
        openWindow();
        m_app.engagementPromptStore().setPresentingPurchaseView(true);
    });
    connect(this, &AppShell::helpAndSupportRequested, this,
            [this] { m_app.workspace().openUrl(QUrl(QStringLiteral(QUILLBAY_SUPPORT_URL))); });
    buildMenus();
    buildTrayIcon();
}

AppShell::~AppShell()
{
    delete m_window;
}

void AppShell::openWindow()
{
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void AppShell::openSettings()
{
    if (!m_settings)
        m_settings = new SettingsView(m_app, m_window);
    m_settings->show();
    m_settings->raise();
    m_settings->activateWindow();
}

void AppShell::buildMenus()
{
    QMenuBar* bar = m_window->menuBar();
    QMenu* file = bar->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("fileMenu"));
    file->addAction(m_openWindow);
    file->addSeparator();
    file->addAction(m_openSettings);
    file->addSeparator();
    file->addAction(m_quit);
    QMenu* view = bar->addMenu(QStringLiteral("&View"));
    view->setObjectName(QStringLiteral("viewMenu"));
    view->addActions(m_window->toolActions());
    QMenu* help = bar->addMenu(QStringLiteral("&Help"));
    help->setObjectName(QStringLiteral("helpMenu"));
    help->addAction(m_leaveTip);
    help->addSeparator();
    help->addAction(m_helpAndSupport);
    // Window-level shortcuts work only while the window is shown; the actions also live
    // on the tray menu so that a hidden window can be brought back.
    m_window->addAction(m_openWindow);
}

void AppShell::buildTrayIcon()
{
    if (!QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(QApplication::windowIcon(), this);
    auto* menu = new QMenu(m_window);
    menu->addAction(m_openWindow);
    menu->addAction(m_openSettings);
    menu->addSeparator();
    menu->addAction(m_quit);
    m_tray->setContextMenu(menu);
    m_tray->setToolTip(QStringLiteral("Quillbay"));
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            openWindow();
    });
    m_tray->show();
}

} // namespace quillbay
