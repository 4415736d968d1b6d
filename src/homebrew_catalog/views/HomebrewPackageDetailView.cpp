#include "homebrew_catalog/views/HomebrewPackageDetailView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <cerrno>
#include <cstring>

#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "core/views/UnavailablePanel.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_catalog/views/HomebrewInstalledPackageDetailSections.h"
#include "homebrew_catalog/views/HomebrewProgressView.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/Clipboard.h"
#include "platform/Workspace.h"

namespace quillbay {

using namespace Qt::StringLiterals;

namespace {

const QString unloadedMessage = u"The package details could not be loaded."_s;
constexpr int copiedResetMilliseconds = 2000;

} // namespace

HomebrewPackageDetailView::HomebrewPackageDetailView(HomebrewCatalogStore& store,
                                                     Workspace& workspace,
                                                     const HomebrewPackageRoute& route,
                                                     std::optional<HomebrewInstalledPackage> installedPackage,
                                                     HomebrewInstalledPackagesStore* installedStore,
                                                     QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_workspace(workspace)
    , m_installedStore(installedStore)
    , m_titleLabel(new QLabel(this))
    , m_backButton(new QToolButton(this))
    , m_terminalButton(new QToolButton(this))
    , m_pages(new QStackedWidget(this))
    , m_scrollArea(new QScrollArea(m_pages))
    , m_loading(new HomebrewProgressView(u"Loading Package Details"_s, m_pages))
    , m_unavailable(new UnavailablePanel(u"Try Again"_s, m_pages))
{
    setObjectName(u"homebrewPackageDetailView"_s);
    m_stack.append({route, std::move(installedPackage)});

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 8, 12, 8);
    m_backButton->setObjectName(u"backToolButton"_s);
    m_backButton->setText(u"Back"_s);
    m_backButton->setToolTip(u"Back"_s);
    m_backButton->setAccessibleName(u"Back"_s);
    m_backButton->setArrowType(Qt::LeftArrow);
    m_backButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_backButton->setAutoRaise(true);
    m_titleLabel->setObjectName(u"titleLabel"_s);
    setTitleFont(m_titleLabel, TitleSize::screen);
    m_terminalButton->setObjectName(u"terminalToolButton"_s);
    m_terminalButton->setText(u"Terminal"_s);
    m_terminalButton->setToolTip(u"Terminal"_s);
    m_terminalButton->setAccessibleName(u"Terminal"_s);
    m_terminalButton->setIcon(symbolIcon(u"apple.terminal.fill"_s));
    m_terminalButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_terminalButton->setAutoRaise(true);
    bar->addWidget(m_backButton);
    bar->addSpacing(8);
    bar->addWidget(m_titleLabel, 1);
    bar->addWidget(m_terminalButton);
    layout->addLayout(bar);

    m_scrollArea->setObjectName(u"detailScrollArea"_s);
    m_scrollArea->setWidgetResizable(true);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_loading->setObjectName(u"detailLoadingView"_s);
    m_unavailable->setObjectName(u"detailUnavailableView"_s);
    m_unavailable->setContent(u"exclamationmark.triangle"_s, u"Package Details Unavailable"_s, unloadedMessage);
    m_unavailable->button()->setObjectName(u"tryAgainPushButton"_s);
    m_pages->addWidget(m_scrollArea);
    m_pages->addWidget(m_loading);
    m_pages->addWidget(m_unavailable);
    layout->addWidget(m_pages, 1);

    m_copyReset.setSingleShot(true);
    m_copyReset.setInterval(copiedResetMilliseconds);
    connect(&m_copyReset, &QTimer::timeout, this, [this] {
        m_didCopyInstallCommand = false;
        updateCopyButton();
    });
    connect(m_backButton, &QToolButton::clicked, this, &HomebrewPackageDetailView::goBack);
    connect(m_terminalButton, &QToolButton::clicked, this, &HomebrewPackageDetailView::openTerminal);
    connect(m_unavailable->button(), &QPushButton::clicked, this, &HomebrewPackageDetailView::startLoad);
    connect(&m_store, &HomebrewCatalogStore::changed, this, &HomebrewPackageDetailView::refresh);
    connect(&m_store, &HomebrewCatalogStore::detailChanged, this, &HomebrewPackageDetailView::refresh);
    enterEntry();
}

HomebrewPackageDetailView::~HomebrewPackageDetailView()
{
    // The installed sections go away with the page; their failure must not follow the
    // user to the next package.
    if (installedPackage() && m_installedStore)
        m_installedStore->clearOperationError();
}

void HomebrewPackageDetailView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    startLoad();
}

void HomebrewPackageDetailView::startLoad()
{
    m_store.loadDetail(route().kind, route().identifier);
}

