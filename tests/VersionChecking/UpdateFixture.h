#pragma once

#include <QHostAddress>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QNetworkAccessManager>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "VersionChecking/VersionManager.h"

namespace quillbay::test {

// A real HTTP server on loopback that answers every version check with the status and
// body it is given, and keeps what it received.
class ScriptedUpdateServer
{
public:
    struct Received
    {
        QUrl url;
        QByteArray timestamp;
        QByteArray signature;
    };

    ScriptedUpdateServer()
    {
        for (const char* path : {"/api/app-version/check", "/service/api/app-version/check"}) {
            m_server.route(QLatin1String(path), [this](const QHttpServerRequest& request) {
                m_received.push_back(
                    {request.url(), request.value("x-app-timestamp"), request.value("x-app-signature")});
                return QHttpServerResponse("application/json", m_body,
                                           static_cast<QHttpServerResponse::StatusCode>(m_status));
            });
        }
        m_port = m_server.listen(QHostAddress::LocalHost, 0);
        EXPECT_NE(m_port, 0) << "loopback server did not start";
    }

    void answer(int status, QByteArray body)
    {
        m_status = status;
        m_body = std::move(body);
    }

    QString baseURL(const QString& path = {}) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path);
    }

    const std::vector<Received>& received() const { return m_received; }

private:
    QHttpServer m_server;
    quint16 m_port = 0;
    int m_status = 200;
    QByteArray m_body;
    std::vector<Received> m_received;
};

// A VersionManager that learned its answer from a real loopback service.
struct UpdateFixture
{
    ScriptedUpdateServer server;
    QNetworkAccessManager network;
    QList<QUrl> opened;
    VersionManager manager;

    explicit UpdateFixture(const QString& version = QStringLiteral("1.4.2"))
        : manager(
            VersionCheckClient(
                *VersionCheckConfiguration::make(server.baseURL(), QByteArray(64, 's'), QStringLiteral("1")), network),
            version,
            [this](const QUrl& url) { opened << url; })
    {
    }

    // Runs one check to its end, whatever the server was told to answer.
    bool checkAndWait()
    {
        QSignalSpy finished(&manager, &VersionManager::checkFinished);
        manager.startCheck();
        return finished.wait(10000);
    }

    bool answer(bool forceUpdate, bool updateAvailable, const QString& url = QStringLiteral("https://u.test/get"))
    {
        server.answer(200,
                      QStringLiteral(R"({"update_url":"%1","force_update":%2,"update_available":%3})")
                          .arg(url, forceUpdate ? QStringLiteral("true") : QStringLiteral("false"),
                               updateAvailable ? QStringLiteral("true") : QStringLiteral("false"))
                          .toUtf8());
        return checkAndWait() && manager.updateInfo().has_value();
    }
};

} // namespace quillbay::test
