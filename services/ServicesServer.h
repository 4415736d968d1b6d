#pragma once

#include <QHostAddress>
#include <QHttpServer>
#include <QList>
#include <QObject>

#include "HttpService.h"

namespace quillbay::services {

// The HTTP server of quillbay-services: every request goes to the first registered
// service that takes it, anything else is a 404.
class ServicesServer : public QObject
{
    Q_OBJECT

public:
    explicit ServicesServer(QObject* parent = nullptr);

    // Not owned; each must outlive the server.
    void addService(HttpService* service);
    // For endpoints that register their own routes; routes answer before the services.
    QHttpServer& httpServer() { return m_server; }
    // The bound port, or 0 when listening failed. Port 0 picks a free one.
    quint16 listen(const QHostAddress& address, quint16 port);

private:
    QHttpServer m_server;
    QList<HttpService*> m_services;
};

} // namespace quillbay::services
