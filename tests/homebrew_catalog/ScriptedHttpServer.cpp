#include "ScriptedHttpServer.h"

#include <QHostAddress>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QUrl>

#include "HttpService.h"

namespace quillbay::test {

using namespace Qt::StringLiterals;

ScriptedHttpServer::ScriptedHttpServer()
{
    m_server.setMissingHandler([this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
        Request seen;
        seen.path = request.url().path(QUrl::FullyEncoded);
        for (const auto& [name, value] : request.headers())
            seen.headers.insert(name.toLower(), value);
        requests.append(seen);
        const Reply reply = script ? script(seen) : Reply {404, "{}", {}, false};
        if (reply.hold) {
            m_held.push_back(std::make_unique<QHttpServerResponder>(std::move(responder)));
            return;
        }
        services::writeResponse(responder, static_cast<QHttpServerResponder::StatusCode>(reply.status), reply.headers,
                                reply.body);
    });
    m_port = m_server.listen(QHostAddress::LocalHost, 0);
}

ScriptedHttpServer::~ScriptedHttpServer() = default;

QString ScriptedHttpServer::baseURL() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_port);
}

} // namespace quillbay::test
