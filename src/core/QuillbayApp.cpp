#include "core/QuillbayApp.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QProcess>

#include "VersionChecking/PlatformUpdateURLOpener.h"
#include "VersionChecking/VersionManager.h"
#include "core/AppViewModel.h"
#include "core/state/SavedSpaceStore.h"
#include "engagement/EngagementPromptPresenter.h"
#include "engagement/EngagementPromptStore.h"
#include "engagement/PurchaseService.h"
#include "foundation/BuildConfig.h"
#include "foundation/Defaults.h"
#include "foundation/Secrets.h"
#include "homebrew_cache/HomebrewCacheCleanupStore.h"
#include "homebrew_catalog/HomebrewAPIClient.h"
#include "homebrew_catalog/HomebrewCacheService.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstallationBookmarkService.h"
#include "homebrew_installed/HomebrewInstallationScanner.h"
#include "homebrew_installed/HomebrewInstalledCatalogLink.h"
#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/Pickers.h"
#include "platform/ReviewRequest.h"
#include "platform/TipStore.h"
#include "platform/UserPaths.h"
#include "platform/Workspace.h"

namespace quillbay {

namespace {

class CancellingPickers final : public Pickers
{
public:
    void chooseFolder(const FolderRequest&, Answer answer) override { answer(std::nullopt); }
    void chooseSaveLocation(const SaveRequest&, Answer answer) override { answer(std::nullopt); }
};

} // namespace

QuillbayApp::QuillbayApp(std::unique_ptr<Defaults> defaults, std::unique_ptr<Pickers> pickers, QObject* parent)
    : QObject(parent)
    , m_defaults(std::move(defaults))
    , m_pickers(pickers ? std::move(pickers) : std::make_unique<CancellingPickers>())
    , m_workspace(Workspace::createSystem())
{
    // The order matters: later stores take references to earlier ones.
    buildHomebrewStores();
    buildVersionManager();
    m_savedSpaceStore = std::make_unique<SavedSpaceStore>(*m_defaults, QLatin1String(SavedSpaceStore::defaultKey));
    buildEngagement();
    m_viewModel = std::make_unique<AppViewModel>(*m_defaults, *m_savedSpaceStore);
    m_viewModel->setCleanupPlatform(UserPaths::system(), m_workspace.get());
    connect(m_viewModel.get(), &AppViewModel::successfulActionCompleted, m_engagementPromptStore.get(),
            &EngagementPromptStore::recordSuccessfulAction);
    m_homebrewCacheCleanupStore = std::make_unique<HomebrewCacheCleanupStore>(HomebrewCacheCleanupServices {
        *m_defaults, *m_savedSpaceStore, *m_pickers, UserPaths::system(),
        [this](const QDateTime& when) { m_engagementPromptStore->recordSuccessfulAction(when); }});
    m_viewModel->setAssetsWorkspace(m_workspace.get());
}

void QuillbayApp::buildHomebrewStores()
{
    const UserPaths paths = UserPaths::system();
    auto client = std::make_unique<HomebrewAPIClient>(
        HomebrewAPIClient::defaultConfiguration(),
        std::make_unique<HomebrewCacheService>(paths.programCacheFolder() + QStringLiteral("/HomebrewCatalog")));
    m_homebrewCatalogStore
        = std::make_unique<HomebrewCatalogStore>(std::move(client), HomebrewCatalogProcessor(), *m_defaults);
    m_homebrewInstalledPackagesStore = std::make_unique<HomebrewInstalledPackagesStore>(
        *m_defaults, QLatin1String(HomebrewInstalledPackagesStore::rootBookmarkKey),
        std::make_unique<HomebrewInstallationBookmarkService>(), std::make_unique<HomebrewInstallationScanner>(),
        std::make_unique<HomebrewInstalledPackageProcessor>(), *m_pickers, *m_workspace, paths);
    followCatalog(*m_homebrewInstalledPackagesStore, *m_homebrewCatalogStore);
}

// --- Updates and engagement -----------------------------------------------------------

void QuillbayApp::buildVersionManager()
{
    m_network = std::make_unique<QNetworkAccessManager>();
    const auto configuration = VersionCheckConfiguration::make(
        QStringLiteral(QUILLBAY_UPDATE_URL), secrets::updateSecret.unmask(), QStringLiteral(QUILLBAY_APP_ID));
    m_hasVersionCheckConfiguration = configuration.has_value();
    Workspace& workspace = *m_workspace;
    const PlatformUpdateURLOpener opener({
        [&workspace](const QString& identifier) { return workspace.applicationPath(identifier); },
        [](const QUrl& url, const QString& application) -> std::optional<QString> {
            if (QProcess::startDetached(application, {url.toString()}))
                return std::nullopt;
            return QStringLiteral("could not start %1").arg(application);
        },
        [&workspace](const QUrl& url) { workspace.openUrl(url); },
    });
    m_versionManager = std::make_unique<VersionManager>(
        VersionCheckClient(VersionCheckConfiguration::orDisabled(configuration), *m_network),
        QStringLiteral(QUILLBAY_VERSION), [opener](const QUrl& url) { opener.open(url); });
    connect(m_versionManager.get(), &VersionManager::updateInfoChanged, this, [this] {
        // Only a required update matters here; whether one is "available" plays no part.
        const bool presented = m_versionManager->isForceUpdateRequired();
        if (presented == m_isForceUpdateAlertPresented)
            return;
        m_isForceUpdateAlertPresented = presented;
        emit forceUpdateAlertPresentedChanged(presented);
    });
}

void QuillbayApp::buildEngagement()
{
    m_engagementPromptStore = std::make_unique<EngagementPromptStore>(*m_defaults, QStringLiteral(QUILLBAY_VERSION));
    m_tipStore = TipStore::createSystem();
    m_purchaseService = std::make_unique<PurchaseService>(*m_tipStore, *m_engagementPromptStore);
    m_reviewRequest = ReviewRequest::createSystem();
    EngagementPromptPresenter::Environment environment;
    environment.requestReview = [this] { m_reviewRequest->requestReview(); };
    m_engagementPromptPresenter
        = std::make_unique<EngagementPromptPresenter>(*m_engagementPromptStore, std::move(environment));
}

void QuillbayApp::quitApplication()
{
    if (m_quit)
        m_quit();
    else
        QCoreApplication::exit(0);
}

// ----------------------------------------------------------------------------------------

QuillbayApp::~QuillbayApp()
{
    shutdown();
    m_homebrewCacheCleanupStore.reset();
    m_viewModel.reset();
    m_engagementPromptPresenter.reset();
    m_purchaseService.reset();
    m_engagementPromptStore.reset();
    m_savedSpaceStore.reset();
    m_versionManager.reset();
    m_homebrewInstalledPackagesStore.reset();
    m_homebrewCatalogStore.reset();
}

void QuillbayApp::windowDidAppear()
{
    AppViewModel::applyAppearance(m_viewModel->appearanceIndex());
    if (m_didCheckVersion)
        return;
    m_didCheckVersion = true;
    if (m_hasVersionCheckConfiguration)
        m_versionManager->startCheck();
}

void QuillbayApp::shutdown()
{
    if (m_isShutDown)
        return;
    m_isShutDown = true;
    m_homebrewCacheCleanupStore->drain();
}

} // namespace quillbay
