#pragma once

#include <QString>
#include <optional>

#include "homebrew_installed/HomebrewInstalledPackage.h"

namespace quillbay {

// What the table and the package page show for a package's update status.
struct HomebrewInstalledStatusLabel
{
    QString text;
    QString systemImage;

    static HomebrewInstalledStatusLabel of(const HomebrewInstalledPackage& package)
    {
        const std::optional<bool> outdated = package.isPossiblyOutdated();
        if (!outdated)
            return {QStringLiteral("Status Unknown"), QStringLiteral("questionmark.circle")};
        if (*outdated)
            return {QStringLiteral("Possibly Outdated"),
                    QStringLiteral("arrow.trianglehead.2.clockwise.rotate.90.circle")};
        return {QStringLiteral("Up to Date"), QStringLiteral("checkmark.circle")};
    }
};

// The catalog's version of the package, or a dash when the catalog has none to offer.
inline QString catalogVersionText(const HomebrewInstalledPackage& package)
{
    if (!package.catalogSummary || package.catalogSummary->version.isEmpty())
        return QStringLiteral("—");
    return package.catalogSummary->version;
}

} // namespace quillbay
