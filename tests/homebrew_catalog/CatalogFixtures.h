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
    FixturePackage(QString identifier_,
                   QString displayName_ = {},
                   QString summary_ = {},
                   QStringList aliases_ = {},
                   std::optional<qint64> thirtyDays_ = {},
                   std::optional<qint64> ninetyDays_ = {},
                   std::optional<qint64> threeHundredSixtyFiveDays_ = {},
                   QString version_ = QStringLiteral("1.0"),
                   bool isDeprecated_ = false,
                   bool isDisabled_ = false)
        : identifier(std::move(identifier_))
        , displayName(std::move(displayName_))
        , summary(std::move(summary_))
        , aliases(std::move(aliases_))
        , thirtyDays(thirtyDays_)
        , ninetyDays(ninetyDays_)
        , threeHundredSixtyFiveDays(threeHundredSixtyFiveDays_)
        , version(std::move(version_))
        , isDeprecated(isDeprecated_)
        , isDisabled(isDisabled_)
    {
    }

    QString identifier;
    QString displayName;
    QString summary;
    QStringList aliases;
    std::optional<qint64> thirtyDays;
    std::optional<qint64> ninetyDays;
    std::optional<qint64> threeHundredSixtyFiveDays;
    QString version;
    bool isDeprecated;
    bool isDisabled;
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
