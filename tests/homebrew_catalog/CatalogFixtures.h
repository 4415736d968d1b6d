#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "homebrew_catalog/HomebrewCatalogKind.h"

namespace quillbay::test {

// One package row as a snapshot carries it.
struct FixturePackage
{
    QString identifier {};
    QString displayName {};
    QString summary {};
    QStringList aliases {};
    std::optional<qint64> thirtyDays {};
};

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

QByteArray snapshotJson(HomebrewCatalogKind kind, const QList<FixturePackage>& packages, int schemaVersion = 1);

// A manifest whose artifacts describe the given snapshot bytes exactly.
QByteArray manifestJson(const QString& snapshotID, const QByteArray& formulaBytes, const QByteArray& caskBytes);

} // namespace quillbay::test
