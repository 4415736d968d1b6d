#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

#include "homebrew_catalog/HomebrewCatalogKind.h"
#include "homebrew_installed/HomebrewInstallationScanResult.h"
#include "homebrew_installed/HomebrewInstallationScannerError.h"

namespace quillbay {

// Finds what Homebrew installed by folder names alone: a package is a folder in Cellar
// (formulae) or Caskroom (casks), a version is a folder inside it. Nothing is run and no
// file is opened, so a hostile tree can at worst hide rows, never make us read elsewhere:
// links among packages and versions are ignored, and folders that resolve outside the
// root are skipped.
//
// Runs on its own executor; the caller holds access to the root for each call.
class HomebrewInstallationScanner
{
public:
    using ScanOutcome = std::variant<HomebrewInstallationScanResult, HomebrewInstallationScannerError>;

    // Any readable folder with something at bin/brew counts; there is no expected path.
    std::optional<HomebrewInstallationScannerError> validateRoot(const QString& rootURL) const;

    // Only validation fails the scan; a kind that cannot be listed is reported in the result.
    ScanOutcome scan(const QString& rootURL) const;

    // True when the path equals the root or lies below it, once both are standardized and
    // have their links resolved.
    static bool isInsideRoot(const QString& url, const QString& rootURL);

private:
    // The non-hidden, non-link folders directly inside a folder (following the folder
    // itself if it is a link). Empty optional when the folder cannot be listed.
    static std::optional<QStringList> subfolders(const QString& folder);

    static std::optional<QList<HomebrewInstalledPackage>> listPackages(HomebrewCatalogKind kind,
                                                                       const QString& rootURL);
};

} // namespace quillbay
