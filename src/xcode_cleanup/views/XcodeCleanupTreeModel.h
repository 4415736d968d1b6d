#pragma once

#include <QAbstractItemModel>

namespace quillbay {

class AppViewModel;
struct XcodeFileProperties;

// The cleanup tree of AppViewModel::localFiles as an outline: column 0 carries the check
// box, icon and label, column 1 the info text, column 2 the size. A node is found by its
// row path from the roots, never by pointer, because the store's rows are values that
// are replaced whole by every scan step and copied by every clean.
class XcodeCleanupTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column {
        labelColumn,
        infoColumn,
        sizeColumn,
        columnCount_,
    };
    enum Role {
        // The size is not known yet: the view shows a spinner.
        sizeIsUnknownRole = Qt::UserRole + 1,
        tooltipRole,
        pathsRole,
        idRole,
    };

    explicit XcodeCleanupTreeModel(AppViewModel& viewModel, QObject* parent = nullptr);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    const XcodeFileProperties* node(const QModelIndex& index) const;
    // Any shown row still waits for its size.
    bool hasUnknownSize() const;

private:
    void refreshChecks();

    AppViewModel& m_viewModel;
};

} // namespace quillbay
