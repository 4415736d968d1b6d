#pragma once

#include <QString>

class QWidget;

namespace quillbay::screenshots {

// Saves the widget, laid out and painted offscreen, as <outDir>/<name>.png.
void save(QWidget* widget, const QString& outDir, const QString& name);

void renderShellScreenshots(const QString& outDir);
void renderXcodeReleasesScreenshots(const QString& outDir);
void renderHomebrewCacheScreenshots(const QString& outDir);
void renderHomebrewInstalledScreenshots(const QString& outDir);
void renderEngagementScreenshots(const QString& outDir);
void renderXcodeCleanupScreenshots(const QString& outDir);
void renderAssetsMakerScreenshots(const QString& outDir);
void renderSettingsScreenshots(const QString& outDir);
void renderHomebrewCatalogScreenshots(const QString& outDir);

} // namespace quillbay::screenshots
