#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "xcode_cleanup/XcodeFileProperties.h"

namespace quillbay {

// Reads a device support folder name such as "iPhone14,2 17.1 (21B74) arm64e" into a
// row under the OS row labelled `osLabel`. Names without a version are logged and give
// nothing.
std::optional<XcodeFileProperties> readDeviceSupport(const QString& path, const QString& osLabel);

// Newest version first, then newest build; equal items keep their order. A folder with an
// architecture suffix is dropped when the same device, version and build also stand
// there without one.
std::vector<XcodeFileProperties> sortedDeviceSupportFiles(std::vector<XcodeFileProperties> files);

} // namespace quillbay
