#include "core/views/ToolScreens.h"

#include "core/AppViewModel.h"
#include "core/QuillbayApp.h"
#include "core/views/ComingSoonPanel.h"
#include "xcode_cleanup/views/CleanupView.h"

namespace quillbay {

QWidget* createToolScreen(Tool tool, QuillbayApp& app, QWidget* parent)
{
    switch (tool) {
    case Tool::xcodeCleanup:
        return new CleanupView(app.viewModel(), parent);
    case Tool::xcodeReleases:
    case Tool::assetsMaker:
    case Tool::homebrewCatalog:
    case Tool::homebrewInstalled:
    case Tool::homebrewCleanup:
        break;
    }
    const SidebarItem& item = sidebarItem(tool);
    return new ComingSoonPanel(item.title, item.systemImage, parent);
}

} // namespace quillbay
