#include "homebrew_catalog/HomebrewCacheService.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "foundation/AtomicFile.h"
#include "homebrew_catalog/JsonFields.h"
#include "platform/UserPaths.h"

namespace quillbay {

namespace {

constexpr qint64 referenceDateOffsetSeconds = 978307200; // 2001-01-01 00:00:00 UTC
const QLatin1String validatedManifestName("proxy-v1-validated-catalog-manifest.json");
const QLatin1String refreshStateName("refresh-state.json");

std::string utf8(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

HomebrewResult<QDateTime> decodeDate(simdjson::dom::element element, const char* key)
{
    double seconds = 0;
    if (element.get_double().get(seconds))
        return HomebrewError::decoding(QStringLiteral("expected a number at %1").arg(QLatin1String(key)));
    return HomebrewCacheService::dateFromReferenceSeconds(seconds);
}

QByteArray dumped(const nlohmann::ordered_json& object)
{
    const std::string text = object.dump();
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

HomebrewCacheService::HomebrewCacheService(QString rootPath)
    : m_rootPath(std::move(rootPath))
{
}

QString HomebrewCacheService::defaultRootPath(const UserPaths& paths)
{
    return paths.programCacheFolder() + QStringLiteral("/HomebrewCatalog");
}

QString HomebrewCacheService::metadataPath(const HomebrewEndpoint& endpoint) const
{
    return m_rootPath + u'/' + endpoint.cacheStem() + QStringLiteral(".metadata.json");
}

QString HomebrewCacheService::bodyPath(const HomebrewEndpoint& endpoint) const
{
    return m_rootPath + u'/' + endpoint.cacheStem() + QStringLiteral(".json");
}

QString HomebrewCacheService::refreshStatePath() const
{
    return m_rootPath + u'/' + refreshStateName;
}

double HomebrewCacheService::referenceSeconds(const QDateTime& date)
{
    return static_cast<double>(date.toMSecsSinceEpoch()) / 1000.0 - static_cast<double>(referenceDateOffsetSeconds);
}

QDateTime HomebrewCacheService::dateFromReferenceSeconds(double seconds)
{
    const double msecs = std::round((seconds + static_cast<double>(referenceDateOffsetSeconds)) * 1000.0);
    // A damaged file may hold any number. Past the range of a millisecond count the date
    // stays at that end (far future or far past) rather than overflowing the conversion.
    constexpr double limit = 9.2e18;
    const double bounded = std::isnan(msecs) ? 0.0 : std::clamp(msecs, -limit, limit);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(bounded), Qt::UTC);
}

HomebrewStatus HomebrewCacheService::ensureRoot() const
{
    if (QFileInfo(m_rootPath).isDir())
        return homebrewSuccess();
    if (!QDir().mkpath(m_rootPath))
        return HomebrewError::file(QStringLiteral("The folder \u201c%1\u201d could not be created.").arg(m_rootPath));
    return homebrewSuccess();
}

HomebrewResult<bool> HomebrewCacheService::hasBody(const HomebrewEndpoint& endpoint) const
{
    if (auto status = ensureRoot(); !status)
        return status.error();
    return QFileInfo::exists(bodyPath(endpoint));
}

HomebrewResult<std::optional<QByteArray>> HomebrewCacheService::readOptionalFile(const QString& path) const
{
    if (auto status = ensureRoot(); !status)
        return status.error();
    QFile file(path);
    if (!file.exists())
        return std::optional<QByteArray>();
    if (!file.open(QIODevice::ReadOnly))
        return HomebrewError::file(QStringLiteral("%1: %2").arg(path, file.errorString()));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return HomebrewError::file(QStringLiteral("%1: %2").arg(path, file.errorString()));
    return std::optional<QByteArray>(std::move(bytes));
}

HomebrewStatus HomebrewCacheService::writeFile(const QString& path, const QByteArray& bytes) const
{
    if (auto status = ensureRoot(); !status)
        return status;
    QString error;
    if (!writeFileAtomically(path, bytes, &error))
        return HomebrewError::file(QStringLiteral("%1: %2").arg(path, error));
    return homebrewSuccess();
}

HomebrewResult<std::optional<HomebrewCacheService::Metadata>>
HomebrewCacheService::readMetadata(const HomebrewEndpoint& endpoint) const
{
    auto bytes = readOptionalFile(metadataPath(endpoint));
    if (!bytes)
        return bytes.error();
    if (!bytes.value())
        return std::optional<Metadata>();
    auto metadata = decodeMetadata(*bytes.value());
    if (!metadata)
        return metadata.error();
    return std::optional<Metadata>(std::move(metadata).value());
}

HomebrewResult<std::optional<QByteArray>> HomebrewCacheService::readBody(const HomebrewEndpoint& endpoint) const
{
    return readOptionalFile(bodyPath(endpoint));
}

HomebrewStatus
HomebrewCacheService::store(const HomebrewEndpoint& endpoint, const QByteArray& body, const Metadata& metadata)
{
    if (auto status = writeFile(bodyPath(endpoint), body); !status)
        return status;
    return writeFile(metadataPath(endpoint), encodeMetadata(metadata));
}

HomebrewStatus HomebrewCacheService::touch(const HomebrewEndpoint& endpoint, const QDateTime& date)
{
    auto metadata = readMetadata(endpoint);
    if (!metadata)
        return metadata.error();
    if (!metadata.value())
        return homebrewSuccess();
    Metadata updated = *metadata.value();
    updated.fetchedAt = date;
    return writeFile(metadataPath(endpoint), encodeMetadata(updated));
}

HomebrewResult<HomebrewCacheService::RefreshState> HomebrewCacheService::readRefreshState() const
{
    auto bytes = readOptionalFile(refreshStatePath());
    if (!bytes)
        return bytes.error();
    if (!bytes.value())
        return RefreshState {};
    return decodeRefreshState(*bytes.value());
}

HomebrewResult<HomebrewCacheService::RefreshState> HomebrewCacheService::recordCheck(const QDateTime& date)
{
    auto state = readRefreshState();
    if (!state)
        return state;
    RefreshState updated = state.value();
    updated.lastCheckDate = date;
    if (auto status = writeFile(refreshStatePath(), encodeRefreshState(updated)); !status)
        return status.error();
    return updated;
}

HomebrewResult<HomebrewCacheService::RefreshState> HomebrewCacheService::recordSuccess(const QDateTime& date)
{
    auto state = readRefreshState();
    if (!state)
        return state;
    RefreshState updated = state.value();
    updated.lastSuccessfulRefreshDate = date;
    if (auto status = writeFile(refreshStatePath(), encodeRefreshState(updated)); !status)
        return status.error();
    return updated;
}

HomebrewStatus HomebrewCacheService::storeValidatedManifest(const QByteArray& bytes,
                                                            const QList<HomebrewEndpoint>& keep)
{
    if (auto status = writeFile(m_rootPath + u'/' + validatedManifestName, bytes); !status)
        return status;
    return removeStaleSnapshots(keep);
}

HomebrewResult<std::optional<QByteArray>> HomebrewCacheService::readValidatedManifest() const
{
    return readOptionalFile(m_rootPath + u'/' + validatedManifestName);
}

HomebrewStatus HomebrewCacheService::removeStaleSnapshots(const QList<HomebrewEndpoint>& keep)
{
    if (auto status = ensureRoot(); !status)
        return status;
    QSet<QString> keptNames;
    for (const HomebrewEndpoint& endpoint : keep) {
        keptNames.insert(endpoint.cacheStem() + QStringLiteral(".json"));
        keptNames.insert(endpoint.cacheStem() + QStringLiteral(".metadata.json"));
    }
    QDir root(m_rootPath);
    if (!root.isReadable())
        return HomebrewError::file(QStringLiteral("The folder \u201c%1\u201d could not be listed.").arg(m_rootPath));
    const QStringList names
        = root.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString& name : names) {
        if (!name.startsWith(QLatin1String("proxy-v1-formula-catalog-"))
            && !name.startsWith(QLatin1String("proxy-v1-cask-catalog-")))
            continue;
        if (keptNames.contains(name))
            continue;
        const QString path = root.filePath(name);
        const QFileInfo info(path);
        const bool removed = info.isDir() && !info.isSymLink() ? QDir(path).removeRecursively() : QFile::remove(path);
        if (!removed)
            return HomebrewError::file(QStringLiteral("\u201c%1\u201d could not be removed.").arg(path));
    }
    return homebrewSuccess();
}

QByteArray HomebrewCacheService::encodeMetadata(const Metadata& metadata)
{
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    object["fetchedAt"] = referenceSeconds(metadata.fetchedAt);
    if (metadata.etag)
        object["etag"] = utf8(*metadata.etag);
    if (metadata.lastModified)
        object["lastModified"] = utf8(*metadata.lastModified);
    return dumped(object);
}

HomebrewResult<HomebrewCacheService::Metadata> HomebrewCacheService::decodeMetadata(const QByteArray& bytes)
{
    auto parsed = json::parseObject(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader object = std::move(parsed).value();
    simdjson::dom::element fetchedAt;
    if (object.object().at_key("fetchedAt").get(fetchedAt))
        return HomebrewError::decoding(QStringLiteral("missing key fetchedAt"));
    auto date = decodeDate(fetchedAt, "fetchedAt");
    if (!date)
        return date.error();
    Metadata metadata;
    metadata.fetchedAt = date.value();
    object.optionalString("etag", metadata.etag);
    object.optionalString("lastModified", metadata.lastModified);
    if (!object.ok())
        return object.error();
    return metadata;
}

QByteArray HomebrewCacheService::encodeRefreshState(const RefreshState& state)
{
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    if (state.lastCheckDate)
        object["lastCheckDate"] = referenceSeconds(*state.lastCheckDate);
    if (state.lastSuccessfulRefreshDate)
        object["lastSuccessfulRefreshDate"] = referenceSeconds(*state.lastSuccessfulRefreshDate);
    return dumped(object);
}

HomebrewResult<HomebrewCacheService::RefreshState> HomebrewCacheService::decodeRefreshState(const QByteArray& bytes)
{
    auto parsed = json::parseObject(bytes);
    if (!parsed)
        return parsed.error();
    json::ObjectReader object = std::move(parsed).value();
    RefreshState state;
    for (const auto& [key, target] : {std::pair {"lastCheckDate", &state.lastCheckDate},
                                      std::pair {"lastSuccessfulRefreshDate", &state.lastSuccessfulRefreshDate}}) {
        const auto element = object.optionalElement(key);
        if (!element)
            continue;
        auto date = decodeDate(*element, key);
        if (!date)
            return date.error();
        *target = date.value();
    }
    return state;
}

} // namespace quillbay
