#include "homebrew_catalog/views/HomebrewPackageTable.h"

#include <QHeaderView>
#include <QStyledItemDelegate>

#include "homebrew_catalog/views/HomebrewPackageNameDelegate.h"
#include "homebrew_catalog/views/HomebrewPackageTableModel.h"

namespace quillbay {

namespace {

// Rows open on selection and none stays selected, so the frame of the current cell would
// only read as a stale selection: cells are drawn without it.
class CellDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus;
    }
};

constexpr HomebrewColumnWidth nameWidth {150, 210};

HomebrewColumnWidth widthOfSection(int section)
{
    if (section == HomebrewPackageTableModel::nameColumn)
        return nameWidth;
    return columnWidth(static_cast<HomebrewCatalogColumn>(section - 1));
}

} // namespace

HomebrewPackageTable::HomebrewPackageTable(QWidget* parent)
    : QTableView(parent)
    , m_model(new HomebrewPackageTableModel(this))
{
    setObjectName(QStringLiteral("packageTableView"));
    setModel(m_model);
    setItemDelegate(new CellDelegate(this));
    setItemDelegateForColumn(HomebrewPackageTableModel::nameColumn, new HomebrewPackageNameDelegate(this));
    setAlternatingRowColors(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);

    // Fixed row heights keep 15,000 rows as cheap as 15: the view never measures a row.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(HomebrewPackageNameDelegate::rowHeight(font()));

    QHeaderView* header = horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionsClickable(false);
    header->setStretchLastSection(true);
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setMinimumSectionSize(78);
    for (int section = 0; section < HomebrewPackageTableModel::columnTotal; ++section)
        header->resizeSection(section, widthOfSection(section).ideal);
    // A header section has no minimum of its own; hold each at its column's.
    connect(header, &QHeaderView::sectionResized, this, [header](int section, int, int size) {
        const int minimum = widthOfSection(section).minimum;
        if (size < minimum && !header->isSectionHidden(section))
            header->resizeSection(section, minimum);
    });

    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (m_isClearingSelection)
            return;
        const QModelIndexList rows = selectionModel()->selectedRows();
        if (rows.isEmpty())
            return;
        setSelectedPackageID(rows.first().data(HomebrewPackageTableModel::PackageIDRole).toString());
    });
}

void HomebrewPackageTable::setContents(const HomebrewPackageList& packages,
                                       const QList<HomebrewCatalogColumn>& columns,
                                       const QString& identity)
{
    if (identity != m_identity) {
        m_identity = identity;
        m_selectedPackageID.reset();
        m_model->setPackages(packages);
        scrollToTop();
    }
    applyColumns(columns);
}

void HomebrewPackageTable::applyColumns(const QList<HomebrewCatalogColumn>& columns)
{
    for (HomebrewCatalogColumn column : allCatalogColumns)
        setColumnHidden(HomebrewPackageTableModel::columnIndex(column), !columns.contains(column));
}

void HomebrewPackageTable::setSelectedPackageID(const std::optional<QString>& id)
{
    m_selectedPackageID = id;
    if (!id)
        return;
    const std::optional<int> row = m_model->rowOfPackageID(*id);
    if (!row)
        return;
    const HomebrewPackageRoute route = m_model->packages().at(*row).route();
    m_selectedPackageID.reset();
    m_isClearingSelection = true;
    selectionModel()->clear();
    m_isClearingSelection = false;
    emit openPackage(route);
}

} // namespace quillbay
