#include "homebrew_installed/HomebrewInstallationScannerError.h"

using namespace Qt::StringLiterals;

namespace quillbay {

QString errorDescription(HomebrewInstallationScannerError error)
{
    switch (error) {
    case HomebrewInstallationScannerError::invalidRoot:
        return u"Choose a Homebrew root folder that contains bin/brew."_s;
    case HomebrewInstallationScannerError::rootIsNotReadable:
        return u"The selected Homebrew root folder is not readable."_s;
    }
    return {};
}

} // namespace quillbay
