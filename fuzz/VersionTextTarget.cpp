#include <QString>

#include "FuzzTargets.h"
#include "foundation/Version.h"

namespace quillbay::fuzz {

void versionText(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (const auto version = Version::parse(text)) {
        // A parsed version must print as something that parses back to an equal version.
        const auto again = Version::parse(version->description());
        if (!again || !(*again == *version))
            __builtin_trap();
    }
    const AppleBuild build(text);
    if (build.textual != text)
        __builtin_trap();
    // Ordering against itself only needs both sides to agree on having a minor.
    if (build < build)
        __builtin_trap();
}

} // namespace quillbay::fuzz
