#pragma once

#include <QString>
#include <array>
#include <optional>

namespace quillbay {

// The orders of the catalog tables, in the order the sort menu lists them.
enum class HomebrewSortOption { installs30Days, installs90Days, installs365Days, nameAscending, nameDescending };

inline constexpr std::array<HomebrewSortOption, 5> allSortOptions {
    HomebrewSortOption::installs30Days, HomebrewSortOption::installs90Days, HomebrewSortOption::installs365Days,
    HomebrewSortOption::nameAscending, HomebrewSortOption::nameDescending};

QString rawValue(HomebrewSortOption option);
QString sortOptionTitle(HomebrewSortOption option);
std::optional<HomebrewSortOption> sortOptionFromRawValue(QStringView text);

} // namespace quillbay
