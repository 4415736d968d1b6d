#pragma once

#include <QHash>
#include <QString>
#include <optional>

#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_catalog/HomebrewPackageRoute.h"
#include "homebrew_catalog/HomebrewPackageSummary.h"

namespace quillbay {

// The catalog rows by route, as the catalog store keeps them; one lookup per installed row.
using HomebrewPackageSummaries = QHash<HomebrewPackageRoute, HomebrewPackageSummary>;

// One version folder of an installed package: Cellar/<identifier>/<installedVersion> or
// Caskroom/<identifier>/<installedVersion>. Only folder names are known; the catalog data
// is joined in later and may be missing.
struct HomebrewInstalledPackage
{
    HomebrewCatalogKind kind = HomebrewCatalogKind::formula;
    QString identifier;
    QString installedVersion;
    // Absolute path of the version folder, below the root as the user picked it (links in
    // the root's own path are kept, so it reads the way the user knows it).
    QString installationURL;
    std::optional<HomebrewPackageSummary> catalogSummary;

    friend bool operator==(const HomebrewInstalledPackage&, const HomebrewInstalledPackage&) = default;

    // "formula:wget:1.24.5:/opt/homebrew/Cellar/wget/1.24.5"; unique across both kinds and
    // all kept versions.
    QString id() const;
    HomebrewPackageRoute route() const { return {kind, identifier}; }
    QString displayName() const;

    // Unknown without a catalog version. Otherwise a plain text comparison: any difference
    // counts, also an installed version newer than the catalog's or spelled differently,
    // which is why the screens only say "possibly".
    std::optional<bool> isPossiblyOutdated() const;

    QString upgradeCommand() const;
    QString uninstallCommand() const;

    // Whether an already trimmed, non-empty query occurs in one of the searched texts,
    // ignoring case and diacritics. An empty query matches everything.
    bool matches(const QString& query) const;
};

// The text as one shell word: unchanged when it is made only of letters, marks, digits (of
// any script) and "@%_+=:,./-", otherwise single-quoted with every "'" closed, escaped in
// double quotes and reopened. The empty text becomes ''.
QString shellQuoted(const QString& text);

} // namespace quillbay
