#pragma once

#include <QString>

namespace quillbay {

enum class OSType { iOS, watchOS, tvOS, macOS, visionOS, other };

// Exact, case-sensitive: "ios" is other.
OSType osTypeFromText(const QString& text);
// The case's own name; other has none.
QString osTypeName(OSType type);

} // namespace quillbay
