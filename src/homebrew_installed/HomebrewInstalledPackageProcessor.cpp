#include "homebrew_installed/HomebrewInstalledPackageProcessor.h"

#include <algorithm>

#include "foundation/LocalizedText.h"

namespace quillbay {

namespace {

// Name, then identifier, ascending; then the version descending, so that the newest kept
// version of a package stands first.
bool sortsBefore(const HomebrewInstalledPackage& a, const HomebrewInstalledPackage& b)
{
    if (const int byName = localizedStandardCompare(a.displayName(), b.displayName()); byName != 0)
        return byName < 0;
    if (const int byIdentifier = localizedStandardCompare(a.identifier, b.identifier); byIdentifier != 0)
        return byIdentifier < 0;
    return localizedStandardCompare(a.installedVersion, b.installedVersion) > 0;
}

} // namespace

HomebrewInstalledPackageLists
HomebrewInstalledPackageProcessor::process(const QList<HomebrewInstalledPackage>& rawPackages,
                                           const HomebrewPackageSummaries& catalogSummaries,
                                           const QString& searchText,
                                           std::stop_token stopToken) const
{
    const QString query = searchText.trimmed();

    QList<HomebrewInstalledPackage> joined;
    joined.reserve(rawPackages.size());
    for (const HomebrewInstalledPackage& raw : rawPackages) {
        if (stopToken.stop_requested())
            return {};
        HomebrewInstalledPackage package = raw;
        const auto found = catalogSummaries.constFind(package.route());
        package.catalogSummary = found == catalogSummaries.constEnd()
            ? std::nullopt
            : std::optional<HomebrewPackageSummary>(found.value());
        if (package.matches(query))
            joined.append(std::move(package));
    }
    if (stopToken.stop_requested())
        return {};

    std::stable_sort(joined.begin(), joined.end(), sortsBefore);

    HomebrewInstalledPackageLists lists;
    for (HomebrewInstalledPackage& package : joined) {
        if (package.kind == HomebrewCatalogKind::formula)
            lists.formulae.append(std::move(package));
        else
            lists.casks.append(std::move(package));
    }
    return lists;
}

} // namespace quillbay
