#pragma once

#include <QString>
#include <optional>

namespace quillbay {

class Workspace;

namespace Tools {

// "Xcode " and the short version of the Xcode the workspace finds by its bundle
// identifier; absent when none is installed or its Info.plist has no string version.
std::optional<QString> installedXcodeVersion(Workspace& workspace);

// The same from an application bundle folder (the part that reads Contents/Info.plist).
std::optional<QString> xcodeVersionOfBundle(const QString& bundlePath);

} // namespace Tools

} // namespace quillbay
