#pragma once

#include <QKeySequence>
#include <string>

class QWidget;

namespace quillbay::test {

// The controls under `root` that a screen reader would announce without a name: every
// button, field, list and box on show that neither carries a text, an accessible name
// nor a buddy label. Each is named by class and object name, comma-separated, so a
// failure says where to look; empty when every control has a name.
std::string controlsWithoutAccessibleName(QWidget* root);

// Presses `key` the way a user does: in the active window that holds `widget`, delivered
// to whatever has the focus, so window shortcuts and the focus widget's own handling
// both take their part. Returns false when the window could not be made active.
bool pressKey(QWidget* widget, const QKeySequence& key);

} // namespace quillbay::test
