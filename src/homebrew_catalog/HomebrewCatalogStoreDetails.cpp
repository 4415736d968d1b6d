// The package-detail half of HomebrewCatalogStore: a cached record is shown at once and
// revalidated when it is a day old; a bad cached file is stepped over.
#include <QPromise>

#include "foundation/Log.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"

namespace quillbay {

namespace {
constexpr double detailMaximumAge = 86400;
}

QFuture<void> HomebrewCatalogStore::loadDetail(HomebrewCatalogKind kind, const QString& identifier)
{
    auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    QFuture<void> future = promise->future();

    const HomebrewPackageRoute route {kind, identifier};
    if (m_detailLoadingRoutes.contains(route)) {
        promise->finish();
        return future;
    }
    m_detailLoadingRoutes.insert(route);
    m_detailErrors.remove(route);
    emit detailChanged(route);
    emit changed();

    const HomebrewEndpoint endpoint = HomebrewEndpoint::detail(kind, identifier);
    const auto validation = [kind](const QByteArray& bytes) -> HomebrewStatus {
        auto detail = decodeDetail(kind, bytes);
        if (!detail)
            return detail.error();
        return homebrewSuccess();
    };
    // Decodes fetched bytes into `details`, or records the failure; then ends the load.
    const auto accept = [this, route, kind, promise](const HomebrewResult<QByteArray>& bytes) {
        if (!bytes) {
            setDetailError(route, bytes.error());
            return finishDetail(route, promise);
        }
        auto detail = decodeDetail(kind, bytes.value());
        if (!detail)
            setDetailError(route, detail.error());
        else
            m_details.insert(route, std::move(detail).value());
        finishDetail(route, promise);
    };
    const auto fetchUnconditional = [this, endpoint, validation, accept] {
        m_apiClient->fetch(endpoint, false, validation, m_lifetime.get_token()).then(this, accept);
    };

    struct Cached
    {
        std::optional<HomebrewError> error;
        std::optional<QByteArray> bytes;
    };
    m_apiClient->cache()
        .run([endpoint](HomebrewCacheService& cache) {
            Cached cached;
            auto exists = cache.hasBody(endpoint);
            if (!exists) {
                cached.error = exists.error();
                return cached;
            }
            if (!exists.value())
                return cached;
            auto body = cache.readBody(endpoint);
            if (!body)
                cached.error = body.error();
            else
                cached.bytes = body.value();
            return cached;
        })
        .then(this, [this, route, kind, endpoint, validation, accept, fetchUnconditional, promise](Cached cached) {
            if (cached.error) {
                setDetailError(route, *cached.error);
                return finishDetail(route, promise);
            }
            if (!cached.bytes)
                return fetchUnconditional();
            auto detail = decodeDetail(kind, *cached.bytes);
            if (!detail) {
                qCCritical(logApp).noquote()
                    << "Ignoring invalid cached Homebrew detail:" << privateText(detail.error().debugDescription());
                return fetchUnconditional();
            }
            m_details.insert(route, std::move(detail).value());
            emit detailChanged(route);
            emit changed();
            m_apiClient->isFresh(endpoint, detailMaximumAge)
                .then(this, [this, route, endpoint, validation, accept, promise](bool fresh) {
                    if (fresh)
                        return finishDetail(route, promise);
                    m_apiClient->fetch(endpoint, true, validation, m_lifetime.get_token()).then(this, accept);
                });
        });
    return future;
}

void HomebrewCatalogStore::setDetailError(const HomebrewPackageRoute& route, const HomebrewError& error)
{
    if (error.isCancellation())
        return;
    const QString message = error.localizedDescription();
    m_detailErrors.insert(route, message);
    qCCritical(logApp).noquote() << "Homebrew detail load failed:" << privateText(message);
}

void HomebrewCatalogStore::finishDetail(const HomebrewPackageRoute& route,
                                        const std::shared_ptr<QPromise<void>>& promise)
{
    m_detailLoadingRoutes.remove(route);
    emit detailChanged(route);
    emit changed();
    promise->finish();
}

} // namespace quillbay
