#include "homebrew_installed/views/HomebrewInstalledSettingsSection.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

namespace quillbay {

HomebrewInstalledSettingsSection::HomebrewInstalledSettingsSection(HomebrewInstalledPackagesStore& store,
                                                                   QWidget* parent)
    : QGroupBox(tr("Installed"), parent)
    , m_store(store)
    , m_root(new QLabel(this))
    , m_choose(new QPushButton(tr("Choose"), this))
    , m_remove(new QPushButton(tr("Remove Authorization"), this))
{
    setObjectName(QStringLiteral("homebrewInstalledSettingsSection"));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    m_root->setObjectName(QStringLiteral("homebrewRootLabel"));
    m_root->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_root->setWordWrap(true);
    form->addRow(tr("Homebrew Root"), m_root);
    layout->addLayout(form);

    auto* actions = new QHBoxLayout;
    m_choose->setObjectName(QStringLiteral("chooseRootPushButton"));
    m_remove->setObjectName(QStringLiteral("removeAuthorizationPushButton"));
    actions->addStretch();
    actions->addWidget(m_choose);
    actions->addWidget(m_remove);
    layout->addLayout(actions);

    auto* footer = new QLabel(tr("The app only reads Cellar and Caskroom inside this folder. Changing or removing "
                                 "authorization does not modify installed software."),
                              this);
    footer->setObjectName(QStringLiteral("settingsFooterLabel"));
    footer->setWordWrap(true);
    footer->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(footer);

    connect(m_choose, &QPushButton::clicked, &m_store, &HomebrewInstalledPackagesStore::chooseRoot);
    connect(m_remove, &QPushButton::clicked, &m_store, &HomebrewInstalledPackagesStore::removeAuthorization);
    connect(&m_store, &HomebrewInstalledPackagesStore::stateChanged, this, &HomebrewInstalledSettingsSection::refresh);
    refresh();
}

void HomebrewInstalledSettingsSection::refresh()
{
    m_root->setText(m_store.rootURL().value_or(tr("Not Selected")));
    const bool busy = m_store.isChoosingRoot() || m_store.isScanning();
    m_choose->setEnabled(!busy);
    m_remove->setEnabled(m_store.isAuthorized() && !busy);
}

} // namespace quillbay
