#pragma once

#include <QString>

class QWidget;

namespace quillbay {

// A page that says work is under way: a busy bar with one line under it, centred. The
// line is named after the page ("<objectName>Label") so tests can read it.
QWidget* makeProgressPanel(const QString& text, const QString& objectName, QWidget* parent);

} // namespace quillbay
