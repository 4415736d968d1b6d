#pragma once

#include <QList>
#include <QString>
#include <stop_token>

#include "homebrew_installed/HomebrewInstalledPackage.h"
#include "homebrew_installed/HomebrewInstalledPackageLists.h"

namespace quillbay {

// Joins the scanned rows with the catalog, filters them by the search and sorts them.
// Stateless; runs on its own executor and works only on the values it is given. The whole
// set is redone on each change: installations hold hundreds of rows, not thousands.
class HomebrewInstalledPackageProcessor
{
public:
    virtual ~HomebrewInstalledPackageProcessor() = default;

    // A stop request makes it return early with whatever it has; the caller drops that.
    // Virtual so that tests can hold a call open and change the store while it runs.
    virtual HomebrewInstalledPackageLists process(const QList<HomebrewInstalledPackage>& rawPackages,
                                                  const HomebrewPackageSummaries& catalogSummaries,
                                                  const QString& searchText,
                                                  std::stop_token stopToken = {}) const;
};

} // namespace quillbay
