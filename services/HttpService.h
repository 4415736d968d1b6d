#pragma once

#include <QHttpServerRequest>
#include <QHttpServerResponder>

namespace quillbay::services {

// One endpoint family of quillbay-services. The server asks each service in turn whether
// it takes a request; the first that does answers it.
class HttpService
{
public:
    virtual ~HttpService() = default;
    virtual bool handles(const QHttpServerRequest& request) const = 0;
    virtual void respond(const QHttpServerRequest& request, QHttpServerResponder& responder) = 0;
};

// Writes a whole response with the given headers and a Content-Length.
void writeResponse(QHttpServerResponder& responder,
                   QHttpServerResponder::StatusCode status,
                   const QList<std::pair<QByteArray, QByteArray>>& headers,
                   const QByteArray& body);

// A small JSON error document: {"error": message}.
void writeError(QHttpServerResponder& responder, QHttpServerResponder::StatusCode status, const QString& message);

} // namespace quillbay::services
