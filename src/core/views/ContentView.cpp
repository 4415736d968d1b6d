#include "core/views/ContentView.h"

#include <QAction>
#include <QHeaderView>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/EngagementSurfaces.h"
#include "core/views/SidebarItem.h"
#include "core/views/SymbolIcons.h"
#include "core/views/ToastOverlay.h"
#include "core/views/ToolScreens.h"
#include "engagement/views/MainSidebarFooter.h"

namespace quillbay {

namespace {

constexpr int kItemIdRole = Qt::UserRole + 1;
constexpr int kToolRole = Qt::UserRole + 2;

} // namespace

ContentView::ContentView(QuillbayApp& app, QWidget* parent)
    : QMainWindow(parent)
    , m_app(app)
    , m_sidebar(new QTreeWidget)
    , m_detail(new QStackedWidget)
    , m_toast(nullptr)
    , m_engagement(nullptr)
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Quillbay"));
    setMinimumSize(760, 480);
    resize(1180, 760);

    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("mainSplitter"));
    splitter->setChildrenCollapsible(false);
    buildSidebar();
    // The sidebar column: the tool list with the footer of Settings, Update, tips and More.
    m_engagement = new EngagementSurfaces(m_app, this);
    auto* sidebarColumn = new QWidget;
    sidebarColumn->setObjectName(QStringLiteral("sidebarColumnWidget"));
    auto* sidebarLayout = new QVBoxLayout(sidebarColumn);
    sidebarLayout->setContentsMargins(0, 0, 0, 0);
    sidebarLayout->setSpacing(0);
    sidebarLayout->addWidget(m_sidebar, 1);
    sidebarLayout->addWidget(m_engagement->footer());
    splitter->addWidget(sidebarColumn);
    m_detail->setObjectName(QStringLiteral("detailStackedWidget"));
    splitter->addWidget(m_detail);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({220, 960});
    setCentralWidget(splitter);

    m_toast = new ToastOverlay(m_detail);
    connect(&m_app.viewModel(), &AppViewModel::toastMessageChanged, this, &ContentView::showToastFromModel);
    connect(m_toast, &ToastOverlay::dismissed, &m_app.viewModel(), &AppViewModel::clearToast);

    select(sidebarItem(Tool::xcodeReleases).id);
}

void ContentView::buildSidebar()
{
    m_sidebar->setObjectName(QStringLiteral("sidebarTreeWidget"));
    m_sidebar->setHeaderHidden(true);
    m_sidebar->setRootIsDecorated(false);
    m_sidebar->setIndentation(8);
    m_sidebar->setMinimumWidth(180);
    m_sidebar->setAccessibleName(QStringLiteral("Tools"));
    m_sidebar->setMaximumWidth(320);
    m_sidebar->setFrameShape(QFrame::NoFrame);
    m_sidebar->setIconSize(QSize(18, 18));
    m_sidebar->setStyleSheet(
        QStringLiteral("QTreeWidget { padding-top: 6px; } QTreeWidget::item { padding: 4px 2px; }"));
    for (const SidebarSection& section : sidebarSections()) {
        auto* heading = new QTreeWidgetItem(m_sidebar, {section.heading});
        heading->setFlags(Qt::ItemIsEnabled);
        QFont font = heading->font(0);
        font.setBold(true);
        font.setPointSizeF(font.pointSizeF() * 0.9);
        heading->setFont(0, font);
        heading->setForeground(0, palette().brush(QPalette::PlaceholderText));
        for (const SidebarItem* item : section.items) {
            auto* row = new QTreeWidgetItem(heading, {item->title});
            row->setIcon(0, symbolIcon(item->systemImage));
            row->setData(0, kItemIdRole, item->id);
            row->setData(0, kToolRole, static_cast<int>(item->tool));
            row->setData(0, Qt::AccessibleTextRole, section.heading + QLatin1Char(' ') + item->title);
            m_rows.insert(item->id, row);
            // Tools by number, so the keyboard reaches every screen without the sidebar.
            auto* action = new QAction(section.heading + QLatin1Char(' ') + item->title, this);
            action->setObjectName(QStringLiteral("toolAction%1").arg(m_toolActions.size() + 1));
            action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + m_toolActions.size())));
            const QUuid id = item->id;
            connect(action, &QAction::triggered, this, [this, id] { select(id); });
            addAction(action);
            m_toolActions << action;
        }
    }
    m_sidebar->expandAll();
    connect(m_sidebar, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        if (current && current->data(0, kItemIdRole).isValid())
            select(current->data(0, kItemIdRole).toUuid());
    });
}

void ContentView::select(const QUuid& id)
{
    QTreeWidgetItem* row = m_rows.value(id);
    if (!row)
        return;
    m_selection = id;
    if (m_sidebar->currentItem() != row)
        m_sidebar->setCurrentItem(row);
    QWidget* screen = m_screens.value(id);
    if (!screen) {
        const auto tool = static_cast<Tool>(row->data(0, kToolRole).toInt());
        screen = createToolScreen(tool, m_app, m_detail);
        m_screens.insert(id, screen);
        m_detail->addWidget(screen);
    }
    m_detail->setCurrentWidget(screen);
    if (m_toast)
        m_toast->raise();
}

QWidget* ContentView::currentScreen() const
{
    return m_detail->currentWidget();
}

void ContentView::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    if (!m_wasShown) {
        m_wasShown = true;
        emit firstShown();
    }
}

void ContentView::showToastFromModel()
{
    const auto& message = m_app.viewModel().toastMessage();
    if (message)
        m_toast->showMessage(*message);
    else
        m_toast->dismiss();
}

} // namespace quillbay
