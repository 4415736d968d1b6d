#include "update/UpdateEndpoint.h"

#include <QDateTime>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <optional>

#include <openssl/crypto.h>

#include "VersionChecking/AppVersionInfo.h"
#include "VersionChecking/VersionCheckSigning.h"

namespace quillbay::services {

namespace {

std::optional<QList<qulonglong>> versionNumbers(const QString& text)
{
    QList<qulonglong> numbers;
    for (const QString& piece : text.trimmed().split(QLatin1Char('.'))) {
        bool ok = false;
        const qulonglong n = piece.toULongLong(&ok);
        if (!ok)
            return std::nullopt;
        numbers << n;
    }
    while (numbers.size() > 1 && numbers.last() == 0)
        numbers.removeLast();
    return numbers;
}

UpdateEndpointReply plain(int status, const char* text)
{
    return {status, QByteArray(text), "text/plain"};
}

bool isDecimal(const QByteArray& text)
{
    if (text.isEmpty() || text.size() > 18)
        return false;
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

QByteArray headerValue(const QHttpServerRequest& request, const QByteArray& name)
{
    for (const auto& [key, value] : request.headers()) {
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    }
    return {};
}

} // namespace

bool isOlderVersion(const QString& version, const QString& than)
{
    const auto a = versionNumbers(version);
    const auto b = versionNumbers(than);
    if (!a || !b)
        return false;
    return std::lexicographical_compare(a->begin(), a->end(), b->begin(), b->end());
}

UpdateEndpointReply answerUpdateCheck(const UpdateEndpointConfig& config,
                                      const QString& requestPath,
                                      const QUrlQuery& query,
                                      const QByteArray& timestampHeader,
                                      const QByteArray& signatureHeader)
{
    QString values[4];
    const char* keys[4] = {"app_id", "platform", "channel", "current_version"};
    for (int i = 0; i < 4; ++i) {
        const QString key = QLatin1String(keys[i]);
        if (!query.hasQueryItem(key))
            return plain(400, "missing query item");
        values[i] = query.queryItemValue(key, QUrl::FullyDecoded);
    }
    const auto& [appID, platform, channel, currentVersion] = values;

    // Authenticate before anything is looked up, so that an unsigned caller learns nothing.
    if (!isDecimal(timestampHeader) || signatureHeader.size() != 64)
        return plain(401, "invalid signature");
    const qint64 timestamp = timestampHeader.toLongLong();
    const qint64 now = config.clock ? config.clock() : QDateTime::currentSecsSinceEpoch();
    if (timestamp < now - config.timestampWindowSeconds || timestamp > now + config.timestampWindowSeconds)
        return plain(401, "stale timestamp");
    const QByteArray expected
        = VersionCheckSigning::signature(config.signatureSecret,
                                         {QStringLiteral("GET"), requestPath, appID, platform, channel, currentVersion,
                                          QString::fromLatin1(timestampHeader)});
    if (CRYPTO_memcmp(expected.constData(), signatureHeader.toLower().constData(), 64) != 0)
        return plain(401, "invalid signature");

    if (appID.trimmed().toLower() != config.appID.trimmed().toLower())
        return plain(404, "unknown app");

    AppVersionInfo info;
    info.updateURL = config.updateURL;
    const QString version = currentVersion.trimmed();
    info.forceUpdate = std::any_of(config.versionsThatMustUpdate.begin(), config.versionsThatMustUpdate.end(),
                                   [&](const QString& v) { return v.trimmed() == version; });
    info.updateAvailable = isOlderVersion(version, config.latestVersion);
    return {200, info.encode(), "application/json"};
}

void registerUpdateEndpoint(QHttpServer& server, UpdateEndpointConfig config)
{
    server.route(QLatin1String(UpdateEndpointConfig::path), QHttpServerRequest::Method::Get,
                 [config = std::move(config)](const QHttpServerRequest& request) {
                     const UpdateEndpointReply reply = answerUpdateCheck(
                         config, request.url().path(QUrl::FullyDecoded), request.query(),
                         headerValue(request, "x-app-timestamp"), headerValue(request, "x-app-signature"));
                     return QHttpServerResponse(reply.contentType, reply.body,
                                                static_cast<QHttpServerResponse::StatusCode>(reply.status));
                 });
}

} // namespace quillbay::services
