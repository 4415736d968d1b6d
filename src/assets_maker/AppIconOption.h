#pragma once

#include <QString>
#include <array>
#include <optional>

namespace quillbay {

// How many icons a platform gets. macOS offers only none and allSize.
enum class AppIconOption {
    none,
    singleSize,
    allSize,
};

inline constexpr std::array<AppIconOption, 3> allAppIconOptions {AppIconOption::none, AppIconOption::singleSize,
                                                                 AppIconOption::allSize};

// "None", "Single Size", "All Size".
QString appIconOptionText(AppIconOption option);

// The template of an iOS or watchOS option: the platform's word ("iOS", "watchOS") and
// "_single_contents" or "_allSize_contents", without ".json"; absent for none.
std::optional<QString> appIconTemplateName(AppIconOption option, const QString& platformWord);

} // namespace quillbay
