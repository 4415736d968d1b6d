#include "CatalogServer.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QUrl>

#include "CatalogLayout.h"
#include "CatalogSignature.h"

namespace quillbay::services {

namespace {

using Status = QHttpServerResponder::StatusCode;
const QString httpDateFormat = QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'");

bool entityTagMatches(const QByteArray& header, const QByteArray& tag)
{
    for (QByteArray candidate : header.split(',')) {
        candidate = candidate.trimmed();
        if (candidate == "*" || candidate == tag || candidate == "W/" + tag)
            return true;
    }
    return false;
}

} // namespace

CatalogServer::CatalogServer(Configuration configuration)
    : m_configuration(std::move(configuration))
{
    if (!m_configuration.nowSeconds)
        m_configuration.nowSeconds = [] { return QDateTime::currentSecsSinceEpoch(); };
}

bool CatalogServer::handles(const QHttpServerRequest& request) const
{
    const QString path = request.url().path(QUrl::FullyEncoded);
    return path.startsWith(QLatin1String("/v1/catalog/")) || path.startsWith(QLatin1String("/v1/details/"));
}

QByteArray CatalogServer::entityTag(const QByteArray& body)
{
    return '"' + QCryptographicHash::hash(body, QCryptographicHash::Sha256).toHex().left(32) + '"';
}

QByteArray CatalogServer::httpDate(const QDateTime& date)
{
    return QLocale::c().toString(date.toUTC(), httpDateFormat).toLatin1();
}

QString CatalogServer::filePathFor(const QString& encodedPath) const
{
    static const QRegularExpression snapshot(
        QStringLiteral("^/v1/catalog/snapshots/([A-Za-z0-9._-]+)/(formula|cask)\\.json$"));
    static const QRegularExpression detail(QStringLiteral("^/v1/details/(formula|cask)/([^/]+)\\.json$"));

    if (encodedPath == u"/v1/catalog/manifest.json") {
        const QString set = catalogLayout::currentSetFolder(m_configuration.dataDir);
        return set.isEmpty() ? QString() : catalogLayout::manifestPath(set);
    }
    if (const auto match = snapshot.match(encodedPath); match.hasMatch()) {
        const QString id = match.captured(1);
        if (!catalogLayout::isSnapshotID(id))
            return {};
        const auto kind = catalogKindFromRawValue(match.captured(2));
        return catalogLayout::snapshotPath(catalogLayout::setFolder(m_configuration.dataDir, id), *kind);
    }
    if (const auto match = detail.match(encodedPath); match.hasMatch()) {
        const QString set = catalogLayout::currentSetFolder(m_configuration.dataDir);
        if (set.isEmpty())
            return {};
        const auto kind = catalogKindFromRawValue(match.captured(1));
        const QString name = QUrl::fromPercentEncoding(match.captured(2).toUtf8());
        return catalogLayout::detailPath(set, *kind, name);
    }
    return {};
}

void CatalogServer::respond(const QHttpServerRequest& request, QHttpServerResponder& responder)
{
    if (request.method() != QHttpServerRequest::Method::Get)
        return writeError(responder, Status::MethodNotAllowed, QStringLiteral("Only GET is served"));

    const QString path = request.url().path(QUrl::FullyEncoded);
    if (!catalogSignatureIsValid(m_configuration.signingKey, path.toUtf8(), request.value("x-quillbay-timestamp"),
                                 request.value("x-quillbay-signature"), m_configuration.nowSeconds(),
                                 m_configuration.timestampWindowSeconds))
        return writeError(responder, Status::Unauthorized, QStringLiteral("Invalid signature"));

    const QString filePath = filePathFor(path);
    QFile file(filePath);
    if (filePath.isEmpty() || !file.open(QIODevice::ReadOnly))
        return writeError(responder, Status::NotFound, QStringLiteral("Not found"));
    const QByteArray body = file.readAll();
    const QByteArray tag = entityTag(body);
    const QDateTime modified = QFileInfo(filePath).lastModified().toUTC();
    const QByteArray lastModified = httpDate(modified);
    const QList<std::pair<QByteArray, QByteArray>> validators {
        {"ETag", tag}, {"Last-Modified", lastModified}, {"Cache-Control", "no-cache"}};

    const QByteArray ifNoneMatch = request.value("If-None-Match");
    bool notModified = false;
    if (!ifNoneMatch.isEmpty()) {
        notModified = entityTagMatches(ifNoneMatch, tag);
    } else if (const QByteArray since = request.value("If-Modified-Since"); !since.isEmpty()) {
        QDateTime sinceDate = QLocale::c().toDateTime(QString::fromLatin1(since), httpDateFormat);
        sinceDate.setTimeSpec(Qt::UTC);
        // HTTP dates have whole seconds.
        notModified = sinceDate.isValid() && modified.toSecsSinceEpoch() <= sinceDate.toSecsSinceEpoch();
    }
    if (notModified)
        return writeResponse(responder, Status::NotModified, validators, {});

    auto headers = validators;
    headers.prepend({"Content-Type", "application/json"});
    writeResponse(responder, Status::Ok, headers, body);
}

} // namespace quillbay::services
