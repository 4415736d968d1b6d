#include <QDir>
#include <QFile>

#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "xcode_cleanup/ArchiveReader.h"

namespace quillbay::fuzz {

void archivePlist(const std::uint8_t* data, std::size_t size)
{
    // The bytes become the Info.plist of an archive bundle, XML or binary, and go through
    // the same file read the cleanup scan does.
    static const QString bundle = [] {
        const QString path = scratchFolder() + QStringLiteral("/Fuzz 2024-01-02 10.11.12.xcarchive");
        QDir().mkpath(path);
        return path;
    }();
    QFile file(bundle + QStringLiteral("/Info.plist"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        __builtin_trap();
    if (file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) != static_cast<qint64>(size))
        __builtin_trap();
    file.close();

    const auto item = readArchive(bundle);
    if (!item)
        return;
    const ArchiveFile* archive = item->as<ArchiveFile>();
    if (!archive || item->paths != QStringList {bundle} || archive->location != bundle)
        __builtin_trap();
    if (!item->label.contains(archive->build))
        __builtin_trap();
}

} // namespace quillbay::fuzz
