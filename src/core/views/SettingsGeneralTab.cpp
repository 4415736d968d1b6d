#include "core/views/SettingsGeneralTab.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "core/views/SettingsStores.h"
#include "core/views/SymbolIcons.h"
#include "engagement/EngagementPromptStore.h"
#include "foundation/ByteCount.h"
#include "foundation/Defaults.h"

namespace quillbay {

SettingsGeneralTab::SettingsGeneralTab(const SettingsStores& stores, QWidget* parent)
    : QWidget(parent)
    , m_stores(stores)
    , m_appearance(new QComboBox(this))
    , m_total(new QLabel(this))
{
    setObjectName(QStringLiteral("settingsGeneralTab"));
    auto* layout = new QVBoxLayout(this);

    auto* appearanceForm = new QFormLayout;
    appearanceForm->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    m_appearance->setObjectName(QStringLiteral("appearanceComboBox"));
    // The position in the list is the stored index.
    m_appearance->addItems({QStringLiteral("System"), QStringLiteral("Light"), QStringLiteral("Dark")});
    appearanceForm->addRow(QStringLiteral("Appearance:"), m_appearance);
    layout->addLayout(appearanceForm);

    auto* cleanup = new QGroupBox(QStringLiteral("Cleanup"), this);
    cleanup->setObjectName(QStringLiteral("cleanupSettingsGroupBox"));
    auto* cleanupLayout = new QHBoxLayout(cleanup);
    auto* resetWarnings = new QPushButton(QStringLiteral("Reset 'Don't ask again' Warnings"), cleanup);
    resetWarnings->setObjectName(QStringLiteral("resetWarningsPushButton"));
    cleanupLayout->addWidget(resetWarnings);
    cleanupLayout->addStretch();
    layout->addWidget(cleanup);

    auto* saved = new QGroupBox(QStringLiteral("Saved Total"), this);
    saved->setObjectName(QStringLiteral("savedTotalGroupBox"));
    auto* savedLayout = new QVBoxLayout(saved);
    auto* totalForm = new QFormLayout;
    m_total->setObjectName(QStringLiteral("savedTotalLabel"));
    m_total->setTextInteractionFlags(Qt::TextSelectableByMouse);
    totalForm->addRow(QStringLiteral("Space Saved:"), m_total);
    savedLayout->addLayout(totalForm);
    auto* savedButtons = new QHBoxLayout;
    auto* resetRecord = new QPushButton(QStringLiteral("Reset Record"), saved);
    resetRecord->setObjectName(QStringLiteral("resetRecordPushButton"));
    auto* tip = new QPushButton(symbolIcon(QStringLiteral("dollarsign.circle")), QStringLiteral("Leave a Tip"), saved);
    tip->setObjectName(QStringLiteral("leaveTipPushButton"));
    savedButtons->addWidget(resetRecord);
    savedButtons->addWidget(tip);
    savedButtons->addStretch();
    savedLayout->addLayout(savedButtons);
    layout->addWidget(saved);
    layout->addStretch();

    showAppearance(m_stores.viewModel.appearanceIndex());
    showTotal(m_stores.savedSpaceStore.totalBytes());

    connect(m_appearance, &QComboBox::activated, this, [this](int index) {
        m_stores.viewModel.setAppearanceIndex(index);
        AppViewModel::applyAppearance(index);
    });
    connect(&m_stores.viewModel, &AppViewModel::appearanceIndexChanged, this, &SettingsGeneralTab::showAppearance);
    connect(resetWarnings, &QPushButton::clicked, this, [this] {
        m_stores.defaults.setValue(QLatin1String(AppViewModel::suppressXcodeIsRunningAlertKey), false);
        m_stores.defaults.setValue(QLatin1String(AppViewModel::suppressDeleteWarningAlertKey), false);
    });
    connect(resetRecord, &QPushButton::clicked, &m_stores.savedSpaceStore, &SavedSpaceStore::reset);
    connect(&m_stores.savedSpaceStore, &SavedSpaceStore::totalBytesChanged, this, &SettingsGeneralTab::showTotal);
    connect(tip, &QPushButton::clicked, this,
            [this] { m_stores.engagementPromptStore.setPresentingPurchaseView(true); });
}

void SettingsGeneralTab::showAppearance(qint64 index)
{
    // A stored index outside the list looks dark, so the picker says "Dark".
    m_appearance->setCurrentIndex(index == 0 || index == 1 ? int(index) : 2);
}

void SettingsGeneralTab::showTotal(qint64 totalBytes)
{
    m_total->setText(formatByteCount(totalBytes));
}

} // namespace quillbay
