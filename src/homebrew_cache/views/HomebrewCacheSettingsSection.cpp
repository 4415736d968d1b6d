#include "homebrew_cache/views/HomebrewCacheSettingsSection.h"

#include <QApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SymbolIcons.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "homebrew_cache/HomebrewCacheSettingsSectionData.h"

namespace quillbay {

HomebrewCacheSettingsSection::HomebrewCacheSettingsSection(HomebrewCacheCleanupStore& store, QWidget* parent)
    : QGroupBox(parent)
    , m_store(store)
    , m_folder(new QLabel(this))
    , m_errorRow(new QWidget(this))
    , m_error(new QLabel(m_errorRow))
    , m_action(new QPushButton(this))
    , m_footer(new QLabel(this))
{
    setObjectName(QStringLiteral("homebrewCacheSettingsSection"));
    const HomebrewCacheSettingsSectionData section = HomebrewCacheSettingsSectionData::from(m_store);
    setTitle(section.title);

    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    m_folder->setObjectName(QStringLiteral("cacheFolderLabel"));
    m_folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_folder->setMinimumWidth(80);
    m_folder->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    form->addRow(section.folderLabel, m_folder);
    layout->addLayout(form);

    auto* errorLayout = new QHBoxLayout(m_errorRow);
    errorLayout->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(m_errorRow);
    icon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    m_error->setObjectName(QStringLiteral("settingsErrorLabel"));
    m_error->setWordWrap(true);
    errorLayout->addWidget(icon);
    errorLayout->addWidget(m_error, 1);
    layout->addWidget(m_errorRow);

    auto* actions = new QHBoxLayout;
    m_action->setObjectName(QStringLiteral("cacheFolderActionPushButton"));
    actions->addStretch();
    actions->addWidget(m_action);
    layout->addLayout(actions);

    m_footer->setObjectName(QStringLiteral("settingsFooterLabel"));
    m_footer->setWordWrap(true);
    m_footer->setForegroundRole(QPalette::PlaceholderText);
    m_footer->setText(section.footer);
    layout->addWidget(m_footer);

    connect(m_action, &QPushButton::clicked, this, [this] {
        if (HomebrewCacheSettingsSectionData::from(m_store).action
            == HomebrewCacheSettingsSectionData::Action::removeAuthorization)
            m_store.removeAuthorization();
        else
            m_store.chooseRoot();
    });
    connect(&m_store, &HomebrewCacheCleanupStore::stateChanged, this, &HomebrewCacheSettingsSection::refresh);
    refresh();
}

void HomebrewCacheSettingsSection::refresh()
{
    const HomebrewCacheSettingsSectionData section = HomebrewCacheSettingsSectionData::from(m_store);
    m_folderText = section.folderText;
    m_folder->setToolTip(section.hasFolder ? section.folderText : QString());
    elideFolder();
    m_errorRow->setVisible(section.errorMessage.has_value());
    m_error->setText(section.errorMessage.value_or(QString()));
    m_action->setText(section.actionTitle);
    m_action->setEnabled(section.actionEnabled);
    // The destructive button reads as such.
    QPalette palette = m_action->palette();
    palette.setColor(QPalette::ButtonText,
                     section.action == HomebrewCacheSettingsSectionData::Action::removeAuthorization
                         ? QColor(0xc0, 0x1c, 0x28)
                         : QApplication::palette().color(QPalette::ButtonText));
    m_action->setPalette(palette);
}

void HomebrewCacheSettingsSection::resizeEvent(QResizeEvent* event)
{
    QGroupBox::resizeEvent(event);
    elideFolder();
}

void HomebrewCacheSettingsSection::elideFolder()
{
    m_folder->setText(
        m_folder->fontMetrics().elidedText(m_folderText, Qt::ElideMiddle, std::max(40, m_folder->width())));
}

} // namespace quillbay
