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

inline constexpr NamedTarget allTargets[] = {
    {"version_text", versionText},
};

} // namespace quillbay::fuzz
