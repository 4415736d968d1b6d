#pragma once

#include <QString>

class QLabel;
class QPushButton;
class QWidget;

namespace quillbay {

// A page that says work is under way: a busy bar with one line under it, centred. The
// line is named after the page ("<objectName>Label") so tests can read it.
QWidget* makeProgressPanel(const QString& text, const QString& objectName, QWidget* parent);

// Lays out the one-line error strip over a list: a warning symbol and `label`, which the
// screen fills and shows. Names them "errorLine" and "errorLineLabel".
void layOutErrorLine(QWidget* line, QLabel* label);

// The three buttons of a cleanup footer, named for tests ("selectAllPushButton",
// "deselectAllPushButton", "deletePushButton"); "Delete..." is the default button and
// answers the Delete key. The footer lays them out and wires them.
struct CleanupFooterButtons
{
    QPushButton* selectAll;
    QPushButton* deselectAll;
    QPushButton* deleteButton;
};
CleanupFooterButtons makeCleanupFooterButtons(QWidget* parent);

} // namespace quillbay
