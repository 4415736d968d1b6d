#include "xcode_cleanup/views/XcodeCleanupContent.h"

#include <QApplication>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyledItemDelegate>
#include <QTime>
#include <QTreeView>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/views/SymbolIcons.h"
#include "core/views/TitleFont.h"
#include "platform/Workspace.h"
#include "xcode_cleanup/views/XcodeCleanupTreeModel.h"

namespace quillbay {

namespace {

constexpr int kInfoButtonWidth = 28;

// The size column: the formatted size, or a small spinner while it is unknown, and an
// info button at the right edge of rows that have a description.
class SizeDelegate final : public QStyledItemDelegate
{
public:
    SizeDelegate(const QTimer& timer, QObject* parent)
        : QStyledItemDelegate(parent)
        , m_timer(timer)
    {
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QStyleOptionViewItem text = option;
        text.rect.adjust(0, 0, -kInfoButtonWidth, 0);
        if (!index.data(XcodeCleanupTreeModel::sizeIsUnknownRole).toBool()) {
            QStyledItemDelegate::paint(painter, text, index);
        } else {
            // A ring with a gap that turns once a second while the spinner timer runs.
            const int side = qMin(text.rect.height() - 8, 14);
            const QRect ring(text.rect.right() - side - 4, text.rect.center().y() - side / 2, side, side);
            const int phase = int((m_timer.isActive() ? QTime::currentTime().msecsSinceStartOfDay() : 0) % 1000);
            painter->save();
            painter->setRenderHint(QPainter::Antialiasing);
            painter->setPen(QPen(option.palette.color(QPalette::PlaceholderText), 2, Qt::SolidLine, Qt::RoundCap));
            painter->drawArc(ring, -phase * 360 * 16 / 1000, 270 * 16);
            painter->restore();
        }
        if (!index.data(XcodeCleanupTreeModel::tooltipRole).toString().isEmpty()) {
            const QRect button(option.rect.right() - kInfoButtonWidth + 6, option.rect.center().y() - 8, 16, 16);
            symbolIcon(QStringLiteral("info.circle")).paint(painter, button);
        }
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setWidth(size.width() + kInfoButtonWidth);
        size.setHeight(qMax(size.height(), 24));
        return size;
    }

private:
    const QTimer& m_timer;
};

QWidget* makeEmptyState(QPushButton* rescan)
{
    auto* empty = new QWidget;
    empty->setObjectName(QStringLiteral("emptyStateWidget"));
    auto* layout = new QVBoxLayout(empty);
    layout->addStretch();
    auto* icon = new QLabel;
    icon->setPixmap(symbolIcon(QStringLiteral("checkmark.circle")).pixmap(48, 48));
    icon->setAlignment(Qt::AlignCenter);
    auto* title = new QLabel(QStringLiteral("No Xcode Data to Clean"));
    title->setObjectName(QStringLiteral("emptyStateTitleLabel"));
    setTitleFont(title, TitleSize::panel);
    title->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(QStringLiteral("No Xcode cleanup items were found in the authorized folder."));
    text->setAlignment(Qt::AlignCenter);
    text->setForegroundRole(QPalette::PlaceholderText);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(rescan);
    row->addStretch();
    layout->addWidget(icon);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addLayout(row);
    layout->addStretch();
    return empty;
}

QWidget* makeCleaningOverlay(QWidget* parent)
{
    auto* overlay = new QWidget(parent);
    overlay->setObjectName(QStringLiteral("cleaningOverlayWidget"));
    overlay->setAttribute(Qt::WA_StyledBackground);
    overlay->setStyleSheet(QStringLiteral("#cleaningOverlayWidget { background: rgba(127, 127, 127, 60); }"
                                          "#cleaningPanel { background: palette(window); border-radius: 10px; }"));
    auto* outer = new QVBoxLayout(overlay);
    auto* panel = new QWidget;
    panel->setObjectName(QStringLiteral("cleaningPanel"));
    panel->setAttribute(Qt::WA_StyledBackground);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(24, 18, 24, 18);
    auto* busy = new QProgressBar;
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setFixedWidth(140);
    auto* label = new QLabel(QStringLiteral("Cleaning"));
    label->setObjectName(QStringLiteral("cleaningLabel"));
    label->setAlignment(Qt::AlignCenter);
    layout->addWidget(busy, 0, Qt::AlignCenter);
    layout->addWidget(label);
    outer->addStretch();
    outer->addWidget(panel, 0, Qt::AlignCenter);
    outer->addStretch();
    overlay->hide();
    return overlay;
}

} // namespace

XcodeCleanupContent::XcodeCleanupContent(AppViewModel& viewModel, QWidget* parent)
    : QWidget(parent)
    , m_viewModel(viewModel)
    , m_model(new XcodeCleanupTreeModel(viewModel, this))
    , m_stack(new QStackedWidget)
    , m_tree(new QTreeView)
    , m_empty(nullptr)
    , m_overlay(nullptr)
{
    setObjectName(QStringLiteral("xcodeCleanupContent"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    m_tree->setObjectName(QStringLiteral("cleanupTreeView"));
    m_tree->setAccessibleName(QStringLiteral("Xcode Data"));
    m_tree->setModel(m_model);
    m_tree->setItemDelegateForColumn(XcodeCleanupTreeModel::sizeColumn, new SizeDelegate(m_spinnerTimer, m_tree));
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setIconSize(QSize(18, 18));
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->header()->setStretchLastSection(false);
    m_tree->header()->setSectionResizeMode(XcodeCleanupTreeModel::labelColumn, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(XcodeCleanupTreeModel::infoColumn, QHeaderView::Interactive);
    m_tree->header()->setSectionResizeMode(XcodeCleanupTreeModel::sizeColumn, QHeaderView::Fixed);
    m_tree->header()->resizeSection(XcodeCleanupTreeModel::infoColumn, 260);
    m_tree->header()->resizeSection(XcodeCleanupTreeModel::sizeColumn, 120);

    auto* rescan = new QPushButton(QStringLiteral("Rescan"));
    rescan->setObjectName(QStringLiteral("emptyStateRescanPushButton"));
    connect(rescan, &QPushButton::clicked, &m_viewModel, &AppViewModel::rescan);
    m_empty = makeEmptyState(rescan);
    m_stack->addWidget(m_tree);
    m_stack->addWidget(m_empty);
    layout->addWidget(m_stack);
    m_overlay = makeCleaningOverlay(this);

    m_spinnerTimer.setInterval(50);
    connect(&m_spinnerTimer, &QTimer::timeout, m_tree->viewport(), qOverload<>(&QWidget::update));
    connect(&m_viewModel, &AppViewModel::cleanupStateChanged, this, &XcodeCleanupContent::refresh);
    connect(&m_viewModel, &AppViewModel::localFilesChanged, this, [this] {
        restoreExpansion();
        refresh();
    });
    connect(m_tree, &QTreeView::expanded, this, [this](const QModelIndex& index) {
        const QString key = index.data().toString();
        if (!index.parent().isValid() && !m_expanded.contains(key))
            m_expanded.append(key);
    });
    connect(m_tree, &QTreeView::collapsed, this,
            [this](const QModelIndex& index) { m_expanded.removeAll(index.data().toString()); });
    connect(m_tree, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() != XcodeCleanupTreeModel::sizeColumn)
            return;
        const QRect cell = m_tree->visualRect(index);
        const QPoint at = m_tree->viewport()->mapFromGlobal(QCursor::pos());
        if (at.x() >= cell.right() - kInfoButtonWidth)
            showInfoPopover(index);
    });
    connect(m_tree, &QTreeView::customContextMenuRequested, this, [this](const QPoint& at) {
        if (QMenu* menu = contextMenu(m_tree->indexAt(at))) {
            menu->setAttribute(Qt::WA_DeleteOnClose);
            menu->popup(m_tree->viewport()->mapToGlobal(at));
        }
    });
    refresh();
}

bool XcodeCleanupContent::isShowingEmptyState() const
{
    return m_stack->currentWidget() == m_empty;
}

bool XcodeCleanupContent::isShowingCleaningOverlay() const
{
    return !m_overlay->isHidden();
}

void XcodeCleanupContent::refresh()
{
    m_stack->setCurrentWidget(!m_viewModel.scanning() && !m_viewModel.hasContent() ? m_empty : m_tree);
    m_overlay->setVisible(m_viewModel.cleaning());
    m_overlay->raise();
    const bool spin = m_model->hasUnknownSize();
    if (spin && !m_spinnerTimer.isActive())
        m_spinnerTimer.start();
    else if (!spin)
        m_spinnerTimer.stop();
}

void XcodeCleanupContent::restoreExpansion()
{
    // Rows are rebuilt with new identities at every scan step; keep the user's open
    // locations open by their names.
    for (int row = 0; row < m_model->rowCount(); ++row) {
        const QModelIndex index = m_model->index(row, 0);
        if (m_expanded.contains(index.data().toString()))
            m_tree->expand(index);
    }
}

void XcodeCleanupContent::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_overlay->setGeometry(rect());
}

QMenu* XcodeCleanupContent::contextMenu(const QModelIndex& index)
{
    const QStringList paths = index.siblingAtColumn(0).data(XcodeCleanupTreeModel::pathsRole).toStringList();
    if (paths.isEmpty())
        return nullptr;
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("cleanupRowMenu"));
    QAction* reveal = menu->addAction(QStringLiteral("Show in Finder"));
    reveal->setObjectName(QStringLiteral("showInFinderAction"));
    connect(reveal, &QAction::triggered, this, [this, paths] {
        if (Workspace* workspace = &m_viewModel.workspace())
            workspace->revealFiles(paths);
    });
    return menu;
}

QWidget* XcodeCleanupContent::showInfoPopover(const QModelIndex& index)
{
    const QString text = index.data(XcodeCleanupTreeModel::tooltipRole).toString();
    if (text.isEmpty())
        return nullptr;
    auto* popover = new QFrame(this, Qt::Popup);
    popover->setObjectName(QStringLiteral("infoPopover"));
    popover->setAttribute(Qt::WA_DeleteOnClose);
    popover->setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(popover);
    auto* label = new QLabel(text);
    label->setObjectName(QStringLiteral("infoPopoverLabel"));
    label->setWordWrap(true);
    label->setFixedWidth(320);
    layout->addWidget(label);
    const QRect cell = m_tree->visualRect(index);
    popover->move(m_tree->viewport()->mapToGlobal(QPoint(cell.right() - 320, cell.bottom())));
    popover->show();
    return popover;
}

} // namespace quillbay
