#pragma once

#include <QString>
#include <optional>

#include "xcode_cleanup/XcodeFileProperties.h"

namespace quillbay {

// Reads the top-level Info.plist (XML or binary) of an ".xcarchive" bundle. A bundle that
// lacks what a row needs is logged and gives nothing, so it is never shown or deleted.
std::optional<XcodeFileProperties> readArchive(const QString& path);

} // namespace quillbay
