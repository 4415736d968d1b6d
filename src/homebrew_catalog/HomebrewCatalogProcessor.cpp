#include "homebrew_catalog/HomebrewCatalogProcessor.h"

#include <openssl/evp.h>
#include <simdjson.h>

#include "homebrew_catalog/JsonFields.h"

namespace quillbay {

namespace {

using Case = HomebrewCatalogProcessingError::Case;

HomebrewCatalogProcessingError processingError(Case kind, qint64 version = 0)
{
    return {kind, version};
}

bool isSnapshotIDCharacter(QChar c)
{
    if (c == u'.' || c == u'_' || c == u'-')
        return true;
    return c.isLetterOrNumber() || c.isMark();
}

bool artifactIsValid(const HomebrewCatalogManifest::Artifact& artifact, const QString& snapshotID, const QString& kind)
{
    if (artifact.path != QStringLiteral("/v1/catalog/snapshots/") + snapshotID + u'/' + kind + QStringLiteral(".json"))
        return false;
    if (artifact.sha256.size() != 64)
        return false;
    for (const QChar c : artifact.sha256)
        if (!((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f')))
            return false;
    return artifact.byteCount >= 1 && artifact.packageCount > 0;
}

HomebrewResult<HomebrewCatalogManifest::Artifact> decodeArtifact(simdjson::dom::object element, const QString& path)
{
    json::ObjectReader object(element, path);
    HomebrewCatalogManifest::Artifact artifact;
    object.requiredString("path", artifact.path);
    object.requiredString("sha256", artifact.sha256);
    object.requiredInteger("byteCount", artifact.byteCount);
    object.requiredInteger("packageCount", artifact.packageCount);
    if (!object.ok())
        return object.error();
    return artifact;
}

// Steps shared by validateSnapshot and summaries. With `rows` null the packages are only
// type-checked, which is all validation needs.
HomebrewStatus checkedSnapshot(const QByteArray& bytes,
                               HomebrewCatalogKind expectedKind,
                               const QString& sha256,
                               qint64 byteCount,
                               qint64 packageCount,
                               QList<HomebrewPackageSummary>* rows)
{
    if (bytes.size() != byteCount)
        return processingError(Case::unexpectedByteCount);
    if (HomebrewCatalogProcessor::sha256Hex(bytes) != sha256)
        return processingError(Case::checksumMismatch);

    auto parsed = json::parse(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader payload(parsed.value());
    qint64 schemaVersion = 0;
    QString kind;
    simdjson::dom::array packages;
    payload.requiredInteger("schemaVersion", schemaVersion);
    payload.requiredString("kind", kind);
    payload.requiredArray("packages", packages);
    if (!payload.ok())
        return payload.error();

    if (rows)
        rows->reserve(static_cast<qsizetype>(packages.size()));
    qsizetype index = 0;
    for (const simdjson::dom::element element : packages) {
        json::ObjectReader package(element, QStringLiteral("packages[%1]").arg(index));
        HomebrewPackageSummary row;
        row.kind = expectedKind;
        package.requiredString("identifier", row.identifier);
        package.requiredString("displayName", row.displayName);
        package.requiredStringList("aliases", row.aliases);
        package.requiredString("summary", row.summary);
        package.requiredString("version", row.version);
        simdjson::dom::object analytics;
        package.requiredObject("analytics", analytics);
        package.requiredBool("isDeprecated", row.isDeprecated);
        package.requiredBool("isDisabled", row.isDisabled);
        if (!package.ok())
            return package.error();
        json::ObjectReader counts(analytics, package.where(QStringLiteral("analytics")));
        counts.optionalInteger("thirtyDays", row.analytics.thirtyDays);
        counts.optionalInteger("ninetyDays", row.analytics.ninetyDays);
        counts.optionalInteger("threeHundredSixtyFiveDays", row.analytics.threeHundredSixtyFiveDays);
        if (!counts.ok())
            return counts.error();
        if (rows)
            rows->append(std::move(row));
        ++index;
    }

    if (schemaVersion != 1)
        return processingError(Case::unsupportedSchemaVersion, schemaVersion);
    if (kind != rawValue(expectedKind))
        return processingError(Case::unexpectedCatalogKind);
    if (index != packageCount)
        return processingError(Case::unexpectedPackageCount);
    return homebrewSuccess();
}

} // namespace

HomebrewResult<HomebrewCatalogManifest> HomebrewCatalogProcessor::validatedManifest(const QByteArray& bytes) const
{
    auto parsed = json::parse(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader object(parsed.value());
    HomebrewCatalogManifest manifest;
    simdjson::dom::object source;
    simdjson::dom::object formula;
    simdjson::dom::object cask;
    object.requiredInteger("schemaVersion", manifest.schemaVersion);
    object.requiredString("snapshotID", manifest.snapshotID);
    object.requiredString("generatedAt", manifest.generatedAt);
    object.requiredObject("source", source);
    object.requiredObject("formula", formula);
    object.requiredObject("cask", cask);
    if (!object.ok())
        return object.error();
    json::ObjectReader sourceReader(source, QStringLiteral("source"));
    sourceReader.requiredString("name", manifest.source.name);
    sourceReader.requiredString("url", manifest.source.url);
    if (!sourceReader.ok())
        return sourceReader.error();
    auto formulaArtifact = decodeArtifact(formula, QStringLiteral("formula"));
    if (!formulaArtifact)
        return formulaArtifact.error();
    auto caskArtifact = decodeArtifact(cask, QStringLiteral("cask"));
    if (!caskArtifact)
        return caskArtifact.error();
    manifest.formula = std::move(formulaArtifact).value();
    manifest.cask = std::move(caskArtifact).value();

    if (manifest.schemaVersion != 1)
        return processingError(Case::unsupportedSchemaVersion, manifest.schemaVersion);
    if (manifest.snapshotID.isEmpty())
        return processingError(Case::invalidManifest);
    for (const QChar c : std::as_const(manifest.snapshotID))
        if (!isSnapshotIDCharacter(c))
            return processingError(Case::invalidManifest);
    if (!artifactIsValid(manifest.formula, manifest.snapshotID, QStringLiteral("formula"))
        || !artifactIsValid(manifest.cask, manifest.snapshotID, QStringLiteral("cask")))
        return processingError(Case::invalidManifest);
    return manifest;
}

HomebrewStatus HomebrewCatalogProcessor::validateSnapshot(const QByteArray& bytes,
                                                          HomebrewCatalogKind expectedKind,
                                                          const QString& sha256,
                                                          qint64 byteCount,
                                                          qint64 packageCount) const
{
    return checkedSnapshot(bytes, expectedKind, sha256, byteCount, packageCount, nullptr);
}

HomebrewResult<QList<HomebrewPackageSummary>> HomebrewCatalogProcessor::summaries(HomebrewCatalogKind expectedKind,
                                                                                  const QByteArray& bytes,
                                                                                  const QString& sha256,
                                                                                  qint64 byteCount,
                                                                                  qint64 packageCount) const
{
    QList<HomebrewPackageSummary> rows;
    const HomebrewStatus status = checkedSnapshot(bytes, expectedKind, sha256, byteCount, packageCount, &rows);
    if (!status)
        return status.error();
    return rows;
}

QList<HomebrewPackageSummary> HomebrewCatalogProcessor::filtered(const QList<HomebrewPackageSummary>& rows,
                                                                 const QString& query,
                                                                 HomebrewSortOption option) const
{
    return HomebrewCatalogIndex(rows).filtered(query, option);
}

QList<HomebrewPackageSummary> HomebrewCatalogProcessor::filtered(const HomebrewCatalogIndex& index,
                                                                 const QString& query,
                                                                 HomebrewSortOption option,
                                                                 std::stop_token stop) const
{
    return index.filtered(query, option, std::move(stop));
}

QString HomebrewCatalogProcessor::sha256Hex(const QByteArray& bytes)
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_Digest(bytes.constData(), static_cast<size_t>(bytes.size()), digest, &length, EVP_sha256(), nullptr);
    static constexpr char digits[] = "0123456789abcdef";
    QString hex(static_cast<qsizetype>(length) * 2, Qt::Uninitialized);
    QChar* out = hex.data();
    for (unsigned int i = 0; i < length; ++i) {
        *out++ = QLatin1Char(digits[digest[i] >> 4]);
        *out++ = QLatin1Char(digits[digest[i] & 0xF]);
    }
    return hex;
}

} // namespace quillbay
