#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "platform/Pickers.h"
class QNetworkAccessManager;

namespace quillbay {

class AppViewModel;
class Defaults;
class HomebrewCacheCleanupStore;
class HomebrewCatalogStore;
class HomebrewInstalledPackagesStore;

class EngagementPromptPresenter;
class EngagementPromptStore;
class PurchaseService;
class ReviewRequest;
class SavedSpaceStore;
class TipStore;
class VersionManager;
class Workspace;

// The composition root: builds every long-lived store once, in a fixed order, and owns
// them for the length of the process. Screens receive references. UI thread only.
//
// Shutdown runs in the reverse order of construction, after every running task was
// asked to stop and every executor drained, because a continuation's context must
// outlive the future that resumes on it.
class QuillbayApp : public QObject
{
    Q_OBJECT

public:
    // Without pickers (tests of other screens), folder panels answer as if cancelled.
    explicit QuillbayApp(std::unique_ptr<Defaults> defaults,
                         std::unique_ptr<Pickers> pickers = nullptr,
                         QObject* parent = nullptr);
    ~QuillbayApp() override;

    Defaults& defaults() const { return *m_defaults; }
    SavedSpaceStore& savedSpaceStore() const { return *m_savedSpaceStore; }
    AppViewModel& viewModel() const { return *m_viewModel; }
    Pickers& pickers() const { return *m_pickers; }
    HomebrewCacheCleanupStore& homebrewCacheCleanupStore() const { return *m_homebrewCacheCleanupStore; }
    HomebrewCatalogStore& homebrewCatalogStore() const { return *m_homebrewCatalogStore; }
    HomebrewInstalledPackagesStore& homebrewInstalledPackagesStore() const { return *m_homebrewInstalledPackagesStore; }
    Workspace& workspace() const { return *m_workspace; }

    bool didCheckVersion() const { return m_didCheckVersion; }

    // --- Updates and engagement -------------------------------------------------------
    VersionManager& versionManager() const { return *m_versionManager; }
    EngagementPromptStore& engagementPromptStore() const { return *m_engagementPromptStore; }
    PurchaseService& purchaseService() const { return *m_purchaseService; }
    // False when the build carries no usable update-service configuration: no check runs.
    bool hasVersionCheckConfiguration() const { return m_hasVersionCheckConfiguration; }
    // True while a required update is known; the window shows its alert.
    bool isForceUpdateAlertPresented() const { return m_isForceUpdateAlertPresented; }
    // Ends the process (the forced-update alert, "Quit"); tests replace it.
    void quitApplication();
    void setQuitAction(std::function<void()> quit) { m_quit = std::move(quit); }

    // Called when the main window first appears: the once-per-process start-up work.
    void windowDidAppear();

    // Stops every running task and waits for the executors, before anything is deleted.
    void shutdown();

signals:
    void forceUpdateAlertPresentedChanged(bool presented);

private:
    void buildHomebrewStores();
    void buildVersionManager();
    void buildEngagement();

    std::unique_ptr<Defaults> m_defaults;
    std::unique_ptr<Pickers> m_pickers;
    // --- Updates and engagement -------------------------------------------------------
    std::unique_ptr<Workspace> m_workspace;
    // Built first: nothing in them starts until their screens appear.
    std::unique_ptr<HomebrewCatalogStore> m_homebrewCatalogStore;
    std::unique_ptr<HomebrewInstalledPackagesStore> m_homebrewInstalledPackagesStore;
    std::unique_ptr<QNetworkAccessManager> m_network;
    std::unique_ptr<VersionManager> m_versionManager;
    bool m_hasVersionCheckConfiguration = false;
    bool m_isForceUpdateAlertPresented = false;
    std::function<void()> m_quit;
    // ------------------------------------------------------------------------------------
    std::unique_ptr<SavedSpaceStore> m_savedSpaceStore;
    // --- Updates and engagement -------------------------------------------------------
    std::unique_ptr<EngagementPromptStore> m_engagementPromptStore;
    std::unique_ptr<TipStore> m_tipStore;
    std::unique_ptr<PurchaseService> m_purchaseService;
    std::unique_ptr<ReviewRequest> m_reviewRequest;
    std::unique_ptr<EngagementPromptPresenter> m_engagementPromptPresenter;
    // ------------------------------------------------------------------------------------
    std::unique_ptr<AppViewModel> m_viewModel;
    std::unique_ptr<HomebrewCacheCleanupStore> m_homebrewCacheCleanupStore;
    bool m_didCheckVersion = false;
    bool m_isShutDown = false;
};

} // namespace quillbay
