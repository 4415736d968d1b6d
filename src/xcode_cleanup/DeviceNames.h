#pragma once

#include <QString>

namespace quillbay {

// The name people know for a model identifier ("iPhone14,2" is "iPhone 13 Pro"). Exact
// and case-sensitive; an unknown identifier comes back unchanged, so new devices still
// show something meaningful.
QString deviceName(const QString& identifier);

// Number of identifiers the table knows.
int deviceNameTableSize();

} // namespace quillbay
