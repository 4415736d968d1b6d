#include "xcode_releases/views/XcodeReleasesCellDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFontDatabase>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "core/views/SymbolIcons.h"
#include "xcode_releases/Column.h"
#include "xcode_releases/views/XcodeReleasesTableModel.h"

namespace quillbay {

namespace {

constexpr int kMargin = 6;
constexpr int kSymbolSize = 16;
constexpr int kSymbolGap = 6; // symbol to text
constexpr int kLineGap = 1; // main text to build line

Column columnOf(const QModelIndex& index)
{
    return static_cast<Column>(index.data(XcodeReleasesTableModel::ColumnRole).toInt());
}

struct CellLayout
{
    QRect symbol;
    QRect text;
    QRect build;
    QRect silicon;
    QRect downloadButton;
    QRect infoButton;
};

CellLayout layoutFor(const QStyleOptionViewItem& option, const QModelIndex& index)
{
    CellLayout layout;
    const QRect inner = option.rect.adjusted(kMargin, 0, -kMargin, 0);
    const QFont main = XcodeReleasesCellDelegate::mainFont(option, index);
    const QFontMetrics mainMetrics(main);
    const QFontMetrics buildMetrics(XcodeReleasesCellDelegate::buildFont(option.font));
    const QString buildLine = index.data(XcodeReleasesTableModel::BuildLineRole).toString();
    const bool hasBuild = !buildLine.isEmpty();
    const int blockHeight = mainMetrics.height() + (hasBuild ? kLineGap + buildMetrics.height() : 0);
    const int top = inner.top() + (inner.height() - blockHeight) / 2;
    const Column column = columnOf(index);

    if (column == Column::download) {
        const QString label = index.data(Qt::DisplayRole).toString();
        layout.text = QRect(inner.left(), top, mainMetrics.horizontalAdvance(label), mainMetrics.height());
        const int iconTop = inner.top() + (inner.height() - kSymbolSize) / 2;
        layout.downloadButton = QRect(inner.left(), iconTop, kSymbolSize, kSymbolSize);
        layout.infoButton = QRect(inner.left() + kSymbolSize + kSymbolGap, iconTop, kSymbolSize, kSymbolSize);
        return layout;
    }

    int x = inner.left();
    const bool leadingSymbol = column != Column::version && !index.data(XcodeReleasesTableModel::SymbolRole).isNull();
    if (leadingSymbol) {
        layout.symbol = QRect(x, top + (mainMetrics.height() - kSymbolSize) / 2, kSymbolSize, kSymbolSize);
        x += kSymbolSize + kSymbolGap;
    }
    const QString text = index.data(Qt::DisplayRole).toString();
    const int textWidth = std::min(mainMetrics.horizontalAdvance(text), std::max(0, inner.x() + inner.width() - x));
    layout.text = QRect(x, top, textWidth, mainMetrics.height());
    if (hasBuild) {
        const int buildWidth
            = std::min(buildMetrics.horizontalAdvance(buildLine), std::max(0, inner.x() + inner.width() - x));
        layout.build = QRect(x, layout.text.bottom() + 1 + kLineGap, buildWidth, buildMetrics.height());
    }
    if (index.data(XcodeReleasesTableModel::AppleSiliconRole).toBool()) {
        layout.silicon = QRect(layout.text.right() + 1 + kSymbolGap, top + (mainMetrics.height() - kSymbolSize) / 2,
                               kSymbolSize, kSymbolSize);
    }
    return layout;
}

void drawElided(QPainter* painter, const QRect& rect, const QString& text, Qt::Alignment alignment = Qt::AlignLeft)
{
    const QString elided = painter->fontMetrics().elidedText(text, Qt::ElideRight, rect.width() + 1);
    painter->drawText(rect.adjusted(0, 0, 1, 0), alignment | Qt::AlignVCenter | Qt::TextSingleLine, elided);
}

} // namespace

XcodeReleasesCellDelegate::XcodeReleasesCellDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

QFont XcodeReleasesCellDelegate::mainFont(const QStyleOptionViewItem& option, const QModelIndex& index)
{
    const QVariant font = index.data(Qt::FontRole);
    if (font.isNull())
        return option.font;
    QFont fixed = font.value<QFont>();
    fixed.setPointSizeF(option.font.pointSizeF() > 0 ? option.font.pointSizeF() : fixed.pointSizeF());
    return fixed;
}

QFont XcodeReleasesCellDelegate::buildFont(const QFont& base)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const qreal size = base.pointSizeF() > 0 ? base.pointSizeF() : 10.0;
    font.setPointSizeF(size * 0.85);
    return font;
}

QRect XcodeReleasesCellDelegate::partRect(const QStyleOptionViewItem& option, const QModelIndex& index, Part part) const
{
    const CellLayout layout = layoutFor(option, index);
    const Column column = columnOf(index);
    switch (part) {
    case Part::none:
        return {};
    case Part::symbol:
        return layout.symbol;
    case Part::text:
        return column == Column::download || column == Column::releaseNotes ? QRect() : layout.text;
    case Part::buildLine:
        return layout.build;
    case Part::appleSilicon:
        return layout.silicon;
    case Part::downloadLink:
        return column == Column::download && !isHovered(index) ? layout.text : QRect();
    case Part::downloadButton:
        return column == Column::download && isHovered(index) ? layout.downloadButton : QRect();
    case Part::infoButton:
        return column == Column::download && isHovered(index) ? layout.infoButton : QRect();
    case Part::releaseNotesButton:
        return column == Column::releaseNotes ? layout.symbol.united(layout.text) : QRect();
    }
    return {};
}

