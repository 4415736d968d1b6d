#include "homebrew_installed/HomebrewInstalledCatalogLink.h"

#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

namespace quillbay {

void followCatalog(HomebrewInstalledPackagesStore& installed, HomebrewCatalogStore& catalog)
{
    // The generation also rises when only the catalog's sort changed; the rows are then
    // the same shared table, which the installed store recognises and skips.
    QObject::connect(&catalog, &HomebrewCatalogStore::catalogGenerationChanged, &installed,
                     [&installed, &catalog] { installed.updateCatalogSummaries(catalog.summariesByRoute()); });
}

} // namespace quillbay
