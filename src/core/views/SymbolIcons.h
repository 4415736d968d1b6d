#pragma once

#include <QIcon>
#include <QString>

namespace quillbay {

// The screens name system symbols ("externaldrive.badge.minus"); this is the one place
// that maps each to an icon of the installed theme. An unknown name gives a null icon.
QIcon symbolIcon(const QString& symbolName);

// Call once before the first window: selects the bundled-by-name icon theme so icons
// resolve the same way on a desktop and offscreen.
void installIconTheme();

} // namespace quillbay
