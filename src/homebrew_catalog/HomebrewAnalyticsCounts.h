#pragma once

#include <QtGlobal>
#include <optional>

namespace quillbay {

// Installs in three periods. An absent count is not zero: zero sorts above absent.
struct HomebrewAnalyticsCounts
{
    std::optional<qint64> thirtyDays;
    std::optional<qint64> ninetyDays;
    std::optional<qint64> threeHundredSixtyFiveDays;

    friend bool operator==(const HomebrewAnalyticsCounts&, const HomebrewAnalyticsCounts&) = default;
};

} // namespace quillbay
