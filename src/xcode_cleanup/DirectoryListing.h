#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <optional>

namespace quillbay {

// The entries of one folder as absolute paths, one level, hidden names (leading ".")
// left out, sorted by name so that every scan sees the same order. Absent when the folder
// cannot be listed.
std::optional<QStringList> listVisibleEntries(const QString& folder);

// When the item was created; its last change where the file system keeps no birth time,
// and the distant past when it cannot be examined.
QDateTime creationDate(const QString& path);

// The earliest moment a date can show, standing in for "unknown".
QDateTime distantPast();

// The text split at `separator`, empty pieces dropped; after `maxSplits` pieces the rest
// of the text, separators included, is one last piece.
QStringList splitPieces(const QString& text, QChar separator, int maxSplits);

} // namespace quillbay
