#pragma once

#include <QString>

namespace quillbay {

// Why a folder cannot serve as a Homebrew root. Trouble below the root is no error: it
// shows in the scan result as an unreadable kind.
enum class HomebrewInstallationScannerError { invalidRoot, rootIsNotReadable };

QString errorDescription(HomebrewInstallationScannerError error);

} // namespace quillbay
