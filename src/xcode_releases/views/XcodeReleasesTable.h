#pragma once

#include <QTableView>

#include "xcode_releases/Column.h"
#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

class XcodeReleasesCellDelegate;
class XcodeReleasesTableModel;

// The plain table of releases: feed order, no sorting, no selection, one row per release
// drawn by one delegate. Rows grow to two lines while builds are shown.
class XcodeReleasesTable final : public QTableView
{
    Q_OBJECT

public:
    explicit XcodeReleasesTable(QWidget* parent = nullptr);

    void setContents(QList<XcodeRelease> releases, const QList<Column>& columns, bool isExpand);

    XcodeReleasesTableModel* releasesModel() const { return m_model; }
    XcodeReleasesCellDelegate* cellDelegate() const { return m_delegate; }
    // The geometry the delegate works with, for one cell.
    QStyleOptionViewItem cellOption(const QModelIndex& index) const;

signals:
    void linkActivated(const QString& text);
    void downloadInformationRequested(const QRect& globalCellRect);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void setHovered(const QModelIndex& index);
    void fitColumns();

    XcodeReleasesTableModel* m_model;
    XcodeReleasesCellDelegate* m_delegate;
};

} // namespace quillbay
