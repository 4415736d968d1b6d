#pragma once

#include <QString>

namespace quillbay {

// The operating system's version as a person would quote it in a bug report. It is read
// from the system's version file: SystemVersion.plist on macOS, os-release elsewhere.
QString operatingSystemVersion();

// The same, read from the given file instead (tests, other roots). Falls back to Qt's
// description of the running system when the file is missing or says nothing useful.
QString operatingSystemVersion(const QString& versionFilePath);

} // namespace quillbay
