#pragma once

#include <QList>
#include <set>

#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_installed/HomebrewInstalledPackage.h"

namespace quillbay {

// What one scan of a Homebrew root found: every version folder as a row (casks first, then
// formulae, each in listing order, none joined with the catalog yet), and the kinds whose
// folders could not be listed completely. A kind in unreadableKinds contributes no rows.
struct HomebrewInstallationScanResult
{
    QList<HomebrewInstalledPackage> packages;
    std::set<HomebrewCatalogKind> unreadableKinds;
};

} // namespace quillbay