XcodeReleasesCellDelegate::Part
XcodeReleasesCellDelegate::partAt(const QStyleOptionViewItem& option, const QModelIndex& index, const QPoint& pos) const
{
    for (const Part part : {Part::downloadButton, Part::infoButton, Part::downloadLink, Part::releaseNotesButton,
                            Part::appleSilicon, Part::buildLine, Part::symbol, Part::text}) {
        if (partRect(option, index, part).contains(pos))
            return part;
    }
    return Part::none;
}

void XcodeReleasesCellDelegate::paint(QPainter* painter,
                                      const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const
{
    QStyleOptionViewItem base = option;
    initStyleOption(&base, index);
    base.text.clear();
    base.icon = QIcon();
    base.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    const QWidget* widget = option.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &base, painter, widget);

    const CellLayout layout = layoutFor(option, index);
    const Column column = columnOf(index);
    const QPalette& palette = option.palette;
    painter->save();
    painter->setClipRect(option.rect);

    if (column == Column::download) {
        if (isHovered(index)) {
            symbolIcon(QStringLiteral("square.and.arrow.down")).paint(painter, layout.downloadButton);
            symbolIcon(QStringLiteral("info.circle.fill")).paint(painter, layout.infoButton);
        } else {
            painter->setFont(option.font);
            painter->setPen(palette.color(QPalette::Link));
            drawElided(painter, layout.text, index.data(Qt::DisplayRole).toString());
        }
        painter->restore();
        return;
    }

    if (!layout.symbol.isNull())
        symbolIcon(index.data(XcodeReleasesTableModel::SymbolRole).toString()).paint(painter, layout.symbol);
    painter->setFont(mainFont(option, index));
    painter->setPen(column == Column::releaseNotes ? palette.color(QPalette::Link) : palette.color(QPalette::Text));
    drawElided(painter, layout.text, index.data(Qt::DisplayRole).toString());
    if (!layout.silicon.isNull())
        symbolIcon(QStringLiteral("cpu")).paint(painter, layout.silicon);
    if (!layout.build.isNull()) {
        painter->setFont(buildFont(option.font));
        painter->setPen(palette.color(QPalette::PlaceholderText));
        drawElided(painter, layout.build, index.data(XcodeReleasesTableModel::BuildLineRole).toString());
    }
    painter->restore();
}

QSize XcodeReleasesCellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QFontMetrics mainMetrics(mainFont(option, index));
    const QFontMetrics buildMetrics(buildFont(option.font));
    const Column column = columnOf(index);
    int width = mainMetrics.horizontalAdvance(index.data(Qt::DisplayRole).toString());
    width = std::max(width,
                     buildMetrics.horizontalAdvance(index.data(XcodeReleasesTableModel::BuildLineRole).toString()));
    if (column == Column::download)
        width = std::max(width, 2 * kSymbolSize + kSymbolGap);
    else if (!index.data(XcodeReleasesTableModel::SymbolRole).isNull())
        width += kSymbolSize + kSymbolGap;
    const bool hasBuild = !index.data(XcodeReleasesTableModel::BuildLineRole).toString().isEmpty();
    const int height = mainMetrics.height() + (hasBuild ? kLineGap + buildMetrics.height() : 0) + 2 * kMargin;
    return {width + 2 * kMargin, std::max(height, kSymbolSize + 2 * kMargin)};
}

bool XcodeReleasesCellDelegate::editorEvent(QEvent* event,
                                            QAbstractItemModel* model,
                                            const QStyleOptionViewItem& option,
                                            const QModelIndex& index)
{
    if (event->type() != QEvent::MouseButtonRelease)
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;
    const QString link = index.data(XcodeReleasesTableModel::LinkRole).toString();
    switch (partAt(option, index, mouse->position().toPoint())) {
    case Part::downloadLink:
    case Part::downloadButton:
    case Part::releaseNotesButton:
        emit linkActivated(link);
        return true;
    case Part::infoButton:
        if (option.widget) {
            // Cell rectangles are in the viewport's coordinates.
            const auto* view = qobject_cast<const QAbstractItemView*>(option.widget);
            const QWidget* area = view ? view->viewport() : option.widget;
            emit downloadInformationRequested(QRect(area->mapToGlobal(option.rect.topLeft()), option.rect.size()));
        }
        return true;
    default:
        return false;
    }
}

bool XcodeReleasesCellDelegate::helpEvent(QHelpEvent* event,
                                          QAbstractItemView* view,
                                          const QStyleOptionViewItem& option,
                                          const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString tip;
    switch (partAt(option, index, event->pos())) {
    case Part::buildLine:
        tip = index.data(XcodeReleasesTableModel::BuildLineRole).toString();
        break;
    case Part::appleSilicon:
        tip = QStringLiteral("Apple Silicon");
        break;
    case Part::downloadButton:
        tip = QStringLiteral("Download");
        break;
    case Part::infoButton:
        tip = QStringLiteral("Information");
        break;
    default:
        tip = index.data(Qt::ToolTipRole).toString();
        break;
    }
    if (tip.isEmpty()) {
        QToolTip::hideText();
        return true;
    }
    QToolTip::showText(event->globalPos(), tip, view);
    return true;
}

} // namespace quillbay
