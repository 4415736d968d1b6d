#include "homebrew_cache/views/HomebrewCacheCleanupFooter.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "core/views/StatusPanels.h"
#include "foundation/ByteCount.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"

namespace quillbay {

HomebrewCacheCleanupFooter::HomebrewCacheCleanupFooter(HomebrewCacheCleanupStore& store, QWidget* parent)
    : QWidget(parent)
    , m_store(store)
    , m_total(new QLabel(this))
    , m_selected(new QLabel(this))
{
    setObjectName(QStringLiteral("homebrewCacheCleanupFooter"));
    m_total->setObjectName(QStringLiteral("totalSizeLabel"));
    m_selected->setObjectName(QStringLiteral("selectedSizeLabel"));
    const CleanupFooterButtons buttons = makeCleanupFooterButtons(this);
    m_selectAll = buttons.selectAll;
    m_deselectAll = buttons.deselectAll;
    m_delete = buttons.deleteButton;

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 12, 8);
    auto* totalCaption = new QLabel(tr("Total:"), this);
    auto* selectedCaption = new QLabel(tr("Selected:"), this);
    for (QLabel* value : {m_total, m_selected}) {
        QFont font = value->font();
        font.setBold(true);
        value->setFont(font);
    }
    layout->addWidget(totalCaption);
    layout->addWidget(m_total);
    layout->addSpacing(16);
    layout->addWidget(selectedCaption);
    layout->addWidget(m_selected);
    layout->addStretch();
    layout->addWidget(m_selectAll);
    layout->addWidget(m_deselectAll);
    layout->addWidget(m_delete);

    connect(m_selectAll, &QPushButton::clicked, &m_store, &HomebrewCacheCleanupStore::selectAll);
    connect(m_deselectAll, &QPushButton::clicked, &m_store, &HomebrewCacheCleanupStore::deselectAll);
    connect(m_delete, &QPushButton::clicked, this, [this] {
        if (m_store.canClean())
            emit deleteRequested();
    });
    connect(&m_store, &HomebrewCacheCleanupStore::stateChanged, this, &HomebrewCacheCleanupFooter::refresh);
    connect(&m_store, &HomebrewCacheCleanupStore::selectionChanged, this, &HomebrewCacheCleanupFooter::refresh);
    refresh();
}

void HomebrewCacheCleanupFooter::refresh()
{
    m_total->setText(formatByteCount(m_store.totalAllocatedSize()));
    m_selected->setText(formatByteCount(m_store.selectedAllocatedSize()));
    m_selectAll->setEnabled(!m_store.entries().empty() && !m_store.allSelected());
    m_deselectAll->setEnabled(!m_store.selectedEntryIDs().isEmpty());
    m_delete->setEnabled(m_store.canClean());
}

} // namespace quillbay
