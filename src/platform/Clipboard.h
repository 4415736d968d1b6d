#pragma once

#include <QString>

namespace quillbay {

// Puts text on the system clipboard (the general pasteboard on macOS).
void copyTextToClipboard(const QString& text);

} // namespace quillbay
