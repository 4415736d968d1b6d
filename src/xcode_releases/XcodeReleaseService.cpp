#include "xcode_releases/XcodeReleaseService.h"

#include <QNetworkAccessManager>

#include "foundation/BuildConfig.h"
#include "foundation/Log.h"
#include "xcode_releases/XcodeReleaseDecoder.h"

namespace quillbay {

XcodeReleaseService::XcodeReleaseService(QUrl dataURL,
                                         SerialExecutor<CacheManager>& cache,
                                         XcodeReleaseDataLoader dataLoader)
    : m_dataURL(std::move(dataURL))
    , m_cache(cache)
    , m_dataLoader(std::move(dataLoader))
{
    m_pool.setMaxThreadCount(1);
    m_pool.setExpiryTimeout(-1);
}

XcodeReleaseService::~XcodeReleaseService()
{
    // Order: abort the request (its future cancels), let the validation thread finish,
    // then the cache's queue, which validation and start-up reads feed.
    m_dataLoader = nullptr;
    m_network.reset();
    m_pool.waitForDone();
    m_cache.drain();
}

std::unique_ptr<XcodeReleaseService> XcodeReleaseService::createDefault()
{
    const QUrl url(QStringLiteral(QUILLBAY_RELEASE_FEED_URL), QUrl::StrictMode);
    Q_ASSERT_X(url.isValid() && !url.scheme().isEmpty(), "XcodeReleaseService", "the feed address does not parse");
    return createWithNetwork(url, CacheManager::shared());
}

std::unique_ptr<XcodeReleaseService> XcodeReleaseService::createWithNetwork(const QUrl& dataURL,
                                                                            SerialExecutor<CacheManager>& cache)
{
    auto network = std::make_unique<QNetworkAccessManager>();
    XcodeReleaseDataLoader loader = makeNetworkDataLoader(*network);
    auto service = std::make_unique<XcodeReleaseService>(dataURL, cache, std::move(loader));
    service->m_network = std::move(network);
    return service;
}

XcodeReleaseFetchResult XcodeReleaseService::validate(const XcodeReleaseLoadResult& loaded)
{
    XcodeReleaseFetchResult result;
    if (!loaded.response) {
        result.transportError = loaded.transportError;
        return result;
    }
    const XcodeReleaseResponse& response = *loaded.response;
    if (!response.httpStatus) {
        result.serviceError = XcodeReleaseServiceError::invalidResponse();
        return result;
    }
    if (*response.httpStatus < 200 || *response.httpStatus > 299) {
        result.serviceError = XcodeReleaseServiceError::httpStatus(*response.httpStatus);
        return result;
    }
    // The decoder's own complaint is not kept: every refusal of the body reads the same.
    const auto releases = response.body.isEmpty() ? std::nullopt : decodeXcodeReleases(response.body);
    if (!releases || releases->isEmpty()) {
        result.serviceError = XcodeReleaseServiceError::invalidCatalog();
        return result;
    }
    result.data = response.body;
    return result;
}

QFuture<XcodeReleaseFetchResult> XcodeReleaseService::fetchReleaseData()
{
    SerialExecutor<CacheManager>* cache = &m_cache;
    return m_dataLoader(m_dataURL).then(&m_pool, [cache](const XcodeReleaseLoadResult& loaded) {
        XcodeReleaseFetchResult result = validate(loaded);
        if (!result.succeeded())
            return result;
        // Waiting here, off the UI thread, keeps the order: the file is written (or has
        // failed to be) before anyone applies the new list. The cache never waits on
        // this thread, so the wait cannot close a cycle.
        QFuture<std::optional<QString>> saved
            = cache->run([bytes = result.data](CacheManager& manager) { return manager.save(bytes); });
        saved.waitForFinished();
        if (const std::optional<QString> error = saved.result())
            qCCritical(logApp).noquote() << QStringLiteral("Failed to save Xcode release cache: ")
                    + privateText(*error);
        return result;
    });
}

} // namespace quillbay
