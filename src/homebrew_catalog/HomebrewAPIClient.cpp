#include "homebrew_catalog/HomebrewAPIClient.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPromise>
#include <QThreadPool>

#include <QtConcurrent/QtConcurrentRun>

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "foundation/BuildConfig.h"
#include "foundation/Secrets.h"

namespace quillbay {

namespace {

constexpr int requestTimeoutMs = 60'000;

template <typename T> QFuture<T> readyFuture(T value)
{
    QPromise<T> promise;
    QFuture<T> future = promise.future();
    promise.start();
    promise.addResult(std::move(value));
    promise.finish();
    return future;
}

void finish(const std::shared_ptr<HomebrewAPIClient::PendingFetch>& promise, HomebrewResult<QByteArray> result)
{
    promise->finishWith(std::move(result));
}

std::optional<QString> headerValue(const QNetworkReply* reply, const char* name)
{
    if (!reply->hasRawHeader(name))
        return std::nullopt;
    return QString::fromLatin1(reply->rawHeader(name));
}

} // namespace

HomebrewAPIClient::Configuration HomebrewAPIClient::defaultConfiguration()
{
    return Configuration {
        QUrl(QStringLiteral(QUILLBAY_CATALOG_URL)),
        secrets::catalogKey.unmask(),
        [] { return QDateTime::currentDateTimeUtc(); },
        [] { return QDateTime::currentDateTimeUtc(); },
    };
}

HomebrewAPIClient::HomebrewAPIClient(Configuration configuration,
                                     std::unique_ptr<HomebrewCacheService> cache,
                                     QObject* parent)
    : QObject(parent)
    , m_configuration(std::move(configuration))
    , m_network(new QNetworkAccessManager(this))
    , m_cache(std::move(cache))
{
    if (!m_configuration.now)
        m_configuration.now = [] { return QDateTime::currentDateTimeUtc(); };
    if (!m_configuration.currentDate)
        m_configuration.currentDate = [] { return QDateTime::currentDateTimeUtc(); };
}

HomebrewAPIClient::~HomebrewAPIClient()
{
    settle();
}

HomebrewAPIClient::PendingFetch::PendingFetch(std::shared_ptr<std::atomic<int>> counter)
    : inFlight(std::move(counter))
{
    inFlight->fetch_add(1);
    start();
}

HomebrewAPIClient::PendingFetch::~PendingFetch()
{
    if (counted)
        inFlight->fetch_sub(1);
}

void HomebrewAPIClient::PendingFetch::finishWith(HomebrewResult<QByteArray> result)
{
    addResult(std::move(result));
    finish();
    counted = false;
    inFlight->fetch_sub(1);
}

void HomebrewAPIClient::settle()
{
    // Each round lets work on the cache thread and the validation workers end and then
    // delivers the continuations they posted here; a request finishes within a few rounds.
    for (int round = 0; round < 1000; ++round) {
        const QList<QNetworkReply*> replies = m_network->findChildren<QNetworkReply*>();
        for (QNetworkReply* reply : replies)
            if (reply->isRunning())
                reply->abort();
        m_cache.drain();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents(this);
        if (!hasRequestsInFlight())
            return;
    }
}

std::optional<QUrl> HomebrewAPIClient::requestURL(const HomebrewEndpoint& endpoint) const
{
    const QString path = endpoint.path();
    if (!path.startsWith(u'/'))
        return std::nullopt;
    const QUrl& base = m_configuration.baseURL;
    QUrl url;
    url.setScheme(base.scheme());
    url.setHost(base.host());
    url.setPort(base.port());
    url.setPath(path, QUrl::TolerantMode);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

QByteArray HomebrewAPIClient::signature(const QByteArray& key, const QByteArray& encodedPath, qint64 timestamp)
{
    const QByteArray message = QByteArrayLiteral("GET\n") + encodedPath + '\n' + QByteArray::number(timestamp);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    HMAC(EVP_sha256(), key.constData(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char*>(message.constData()), static_cast<size_t>(message.size()), digest,
         &length);
    return QByteArray(reinterpret_cast<const char*>(digest), static_cast<qsizetype>(length)).toHex();
}

void HomebrewAPIClient::sign(QNetworkRequest& request) const
{
    const QUrl url = request.url();
    if (url.isEmpty())
        return;
    // Whole seconds, truncated toward zero as integer division does.
    const qint64 timestamp = m_configuration.now().toMSecsSinceEpoch() / 1000;
    const QByteArray path = url.path(QUrl::FullyEncoded).toUtf8();
    request.setRawHeader("x-quillbay-timestamp", QByteArray::number(timestamp));
    request.setRawHeader("x-quillbay-signature", signature(m_configuration.signingSecret, path, timestamp));
}

QFuture<HomebrewResult<QByteArray>> HomebrewAPIClient::fetch(const HomebrewEndpoint& endpoint,
                                                             bool conditional,
                                                             Validation validation,
                                                             std::stop_token stop)
{
    const std::optional<QUrl> url = requestURL(endpoint);
    if (!url)
        return readyFuture(HomebrewResult<QByteArray>(HomebrewAPIError::invalidURL()));

    QNetworkRequest request(*url);
    request.setTransferTimeout(requestTimeoutMs);
    request.setRawHeader("Accept", "application/json");
    // Signed before any conditional header exists: validators are not part of the signature.
    sign(request);

    auto promise = std::make_shared<PendingFetch>(m_inFlight);
    QFuture<HomebrewResult<QByteArray>> future = promise->future();

    if (!conditional) {
        send(endpoint, std::move(request), validation, stop, promise);
        return future;
    }
    m_cache
        .run([endpoint](HomebrewCacheService& cache) {
            // Any trouble with the sidecar only makes the request unconditional.
            auto metadata = cache.readMetadata(endpoint);
            return metadata && metadata.value() ? metadata.value() : std::optional<HomebrewCacheService::Metadata>();
        })
        .then(this,
              [this, endpoint, request, validation, stop,
               promise](std::optional<HomebrewCacheService::Metadata> metadata) mutable {
                  if (metadata && metadata->etag)
                      request.setRawHeader("If-None-Match", metadata->etag->toUtf8());
                  if (metadata && metadata->lastModified)
                      request.setRawHeader("If-Modified-Since", metadata->lastModified->toUtf8());
                  send(endpoint, std::move(request), validation, stop, promise);
              });
    return future;
}

void HomebrewAPIClient::send(const HomebrewEndpoint& endpoint,
                             QNetworkRequest request,
                             const Validation& validation,
                             const std::stop_token& stop,
                             const Promise& promise)
{
    if (stop.stop_requested())
        return finish(promise, HomebrewError::cancellation());
    request.setTransferTimeout(requestTimeoutMs);
    QNetworkReply* reply = m_network->get(request);
    // Runs on the thread that requests the stop, which is the UI thread that owns the reply.
    auto cancel = std::make_shared<std::stop_callback<std::function<void()>>>(
        stop, std::function<void()>([reply] { reply->abort(); }));
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, endpoint, validation, stop, promise, cancel]() mutable {
                cancel.reset();
                reply->deleteLater();
                if (stop.stop_requested() || reply->error() == QNetworkReply::OperationCanceledError)
                    return finish(promise, HomebrewError::cancellation());
                const QVariant statusAttribute = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
                if (!statusAttribute.isValid()) {
                    if (reply->error() != QNetworkReply::NoError)
                        return finish(promise,
                                      HomebrewError(HomebrewError::Transport {static_cast<int>(reply->error()),
                                                                              reply->errorString()}));
                    return finish(promise, HomebrewAPIError::invalidResponse());
                }
                const int status = statusAttribute.toInt();
                if (status == 304)
                    return acceptNotModified(endpoint, validation, promise);
                if (status >= 200 && status <= 299) {
                    QByteArray body = reply->readAll();
                    if (body.isEmpty())
                        return finish(promise, HomebrewAPIError::invalidResponse());
                    return acceptBody(endpoint, body, headerValue(reply, "ETag"), headerValue(reply, "Last-Modified"),
                                      validation, promise);
                }
                finish(promise, HomebrewAPIError::httpStatus(status));
            });
}

void HomebrewAPIClient::acceptBody(const HomebrewEndpoint& endpoint,
                                   const QByteArray& body,
                                   std::optional<QString> etag,
                                   std::optional<QString> lastModified,
                                   const Validation& validation,
                                   const Promise& promise)
{
    QtConcurrent::run([validation, body] {
        return validation(body);
    }).then(this, [this, endpoint, body, etag, lastModified, promise](HomebrewStatus validated) {
        if (!validated)
            return finish(promise, validated.error());
        const HomebrewCacheService::Metadata metadata {m_configuration.currentDate(), etag, lastModified};
        m_cache
            .run([endpoint, body, metadata](HomebrewCacheService& cache) {
                return cache.store(endpoint, body, metadata);
            })
            .then(this, [body, promise](HomebrewStatus stored) {
                if (!stored)
                    return finish(promise, stored.error());
                finish(promise, body);
            });
    });
}

void HomebrewAPIClient::acceptNotModified(const HomebrewEndpoint& endpoint,
                                          const Validation& validation,
                                          const Promise& promise)
{
    const QDateTime now = m_configuration.currentDate();
    m_cache
        .run([endpoint, validation, now](HomebrewCacheService& cache) -> HomebrewResult<QByteArray> {
            auto exists = cache.hasBody(endpoint);
            if (!exists)
                return exists.error();
            if (!exists.value())
                return HomebrewAPIError::missingCachedResponse();
            auto body = cache.readBody(endpoint);
            if (!body)
                return body.error();
            if (!body.value())
                return HomebrewAPIError::missingCachedResponse();
            // A 304 is not taken on trust: the cached bytes pass the same checks as fresh ones.
            if (auto validated = validation(*body.value()); !validated)
                return validated.error();
            if (auto touched = cache.touch(endpoint, now); !touched)
                return touched.error();
            return *body.value();
        })
        .then(this, [promise](HomebrewResult<QByteArray> result) { finish(promise, std::move(result)); });
}

QFuture<bool> HomebrewAPIClient::isFresh(const HomebrewEndpoint& endpoint, double maxAgeSeconds)
{
    const QDateTime now = m_configuration.currentDate();
    return m_cache.run([endpoint, maxAgeSeconds, now](HomebrewCacheService& cache) {
        const auto metadata = cache.readMetadata(endpoint);
        if (!metadata || !metadata.value())
            return false;
        const double age = static_cast<double>(metadata.value()->fetchedAt.msecsTo(now)) / 1000.0;
        return age < maxAgeSeconds;
    });
}

} // namespace quillbay
