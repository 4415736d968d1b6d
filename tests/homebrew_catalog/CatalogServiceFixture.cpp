#include "CatalogServiceFixture.h"

#include <QDir>
#include <QHostAddress>
#include <QTcpSocket>
#include <QUrl>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CatalogImporter.h"
#include "CatalogLayout.h"

namespace quillbay::test {

using namespace Qt::StringLiterals;

using Json = nlohmann::ordered_json;

std::unique_ptr<HomebrewCatalogStore>
makeCatalogStore(const QString& baseURL, const QString& cacheRoot, Defaults& defaults, const QDateTime* clock)
{
    const auto now = [clock] { return clock ? *clock : QDateTime::currentDateTimeUtc(); };
    HomebrewAPIClient::Configuration configuration {QUrl(baseURL), catalogTestKey,
                                                    [] { return QDateTime::currentDateTimeUtc(); }, now};
    return std::make_unique<HomebrewCatalogStore>(
        std::make_unique<HomebrewAPIClient>(configuration, std::make_unique<HomebrewCacheService>(cacheRoot)),
        HomebrewCatalogProcessor(), defaults, now);
}

class CatalogServiceFixture::Recorder : public services::HttpService
{
public:
    Recorder(services::CatalogServer& inner, QList<Seen>& seen)
        : m_inner(inner)
        , m_seen(seen)
    {
    }
    bool handles(const QHttpServerRequest& request) const override { return m_inner.handles(request); }
    void respond(const QHttpServerRequest& request, QHttpServerResponder& responder) override
    {
        m_seen.append({request.url().path(QUrl::FullyEncoded), request.value("If-None-Match")});
        m_inner.respond(request, responder);
    }

private:
    services::CatalogServer& m_inner;
    QList<Seen>& m_seen;
};

CatalogServiceFixture::CatalogServiceFixture()
{
    m_catalog = std::make_unique<services::CatalogServer>(
        services::CatalogServer::Configuration {dataDir(), catalogTestKey, 300, {}});
    m_recorder = std::make_unique<Recorder>(*m_catalog, m_requests);
    m_server.addService(m_recorder.get());
    m_port = m_server.listen(QHostAddress::LocalHost, 0);
}

CatalogServiceFixture::~CatalogServiceFixture() = default;

QString CatalogServiceFixture::baseURL() const
{
    return u"http://127.0.0.1:%1"_s.arg(m_port);
}

QString CatalogServiceFixture::snapshotFile(const QString& snapshotID, const QString& kind) const
{
    return services::catalogLayout::snapshotPath(services::catalogLayout::setFolder(dataDir(), snapshotID),
                                                 *catalogKindFromRawValue(kind));
}

void CatalogServiceFixture::publish(const QString& snapshotID,
                                    const QList<Formula>& formulae,
                                    const QList<Cask>& casks,
                                    const QList<std::pair<QString, QString>>& formulaInstalls)
{
    const QString input = u"input-"_s + snapshotID;
    Json formulaDocs = Json::array();
    for (const Formula& f : formulae) {
        Json dependencies = Json::array();
        for (const QString& dependency : f.dependencies)
            dependencies.push_back(dependency.toStdString());
        formulaDocs.push_back(Json {{"name", f.name.toStdString()},
                                    {"desc", f.desc.toStdString()},
                                    {"versions", Json {{"stable", f.stable.toStdString()}, {"head", nullptr}}},
                                    {"revision", f.revision},
                                    {"dependencies", dependencies}});
    }
    Json caskDocs = Json::array();
    for (const Cask& c : casks)
        caskDocs.push_back(Json {{"token", c.token.toStdString()},
                                 {"name", Json::array({c.name.toStdString()})},
                                 {"desc", c.desc.toStdString()},
                                 {"version", c.version.toStdString()}});
    Json items = Json::array();
    for (const auto& [name, count] : formulaInstalls)
        items.push_back(Json {{"formula", name.toStdString()}, {"count", count.toStdString()}});
    m_tree.writeFile(input + u"/formula.json"_s, QByteArray::fromStdString(formulaDocs.dump()));
    m_tree.writeFile(input + u"/cask.json"_s, QByteArray::fromStdString(caskDocs.dump()));
    m_tree.writeFile(input + u"/analytics/install-30d.json"_s,
                     QByteArray::fromStdString(Json {{"items", items}}.dump()));

    services::CatalogImporter::Options options;
    options.inputDir = m_tree.path(input);
    options.dataDir = dataDir();
    options.snapshotID = snapshotID;
    const auto result = services::CatalogImporter::run(options);
    ASSERT_TRUE(result.ok) << result.error.toStdString();
}

DyingProxy::DyingProxy(quint16 targetPort)
    : m_target(targetPort)
{
    m_listener.listen(QHostAddress::LocalHost, 0);
    connect(&m_listener, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* client = m_listener.nextPendingConnection()) {
            auto* upstream = new QTcpSocket(this);
            client->setParent(this);
            m_sockets << client << upstream;
            upstream->connectToHost(QHostAddress::LocalHost, m_target);
            connect(client, &QTcpSocket::readyRead, this, [this, client, upstream] {
                const QByteArray bytes = client->readAll();
                if (!m_marker.isEmpty() && bytes.contains(m_marker))
                    return die();
                upstream->write(bytes);
            });
            connect(upstream, &QTcpSocket::readyRead, this, [client, upstream] { client->write(upstream->readAll()); });
            connect(upstream, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
            connect(client, &QTcpSocket::disconnected, upstream, &QTcpSocket::disconnectFromHost);
        }
    });
}

void DyingProxy::die()
{
    m_died = true;
    m_listener.close();
    for (QTcpSocket* socket : std::as_const(m_sockets))
        socket->abort();
}

} // namespace quillbay::test
