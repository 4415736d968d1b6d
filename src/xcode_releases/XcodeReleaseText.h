#pragma once

#include <QLocale>
#include <QString>
#include <optional>

#include "xcode_releases/Column.h"
#include "xcode_releases/XcodeRelease.h"

namespace quillbay {

// The texts the releases table derives from one record. None of them fails: a missing
// piece gives the empty string (or no build text).

// "Release", "Beta 3", "RC 2"... from the first maturity entry. Keys the table does not
// know give an empty name, so {"gm": 2} reads " 2"; the leading blank is intended.
QString releaseLabel(const XcodeRelease::ReleaseMap& release);

// The text of one cell. `expanded` asks for the long form where a column has one.
// The date is formatted for `locale` (the user's by default).
QString cellText(const XcodeRelease& release, Column column, bool expanded, const QLocale& locale = QLocale());

// The build under a Swift or SDK cell; absent for other columns and for empty builds.
std::optional<QString> buildText(const XcodeRelease& release, Column column);

// Whether the download runs on Apple silicon only. A published architecture list decides
// alone; without one, the name's " (Apple Silicon)" suffix does.
bool isAppleSiliconOnly(const XcodeRelease& release);

// The test of the only-release filter: an exact "release" key holding boolean true.
bool isFinalRelease(const XcodeRelease& release);

// Day, abbreviated month and year in the locale's order, or empty when the calendar
// cannot place the date. Out-of-range days and months roll over as a calendar does.
QString releaseDateText(const XcodeRelease::DateInfo& date, const QLocale& locale = QLocale());

} // namespace quillbay
