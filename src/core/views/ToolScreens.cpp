#include "core/views/ToolScreens.h"

#include "assets_maker/views/AssetsMakerView.h"
#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/ComingSoonPanel.h"
#include "core/views/WidgetPickers.h"
#include "homebrew_cache/views/HomebrewCacheCleanupView.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "xcode_cleanup/views/CleanupView.h"
#include "xcode_releases/views/XcodeReleasesView.h"

namespace quillbay {

QWidget* createToolScreen(Tool tool, QuillbayApp& app, QWidget* parent)
{
    switch (tool) {
    case Tool::homebrewCleanup:
        return new HomebrewCacheCleanupView(app.homebrewCacheCleanupStore(), parent);
    case Tool::assetsMaker:
        return new AssetsMakerView(app.viewModel(), std::make_unique<WidgetPickers>(parent), parent);
    case Tool::xcodeCleanup:
        return new CleanupView(app.viewModel(), parent);
    case Tool::xcodeReleases:
        return new XcodeReleasesView(app.viewModel(), parent);
    case Tool::homebrewCatalog:
        return new HomebrewCatalogView(app.homebrewCatalogStore(), app.workspace(),
                                       &app.homebrewInstalledPackagesStore(), parent);
    case Tool::homebrewInstalled:
        break;
    }
    const SidebarItem& item = sidebarItem(tool);
    return new ComingSoonPanel(item.title, item.systemImage, parent);
}

} // namespace quillbay
