#pragma once

#include <QString>
#include <array>

namespace quillbay {

// The optional columns of the catalog tables, in the order they stand; "Name" is always
// shown first and is not one of them.
enum class HomebrewCatalogColumn { description, currentVersion, thirtyDays, ninetyDays, threeHundredSixtyFiveDays };

inline constexpr std::array<HomebrewCatalogColumn, 5> allCatalogColumns {
    HomebrewCatalogColumn::description, HomebrewCatalogColumn::currentVersion, HomebrewCatalogColumn::thirtyDays,
    HomebrewCatalogColumn::ninetyDays, HomebrewCatalogColumn::threeHundredSixtyFiveDays};

inline QString columnHeader(HomebrewCatalogColumn column)
{
    switch (column) {
    case HomebrewCatalogColumn::description:
        return QStringLiteral("Description");
    case HomebrewCatalogColumn::currentVersion:
        return QStringLiteral("Current Version");
    case HomebrewCatalogColumn::thirtyDays:
        return QStringLiteral("30 Days");
    case HomebrewCatalogColumn::ninetyDays:
        return QStringLiteral("90 Days");
    case HomebrewCatalogColumn::threeHundredSixtyFiveDays:
        return QStringLiteral("365 Days");
    }
    return {};
}

struct HomebrewColumnWidth
{
    int minimum;
    int ideal;
};

inline HomebrewColumnWidth columnWidth(HomebrewCatalogColumn column)
{
    switch (column) {
    case HomebrewCatalogColumn::description:
        return {220, 360};
    case HomebrewCatalogColumn::currentVersion:
        return {110, 140};
    default:
        return {78, 90};
    }
}

} // namespace quillbay
