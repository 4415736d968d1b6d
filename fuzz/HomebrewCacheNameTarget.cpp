#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay::fuzz {

void homebrewCacheName(const std::uint8_t* data, std::size_t size)
{
    // One link name per line, read both as a bottle link and as a cask link.
    for (const QString& name : linesOf(data, size)) {
        for (const bool isCask : {false, true}) {
            const auto parsed = HomebrewCacheScanner::parseCacheName(name, isCask);
            if (!parsed)
                continue;
            const auto& [package, version] = *parsed;
            if (package.isEmpty() || version.isEmpty())
                __builtin_trap();
            // The version comes from the last "--" piece, so it never holds one.
            if (version.contains(QLatin1String("--")) || !name.contains(version))
                __builtin_trap();
        }
    }
}

} // namespace quillbay::fuzz
