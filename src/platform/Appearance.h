#pragma once

#include <QPalette>

namespace quillbay {

// The look of every window of the application: the system's, or a fixed light or dark one.
enum class ApplicationAppearance {
    system,
    light,
    dark,
};

// Switches the whole application at once; open windows redraw without being reopened.
// Main thread only, once the application object exists.
void setApplicationAppearance(ApplicationAppearance appearance);

// The palette each fixed appearance stands for, where the toolkit draws from a palette.
QPalette applicationAppearancePalette(ApplicationAppearance appearance);

} // namespace quillbay
