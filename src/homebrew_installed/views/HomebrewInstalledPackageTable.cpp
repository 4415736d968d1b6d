#include "homebrew_installed/views/HomebrewInstalledPackageTable.h"

#include <QHeaderView>

#include "homebrew_installed/views/HomebrewInstalledPackageNameDelegate.h"
#include "homebrew_installed/views/HomebrewInstalledPackageTableModel.h"

namespace quillbay {

HomebrewInstalledPackageTable::HomebrewInstalledPackageTable(QWidget* parent)
    : QTableView(parent)
    , m_model(new HomebrewInstalledPackageTableModel(this))
{
    setObjectName(QStringLiteral("installedPackageTableView"));
    setModel(m_model);
    setItemDelegateForColumn(HomebrewInstalledPackageTableModel::nameColumn,
                             new HomebrewInstalledPackageNameDelegate(this));
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(HomebrewInstalledPackageNameDelegate::rowHeight(font()));

    // Minimum and ideal widths per column; the name takes what is left.
    QHeaderView* header = horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setMinimumSectionSize(120);
    header->setStretchLastSection(false);
    const int ideal[] = {220, 160, 160, 170};
    for (int column = 0; column < HomebrewInstalledPackageTableModel::columnCount_; ++column)
        header->resizeSection(column, ideal[column]);
    header->setSectionResizeMode(HomebrewInstalledPackageTableModel::nameColumn, QHeaderView::Stretch);

    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        const QModelIndexList rows = selectionModel()->selectedRows();
        if (!rows.isEmpty())
            selectedPackageIDChanged(rows.first().data(HomebrewInstalledPackageTableModel::packageIDRole).toString());
    });
}

void HomebrewInstalledPackageTable::setPackages(const QList<HomebrewInstalledPackage>& packages)
{
    m_model->setPackages(packages);
}

void HomebrewInstalledPackageTable::selectedPackageIDChanged(const QString& id)
{
    const QList<HomebrewInstalledPackage>& packages = m_model->packages();
    const auto it = std::find_if(packages.cbegin(), packages.cend(),
                                 [&id](const HomebrewInstalledPackage& package) { return package.id() == id; });
    if (it == packages.cend())
        return;
    // Copied first: opening may replace the rows under the iterator.
    const HomebrewInstalledPackage package = *it;
    selectionModel()->clearSelection();
    selectionModel()->clearCurrentIndex();
    emit openPackage(package);
}

} // namespace quillbay
