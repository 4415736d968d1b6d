#pragma once

#include <QFuture>
#include <QThreadPool>
#include <QUrl>
#include <memory>

#include "foundation/SerialExecutor.h"
#include "xcode_releases/CacheManager.h"
#include "xcode_releases/XcodeReleaseDataLoader.h"
#include "xcode_releases/XcodeReleaseFetchResult.h"

class QNetworkAccessManager;

namespace quillbay {

// Fetches the public release feed, refuses anything that is not a usable catalog, and
// hands good bytes to the cache before returning them. Validation runs one call at a
// time on the service's own thread; the loader is called on the owner's (UI) thread.
//
// Destroying the service cancels a request in flight and waits for its own thread and
// the cache's, so no continuation outlives the objects it reports to.
class XcodeReleaseService
{
public:
    XcodeReleaseService(QUrl dataURL, SerialExecutor<CacheManager>& cache, XcodeReleaseDataLoader dataLoader);
    ~XcodeReleaseService();

    XcodeReleaseService(const XcodeReleaseService&) = delete;
    XcodeReleaseService& operator=(const XcodeReleaseService&) = delete;

    // The configured feed address over the network, with the shared cache. An address
    // that does not parse is a build mistake and stops the program.
    static std::unique_ptr<XcodeReleaseService> createDefault();
    // The same with the network, for another address and cache (tests, other hosts).
    static std::unique_ptr<XcodeReleaseService> createWithNetwork(const QUrl& dataURL,
                                                                  SerialExecutor<CacheManager>& cache);

    const QUrl& dataURL() const { return m_dataURL; }
    SerialExecutor<CacheManager>& cache() const { return m_cache; }

    // Loads, validates, saves (a failed save is logged, never fatal) and returns the
    // bytes. Call on the owner's thread.
    QFuture<XcodeReleaseFetchResult> fetchReleaseData();

    // The checks a response must pass, in order: HTTP, status 200...299, a body, a
    // decodable non-empty array.
    static XcodeReleaseFetchResult validate(const XcodeReleaseLoadResult& loaded);

private:
    QUrl m_dataURL;
    SerialExecutor<CacheManager>& m_cache;
    std::unique_ptr<QNetworkAccessManager> m_network;
    XcodeReleaseDataLoader m_dataLoader;
    QThreadPool m_pool;
};

} // namespace quillbay
