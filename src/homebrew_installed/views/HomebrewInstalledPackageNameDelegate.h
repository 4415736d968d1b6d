#pragma once

#include <QStyledItemDelegate>

namespace quillbay {

// Paints the name cell: the display name and, under it in a smaller secondary line, the
// identifier when the model offers one.
class HomebrewInstalledPackageNameDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The height of a row that holds both lines; all rows take it, so the table reads evenly.
    static int rowHeight(const QFont& font);
    static QFont captionFont(const QFont& font);
};

} // namespace quillbay
