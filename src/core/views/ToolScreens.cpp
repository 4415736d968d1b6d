#include "core/views/ToolScreens.h"

#include "core/QuillbayApp.h"
#include "core/views/ComingSoonPanel.h"

namespace quillbay {

QWidget* createToolScreen(Tool tool, QuillbayApp& app, QWidget* parent)
{
    Q_UNUSED(app);
    switch (tool) {
    case Tool::xcodeReleases:
    case Tool::assetsMaker:
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
