#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

#include "HttpService.h"

namespace quillbay::services {

// Serves the published snapshot set: the manifest, both snapshots and the detail
// documents. Every request must carry a valid signature (401 otherwise); answers carry
// ETag and Last-Modified, and a matching conditional request gets 304. Files are read
// per request, so a new import is served as soon as it is published.
class CatalogServer : public HttpService
{
public:
    struct Configuration
    {
        QString dataDir;
        QByteArray signingKey;
        qint64 timestampWindowSeconds = 300;
        // Seconds since 1970; the real clock when empty.
        std::function<qint64()> nowSeconds;
    };

    explicit CatalogServer(Configuration configuration);

    bool handles(const QHttpServerRequest& request) const override;
    void respond(const QHttpServerRequest& request, QHttpServerResponder& responder) override;

    // The file behind a request path, or "" when the path names nothing servable.
    QString filePathFor(const QString& encodedPath) const;

    static QByteArray entityTag(const QByteArray& body);
    static QByteArray httpDate(const QDateTime& date);

private:
    Configuration m_configuration;
};

} // namespace quillbay::services
