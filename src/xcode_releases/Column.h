#pragma once

#include <QString>
#include <array>
#include <optional>

namespace quillbay {

// The columns of the releases table, in the order they are shown. `version` is always
// there; the other eleven can be hidden.
enum class Column {
    version,
    release,
    date,
    required,
    swift,
    macOSSDK,
    iOSSDK,
    watchOSSDK,
    tvOSSDK,
    visionOSSDK,
    download,
    releaseNotes,
};

inline constexpr std::array<Column, 12> allColumns {
    Column::version, Column::release,    Column::date,    Column::required,    Column::swift,    Column::macOSSDK,
    Column::iOSSDK,  Column::watchOSSDK, Column::tvOSSDK, Column::visionOSSDK, Column::download, Column::releaseNotes,
};

// The column's title, which is also its identity in text form.
QString columnTitle(Column column);
// The symbol shown before the cell text; empty for columns without one.
QString columnSymbol(Column column);
// The column whose title this is exactly; none for any other text.
std::optional<Column> columnFromTitle(const QString& title);

} // namespace quillbay
