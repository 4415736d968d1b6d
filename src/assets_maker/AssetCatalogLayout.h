#pragma once

#include <QString>

namespace quillbay {

// Where the maker finds its templates and where each generated set goes, relative to the
// folder the user chose.
namespace AssetCatalogLayout {

inline QString macOSTemplateFileName()
{
    return QStringLiteral("macOS_contents.json");
}
inline QString macOSSetFolder()
{
    return QStringLiteral("macOS/AppIcon.appiconset");
}
inline QString iOSSetFolder()
{
    return QStringLiteral("iOS/AppIcon.appiconset");
}
inline QString watchOSSetFolder()
{
    return QStringLiteral("watchOS/AppIcon.appiconset");
}
inline QString mergedSetFolder()
{
    return QStringLiteral("iOS&watchOS/AppIcon.appiconset");
}
inline QString contentsFileName()
{
    return QStringLiteral("Contents.json");
}

// The five templates shipped inside the program ("AssetContents" in its resources).
QString bundledTemplateFolder();

} // namespace AssetCatalogLayout

} // namespace quillbay
