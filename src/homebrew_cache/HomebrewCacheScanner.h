#pragma once

#include <QString>
#include <optional>
#include <utility>
#include <vector>

#include "homebrew_cache/HomebrewCacheEntry.h"

namespace quillbay {

enum class HomebrewCacheScannerError {
    invalidRoot,
    rootIsNotAccessible,
};

// Why a scan gave nothing: one of the typed errors, or a failed listing of the root with
// the system's own text.
struct HomebrewCacheScanFailure
{
    std::optional<HomebrewCacheScannerError> error;
    QString description;
};

struct HomebrewCacheScanResult
{
    std::vector<HomebrewCacheEntry> entries;
    std::optional<HomebrewCacheScanFailure> failure;
};

// Sorts the Homebrew download cache into entries: one per category, package and version,
// plus the downloads that several packages share, what nobody claims in downloads/ and
// Cask/, and every other top-level item on its own. Measures what each entry occupies,
// counting each file once per scan. Reads only; holds no state between scans, so calls
// may run on any one thread at a time.
class HomebrewCacheScanner
{
public:
    // `expectedRootPath` is the only folder accepted as the cache; `displayPath` is how
    // messages name it.
    HomebrewCacheScanner(QString expectedRootPath, QString displayPath);

    QString expectedRootPath() const { return m_expectedRootPath; }
    QString description(HomebrewCacheScannerError error) const;

    std::optional<HomebrewCacheScanFailure> validateRoot(const QString& rootPath) const;
    // The caller holds access to the root for the length of the call.
    HomebrewCacheScanResult scan(const QString& rootPath) const;

    // Package and version of a cache link name ("wget--1.24.5.arm64_sonoma.bottle.tar.gz"
    // gives wget and 1.24.5), or nothing when the name is no package link.
    static std::optional<std::pair<QString, QString>> parseCacheName(const QString& name, bool isCask);

    // The three-level tree the screen shows. A pure function of the entries.
    static std::vector<HomebrewCacheNode> makeOutline(const std::vector<HomebrewCacheEntry>& entries);

private:
    QString m_expectedRootPath;
    QString m_displayPath;
};

} // namespace quillbay