QString HomebrewPackageDetailView::title() const
{
    const HomebrewPackageRoute& current = route();
    if (const auto detail = m_store.detail(current)) {
        if (const HomebrewCask* cask = detail->cask())
            return cask->names && !cask->names->isEmpty() ? cask->names->first() : cask->token;
        return detail->formula()->name;
    }
    if (const auto summary = m_store.summary(current))
        return summary->displayName;
    if (const auto& installed = installedPackage()) {
        if (installed->catalogSummary)
            return installed->catalogSummary->displayName;
        return installed->identifier;
    }
    return current.identifier;
}

void HomebrewPackageDetailView::pushRoute(const HomebrewPackageRoute& route)
{
    leaveEntry();
    m_stack.append({route, std::nullopt});
    enterEntry();
}

void HomebrewPackageDetailView::goBack()
{
    if (m_stack.size() <= 1) {
        emit closeRequested();
        return;
    }
    leaveEntry();
    m_stack.removeLast();
    enterEntry();
}

void HomebrewPackageDetailView::leaveEntry()
{
    if (installedPackage() && m_installedStore)
        m_installedStore->clearOperationError();
    if (m_installedSections)
        m_installedSections->deleteLater();
    m_installedSections = nullptr;
    m_copyReset.stop();
    m_didCopyInstallCommand = false;
}

void HomebrewPackageDetailView::enterEntry()
{
    m_shown.reset();
    if (const auto& installed = installedPackage(); installed && m_installedStore)
        m_installedSections = new HomebrewInstalledPackageDetailSections(*m_installedStore, *installed, this);
    refresh();
    m_scrollArea->ensureVisible(0, 0);
    if (isVisible())
        startLoad();
    emit routeChanged(route());
}

HomebrewPackageDetailView::Shown HomebrewPackageDetailView::currentState() const
{
    const HomebrewPackageRoute& current = route();
    Shown shown;
    shown.detail = m_store.detail(current);
    shown.isLoading = m_store.detailLoadingRoutes().contains(current);
    if (const auto it = m_store.detailErrors().constFind(current); it != m_store.detailErrors().cend())
        shown.error = *it;
    shown.summary = m_store.summary(current);
    return shown;
}

QWidget* HomebrewPackageDetailView::currentContent() const
{
    return m_pages->currentWidget();
}

void HomebrewPackageDetailView::refresh()
{
    m_titleLabel->setText(title());
    const Shown shown = currentState();
    if (m_shown == shown)
        return;
    m_shown = shown;
    if (shown.detail || m_installedSections) {
        rebuildForm(shown);
        m_pages->setCurrentWidget(m_scrollArea);
    } else if (shown.isLoading) {
        m_pages->setCurrentWidget(m_loading);
    } else {
        m_unavailable->setDescription(shown.error.value_or(unloadedMessage));
        m_pages->setCurrentWidget(m_unavailable);
    }
}

void HomebrewPackageDetailView::copyInstallCommand()
{
    const auto detail = m_store.detail(route());
    if (!detail)
        return;
    copyTextToClipboard(detail->installCommand());
    m_didCopyInstallCommand = true;
    m_copyReset.start();
    updateCopyButton();
}

void HomebrewPackageDetailView::updateCopyButton()
{
    if (!m_copyButton)
        return;
    m_copyButton->setText(m_didCopyInstallCommand ? u"Copied"_s : u"Copy Install Command"_s);
    m_copyButton->setIcon(symbolIcon(m_didCopyInstallCommand ? u"checkmark"_s : u"doc.on.doc"_s));
}

void HomebrewPackageDetailView::openTerminal()
{
    const std::optional<QString> path = m_workspace.applicationPath(u"com.apple.Terminal"_s);
    if (!path) {
        showTerminalLaunchError(QString::fromLocal8Bit(std::strerror(ENOENT)));
        return;
    }
    if (const std::optional<QString> failure = m_workspace.openApplication(*path))
        showTerminalLaunchError(*failure);
}

void HomebrewPackageDetailView::showTerminalLaunchError(const QString& message)
{
    m_terminalLaunchErrorMessage = message;
    m_isShowingTerminalLaunchError = true;
    if (m_terminalAlert)
        m_terminalAlert->close();
    auto* alert = new QMessageBox(QMessageBox::Warning, u"Could Not Open Terminal"_s, u"Could Not Open Terminal"_s,
                                  QMessageBox::Ok, this);
    alert->setObjectName(u"terminalLaunchErrorMessageBox"_s);
    alert->setInformativeText(message);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    connect(alert, &QMessageBox::finished, this, [this, alert] {
        if (m_terminalAlert == alert)
            m_isShowingTerminalLaunchError = false;
    });
    m_terminalAlert = alert;
    alert->open();
}

} // namespace quillbay
