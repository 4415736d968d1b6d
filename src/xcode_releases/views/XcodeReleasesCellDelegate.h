#pragma once

#include <QPersistentModelIndex>
#include <QStyledItemDelegate>

namespace quillbay {

// Draws every cell of the releases table (symbol, text, build line, Apple Silicon mark,
// link buttons, the download cell's hover buttons) and turns clicks on the buttons into
// signals. One delegate for all rows: no widget per row.
class XcodeReleasesCellDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum class Part {
        none,
        symbol,
        text,
        buildLine,
        appleSilicon,
        downloadLink, // "Download" while the pointer is elsewhere
        downloadButton, // the download icon while hovered
        infoButton, // the information icon while hovered
        releaseNotesButton,
    };

    explicit XcodeReleasesCellDelegate(QObject* parent = nullptr);

    // The cell under the pointer; the download cell changes its face while it is hovered.
    void setHoveredIndex(const QModelIndex& index) { m_hovered = index; }
    QModelIndex hoveredIndex() const { return m_hovered; }

    // Where a part lies in a cell, empty when the cell has no such part (now).
    QRect partRect(const QStyleOptionViewItem& option, const QModelIndex& index, Part part) const;
    Part partAt(const QStyleOptionViewItem& option, const QModelIndex& index, const QPoint& pos) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool editorEvent(QEvent* event,
                     QAbstractItemModel* model,
                     const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;
    bool helpEvent(QHelpEvent* event,
                   QAbstractItemView* view,
                   const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    // Fonts of the two lines: the build line is caption-sized and monospaced.
    static QFont mainFont(const QStyleOptionViewItem& option, const QModelIndex& index);
    static QFont buildFont(const QFont& base);

signals:
    // The address text of a link cell (download or release notes); may be empty.
    void linkActivated(const QString& text);
    // The information button of a download cell, with the cell in global coordinates.
    void downloadInformationRequested(const QRect& globalCellRect);

private:
    bool isHovered(const QModelIndex& index) const { return m_hovered.isValid() && m_hovered == index; }

    QPersistentModelIndex m_hovered;
};

} // namespace quillbay
