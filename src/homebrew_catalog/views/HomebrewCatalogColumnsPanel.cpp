#include "homebrew_catalog/views/HomebrewCatalogColumnsPanel.h"

#include <QCheckBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "homebrew_catalog/HomebrewCatalogStore.h"

namespace quillbay {

HomebrewCatalogColumnsPanel::HomebrewCatalogColumnsPanel(HomebrewCatalogStore& store, QWidget* parent)
    : QFrame(parent, Qt::Popup)
    , m_store(store)
{
    setObjectName(QStringLiteral("columnsPanelFrame"));
    setFrameShape(QFrame::StyledPanel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->setSpacing(6);
    for (HomebrewCatalogColumn column : allCatalogColumns) {
        auto* box = new QCheckBox(columnHeader(column), this);
        box->setObjectName(QStringLiteral("columnCheckBox"));
        layout->addWidget(box);
        m_switches << box;
        connect(box, &QCheckBox::toggled, this, [this, column](bool on) { m_store.setColumnIsVisible(column, on); });
    }
    syncFromStore();
}

void HomebrewCatalogColumnsPanel::syncFromStore()
{
    for (size_t i = 0; i < allCatalogColumns.size(); ++i) {
        QCheckBox* box = m_switches[static_cast<qsizetype>(i)];
        const QSignalBlocker blocker(box);
        box->setChecked(m_store.columnIsVisible(allCatalogColumns[i]));
    }
}

void HomebrewCatalogColumnsPanel::toggleBelow(const QWidget* anchor)
{
    if (isVisible()) {
        hide();
        return;
    }
    syncFromStore();
    adjustSize();
    const QPoint below = anchor->mapToGlobal(QPoint(anchor->width() - width(), anchor->height()));
    move(below);
    show();
}

} // namespace quillbay
