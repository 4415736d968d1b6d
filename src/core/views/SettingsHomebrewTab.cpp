#include "core/views/SettingsHomebrewTab.h"

#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/views/SettingsStores.h"
#include "core/views/SymbolIcons.h"
#include "homebrew_cache/views/HomebrewCacheSettingsSection.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

namespace quillbay {

namespace {

QString dateText(const std::optional<QDateTime>& date)
{
    return date ? QLocale().toString(date->toLocalTime(), QLocale::ShortFormat) : QStringLiteral("Never");
}

QLabel* footerLabel(const QString& text, QWidget* parent)
{
    auto* footer = new QLabel(text, parent);
    footer->setObjectName(QStringLiteral("settingsFooterLabel"));
    footer->setWordWrap(true);
    footer->setForegroundRole(QPalette::PlaceholderText);
    return footer;
}

} // namespace

// A hidden row of a warning symbol and a wrapped text, shown while there is an error.
QWidget* SettingsHomebrewTab::errorRow(QLabel*& text, const QString& objectName)
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel(row);
    icon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    m_warningIcons.append(icon);
    text = new QLabel(row);
    text->setObjectName(objectName);
    text->setWordWrap(true);
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(text, 1);
    row->setVisible(false);
    return row;
}

void SettingsHomebrewTab::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // A new appearance may bring another icon theme; a pixmap is drawn once, so draw again.
    if (event->type() == QEvent::PaletteChange) {
        for (QLabel* icon : std::as_const(m_warningIcons))
            icon->setPixmap(symbolIcon(QStringLiteral("exclamationmark.triangle")).pixmap(16, 16));
    }
}

SettingsHomebrewTab::SettingsHomebrewTab(const SettingsStores& stores, QWidget* parent)
    : QWidget(parent)
    , m_stores(stores)
{
    setObjectName(QStringLiteral("settingsHomebrewTab"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildCatalogSection());
    layout->addWidget(buildInstalledSection());
    layout->addWidget(new HomebrewCacheSettingsSection(m_stores.homebrewCacheCleanupStore, this));
    layout->addStretch();
    refreshCatalog();
    refreshInstalled();
}

QWidget* SettingsHomebrewTab::buildCatalogSection()
{
    auto* section = new QGroupBox(QStringLiteral("Catalog"), this);
    section->setObjectName(QStringLiteral("catalogSettingsGroupBox"));
    auto* layout = new QVBoxLayout(section);
    auto* form = new QFormLayout;
    m_lastChecked = new QLabel(section);
    m_lastChecked->setObjectName(QStringLiteral("lastCheckedLabel"));
    m_lastSuccess = new QLabel(section);
    m_lastSuccess->setObjectName(QStringLiteral("lastSuccessfulUpdateLabel"));
    form->addRow(QStringLiteral("Last Checked"), m_lastChecked);
    form->addRow(QStringLiteral("Last Successful Update"), m_lastSuccess);
    layout->addLayout(form);
    m_catalogErrorRow = errorRow(m_catalogError, QStringLiteral("catalogErrorLabel"));
    layout->addWidget(m_catalogErrorRow);
    auto* buttons = new QHBoxLayout;
    m_forceRefresh = new QPushButton(symbolIcon(QStringLiteral("arrow.trianglehead.2.clockwise.rotate.90")),
                                     QStringLiteral("Force Refresh"), section);
    m_forceRefresh->setObjectName(QStringLiteral("forceRefreshPushButton"));
    buttons->addStretch();
    buttons->addWidget(m_forceRefresh);
    layout->addLayout(buttons);
    layout->addWidget(footerLabel(QStringLiteral("The catalog checks for updates at most once every 24 hours. Force "
                                                 "Refresh still uses conditional requests when possible."),
                                  section));

    HomebrewCatalogStore& store = m_stores.homebrewCatalogStore;
    connect(m_forceRefresh, &QPushButton::clicked, this, [&store] {
        if (!store.isRefreshing())
            store.forceRefresh();
    });
    connect(&store, &HomebrewCatalogStore::changed, this, &SettingsHomebrewTab::refreshCatalog);
    return section;
}

QWidget* SettingsHomebrewTab::buildInstalledSection()
{
    auto* section = new QGroupBox(QStringLiteral("Installed"), this);
    section->setObjectName(QStringLiteral("installedSettingsGroupBox"));
    auto* layout = new QVBoxLayout(section);
    auto* form = new QFormLayout;
    m_root = new QLabel(section);
    m_root->setObjectName(QStringLiteral("homebrewRootLabel"));
    m_root->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_root->setWordWrap(true);
    form->addRow(QStringLiteral("Homebrew Root"), m_root);
    layout->addLayout(form);
    m_rootErrorRow = errorRow(m_rootError, QStringLiteral("homebrewRootErrorLabel"));
    layout->addWidget(m_rootErrorRow);
    auto* buttons = new QHBoxLayout;
    m_chooseRoot = new QPushButton(QStringLiteral("Choose"), section);
    m_chooseRoot->setObjectName(QStringLiteral("chooseHomebrewRootPushButton"));
    m_removeRoot = new QPushButton(QStringLiteral("Remove Authorization"), section);
    m_removeRoot->setObjectName(QStringLiteral("removeHomebrewRootPushButton"));
    buttons->addStretch();
    buttons->addWidget(m_chooseRoot);
    buttons->addWidget(m_removeRoot);
    layout->addLayout(buttons);
    layout->addWidget(footerLabel(QStringLiteral("The app only reads Cellar and Caskroom inside this folder. Changing "
                                                 "or removing authorization does not modify installed software."),
                                  section));

    HomebrewInstalledPackagesStore& store = m_stores.homebrewInstalledPackagesStore;
    connect(m_chooseRoot, &QPushButton::clicked, &store, &HomebrewInstalledPackagesStore::chooseRoot);
    connect(m_removeRoot, &QPushButton::clicked, &store, &HomebrewInstalledPackagesStore::removeAuthorization);
    connect(&store, &HomebrewInstalledPackagesStore::stateChanged, this, &SettingsHomebrewTab::refreshInstalled);
    return section;
}

void SettingsHomebrewTab::refreshCatalog()
{
    const HomebrewCatalogStore& store = m_stores.homebrewCatalogStore;
    m_lastChecked->setText(dateText(store.lastCheckDate()));
    m_lastSuccess->setText(dateText(store.lastSuccessfulRefreshDate()));
    m_catalogErrorRow->setVisible(store.refreshErrorMessage().has_value());
    m_catalogError->setText(store.refreshErrorMessage().value_or(QString()));
    m_forceRefresh->setText(store.isRefreshing() ? QStringLiteral("Refreshing") : QStringLiteral("Force Refresh"));
    m_forceRefresh->setEnabled(!store.isRefreshing());
}

void SettingsHomebrewTab::refreshInstalled()
{
    const HomebrewInstalledPackagesStore& store = m_stores.homebrewInstalledPackagesStore;
    m_root->setText(store.rootURL().value_or(QStringLiteral("Not Selected")));
    m_rootErrorRow->setVisible(store.errorMessage().has_value());
    m_rootError->setText(store.errorMessage().value_or(QString()));
    const bool busy = store.isScanning() || store.isChoosingRoot();
    m_chooseRoot->setEnabled(!busy);
    m_removeRoot->setEnabled(!busy && store.isAuthorized());
}

} // namespace quillbay
