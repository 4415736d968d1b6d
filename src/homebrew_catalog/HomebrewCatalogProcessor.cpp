#include "homebrew_catalog/HomebrewCatalogProcessor.h"

#include <array>
#include <string_view>

#include <openssl/evp.h>
#include <simdjson.h>

#include "homebrew_catalog/JsonFields.h"
#include "homebrew_catalog/SharedTextBlocks.h"

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

// One package row, read in a single pass over its members (a lookup per key would cost
// more than the rest of the row). With `row` null only the types are checked and no text
// is converted; otherwise the row's texts are cut from `texts`. Gives "" on success, else
// what is wrong.
QString decodeRow(simdjson::dom::element element, HomebrewPackageSummary* row, SharedTextBlocks* texts)
{
    constexpr unsigned identifier = 1u << 0;
    constexpr unsigned displayName = 1u << 1;
    constexpr unsigned aliases = 1u << 2;
    constexpr unsigned summary = 1u << 3;
    constexpr unsigned version = 1u << 4;
    constexpr unsigned analytics = 1u << 5;
    constexpr unsigned isDeprecated = 1u << 6;
    constexpr unsigned isDisabled = 1u << 7;
    constexpr unsigned all = (1u << 8) - 1;
    const std::array<std::pair<std::string_view, unsigned>, 8> keys {
        std::pair {std::string_view("identifier"), identifier},
        std::pair {std::string_view("displayName"), displayName},
        std::pair {std::string_view("aliases"), aliases},
        std::pair {std::string_view("summary"), summary},
        std::pair {std::string_view("version"), version},
        std::pair {std::string_view("analytics"), analytics},
        std::pair {std::string_view("isDeprecated"), isDeprecated},
        std::pair {std::string_view("isDisabled"), isDisabled}};

    simdjson::dom::object object;
    if (element.get_object().get(object))
        return QStringLiteral("expected an object");
    unsigned seen = 0;
    std::string_view identifierText;
    for (const auto member : object) {
        // Dispatch on length first: one comparison per member instead of up to eight.
        unsigned field = 0;
        const std::string_view key = member.key;
        switch (key.size()) {
        case 10:
            field = key == "identifier" ? identifier : key == "isDisabled" ? isDisabled : 0;
            break;
        case 11:
            field = key == "displayName" ? displayName : 0;
            break;
        case 7:
            field = key == "aliases" ? aliases : key == "summary" ? summary : key == "version" ? version : 0;
            break;
        case 9:
            field = key == "analytics" ? analytics : 0;
            break;
        case 12:
            field = key == "isDeprecated" ? isDeprecated : 0;
            break;
        default:
            break;
        }
        if (field == 0)
            continue; // unknown keys are ignored
        seen |= field;
        const simdjson::dom::element value = member.value;
        const auto mismatch = [&](const char* expected) {
            return QStringLiteral("expected %1 at %2").arg(QLatin1String(expected), json::toQString(member.key));
        };
        switch (field) {
        case identifier:
        case displayName:
        case summary:
        case version: {
            std::string_view text;
            if (value.get_string().get(text))
                return mismatch("a string");
            if (field == identifier)
                identifierText = text;
            if (!row)
                break;
            QString* target = field == identifier ? &row->identifier
                : field == displayName            ? &row->displayName
                : field == summary                ? &row->summary
                                                  : &row->version;
            // Formulae show their name as it is: share the identifier's text.
            if (field == displayName && text == identifierText && (seen & identifier))
                *target = row->identifier;
            else
                *target = texts->text(text);
            break;
        }
        case aliases: {
            simdjson::dom::array list;
            if (value.get_array().get(list))
                return mismatch("an array of strings");
            for (const simdjson::dom::element item : list) {
                std::string_view text;
                if (item.get_string().get(text))
                    return mismatch("an array of strings");
                if (row)
                    row->aliases.append(texts->text(text));
            }
            break;
        }
        case analytics: {
            simdjson::dom::object counts;
            if (value.get_object().get(counts))
                return mismatch("an object");
            HomebrewAnalyticsCounts parsed;
            for (const auto count : counts) {
                std::optional<qint64>* target = count.key == "thirtyDays" ? &parsed.thirtyDays
                    : count.key == "ninetyDays"                           ? &parsed.ninetyDays
                    : count.key == "threeHundredSixtyFiveDays"            ? &parsed.threeHundredSixtyFiveDays
                                                                          : nullptr;
                if (!target || count.value.is_null())
                    continue; // unknown keys are ignored; null is absent
                *target = json::integerValue(count.value);
                if (!*target)
                    return QStringLiteral("expected an integer at analytics.%1").arg(json::toQString(count.key));
            }
            if (row)
                row->analytics = parsed;
            break;
        }
        default: {
            bool flag = false;
            if (value.get_bool().get(flag))
                return mismatch("a boolean");
            if (row)
                (field == isDeprecated ? row->isDeprecated : row->isDisabled) = flag;
            break;
        }
        }
    }
    if (seen != all)
        for (const auto& [name, bit] : keys)
            if (!(seen & bit))
                return QStringLiteral("missing key %1").arg(json::toQString(name));
    return {};
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

    auto parsed = json::parseObject(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader payload = std::move(parsed).value();
    qint64 schemaVersion = 0;
    QString kind;
    simdjson::dom::array packages;
    payload.requiredInteger("schemaVersion", schemaVersion);
    payload.requiredString("kind", kind);
    payload.requiredArray("packages", packages);
    if (!payload.ok())
        return payload.error();

    // Rows are decoded in place into a list made at its full length; a failure discards
    // the whole list anyway.
    HomebrewPackageSummary* row = nullptr;
    if (rows) {
        rows->resize(static_cast<qsizetype>(packages.size()));
        row = rows->data();
    }
    SharedTextBlocks texts;
    qsizetype index = 0;
    for (const simdjson::dom::element element : packages) {
        if (row)
            row->kind = expectedKind;
        if (const QString problem = decodeRow(element, row, &texts); !problem.isEmpty())
            return HomebrewError::decoding(QStringLiteral("packages[%1]: %2").arg(index).arg(problem));
        if (row)
            ++row;
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
    auto parsed = json::parseObject(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader object = std::move(parsed).value();
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
    return HomebrewCatalogIndex(rows).filtered(query, option).toList();
}

HomebrewPackageList HomebrewCatalogProcessor::filtered(const HomebrewCatalogIndex& index,
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
