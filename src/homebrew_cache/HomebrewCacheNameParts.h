#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quillbay {

// Where package and version lie in a cache link name; the rules of
// HomebrewCacheScanner::parseCacheName, on bytes or UTF-16 alike, so that the scan can
// read ASCII names without making text of them first.
struct HomebrewCacheNameParts
{
    size_t packageSize = 0; // the package is the name's start
    bool hasManifestMark = false; // remove every "_bottle_manifest" from the package
    size_t versionStart = 0;
    size_t versionSize = 0;
};

template <typename Char>
std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<Char> text, bool isCask);

extern template std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<char>, bool);
extern template std::optional<HomebrewCacheNameParts> parseCacheNameParts(std::basic_string_view<char16_t>, bool);

} // namespace quillbay
