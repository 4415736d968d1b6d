#pragma once

#include <QCollator>
#include <QString>

namespace quillbay {

// The order people expect in file lists: case-insensitive, numbers by value
// ("Xcode 9" before "Xcode 10"), by the user's locale. A collator is costly to build and
// not thread-safe, so each thread keeps its own.
QCollator& standardCollator();
int localizedStandardCompare(const QString& a, const QString& b);

// A search key: compatibility-decomposed, combining marks removed, case-folded.
// "Café" and "CAFE" fold to the same key. Compute it once per row, then use
// foldedContains per keystroke.
QString foldedSearchKey(const QString& text);
bool foldedContains(const QString& foldedHaystack, const QString& foldedNeedle);

// Letters, marks and numbers of any script: the characters that need no quoting in a
// shell word and no percent-encoding in a path segment.
bool isAlphanumericScalar(char32_t scalar);

// Case- and diacritic-insensitive containment of two raw texts.
bool localizedStandardContains(const QString& haystack, const QString& needle);

} // namespace quillbay
