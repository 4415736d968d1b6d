#pragma once

#include <QNetworkAccessManager>
#include <QSignalSpy>

#include "ScriptedUpdateServer.h"
#include "VersionChecking/VersionManager.h"

namespace quillbay::test {

// A VersionManager that learned its answer from a real loopback service.
struct UpdateFixture
{
    ScriptedUpdateServer server;
    QNetworkAccessManager network;
    QList<QUrl> opened;
    VersionManager manager;

    explicit UpdateFixture(const QString& version = QStringLiteral("1.4.2"))
        : manager(VersionCheckClient(configuration(server.baseURL()), network), version, [this](const QUrl& url) {
            opened << url;
        })
    {
    }

    static VersionCheckConfiguration configuration(const QString& base)
    {
        VersionCheckConfiguration c;
        c.baseURL = QUrl(base);
        c.appID = QStringLiteral("1");
        c.signatureSecret = QStringLiteral("s");
        return c;
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
