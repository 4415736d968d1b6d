#pragma once

#include <QKeySequence>

class QAbstractButton;
class QLineEdit;
class QWidget;

namespace quillbay {

// Gives `button` a key that outlives changes of its title: a button's own shortcut is
// reset whenever its text changes, so the key lives on an action of `owner` instead.
// The key acts only while `owner` is on show and presses the button only while it is
// enabled, exactly as a click would.
void addKeyToButton(QWidget* owner, QAbstractButton* button, const QKeySequence& key);

// The platform's Find key (Ctrl+F, Cmd+F) puts the focus in `field` with its text
// selected, while `owner` is on show.
void addFindKey(QWidget* owner, QLineEdit* field);

} // namespace quillbay
