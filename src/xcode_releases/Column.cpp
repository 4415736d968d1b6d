#include "xcode_releases/Column.h"

namespace quillbay {

namespace {

struct ColumnInfo
{
    const char16_t* title;
    const char16_t* symbol;
};

// Index order is Column.
constexpr std::array<ColumnInfo, allColumns.size()> kColumns {{
    {u"Version", u""},
    {u"Release", u""},
    {u"Date", u""},
    {u"Required Environment", u""},
    {u"Swift", u"swift"},
    {u"macOS SDK", u"desktopcomputer"},
    {u"iOS SDK", u"iphone"},
    {u"watchOS SDK", u"applewatch"},
    {u"tvOS SDK", u"tv"},
    {u"visionOS SDK", u"vision.pro"},
    {u"Download", u""},
    {u"Release Notes", u""},
}};

} // namespace

QString columnTitle(Column column)
{
    return QString::fromUtf16(kColumns[static_cast<std::size_t>(column)].title);
}

QString columnSymbol(Column column)
{
    return QString::fromUtf16(kColumns[static_cast<std::size_t>(column)].symbol);
}

std::optional<Column> columnFromTitle(const QString& title)
{
    for (const Column column : allColumns) {
        if (columnTitle(column) == title)
            return column;
    }
    return std::nullopt;
}

} // namespace quillbay
