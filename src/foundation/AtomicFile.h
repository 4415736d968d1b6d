#pragma once

#include <QByteArray>
#include <QString>

namespace quillbay {

// Writes the whole file or nothing: the bytes go to a temporary file in the same folder,
// which is flushed and renamed over the target. On failure the old file is untouched and
// the error text says why.
bool writeFileAtomically(const QString& path, const QByteArray& bytes, QString* error = nullptr);

} // namespace quillbay
