#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

#include "homebrew_catalog/HomebrewEndpoint.h"
#include "homebrew_catalog/HomebrewError.h"

namespace quillbay {

class UserPaths;

// The catalog's folder of server bodies, their validators, the last accepted manifest and
// the refresh dates. Bodies are kept byte for byte so that a cached snapshot still hashes
// to its manifest's value. Every write is atomic; every read goes to disk. Calls run one
// at a time on the service's own thread, which is what keeps the read-modify-write of a
// sidecar or of the refresh state from interleaving.
class HomebrewCacheService
{
public:
    // The validators of one cached body.
    struct Metadata
    {
        QDateTime fetchedAt;
        std::optional<QString> etag;
        std::optional<QString> lastModified;
        friend bool operator==(const Metadata&, const Metadata&) = default;
    };

    struct RefreshState
    {
        std::optional<QDateTime> lastCheckDate;
        std::optional<QDateTime> lastSuccessfulRefreshDate;
        friend bool operator==(const RefreshState&, const RefreshState&) = default;
    };

    explicit HomebrewCacheService(QString rootPath);

    // "HomebrewCatalog" in the program's cache folder.
    static QString defaultRootPath(const UserPaths& paths);

    const QString& rootPath() const { return m_rootPath; }
    QString metadataPath(const HomebrewEndpoint& endpoint) const;
    QString bodyPath(const HomebrewEndpoint& endpoint) const;

    HomebrewStatus ensureRoot() const;
    // After ensuring the folder: whether the endpoint has a cached body.
    HomebrewResult<bool> hasBody(const HomebrewEndpoint& endpoint) const;

    HomebrewResult<std::optional<Metadata>> readMetadata(const HomebrewEndpoint& endpoint) const;
    HomebrewResult<std::optional<QByteArray>> readBody(const HomebrewEndpoint& endpoint) const;
    // The body first, then the sidecar.
    HomebrewStatus store(const HomebrewEndpoint& endpoint, const QByteArray& body, const Metadata& metadata);
    // Moves fetchedAt of an existing sidecar; makes none when there is none.
    HomebrewStatus touch(const HomebrewEndpoint& endpoint, const QDateTime& date);

    HomebrewResult<RefreshState> recordCheck(const QDateTime& date);
    HomebrewResult<RefreshState> recordSuccess(const QDateTime& date);
    HomebrewResult<RefreshState> readRefreshState() const;

    // Writes the manifest of an accepted catalog, then removes every snapshot file that
    // is not one of `keep`. When the write fails nothing is removed.
    HomebrewStatus storeValidatedManifest(const QByteArray& bytes, const QList<HomebrewEndpoint>& keep);
    HomebrewResult<std::optional<QByteArray>> readValidatedManifest() const;
    HomebrewStatus removeStaleSnapshots(const QList<HomebrewEndpoint>& keep);

    // The sidecar date form: seconds since 2001-01-01 00:00:00 UTC, with fraction.
    static double referenceSeconds(const QDateTime& date);
    static QDateTime dateFromReferenceSeconds(double seconds);

    static QByteArray encodeMetadata(const Metadata& metadata);
    static HomebrewResult<Metadata> decodeMetadata(const QByteArray& bytes);
    static QByteArray encodeRefreshState(const RefreshState& state);
    static HomebrewResult<RefreshState> decodeRefreshState(const QByteArray& bytes);

private:
    HomebrewResult<std::optional<QByteArray>> readOptionalFile(const QString& path) const;
    HomebrewStatus writeFile(const QString& path, const QByteArray& bytes) const;
    QString refreshStatePath() const;

    QString m_rootPath;
};

} // namespace quillbay
