#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QWidget>
#include <cstdio>
#include <functional>
#include <utility>
#include <vector>

#include "core/views/SymbolIcons.h"
#include "tools/screenshots/Screenshots.h"

namespace quillbay::screenshots {

void save(QWidget* widget, const QString& outDir, const QString& name)
{
    widget->ensurePolished();
    if (!widget->isVisible())
        widget->show();
    QCoreApplication::processEvents();
    const QString file = QDir(outDir).filePath(name + QStringLiteral(".png"));
    if (!widget->grab().save(file))
        std::fprintf(stderr, "could not write %s\n", qPrintable(file));
    else
        std::printf("%s\n", qPrintable(file));
}

} // namespace quillbay::screenshots

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QuillbayScreenshots"));
    QApplication::setStyle(QStringLiteral("Fusion"));
    quillbay::installIconTheme();
    const QString outDir = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("screenshots");
    QDir().mkpath(outDir);

    using Renderer = std::function<void(const QString&)>;
    const std::vector<std::pair<const char*, Renderer>> renderers {
        {"shell", quillbay::screenshots::renderShellScreenshots},
        {"xcode releases", quillbay::screenshots::renderXcodeReleasesScreenshots},
        {"homebrew-cache", quillbay::screenshots::renderHomebrewCacheScreenshots},
        {"homebrew-installed", quillbay::screenshots::renderHomebrewInstalledScreenshots},
        {"engagement", quillbay::screenshots::renderEngagementScreenshots},
        {"xcode-cleanup", quillbay::screenshots::renderXcodeCleanupScreenshots},
        {"assets-maker", quillbay::screenshots::renderAssetsMakerScreenshots},
        {"settings", quillbay::screenshots::renderSettingsScreenshots},
        {"homebrew-catalog", quillbay::screenshots::renderHomebrewCatalogScreenshots},
    };
    for (const auto& [name, render] : renderers) {
        std::printf("== %s\n", name);
        render(outDir);
    }
    return 0;
}
