#include "xcode_releases/XcodeReleaseDataLoader.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPromise>
#include <QStandardPaths>
#include <memory>

namespace quillbay {

namespace {

// Under test, only loopback and local addresses are reached: a test that builds the
// application's stores must never call the public feed.
bool isBlockedUnderTest(const QUrl& url)
{
    if (!QStandardPaths::isTestModeEnabled() || url.isLocalFile() || url.scheme() == u"data")
        return false;
    const QString host = url.host();
    return host != u"localhost" && !QHostAddress(host).isLoopback();
}

QFuture<XcodeReleaseLoadResult> readyResult(XcodeReleaseLoadResult result)
{
    QPromise<XcodeReleaseLoadResult> promise;
    promise.start();
    promise.addResult(std::move(result));
    promise.finish();
    return promise.future();
}

} // namespace

XcodeReleaseDataLoader makeNetworkDataLoader(QNetworkAccessManager& manager)
{
    return [&manager](const QUrl& url) -> QFuture<XcodeReleaseLoadResult> {
        if (isBlockedUnderTest(url))
            return readyResult({std::nullopt, QStringLiteral("Network access outside loopback is off under test")});
        QNetworkReply* reply = manager.get(QNetworkRequest(url));
        // Shared with the connection: when the manager deletes an unfinished reply, the
        // connection and the promise go with it, and the future reports cancellation.
        auto promise = std::make_shared<QPromise<XcodeReleaseLoadResult>>();
        promise->start();
        QFuture<XcodeReleaseLoadResult> future = promise->future();
        QObject::connect(reply, &QNetworkReply::finished, reply, [reply, promise] {
            XcodeReleaseLoadResult result;
            const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
            if (status.isValid()) {
                result.response = XcodeReleaseResponse {reply->readAll(), status.toInt()};
            } else if (reply->error() != QNetworkReply::NoError) {
                result.transportError = reply->errorString();
            } else {
                result.response = XcodeReleaseResponse {reply->readAll(), std::nullopt};
            }
            promise->addResult(std::move(result));
            promise->finish();
            reply->deleteLater();
        });
        return future;
    };
}

} // namespace quillbay
