#pragma once

#include <QByteArray>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay::bench {

// A deterministic catalog of the size Homebrew has: names built like real package names,
// one-line descriptions of the usual 20 to 80 characters, aliases on about one package in
// eight, install counts on most. Returns the snapshot document of the kind.
QByteArray generatedSnapshot(HomebrewCatalogKind kind, int packageCount);

} // namespace quillbay::bench
