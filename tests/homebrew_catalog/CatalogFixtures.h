#pragma once

#include <QByteArray>
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
    std::optional<qint64> ninetyDays {};
    std::optional<qint64> threeHundredSixtyFiveDays {};
    QString version = QStringLiteral("1.0");
    bool isDeprecated = false;
    bool isDisabled = false;
};

// Test tables are written with plain literals.
inline QStringList strings(const std::vector<const char*>& items)
{
    QStringList out;
    for (const char* item : items)
        out.append(QString::fromUtf8(item));
    return out;
}

QByteArray snapshotJson(HomebrewCatalogKind kind, const QList<FixturePackage>& packages, int schemaVersion = 1);

// A manifest whose artifacts describe the given snapshot bytes exactly.
QByteArray manifestJson(const QString& snapshotID, const QByteArray& formulaBytes, const QByteArray& caskBytes);

QString snapshotPath(const QString& snapshotID, HomebrewCatalogKind kind);

} // namespace quillbay::test
