#include "core/views/ToolScreens.h"

#include "assets_maker/views/AssetsMakerView.h"
#include "core/QuillbayApp.h"
#include "core/views/ComingSoonPanel.h"
#include "core/views/WidgetPickers.h"

namespace quillbay {

QWidget* createToolScreen(Tool tool, QuillbayApp& app, QWidget* parent)
{
    switch (tool) {
    case Tool::assetsMaker:
        return new AssetsMakerView(app.viewModel(), std::make_unique<WidgetPickers>(parent), parent);
    case Tool::xcodeReleases:
    case Tool::xcodeCleanup:
    case Tool::homebrewCatalog:
    case Tool::homebrewInstalled:
    case Tool::homebrewCleanup:
        break;
    }
    const SidebarItem& item = sidebarItem(tool);
    return new ComingSoonPanel(item.title, item.systemImage, parent);
}

} // namespace quillbay
