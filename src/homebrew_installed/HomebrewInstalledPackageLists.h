#pragma once

#include <QList>

#include "homebrew_installed/HomebrewInstalledPackage.h"

namespace quillbay {

// The two lists the installed table shows, joined, filtered and sorted.
struct HomebrewInstalledPackageLists
{
    QList<HomebrewInstalledPackage> formulae;
    QList<HomebrewInstalledPackage> casks;
};

} // namespace quillbay
