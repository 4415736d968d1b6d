#pragma once

#include <QByteArray>
#include <QFuture>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

class QNetworkAccessManager;

namespace quillbay {

// What a transport handed back for one address.
struct XcodeReleaseResponse
{
    QByteArray body;
    // The HTTP status; absent when the answer did not come from an HTTP exchange.
    std::optional<int> httpStatus;
};

// A transport's answer: a response, or the transport's own failure text.
struct XcodeReleaseLoadResult
{
    std::optional<XcodeReleaseResponse> response;
    QString transportError;
};

// The service's one way to the network, swappable for another transport. Called on the
// thread that owns the service; the future finishes when the answer is complete.
using XcodeReleaseDataLoader = std::function<QFuture<XcodeReleaseLoadResult>(const QUrl&)>;

// A plain GET through the manager, with its default headers, redirects and time-outs.
// Non-HTTP schemes (file:, data:) give a response without a status. The manager must
// outlive every request; destroying it cancels the futures of requests in flight.
XcodeReleaseDataLoader makeNetworkDataLoader(QNetworkAccessManager& manager);

} // namespace quillbay
