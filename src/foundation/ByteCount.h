#pragma once

#include <QString>

namespace quillbay {

// Byte counts in the platform's "file" style: decimal units (1 KB = 1000 bytes),
// "Zero KB" for nothing, whole bytes below a kilobyte, then KB with no decimals,
// MB with one and larger units with two, trailing zeros dropped.
QString formatByteCount(qint64 bytes);

} // namespace quillbay
