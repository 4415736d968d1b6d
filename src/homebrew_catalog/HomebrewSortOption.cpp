#include "homebrew_catalog/HomebrewSortOption.h"

namespace quillbay {

QString rawValue(HomebrewSortOption option)
{
    switch (option) {
    case HomebrewSortOption::installs30Days:
        return QStringLiteral("installs30Days");
    case HomebrewSortOption::installs90Days:
        return QStringLiteral("installs90Days");
    case HomebrewSortOption::installs365Days:
        return QStringLiteral("installs365Days");
    case HomebrewSortOption::nameAscending:
        return QStringLiteral("nameAscending");
    case HomebrewSortOption::nameDescending:
        return QStringLiteral("nameDescending");
    }
    return {};
}

QString sortOptionTitle(HomebrewSortOption option)
{
    switch (option) {
    case HomebrewSortOption::installs30Days:
        return QStringLiteral("30-Day Installs");
    case HomebrewSortOption::installs90Days:
        return QStringLiteral("90-Day Installs");
    case HomebrewSortOption::installs365Days:
        return QStringLiteral("365-Day Installs");
    case HomebrewSortOption::nameAscending:
        return QStringLiteral("Name (A\u2013Z)");
    case HomebrewSortOption::nameDescending:
        return QStringLiteral("Name (Z\u2013A)");
    }
    return {};
}

std::optional<HomebrewSortOption> sortOptionFromRawValue(QStringView text)
{
    for (const HomebrewSortOption option : allSortOptions)
        if (rawValue(option) == text)
            return option;
    return std::nullopt;
}

} // namespace quillbay
