#include <QByteArray>

#include "FuzzTargets.h"
#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseText.h"

namespace quillbay::fuzz {

void xcodeReleaseFeed(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto releases = decodeXcodeReleases(bytes);
    if (!releases)
        return;
    // Every derived text must come out of any record the decoder accepts.
    for (const XcodeRelease& release : *releases) {
        for (const Column column : allColumns) {
            const QString text = cellText(release, column, true, QLocale::c());
            if (column == Column::required && !text.startsWith(QLatin1String("macOS ")))
                __builtin_trap();
            (void)buildText(release, column);
        }
        (void)isAppleSiliconOnly(release);
        (void)isFinalRelease(release);
    }
    // The same bytes decode to the same records again.
    const auto again = decodeXcodeReleases(bytes);
    if (!again || again->size() != releases->size())
        __builtin_trap();
    for (qsizetype i = 0; i < releases->size(); ++i) {
        if (!again->at(i).hasSameContent(releases->at(i)))
            __builtin_trap();
    }
}

} // namespace quillbay::fuzz
