#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <vector>

namespace quillbay::test {

// Test tables are written with plain literals.
inline QStringList strings(const std::vector<const char*>& items)
{
    QStringList out;
    for (const char* item : items)
        out.append(QString::fromUtf8(item));
    return out;
}

template <typename Rows> QStringList identifiers(const Rows& rows)
{
    QStringList out;
    for (const auto& row : rows)
        out.append(row.identifier);
    return out;
}

inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

} // namespace quillbay::test
