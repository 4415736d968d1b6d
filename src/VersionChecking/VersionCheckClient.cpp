#include "VersionChecking/VersionCheckClient.h"

#include <QDateTime>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QUrlQuery>
#include <memory>

#include "VersionChecking/VersionCheckSigning.h"

namespace quillbay {

VersionCheckClient::VersionCheckClient(VersionCheckConfiguration configuration,
                                       QNetworkAccessManager& network,
                                       Clock clock)
    : m_configuration(std::move(configuration))
    , m_network(network)
    , m_clock(clock ? std::move(clock) : Clock([] { return QDateTime::currentSecsSinceEpoch(); }))
{
}

std::optional<QNetworkRequest> VersionCheckClient::makeRequest(const QString& currentVersion, qint64 timestamp) const
{
    const VersionCheckConfiguration& c = m_configuration;
    if (!c.baseURL.isValid())
        return std::nullopt;
    const QString path = VersionCheckSigning::normalizedPath(c.baseURL.path(QUrl::FullyDecoded), c.path);
    QUrl url = c.baseURL;
    url.setPath(path, QUrl::DecodedMode);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("app_id"), c.appID);
    query.addQueryItem(QStringLiteral("platform"), c.platform);
    query.addQueryItem(QStringLiteral("channel"), c.channel);
    query.addQueryItem(QStringLiteral("current_version"), currentVersion);
    url.setQuery(query);
    if (!url.isValid())
        return std::nullopt;

    const QString timestampText = QString::number(timestamp);
    const QByteArray signature = VersionCheckSigning::signature(
        c.signatureSecret,
        {QStringLiteral("GET"), path, c.appID, c.platform, c.channel, currentVersion, timestampText});
    QNetworkRequest request(url);
    request.setTransferTimeout(timeoutMilliseconds);
    request.setRawHeader("x-app-timestamp", timestampText.toLatin1());
    request.setRawHeader("x-app-signature", signature);
    return request;
}

void VersionCheckClient::check(const QString& currentVersion,
                               std::stop_token stopToken,
                               QObject* context,
                               std::function<void(Result)> done)
{
    const std::optional<QNetworkRequest> request = makeRequest(currentVersion, m_clock());
    if (!request) {
        QMetaObject::invokeMethod(
            context, [done = std::move(done)] { done(VersionCheckError::invalidURL()); }, Qt::QueuedConnection);
        return;
    }

    // The reply and the stop callback that aborts it live together until the answer is in.
    struct Pending
    {
        std::optional<std::stop_callback<std::function<void()>>> onStop;
    };
    auto pending = std::make_shared<Pending>();
    QNetworkReply* reply = m_network.get(*request);
    QObject::connect(reply, &QNetworkReply::finished, context, [reply, pending, stopToken, done = std::move(done)] {
        // The stop callback goes with the connection when the reply is deleted; dropping it
        // here could destroy it while it runs (a stop that aborted the reply).
        reply->deleteLater();
        if (stopToken.stop_requested()) {
            done(VersionCheckCancelled {});
            return;
        }
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        if (!status.isValid()) {
            if (reply->error() != QNetworkReply::NoError)
                done(VersionCheckTransportError {static_cast<int>(reply->error()), reply->errorString()});
            else
                done(VersionCheckError::invalidResponse());
            return;
        }
        const int code = status.toInt();
        const QByteArray body = reply->readAll();
        if (code < 200 || code > 299) {
            done(VersionCheckError::httpStatus(code, body));
            return;
        }
        auto decoded = AppVersionInfo::decode(body);
        if (auto* info = std::get_if<AppVersionInfo>(&decoded))
            done(std::move(*info));
        else
            done(std::get<AppVersionDecodingError>(std::move(decoded)));
    });
    // Registered after the connection: a token stopped already aborts at once, and the
    // abort's finished signal must find the handler above.
    pending->onStop.emplace(stopToken, std::function<void()>([guard = QPointer<QNetworkReply>(reply)] {
                                if (guard)
                                    guard->abort();
                            }));
}

} // namespace quillbay
