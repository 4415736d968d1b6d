#include "FeedServer.h"

#include <QHostAddress>
#include <QHttpServerResponse>

namespace quillbay::test {

FeedServer::FeedServer()
{
    m_server.route(QStringLiteral("/data.json"), [this](const QHttpServerRequest&) {
        ++m_requests;
        return QHttpServerResponse(QByteArrayLiteral("application/json"), m_body,
                                   static_cast<QHttpServerResponse::StatusCode>(m_status));
    });
    const quint16 port = m_server.listen(QHostAddress::LocalHost);
    m_url = QUrl(QStringLiteral("http://127.0.0.1:%1/data.json").arg(port));
}

QByteArray smallFeed()
{
    return QByteArrayLiteral(R"([ {"name": "Xcode", "requires": "14.5", "_order": 1,
  "date": {"day": 5, "month": 3, "year": 2025},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 2, "year": 2025}, "checksums": {"sha1": "ab"},
  "version": {"build": "16E5104o", "number": "16.3", "release": {"beta": 1}}} ]
)");
}

QByteArray otherFeed()
{
    return QByteArrayLiteral(R"([{"name": "Xcode", "requires": "15.3", "date": {"day": 9, "month": 6, "year": 2025},
  "version": {"build": "17A5241e", "number": "26.0", "release": {"beta": 1}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 5, "month": 3, "year": 2025},
  "version": {"build": "16E140", "number": "16.3", "release": {"release": true}}},
 {"name": "Xcode", "requires": "14.5", "date": {"day": 1, "month": 2, "year": 2025},
  "version": {"build": "16E5104o", "number": "16.3", "release": {"rc": 1}}}])");
}

} // namespace quillbay::test
