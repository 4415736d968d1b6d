#include "core/views/XcodeScanLocationsSettingsSection.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"

namespace quillbay {

namespace {

constexpr int idRole = Qt::UserRole;

} // namespace

XcodeScanLocationsSettingsSection::XcodeScanLocationsSettingsSection(const QString& title,
                                                                     const QString& defaultPath,
                                                                     const QString& footer,
                                                                     QWidget* parent)
    : QGroupBox(title, parent)
    , m_list(new QListWidget(this))
    , m_add(new QPushButton(QStringLiteral("+"), this))
    , m_remove(new QPushButton(QStringLiteral("Remove"), this))
{
    auto* layout = new QVBoxLayout(this);
    m_list->setObjectName(QStringLiteral("scanLocationsListWidget"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setUniformItemSizes(true);
    m_list->setMaximumHeight(m_list->fontMetrics().height() * 7);
    auto* fixed = new QListWidgetItem(m_list);
    fixed->setText(QStringLiteral("Default Path: ") + defaultPath);
    fixed->setFlags(Qt::ItemIsEnabled);
    fixed->setIcon(symbolIcon(QStringLiteral("folder")));
    layout->addWidget(m_list);

    auto* buttons = new QHBoxLayout;
    m_add->setObjectName(QStringLiteral("addLocationPushButton"));
    m_add->setToolTip(QStringLiteral("Add a folder"));
    m_add->setFixedWidth(m_add->sizeHint().height() + 8);
    m_remove->setObjectName(QStringLiteral("removeLocationsPushButton"));
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    layout->addLayout(buttons);

    auto* note = new QLabel(footer, this);
    note->setObjectName(QStringLiteral("settingsFooterLabel"));
    note->setWordWrap(true);
    note->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(note);

    connect(m_list, &QListWidget::itemSelectionChanged, this, &XcodeScanLocationsSettingsSection::readSelection);
    connect(m_add, &QPushButton::clicked, this, &XcodeScanLocationsSettingsSection::addLocationRequested);
    connect(m_remove, &QPushButton::clicked, this, [this] {
        if (!m_selection.isEmpty() && !m_isBusy)
            emit removeLocationsRequested(m_selection);
    });
    updateButtons();
}

void XcodeScanLocationsSettingsSection::setCustomFolders(const QList<URLBookmark>& folders)
{
    m_isRebuilding = true;
    while (m_list->count() > 1)
        delete m_list->takeItem(1);
    QSet<QUuid> kept;
    for (const URLBookmark& folder : folders) {
        auto* item = new QListWidgetItem(m_list);
        item->setText(folder.urlString);
        item->setData(idRole, folder.id);
        // A folder that went away is still listed, so that it can be removed.
        item->setIcon(symbolIcon(folder.url ? QStringLiteral("folder") : QStringLiteral("exclamationmark.triangle")));
        if (!folder.url)
            item->setToolTip(QStringLiteral("This folder can't be reached; it is left out of the scan."));
        if (m_selection.contains(folder.id)) {
            item->setSelected(true);
            kept.insert(folder.id);
        }
    }
    m_selection = kept;
    m_isRebuilding = false;
    updateButtons();
}

void XcodeScanLocationsSettingsSection::setBusy(bool busy)
{
    m_isBusy = busy;
    updateButtons();
}

void XcodeScanLocationsSettingsSection::readSelection()
{
    if (m_isRebuilding)
        return;
    m_selection.clear();
    for (const QListWidgetItem* item : m_list->selectedItems()) {
        const QUuid id = item->data(idRole).toUuid();
        if (!id.isNull())
            m_selection.insert(id);
    }
    updateButtons();
}

void XcodeScanLocationsSettingsSection::updateButtons()
{
    m_add->setEnabled(!m_isBusy);
    m_remove->setEnabled(!m_isBusy && !m_selection.isEmpty());
}

} // namespace quillbay
