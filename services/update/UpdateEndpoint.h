#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QUrlQuery>
#include <functional>

class QHttpServer;

namespace quillbay::services {

// What the update service answers, fixed when it starts.
struct UpdateEndpointConfig
{
    static constexpr auto path = "/api/app-version/check";

    QString signatureSecret;
    QString appID; // compared trimmed and lowercased
    QString latestVersion; // older versions have an update available
    QString updateURL; // the page every answer points at
    QStringList versionsThatMustUpdate; // answered with force_update
    qint64 timestampWindowSeconds = 300; // either side of the server's clock
    std::function<qint64()> clock; // seconds since 1970; the system clock when empty
};

// One answer, before it is put on the wire.
struct UpdateEndpointReply
{
    int status = 200;
    QByteArray body;
    QByteArray contentType = "text/plain";
};

// The whole decision for one request: query items, the two signature headers, and the
// request's path (as received, not normalized: the client signs the path it sends).
UpdateEndpointReply answerUpdateCheck(const UpdateEndpointConfig& config,
                                      const QString& requestPath,
                                      const QUrlQuery& query,
                                      const QByteArray& timestampHeader,
                                      const QByteArray& signatureHeader);

// Serves GET /api/app-version/check on server from config.
void registerUpdateEndpoint(QHttpServer& server, UpdateEndpointConfig config);

// Compares dotted version texts numerically ("1.10" > "1.9", "1.2" == "1.2.0"); texts
// that are not dotted numbers compare equal only to themselves and are never "older".
bool isOlderVersion(const QString& version, const QString& than);

} // namespace quillbay::services
