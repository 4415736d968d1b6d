#pragma once

namespace quillbay {

class AppViewModel;
class Defaults;
class EngagementPromptStore;
class HomebrewCacheCleanupStore;
class HomebrewCatalogStore;
class HomebrewInstalledPackagesStore;
class Pickers;
class QuillbayApp;
class SavedSpaceStore;
class Workspace;

// Everything the settings window reads and changes: the stores of every tool, the stored
// choices themselves, and the folder panel. Usually all taken from the application.
struct SettingsStores
{
    Defaults& defaults;
    AppViewModel& viewModel;
    SavedSpaceStore& savedSpaceStore;
    EngagementPromptStore& engagementPromptStore;
    HomebrewCatalogStore& homebrewCatalogStore;
    HomebrewInstalledPackagesStore& homebrewInstalledPackagesStore;
    HomebrewCacheCleanupStore& homebrewCacheCleanupStore;
    Pickers& pickers;
    Workspace& workspace;

    static SettingsStores from(QuillbayApp& app);
};

} // namespace quillbay
