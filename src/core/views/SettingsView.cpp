#include "core/views/SettingsView.h"

#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/SettingsGeneralTab.h"
#include "core/views/SettingsHomebrewTab.h"
#include "core/views/SettingsXcodeTab.h"
#include "core/views/SymbolIcons.h"
#include "core/views/WidgetAlerts.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

namespace quillbay {

namespace {

// A tab's content scrolls when the window is shorter than it.
QWidget* scrolling(QWidget* content)
{
    auto* area = new QScrollArea;
    area->setWidget(content);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return area;
}

} // namespace

SettingsStores SettingsStores::from(QuillbayApp& app)
{
    return {app.defaults(),
            app.viewModel(),
            app.savedSpaceStore(),
            app.engagementPromptStore(),
            app.homebrewCatalogStore(),
            app.homebrewInstalledPackagesStore(),
            app.homebrewCacheCleanupStore(),
            app.pickers(),
            app.workspace()};
}

SettingsView::SettingsView(QuillbayApp& app, QWidget* parent)
    : SettingsView(SettingsStores::from(app), parent)
{
}

SettingsView::SettingsView(const SettingsStores& stores, QWidget* parent)
    : QDialog(parent)
    , m_stores(stores)
    , m_alerts(std::make_unique<WidgetAlerts>(this))
    , m_tabs(new QTabWidget(this))
{
    setObjectName(QStringLiteral("settingsView"));
    setWindowTitle(QStringLiteral("Settings"));
    setModal(false);
    // A tool window of its own, not a sheet: it stays open beside the main window.
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* layout = new QVBoxLayout(this);
    m_tabs->setObjectName(QStringLiteral("settingsTabWidget"));
    m_tabs->setDocumentMode(true);
    m_tabs->addTab(scrolling(new SettingsGeneralTab(m_stores)), symbolIcon(QStringLiteral("gearshape")),
                   QStringLiteral("General"));
    m_tabs->addTab(scrolling(new SettingsXcodeTab(m_stores, [this] { preparePanels(); })),
                   symbolIcon(QStringLiteral("hammer")), QStringLiteral("Xcode"));
    m_tabs->addTab(scrolling(new SettingsHomebrewTab(m_stores)), symbolIcon(QStringLiteral("shippingbox")),
                   QStringLiteral("Homebrew"));
    layout->addWidget(m_tabs);
    resize(580, 700);

    connect(&m_stores.viewModel, &AppViewModel::settingViewAlertChanged, this, &SettingsView::presentSettingAlert);
}

SettingsView::~SettingsView()
{
    // The alerts given to the store die with this window.
    m_stores.viewModel.setCleanupPanels(nullptr, nullptr);
}

void SettingsView::preparePanels()
{
    // The Developer folder and custom folder choices ask through these; set right before
    // each, as the cleanup screen installs its own when it is built.
    m_stores.viewModel.setCleanupPanels(&m_stores.pickers, m_alerts.get());
}

void SettingsView::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    m_stores.homebrewCatalogStore.loadIfNeeded();
    if (!m_stores.homebrewInstalledPackagesStore.hasLoadedAuthorization())
        m_stores.homebrewInstalledPackagesStore.loadAuthorization();
    m_stores.homebrewCacheCleanupStore.loadAuthorization();
}

void SettingsView::presentSettingAlert()
{
    AppViewModel& model = m_stores.viewModel;
    if (!model.settingViewAlert() || m_isShowingAlert)
        return;
    m_isShowingAlert = true;
    m_alerts->show({model.settingViewAlertTitle(), model.settingViewAlertMessage(), {QStringLiteral("OK")}},
                   [this](int) {
                       m_isShowingAlert = false;
                       m_stores.viewModel.dismissSettingViewAlert();
                   });
}

} // namespace quillbay
