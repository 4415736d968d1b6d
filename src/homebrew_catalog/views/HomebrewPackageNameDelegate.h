#pragma once

#include <QStyledItemDelegate>

namespace quillbay {

// Paints the "Name" cell: the display name, the identifier under it in caption size and
// secondary colour when the two differ, and beside them at most one status badge.
class HomebrewPackageNameDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // Two lines of text and the cell margins: every row has this height, so the view never
    // measures rows one by one.
    static int rowHeight(const QFont& font);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

} // namespace quillbay
