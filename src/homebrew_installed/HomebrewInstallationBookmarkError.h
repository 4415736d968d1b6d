#pragma once

#include <QString>

namespace quillbay {

// Why the remembered Homebrew root cannot be restored, saved or opened.
enum class HomebrewInstallationBookmarkError { couldNotCreateBookmark, couldNotResolveBookmark, accessDenied };

QString errorDescription(HomebrewInstallationBookmarkError error);

} // namespace quillbay
