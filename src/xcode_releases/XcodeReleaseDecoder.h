#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

// Reads the feed's top-level array into releases, in feed order. Strict: a missing
// required key or a wrongly typed value anywhere rejects the whole array, so a half-read
// feed never replaces a good list. Unknown keys are ignored at every level; a JSON null
// for an optional key counts as absent.
std::optional<QList<XcodeRelease>> decodeXcodeReleases(const QByteArray& bytes);

} // namespace quillbay
