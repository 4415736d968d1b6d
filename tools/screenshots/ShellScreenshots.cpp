#include <QTemporaryDir>

#include "core/QuillbayApp.h"
#include "core/views/ContentView.h"
#include "core/views/SidebarItem.h"
#include "foundation/Defaults.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

void renderShellScreenshots(const QString& outDir)
{
    QTemporaryDir home;
    QuillbayApp app(std::make_unique<SettingsDefaults>(home.filePath(QStringLiteral("defaults.ini"))));
    ContentView window(app);
    window.resize(1180, 760);
    const std::pair<Tool, const char*> tools[] = {
        {Tool::xcodeReleases, "shell-xcode-releases"},         {Tool::assetsMaker, "shell-xcode-assets-maker"},
        {Tool::xcodeCleanup, "shell-xcode-cleanup"},           {Tool::homebrewCatalog, "shell-homebrew-catalog"},
        {Tool::homebrewInstalled, "shell-homebrew-installed"}, {Tool::homebrewCleanup, "shell-homebrew-cleanup"},
    };
    for (const auto& [tool, name] : tools) {
        window.select(sidebarItem(tool).id);
        save(&window, outDir, QLatin1String(name));
    }
}

} // namespace quillbay::screenshots
