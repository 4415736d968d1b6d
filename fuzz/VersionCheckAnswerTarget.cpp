#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "VersionChecking/AppVersionInfo.h"

namespace quillbay::fuzz {

void versionCheckAnswer(const std::uint8_t* data, std::size_t size)
{
    const auto decoded = AppVersionInfo::decode(bytesOf(data, size));
    if (const auto* error = std::get_if<AppVersionDecodingError>(&decoded)) {
        if (error->description.isEmpty())
            __builtin_trap();
        return;
    }
    // An answer the app accepts, written as the service writes it, reads back the same.
    const AppVersionInfo& info = std::get<AppVersionInfo>(decoded);
    const auto again = AppVersionInfo::decode(info.encode());
    const auto* same = std::get_if<AppVersionInfo>(&again);
    if (!same || !(*same == info))
        __builtin_trap();
}

} // namespace quillbay::fuzz
