#include "xcode_releases/views/XcodeReleasesTable.h"

#include <QHeaderView>
#include <QMouseEvent>

#include "xcode_releases/views/XcodeReleasesCellDelegate.h"
#include "xcode_releases/views/XcodeReleasesTableModel.h"

namespace quillbay {

namespace {

constexpr int kVersionMinimumWidth = 80;
constexpr int kColumnMinimumWidth = 60;
constexpr int kColumnIdealWidth = 80;
constexpr int kRowPadding = 12;

} // namespace

XcodeReleasesTable::XcodeReleasesTable(QWidget* parent)
    : QTableView(parent)
    , m_model(new XcodeReleasesTableModel(this))
    , m_delegate(new XcodeReleasesCellDelegate(this))
{
    setObjectName(QStringLiteral("releasesTableView"));
    setAccessibleName(QStringLiteral("Xcode Releases"));
    setModel(m_model);
    setItemDelegate(m_delegate);
    setSortingEnabled(false);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setFocusPolicy(Qt::NoFocus);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setMouseTracking(true);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setMinimumSectionSize(kColumnMinimumWidth);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(m_delegate, &XcodeReleasesCellDelegate::linkActivated, this, &XcodeReleasesTable::linkActivated);
    connect(m_delegate, &XcodeReleasesCellDelegate::downloadInformationRequested, this,
            &XcodeReleasesTable::downloadInformationRequested);
}

void XcodeReleasesTable::setContents(QList<XcodeRelease> releases, const QList<Column>& columns, bool isExpand)
{
    setHovered({});
    m_model->setContents(std::move(releases), columns, isExpand);
    // Every row has the same height, so a fixed size keeps scrolling cheap on long lists.
    const QFontMetrics main(font());
    const QFontMetrics build(XcodeReleasesCellDelegate::buildFont(font()));
    const int oneLine = std::max(main.height(), 16) + kRowPadding;
    verticalHeader()->setDefaultSectionSize(isExpand ? oneLine + 1 + build.height() : oneLine);
    fitColumns();
}

void XcodeReleasesTable::fitColumns()
{
    QHeaderView* header = horizontalHeader();
    const QFontMetrics headerMetrics(header->font());
    for (int section = 0; section < m_model->columnCount(); ++section) {
        const Column column = m_model->columnAt(section);
        const int minimum = column == Column::version ? kVersionMinimumWidth : kColumnIdealWidth;
        // Widest cell among the rows, sampled: the same texts repeat down the list.
        int width = headerMetrics.horizontalAdvance(columnTitle(column)) + 24;
        const int rows = m_model->rowCount();
        const int step = std::max(1, rows / 200);
        for (int row = 0; row < rows; row += step) {
            const QModelIndex index = m_model->index(row, section);
            width = std::max(width, m_delegate->sizeHint(cellOption(index), index).width());
        }
        header->resizeSection(section, std::max(width, minimum));
    }
}

QStyleOptionViewItem XcodeReleasesTable::cellOption(const QModelIndex& index) const
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    option.widget = this;
    return option;
}

void XcodeReleasesTable::setHovered(const QModelIndex& index)
{
    if (m_delegate->hoveredIndex() == index)
        return;
    const QModelIndex previous = m_delegate->hoveredIndex();
    m_delegate->setHoveredIndex(index);
    if (previous.isValid())
        viewport()->update(visualRect(previous));
    if (index.isValid())
        viewport()->update(visualRect(index));
}

void XcodeReleasesTable::mouseMoveEvent(QMouseEvent* event)
{
    setHovered(indexAt(event->position().toPoint()));
    QTableView::mouseMoveEvent(event);
}

void XcodeReleasesTable::leaveEvent(QEvent* event)
{
    setHovered({});
    QTableView::leaveEvent(event);
}

} // namespace quillbay
