#pragma once

#include <QByteArray>
#include <QHttpServer>
#include <QUrl>

namespace quillbay::test {

// A real HTTP server on loopback that answers "/data.json" with whatever status and body
// the test sets, and counts the requests it saw.
class FeedServer
{
public:
    FeedServer();
    void answer(int status, const QByteArray& body) { m_status = status, m_body = body; }
    QUrl feedURL() const { return m_url; }
    int requestCount() const { return m_requests; }

private:
    QHttpServer m_server;
    QUrl m_url;
    int m_status = 200;
    QByteArray m_body;
    int m_requests = 0;
};

// Two valid feeds: two releases (a final and a beta, with keys the records don't know, so
// byte-for-byte caching is visible), and three releases.
QByteArray smallFeed();
QByteArray otherFeed();

} // namespace quillbay::test
