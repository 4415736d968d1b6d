#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QFuture>
#include <QObject>
#include <QUrl>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "foundation/SerialExecutor.h"
#include "homebrew_catalog/HomebrewCacheService.h"
#include "homebrew_catalog/HomebrewEndpoint.h"
#include "homebrew_catalog/HomebrewError.h"

class QNetworkAccessManager;
class QNetworkRequest;

namespace quillbay {

// The only object that speaks to the catalog service. Every request is signed; catalog
// requests carry the validators of what the cache holds; every body, from the wire or from
// the cache after a 304, passes the caller's validation step before it is accepted or
// stored. Lives on the UI thread: the network work is asynchronous, file work runs on the
// cache's own thread and validation on a worker, so two snapshot fetches overlap.
class HomebrewAPIClient : public QObject
{
    Q_OBJECT

public:
    // Runs on a worker thread; must touch nothing but its arguments and captured values.
    using Validation = std::function<HomebrewStatus(const QByteArray&)>;
    using Clock = std::function<QDateTime()>;

    struct Configuration
    {
        QUrl baseURL;
        QByteArray signingSecret;
        // The signature timestamp.
        Clock now;
        // Dates written into sidecars and read by isFresh.
        Clock currentDate;
    };

    // The deployment's service address and key, the real clock.
    static Configuration defaultConfiguration();

    HomebrewAPIClient(Configuration configuration,
                      std::unique_ptr<HomebrewCacheService> cache,
                      QObject* parent = nullptr);
    ~HomebrewAPIClient() override;

    // The response cache; the store reads the validated manifest and the refresh state
    // through it.
    SerialExecutor<HomebrewCacheService>& cache() { return m_cache; }

    QFuture<HomebrewResult<QByteArray>>
    fetch(const HomebrewEndpoint& endpoint, bool conditional, Validation validation, std::stop_token stop = {});

    // Whether the endpoint's sidecar says it was fetched less than maxAge seconds ago.
    // A missing or unreadable sidecar gives false, never an error.
    QFuture<bool> isFresh(const HomebrewEndpoint& endpoint, double maxAgeSeconds);

    // The service address with the endpoint's path in place of any path of its own;
    // nothing when the path does not begin with "/".
    std::optional<QUrl> requestURL(const HomebrewEndpoint& endpoint) const;

    // Adds "x-quillbay-timestamp" and "x-quillbay-signature"; does nothing without a URL.
    void sign(QNetworkRequest& request) const;

    // Lower-case hex HMAC-SHA-256 of "GET\n" + path + "\n" + timestamp.
    static QByteArray signature(const QByteArray& key, const QByteArray& encodedPath, qint64 timestamp);

    // Aborts every request under way and waits, running the continuations they leave on
    // this thread, until each fetch's future has finished. A continuation that fires
    // after its context object is gone is fatal, so whoever continues from this client's
    // futures settles it before going away. For shutdown only: it blocks.
    void settle();
    bool hasRequestsInFlight() const { return m_inFlight->load() > 0; }

    // A fetch's promise, counted while unfinished so that settle() knows when it is done.
    struct PendingFetch : QPromise<HomebrewResult<QByteArray>>
    {
        explicit PendingFetch(std::shared_ptr<std::atomic<int>> counter);
        ~PendingFetch();
        void finishWith(HomebrewResult<QByteArray> result);

        std::shared_ptr<std::atomic<int>> inFlight;
        bool counted = true;
    };

private:
    using Promise = std::shared_ptr<PendingFetch>;

    void send(const HomebrewEndpoint& endpoint,
              QNetworkRequest request,
              const Validation& validation,
              const std::stop_token& stop,
              const Promise& promise);
    void acceptBody(const HomebrewEndpoint& endpoint,
                    const QByteArray& body,
                    std::optional<QString> etag,
                    std::optional<QString> lastModified,
                    const Validation& validation,
                    const Promise& promise);
    void acceptNotModified(const HomebrewEndpoint& endpoint, const Validation& validation, const Promise& promise);

    Configuration m_configuration;
    QNetworkAccessManager* m_network;
    SerialExecutor<HomebrewCacheService> m_cache;
    std::shared_ptr<std::atomic<int>> m_inFlight = std::make_shared<std::atomic<int>>(0);
};

} // namespace quillbay
