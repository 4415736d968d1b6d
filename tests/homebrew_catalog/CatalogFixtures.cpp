#include "CatalogFixtures.h"

#include <QCryptographicHash>

#include <nlohmann/json.hpp>

namespace quillbay::test {

using namespace Qt::StringLiterals;

using Json = nlohmann::ordered_json;

QByteArray snapshotJson(HomebrewCatalogKind kind, const QList<FixturePackage>& packages, int schemaVersion)
{
    Json rows = Json::array();
    for (const FixturePackage& p : packages) {
        Json analytics = Json::object();
        if (p.thirtyDays)
            analytics["thirtyDays"] = *p.thirtyDays;
        Json aliases = Json::array();
        for (const QString& alias : p.aliases)
            aliases.push_back(alias.toStdString());
        rows.push_back(Json {{"identifier", p.identifier.toStdString()},
                             {"displayName", (p.displayName.isEmpty() ? p.identifier : p.displayName).toStdString()},
                             {"aliases", aliases},
                             {"summary", p.summary.toStdString()},
                             {"version", "1.0"},
                             {"analytics", analytics},
                             {"isDeprecated", false},
                             {"isDisabled", false}});
    }
    Json snapshot {{"schemaVersion", schemaVersion}, {"kind", rawValue(kind).toStdString()}, {"packages", rows}};
    return QByteArray::fromStdString(snapshot.dump());
}

QByteArray manifestJson(const QString& snapshotID, const QByteArray& formulaBytes, const QByteArray& caskBytes)
{
    const auto artifact = [&](HomebrewCatalogKind kind, const QByteArray& bytes) {
        const auto parsed = Json::parse(bytes.toStdString());
        const QString path = u"/v1/catalog/snapshots/"_s + snapshotID + u'/' + rawValue(kind) + u".json"_s;
        return Json {{"path", path.toStdString()},
                     {"sha256", QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString()},
                     {"byteCount", bytes.size()},
                     {"packageCount", parsed["packages"].size()}};
    };
    Json manifest {{"schemaVersion", 1},
                   {"snapshotID", snapshotID.toStdString()},
                   {"generatedAt", "2025-01-02T03:04:05Z"},
                   {"source", Json {{"name", "test"}, {"url", "https://example.invalid/"}}},
                   {"formula", artifact(HomebrewCatalogKind::formula, formulaBytes)},
                   {"cask", artifact(HomebrewCatalogKind::cask, caskBytes)}};
    return QByteArray::fromStdString(manifest.dump());
}

} // namespace quillbay::test
