#pragma once

#include <QAbstractTableModel>
#include <QList>

#include "xcode_releases/Column.h"
#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

// The rows and columns of the releases table. The first column is always `version`;
// the texts come from the release texts, and the delegate draws them.
class XcodeReleasesTableModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Role {
        BuildLineRole = Qt::UserRole + 1, // the second line; only while expanded
        SymbolRole, // symbol name drawn before the text
        LinkRole, // the address text a link cell opens
        AppleSiliconRole, // the version cell's Apple Silicon mark
        ColumnRole, // the Column, as int
    };

    explicit XcodeReleasesTableModel(QObject* parent = nullptr);

    // Replaces everything at once; the table has no per-row updates.
    void setContents(QList<XcodeRelease> releases, const QList<Column>& columns, bool isExpand);

    const QList<XcodeRelease>& releases() const { return m_releases; }
    const QList<Column>& columns() const { return m_columns; }
    bool isExpand() const { return m_isExpand; }
    Column columnAt(int section) const { return m_columns.value(section, Column::version); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    QString mainText(const XcodeRelease& release, Column column) const;
    std::optional<QString> buildLine(const XcodeRelease& release, Column column) const;

    QList<XcodeRelease> m_releases;
    QList<Column> m_columns {Column::version};
    bool m_isExpand = false;
};

} // namespace quillbay
