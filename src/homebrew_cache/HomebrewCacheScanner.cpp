#include "homebrew_cache/HomebrewCacheScanner.h"

#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheScanRun.h"

namespace quillbay {

HomebrewCacheScanResult HomebrewCacheScanner::scan(const QString& rootPath) const
{
    if (auto failure = validateRoot(rootPath))
        return {{}, std::move(failure)};
    return HomebrewCacheScanRun(HomebrewCacheFileSystem::cleanPath(rootPath)).run();
}

} // namespace quillbay
