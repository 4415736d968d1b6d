#include "core/views/ToolScreens.h"

#include "assets_maker/views/AssetsMakerView.h"
#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/ComingSoonPanel.h"
#include "core/views/WidgetPickers.h"
#include "homebrew_cache/views/HomebrewCacheCleanupView.h"
#include "homebrew_catalog/views/HomebrewCatalogView.h"
#include "homebrew_catalog/views/HomebrewPackageDetailView.h"
#include "homebrew_installed/views/HomebrewInstalledPackagesView.h"
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
    case Tool::homebrewInstalled: {
        auto* screen = new HomebrewInstalledPackagesView(app.homebrewInstalledPackagesStore(),
                                                         app.homebrewCatalogStore(), parent);
        // The whole package page, catalog data under the installed sections; its own
        // "Back" on the first route returns to the list.
        screen->setPackagePageFactory([&app, screen](const HomebrewPackageRoute& route,
                                                     const std::optional<HomebrewInstalledPackage>& installedPackage,
                                                     QWidget* pageParent) -> QWidget* {
            auto* page
                = new HomebrewPackageDetailView(app.homebrewCatalogStore(), app.workspace(), route, installedPackage,
                                                &app.homebrewInstalledPackagesStore(), pageParent);
            // Queued: going back deletes the page, which is still sending the signal.
            QObject::connect(page, &HomebrewPackageDetailView::closeRequested, screen,
                             &HomebrewInstalledPackagesView::goBack, Qt::QueuedConnection);
            return page;
        });
        return screen;
    }
    }
    const SidebarItem& item = sidebarItem(tool);
    return new ComingSoonPanel(item.title, item.systemImage, parent);
}

} // namespace quillbay
