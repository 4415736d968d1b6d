#pragma once

#include <cstddef>
#include <cstdint>

namespace quillbay::fuzz {

// One entry per parser of outside data. Each takes arbitrary bytes and must neither crash
// nor trip a sanitizer; they are linked both into libFuzzer binaries and into the test
// that replays the saved inputs under fuzz/corpus/<name>/.
using Target = void (*)(const std::uint8_t* data, std::size_t size);

struct NamedTarget
{
    const char* name;
    Target run;
};

void versionText(const std::uint8_t* data, std::size_t size);
void xcodeReleaseFeed(const std::uint8_t* data, std::size_t size);
void appleBuild(const std::uint8_t* data, std::size_t size);
void deviceSupportName(const std::uint8_t* data, std::size_t size);
void homebrewCacheName(const std::uint8_t* data, std::size_t size);
void catalogManifest(const std::uint8_t* data, std::size_t size);
void catalogSnapshot(const std::uint8_t* data, std::size_t size);
void packageDetail(const std::uint8_t* data, std::size_t size);
void jsonValue(const std::uint8_t* data, std::size_t size);
void archivePlist(const std::uint8_t* data, std::size_t size);
void versionCheckAnswer(const std::uint8_t* data, std::size_t size);
void assetContents(const std::uint8_t* data, std::size_t size);
void catalogCacheState(const std::uint8_t* data, std::size_t size);

inline constexpr NamedTarget allTargets[] = {
    {"version_text", versionText},
    {"xcode_release_feed", xcodeReleaseFeed},
    {"apple_build", appleBuild},
    {"device_support_name", deviceSupportName},
    {"homebrew_cache_name", homebrewCacheName},
    {"catalog_manifest", catalogManifest},
    {"catalog_snapshot", catalogSnapshot},
    {"package_detail", packageDetail},
    {"json_value", jsonValue},
    {"archive_plist", archivePlist},
    {"version_check_answer", versionCheckAnswer},
    {"asset_contents", assetContents},
    {"catalog_cache_state", catalogCacheState},
};

} // namespace quillbay::fuzz
