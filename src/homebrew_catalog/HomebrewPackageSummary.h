#pragma once

#include <QString>
#include <QStringList>

#include "homebrew_catalog/HomebrewAnalyticsCounts.h"
#include "homebrew_catalog/HomebrewPackageRoute.h"

namespace quillbay {

// One row of the catalog, as the snapshot delivered it.
struct HomebrewPackageSummary
{
    HomebrewCatalogKind kind = HomebrewCatalogKind::formula;
    QString identifier;
    QString displayName;
    QStringList aliases;
    QString summary;
    QString version;
    HomebrewAnalyticsCounts analytics;
    bool isDeprecated = false;
    bool isDisabled = false;

    friend bool operator==(const HomebrewPackageSummary&, const HomebrewPackageSummary&) = default;

    QString id() const { return rawValue(kind) + u':' + identifier; }
    HomebrewPackageRoute route() const { return {kind, identifier}; }
};

} // namespace quillbay
