#include "xcode_cleanup/views/CleanupView.h"

#include <QAction>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/views/FolderAuthorizationRequiredView.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "core/views/WidgetAlerts.h"
#include "core/views/WidgetPickers.h"
#include "platform/Workspace.h"
#include "xcode_cleanup/views/XcodeCleanupContent.h"
#include "xcode_cleanup/views/XcodeCleanupFooter.h"

namespace quillbay {

CleanupView::CleanupView(AppViewModel& viewModel, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_pickers(std::make_unique<WidgetPickers>(this))
    , m_alerts(std::make_unique<WidgetAlerts>(this))
    , m_toolBar(new QToolBar)
    , m_rescan(new QAction(symbolIcon(QStringLiteral("arrow.clockwise")), QStringLiteral("Rescan"), this))
    , m_information(new QAction(symbolIcon(QStringLiteral("info.circle.fill")), QStringLiteral("Information"), this))
    , m_stack(new QStackedWidget)
    , m_authorization(new FolderAuthorizationRequiredView(QStringLiteral("Scan and clean Xcode data."),
                                                          QStringLiteral("externaldrive.badge.questionmark")))
    , m_authorized(new QWidget)
    , m_content(new XcodeCleanupContent(viewModel))
    , m_footer(new XcodeCleanupFooter(viewModel))
{
    setObjectName(QStringLiteral("cleanupView"));
    setWindowTitle(QStringLiteral("Cleanup"));
    m_viewModel.setCleanupPanels(m_pickers.get(), m_alerts.get());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    m_toolBar->setObjectName(QStringLiteral("cleanupToolBar"));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    auto* title = new QLabel(QStringLiteral("Cleanup"));
    title->setObjectName(QStringLiteral("navigationTitleLabel"));
    setTitleFont(title, TitleSize::screen);
    title->setContentsMargins(8, 0, 0, 0);
    m_toolBar->addWidget(title);
    auto* spacer = new QWidget;
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_toolBar->addWidget(spacer);
    m_rescan->setObjectName(QStringLiteral("rescanAction"));
    m_rescan->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    m_information->setObjectName(QStringLiteral("informationAction"));
    m_toolBar->addAction(m_rescan);
    m_toolBar->addAction(m_information);
    layout->addWidget(m_toolBar);

    auto* authorizedLayout = new QVBoxLayout(m_authorized);
    authorizedLayout->setContentsMargins(0, 0, 0, 0);
    authorizedLayout->setSpacing(0);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    authorizedLayout->addWidget(m_content, 1);
    authorizedLayout->addWidget(line);
    authorizedLayout->addWidget(m_footer);

    QPushButton* choose
        = m_authorization->addAction(QStringLiteral("Choose Folder"), QStringLiteral("chooseFolderPushButton"));
    QPushButton* download
        = m_authorization->addAction(QStringLiteral("Download Xcode"), QStringLiteral("downloadXcodePushButton"));
    connect(choose, &QPushButton::clicked, &m_viewModel, &AppViewModel::startInitialScan);
    connect(download, &QPushButton::clicked, this, [this] {
        if (Workspace* workspace = &m_viewModel.workspace())
            workspace->openUrl(QUrl(QLatin1String(downloadXcodeUrl)));
    });

    m_stack->addWidget(m_authorization);
    m_stack->addWidget(m_authorized);
    layout->addWidget(m_stack, 1);

    connect(m_rescan, &QAction::triggered, &m_viewModel, &AppViewModel::rescan);
    connect(m_information, &QAction::triggered, this, &CleanupView::showInformation);
    connect(&m_viewModel, &AppViewModel::developerFolderAuthorizationChanged, this, &CleanupView::refresh);
    connect(&m_viewModel, &AppViewModel::cleanupStateChanged, this, &CleanupView::refresh);
    refresh();
}

CleanupView::~CleanupView()
{
    m_viewModel.setCleanupPanels(nullptr, nullptr);
}

bool CleanupView::isShowingAuthorization() const
{
    return m_stack->currentWidget() == m_authorization;
}

void CleanupView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (!m_didAppear) {
        m_didAppear = true;
        m_viewModel.requestDeveloperFolderAuthorization(false);
    }
}

void CleanupView::refresh()
{
    m_stack->setCurrentWidget(m_viewModel.isDeveloperFolderAuthorized() ? m_authorized : m_authorization);
    m_rescan->setEnabled(m_viewModel.hasFileManager() && !m_viewModel.scanning() && !m_viewModel.cleaning());
}

void CleanupView::showInformation()
{
    auto* popover = new QFrame(this, Qt::Popup);
    popover->setObjectName(QStringLiteral("informationPopover"));
    popover->setAttribute(Qt::WA_DeleteOnClose);
    popover->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(popover);
    const QString folder = m_viewModel.developerFolderPath();
    auto* label = new QLabel(QStringLiteral("Scan and clean Xcode data.")
                             + (folder.isEmpty() ? QString() : QStringLiteral("\n\n") + folder));
    label->setWordWrap(true);
    label->setFixedWidth(300);
    layout->addWidget(label);
    popover->adjustSize();
    const QWidget* button = m_toolBar->widgetForAction(m_information);
    const QPoint anchor = button ? button->mapToGlobal(QPoint(button->width() - popover->width(), button->height()))
                                 : mapToGlobal(QPoint(width() - popover->width(), 0));
    popover->move(anchor);
    popover->show();
}

} // namespace quillbay
