#include "homebrew_installed/views/HomebrewInstalledPackageNameDelegate.h"

#include <QApplication>
#include <QPainter>

#include "homebrew_installed/views/HomebrewInstalledPackageTableModel.h"

namespace quillbay {

namespace {

constexpr int verticalPadding = 4;
constexpr int horizontalPadding = 6;

} // namespace

QFont HomebrewInstalledPackageNameDelegate::captionFont(const QFont& font)
{
    QFont caption = font;
    caption.setPointSizeF(font.pointSizeF() * 0.85);
    return caption;
}

int HomebrewInstalledPackageNameDelegate::rowHeight(const QFont& font)
{
    return QFontMetrics(font).height() + QFontMetrics(captionFont(font)).height() + 2 * verticalPadding;
}

void HomebrewInstalledPackageNameDelegate::paint(QPainter* painter,
                                                 const QStyleOptionViewItem& option,
                                                 const QModelIndex& index) const
{
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const QString name = opt.text;
    const QString subtitle = index.data(HomebrewInstalledPackageTableModel::subtitleRole).toString();
    opt.text.clear();
    const QWidget* widget = opt.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);

    const bool selected = opt.state & QStyle::State_Selected;
    const QRect area = opt.rect.adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);
    const QFontMetrics nameMetrics(opt.font);
    const QFont caption = captionFont(opt.font);
    const QFontMetrics captionMetrics(caption);
    painter->save();
    painter->setPen(opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
    painter->setFont(opt.font);
    if (subtitle.isEmpty()) {
        painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                          nameMetrics.elidedText(name, Qt::ElideRight, area.width()));
    } else {
        const int top = area.top() + (area.height() - nameMetrics.height() - captionMetrics.height()) / 2;
        const QRect nameRect(area.left(), top, area.width(), nameMetrics.height());
        painter->drawText(nameRect, Qt::AlignLeft | Qt::AlignVCenter,
                          nameMetrics.elidedText(name, Qt::ElideRight, area.width()));
        painter->setFont(caption);
        painter->setPen(opt.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
        const QRect subtitleRect(area.left(), nameRect.bottom() + 1, area.width(), captionMetrics.height());
        painter->drawText(subtitleRect, Qt::AlignLeft | Qt::AlignVCenter,
                          captionMetrics.elidedText(subtitle, Qt::ElideRight, area.width()));
    }
    painter->restore();
}

QSize HomebrewInstalledPackageNameDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(rowHeight(option.font));
    return size;
}

} // namespace quillbay
