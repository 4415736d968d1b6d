#include "homebrew_installed/HomebrewInstallationBookmarkError.h"

using namespace Qt::StringLiterals;

namespace quillbay {

QString errorDescription(HomebrewInstallationBookmarkError error)
{
    switch (error) {
    case HomebrewInstallationBookmarkError::couldNotCreateBookmark:
        return u"The Homebrew folder authorization could not be saved."_s;
    case HomebrewInstallationBookmarkError::couldNotResolveBookmark:
        return u"The saved Homebrew folder authorization is no longer valid."_s;
    case HomebrewInstallationBookmarkError::accessDenied:
        return u"The Homebrew folder could not be accessed."_s;
    }
    return {};
}

} // namespace quillbay
