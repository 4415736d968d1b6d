#pragma once

#include <QByteArray>
#include <QHash>
#include <QHttpServer>
#include <QList>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

namespace quillbay::test {

// A real HTTP server on a loopback port whose answers a test scripts per request.
// It records what it was sent, and can hold a request unanswered (to test cancellation).
class ScriptedHttpServer
{
public:
    struct Reply
    {
        int status = 200;
        QByteArray body;
        QList<std::pair<QByteArray, QByteArray>> headers;
        bool hold = false; // never answer
    };
    struct Request
    {
        QString path; // as on the wire
        QHash<QByteArray, QByteArray> headers; // lower-case names
    };

    ScriptedHttpServer();
    ~ScriptedHttpServer();

    std::function<Reply(const Request&)> script;
    QList<Request> requests;

    quint16 port() const { return m_port; }
    QString baseURL() const;

private:
    QHttpServer m_server;
    quint16 m_port = 0;
    std::vector<std::unique_ptr<QHttpServerResponder>> m_held;
};

} // namespace quillbay::test
