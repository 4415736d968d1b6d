#pragma once

namespace quillbay {

class HomebrewCatalogStore;
class HomebrewInstalledPackagesStore;

// Keeps the installed rows joined with the catalog: each time the catalog store raises its
// generation, the installed store takes the catalog's rows by route and re-joins them with
// what was scanned, without a rescan. The connection lives as long as both stores.
void followCatalog(HomebrewInstalledPackagesStore& installed, HomebrewCatalogStore& catalog);

} // namespace quillbay
