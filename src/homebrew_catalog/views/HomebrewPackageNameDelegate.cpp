#include "homebrew_catalog/views/HomebrewPackageNameDelegate.h"

#include <QApplication>
#include <QPainter>

#include "homebrew_catalog/views/HomebrewPackageTableModel.h"

namespace quillbay {

namespace {

constexpr int horizontalMargin = 6;
constexpr int verticalMargin = 4;

QFont captionFont(const QFont& base, qreal scale)
{
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * scale);
    return font;
}

} // namespace

int HomebrewPackageNameDelegate::rowHeight(const QFont& font)
{
    return QFontMetrics(font).height() + QFontMetrics(captionFont(font, 0.85)).height() + 2 * verticalMargin;
}

QSize HomebrewPackageNameDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString name = index.data(Qt::DisplayRole).toString();
    return {QFontMetrics(option.font).horizontalAdvance(name) + 2 * horizontalMargin, rowHeight(option.font)};
}

void HomebrewPackageNameDelegate::paint(QPainter* painter,
                                        const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.state &= ~QStyle::State_HasFocus;
    const QString displayName = cell.text;
    cell.text.clear();
    const QStyle* style = cell.widget ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const bool selected = (option.state & QStyle::State_Selected) != 0;
    const QPalette& palette = option.palette;
    const QColor primary = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor secondary = selected ? primary : palette.color(QPalette::PlaceholderText);
    const QString identifier = index.data(HomebrewPackageTableModel::IdentifierRole).toString();
    const QString badge = index.data(HomebrewPackageTableModel::BadgeRole).toString();
    const bool twoLines = identifier != displayName;

    QRect area = option.rect.adjusted(horizontalMargin, verticalMargin, -horizontalMargin, -verticalMargin);
    const QFont nameFont = option.font;
    const QFont identifierFont = captionFont(option.font, 0.85);
    const QFont badgeFont = captionFont(option.font, 0.75);

    // The badge takes its room on the right first; the names are elided into what is left.
    int badgeWidth = 0;
    if (!badge.isEmpty()) {
        const QFontMetrics metrics(badgeFont);
        badgeWidth = metrics.horizontalAdvance(badge) + 2 * 5;
        const int badgeHeight = metrics.height() + 2 * 2;
        const int textWidth = std::max(QFontMetrics(nameFont).horizontalAdvance(displayName),
                                       twoLines ? QFontMetrics(identifierFont).horizontalAdvance(identifier) : 0);
        const int x = std::min(area.left() + textWidth + 8, area.right() - badgeWidth);
        const QRect badgeRect(x, area.center().y() - badgeHeight / 2, badgeWidth, badgeHeight);
        QColor fill = palette.color(QPalette::Text);
        fill.setAlphaF(0.1);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(badgeRect, 4, 4);
        painter->setFont(badgeFont);
        painter->setPen(secondary);
        painter->drawText(badgeRect, Qt::AlignCenter, badge);
        painter->restore();
        area.setRight(x - 8);
    }

    painter->save();
    const QFontMetrics nameMetrics(nameFont);
    if (!twoLines) {
        painter->setFont(nameFont);
        painter->setPen(primary);
        painter->drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                          nameMetrics.elidedText(displayName, Qt::ElideRight, area.width()));
    } else {
        const QFontMetrics identifierMetrics(identifierFont);
        const int top = area.center().y() - (nameMetrics.height() + identifierMetrics.height()) / 2;
        painter->setFont(nameFont);
        painter->setPen(primary);
        painter->drawText(QRect(area.left(), top, area.width(), nameMetrics.height()), Qt::AlignLeft | Qt::AlignVCenter,
                          nameMetrics.elidedText(displayName, Qt::ElideRight, area.width()));
        painter->setFont(identifierFont);
        painter->setPen(secondary);
        painter->drawText(QRect(area.left(), top + nameMetrics.height(), area.width(), identifierMetrics.height()),
                          Qt::AlignLeft | Qt::AlignVCenter,
                          identifierMetrics.elidedText(identifier, Qt::ElideRight, area.width()));
    }
    painter->restore();
}

} // namespace quillbay
