#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <cstddef>
#include <cstdint>

namespace quillbay::fuzz {

// The raw bytes without a copy; valid for the length of one target call.
inline QByteArray bytesOf(const std::uint8_t* data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

// Outside text is UTF-8 more often than not; invalid sequences become replacement
// characters, which is what a reader of a folder listing sees too.
inline QString textOf(const std::uint8_t* data, std::size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

// Targets that read several names take one per line.
inline QStringList linesOf(const std::uint8_t* data, std::size_t size)
{
    return textOf(data, size).split(QLatin1Char('\n'));
}

// A folder of this process's own for targets whose parser reads a file, created once.
QString scratchFolder();

} // namespace quillbay::fuzz
