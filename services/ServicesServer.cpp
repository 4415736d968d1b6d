#include "ServicesServer.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace quillbay::services {

void writeResponse(QHttpServerResponder& responder,
                   QHttpServerResponder::StatusCode status,
                   const QList<std::pair<QByteArray, QByteArray>>& headers,
                   const QByteArray& body)
{
    responder.writeStatusLine(status);
    for (const auto& [name, value] : headers)
        responder.writeHeader(name, value);
    responder.writeHeader("Content-Length", QByteArray::number(body.size()));
    responder.writeBody(body);
}

void writeError(QHttpServerResponder& responder, QHttpServerResponder::StatusCode status, const QString& message)
{
    const QByteArray body
        = QJsonDocument(QJsonObject {{QStringLiteral("error"), message}}).toJson(QJsonDocument::Compact);
    writeResponse(responder, status, {{"Content-Type", "application/json"}}, body);
}

ServicesServer::ServicesServer(QObject* parent)
    : QObject(parent)
{
    m_server.setMissingHandler([this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
        for (HttpService* service : std::as_const(m_services)) {
            if (service->handles(request)) {
                service->respond(request, responder);
                return;
            }
        }
        writeError(responder, QHttpServerResponder::StatusCode::NotFound, QStringLiteral("Not found"));
    });
}

void ServicesServer::addService(HttpService* service)
{
    m_services.append(service);
}

quint16 ServicesServer::listen(const QHostAddress& address, quint16 port)
{
    return m_server.listen(address, port);
}

} // namespace quillbay::services
