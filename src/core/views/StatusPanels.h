#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace quillbay {

// A page that says work is under way: a busy bar with one line under it, centred. The
// line is named after the page ("<objectName>Label") so tests can read it.
QWidget* makeProgressPanel(const QString& text, const QString& objectName, QWidget* parent);

// Lays out the one-line error strip over a list: a warning symbol and `label`, which the
// screen fills and shows. Names them "errorLine" and "errorLineLabel".
void layOutErrorLine(QWidget* line, QLabel* label);

} // namespace quillbay
