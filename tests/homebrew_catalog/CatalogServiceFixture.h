#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <memory>

#include "CatalogServer.h"
#include "ServicesServer.h"
#include "foundation/Defaults.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"
#include "testsupport/TempTree.h"

namespace quillbay::test {

// The development signing key of the default build.
inline const QByteArray catalogTestKey("quillbay-development-catalog-signing-key-0123456789abcdef0123456");

// A store as the application builds it, over a cache folder; without a clock it runs on real time.
std::unique_ptr<HomebrewCatalogStore> makeCatalogStore(const QString& baseURL,
                                                       const QString& cacheRoot,
                                                       Defaults& defaults,
                                                       const QDateTime* clock = nullptr);

// A running catalog service on a loopback port, fed through the real importer.
class CatalogServiceFixture
{
public:
    struct Formula
    {
        QString name;
        QString desc;
        QString stable = QStringLiteral("1.0");
        int revision = 0;
        QStringList dependencies = {};
    };
    struct Cask
    {
        QString token;
        QString name;
        QString desc;
        QString version = QStringLiteral("1.0");
    };
    // What the service was asked: path and the validator it sent.
    struct Seen
    {
        QString path;
        QByteArray ifNoneMatch;
    };

    CatalogServiceFixture();
    ~CatalogServiceFixture();

    // Imports and publishes a snapshot set; 30-day installs are given as "1,234"-style text.
    void publish(const QString& snapshotID,
                 const QList<Formula>& formulae,
                 const QList<Cask>& casks,
                 const QList<std::pair<QString, QString>>& formulaInstalls = {});

    QString baseURL() const;
    QString dataDir() const { return m_tree.path(QStringLiteral("data")); }
    QString snapshotFile(const QString& snapshotID, const QString& kind) const;
    const QList<Seen>& requests() const { return m_requests; }

private:
    class Recorder;

    TempTree m_tree;
    std::unique_ptr<services::CatalogServer> m_catalog;
    std::unique_ptr<Recorder> m_recorder;
    services::ServicesServer m_server;
    quint16 m_port = 0;
    QList<Seen> m_requests;
};

// Passes bytes between a client and the service until it sees a request for `marker`;
// then it drops that connection and stops listening, as a server that dies would.
class DyingProxy : public QObject
{
public:
    explicit DyingProxy(quint16 targetPort);
    quint16 port() const { return m_listener.serverPort(); }
    void dieOnRequestFor(const QByteArray& marker) { m_marker = marker; }
    bool hasDied() const { return m_died; }

private:
    void die();

    QTcpServer m_listener;
    quint16 m_target;
    QByteArray m_marker;
    bool m_died = false;
    QList<QTcpSocket*> m_sockets;
};

} // namespace quillbay::test
