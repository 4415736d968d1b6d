// The loading and refreshing half of HomebrewCatalogStore: the cached catalog verified at
// start, and the all-or-nothing refresh.
#include <QPromise>

#include <QtConcurrent/QtConcurrentRun>

#include "foundation/Log.h"
#include "homebrew_catalog/HomebrewCatalogStore.h"

namespace quillbay {

namespace {

const QString cacheReadFailedMessage = QStringLiteral("The cached Homebrew data could not be read.");
const QString refreshFailedMessage
    = QStringLiteral("Some Homebrew data could not be updated. Cached data is shown when available.");

template <typename T> QList<HomebrewResult<T>> resultsOf(const QList<QFuture<HomebrewResult<T>>>& futures)
{
    QList<HomebrewResult<T>> results;
    for (const auto& future : futures)
        results.append(future.result());
    return results;
}

// The error a pair of results reports: the formula's first, and a real failure before a
// cancellation that the other failure caused.
std::optional<HomebrewError> firstFailure(const QList<HomebrewError>& errors)
{
    for (const HomebrewError& error : errors)
        if (!error.isCancellation())
            return error;
    if (!errors.isEmpty())
        return errors.first();
    return std::nullopt;
}

} // namespace

// MARK: - Loading and refreshing

bool HomebrewCatalogStore::shouldRefresh() const
{
    if (allFormulae().isEmpty() || allCasks().isEmpty() || !m_lastCheckDate)
        return true;
    return static_cast<double>(m_lastCheckDate->msecsTo(m_clock())) / 1000.0 >= refreshInterval;
}

void HomebrewCatalogStore::loadIfNeeded()
{
    if (m_hasLoadTask)
        return;
    if (!m_hasLoaded) {
        m_hasLoadTask = true;
        load();
        return;
    }
    if (!shouldRefresh() || m_isRefreshing)
        return;
    m_hasLoadTask = true;
    refresh([this] { m_hasLoadTask = false; });
}

void HomebrewCatalogStore::load()
{
    loadCached([this] {
        loadRefreshState([this] {
            m_hasLoaded = true;
            emit changed();
            const auto clearTask = [this] {
                m_hasLoadTask = false;
                emit changed();
            };
            if (shouldRefresh())
                refresh(clearTask);
            else
                clearTask();
        });
    });
}

QFuture<void> HomebrewCatalogStore::forceRefresh()
{
    auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    QFuture<void> future = promise->future();
    const Done done = [promise] { promise->finish(); };
    if (m_hasLoaded) {
        refresh(done);
        return future;
    }
    loadCached([this, done] {
        m_hasLoaded = true;
        emit changed();
        refresh(done);
    });
    return future;
}

QFuture<QList<HomebrewResult<HomebrewCatalogStore::Index>>> HomebrewCatalogStore::indexedSummaries(
    const HomebrewCatalogManifest& manifest, const QByteArray& formulaBytes, const QByteArray& caskBytes)
{
    const auto work = [processor = m_processor](HomebrewCatalogKind kind, HomebrewCatalogManifest::Artifact artifact,
                                                QByteArray bytes) -> HomebrewResult<Index> {
        auto rows = processor.summaries(kind, bytes, artifact.sha256, artifact.byteCount, artifact.packageCount);
        if (!rows)
            return rows.error();
        // Search keys and sort orders are built here, once per catalog, off the UI thread.
        return Index(std::make_shared<HomebrewCatalogIndex>(std::move(rows).value()));
    };
    QList<QFuture<HomebrewResult<Index>>> futures {
        QtConcurrent::run(work, HomebrewCatalogKind::formula, manifest.formula, formulaBytes),
        QtConcurrent::run(work, HomebrewCatalogKind::cask, manifest.cask, caskBytes)};
    return QtFuture::whenAll(futures.begin(), futures.end())
        .then([](const QList<QFuture<HomebrewResult<Index>>>& done) { return resultsOf(done); });
}

void HomebrewCatalogStore::loadCached(Done done)
{
    m_isLoading = m_formulae.isEmpty() && m_casks.isEmpty();
    emit changed();
    const auto fail = [this, done](const HomebrewError& error) {
        m_refreshErrorMessage = cacheReadFailedMessage;
        qCCritical(logApp).noquote() << "Homebrew cache read failed:" << privateText(error.debugDescription());
        m_isLoading = false;
        emit changed();
        done();
    };
    const auto finishQuietly = [this, done] {
        m_isLoading = false;
        emit changed();
        done();
    };

    struct CachedCatalog
    {
        std::optional<HomebrewError> error;
        bool complete = false;
        QByteArray manifestBytes;
        HomebrewCatalogManifest manifest;
        QByteArray formulaBytes;
        QByteArray caskBytes;
    };
    m_apiClient->cache()
        .run([processor = m_processor](HomebrewCacheService& cache) {
            CachedCatalog cached;
            auto manifestBytes = cache.readValidatedManifest();
            if (!manifestBytes) {
                cached.error = manifestBytes.error();
                return cached;
            }
            if (!manifestBytes.value())
                return cached; // first run: nothing accepted yet
            auto manifest = processor.validatedManifest(*manifestBytes.value());
            if (!manifest) {
                cached.error = manifest.error();
                return cached;
            }
            cached.manifest = std::move(manifest).value();
            cached.manifestBytes = *manifestBytes.value();
            const auto readSnapshot = [&](HomebrewCatalogKind kind, QByteArray& out) -> std::optional<bool> {
                auto body
                    = cache.readBody(HomebrewEndpoint::catalogSnapshot(kind, cached.manifest.artifact(kind).path));
                if (!body) {
                    cached.error = body.error();
                    return std::nullopt;
                }
                if (!body.value())
                    return false;
                out = *body.value();
                return true;
            };
            const auto formula = readSnapshot(HomebrewCatalogKind::formula, cached.formulaBytes);
            if (!formula || !*formula)
                return cached;
            const auto cask = readSnapshot(HomebrewCatalogKind::cask, cached.caskBytes);
            cached.complete = cask && *cask;
            return cached;
        })
        .then(this, [this, fail, finishQuietly, done](CachedCatalog cached) {
            if (cached.error)
                return fail(*cached.error);
            if (!cached.complete)
                return finishQuietly();
            indexedSummaries(cached.manifest, cached.formulaBytes, cached.caskBytes)
                .then(this, [this, fail, done](const QList<HomebrewResult<Index>>& results) {
                    for (const auto& result : results)
                        if (!result)
                            return fail(result.error());
                    applyCatalog(results[0].value(), results[1].value());
                    m_isLoading = false;
                    emit changed();
                    done();
                });
        });
}

void HomebrewCatalogStore::loadRefreshState(Done done)
{
    m_apiClient->cache()
        .run([](HomebrewCacheService& cache) { return cache.readRefreshState(); })
        .then(this, [this, done](const HomebrewResult<HomebrewCacheService::RefreshState>& state) {
            if (state) {
                m_lastCheckDate = state.value().lastCheckDate;
                m_lastSuccessfulRefreshDate = state.value().lastSuccessfulRefreshDate;
                emit changed();
            } else {
                qCCritical(logApp).noquote()
                    << "Homebrew refresh state read failed:" << privateText(state.error().debugDescription());
            }
            done();
        });
}

void HomebrewCatalogStore::refresh(Done done)
{
    if (m_isRefreshing)
        return done();
    m_isRefreshing = true;
    m_refreshErrorMessage.reset();
    emit changed();

    const QDateTime now = m_clock();
    m_apiClient->cache()
        .run([now](HomebrewCacheService& cache) { return cache.recordCheck(now); })
        .then(this, [this, done](const HomebrewResult<HomebrewCacheService::RefreshState>& state) {
            if (state) {
                m_lastCheckDate = state.value().lastCheckDate;
                emit changed();
            } else {
                qCCritical(logApp).noquote()
                    << "Homebrew refresh state write failed:" << privateText(state.error().debugDescription());
            }
            const auto validation = [processor = m_processor](const QByteArray& bytes) -> HomebrewStatus {
                auto manifest = processor.validatedManifest(bytes);
                if (!manifest)
                    return manifest.error();
                return homebrewSuccess();
            };
            m_apiClient->fetch(HomebrewEndpoint::catalogManifest(), true, validation, m_lifetime.get_token())
                .then(this, [this, done](const HomebrewResult<QByteArray>& bytes) {
                    if (!bytes)
                        return finishRefresh(bytes.error(), done);
                    auto manifest = m_processor.validatedManifest(bytes.value());
                    if (!manifest)
                        return finishRefresh(manifest.error(), done);
                    fetchSnapshots(manifest.value(), bytes.value(), done);
                });
        });
}

void HomebrewCatalogStore::fetchSnapshots(const HomebrewCatalogManifest& manifest,
                                          const QByteArray& manifestBytes,
                                          Done done)
{
    // Each fetch has its own stop source, so that a failure of one cancels the other;
    // the store's lifetime stops both.
    struct Pair
    {
        std::stop_source formula;
        std::stop_source cask;
    };
    auto pair = std::make_shared<Pair>();
    // Stopping a fetch can finish it on the spot, and with it the last continuation that
    // holds this callback; the callback keeps its own reference so that it outlives that.
    auto onQuit = std::make_shared<std::stop_callback<std::function<void()>>>(
        m_lifetime.get_token(), std::function<void()>([pair] {
            const std::shared_ptr<Pair> keep = pair;
            keep->formula.request_stop();
            keep->cask.request_stop();
        }));

    const auto fetchOne = [this, &manifest, pair](HomebrewCatalogKind kind) {
        const HomebrewCatalogManifest::Artifact artifact = manifest.artifact(kind);
        const auto validation = [processor = m_processor, kind, artifact](const QByteArray& bytes) {
            return processor.validateSnapshot(bytes, kind, artifact.sha256, artifact.byteCount, artifact.packageCount);
        };
        std::stop_source& own = kind == HomebrewCatalogKind::formula ? pair->formula : pair->cask;
        return m_apiClient
            ->fetch(HomebrewEndpoint::catalogSnapshot(kind, artifact.path), true, validation, own.get_token())
            .then(this, [pair, kind](HomebrewResult<QByteArray> result) {
                if (!result) {
                    if (kind == HomebrewCatalogKind::formula)
                        pair->cask.request_stop();
                    else
                        pair->formula.request_stop();
                }
                return result;
            });
    };
    QList<QFuture<HomebrewResult<QByteArray>>> futures {fetchOne(HomebrewCatalogKind::formula),
                                                        fetchOne(HomebrewCatalogKind::cask)};
    QtFuture::whenAll(futures.begin(), futures.end())
        .then(this,
              [this, manifest, manifestBytes, done, onQuit](const QList<QFuture<HomebrewResult<QByteArray>>>& all) {
                  const auto results = resultsOf(all);
                  QList<HomebrewError> errors;
                  for (const auto& result : results)
                      if (!result)
                          errors.append(result.error());
                  if (!errors.isEmpty())
                      return finishRefresh(firstFailure(errors), done);
                  acceptCatalog(manifest, manifestBytes, results[0].value(), results[1].value(), done);
              });
}

void HomebrewCatalogStore::acceptCatalog(const HomebrewCatalogManifest& manifest,
                                         const QByteArray& manifestBytes,
                                         const QByteArray& formulaBytes,
                                         const QByteArray& caskBytes,
                                         Done done)
{
    indexedSummaries(manifest, formulaBytes, caskBytes)
        .then(this, [this, manifest, manifestBytes, done](const QList<HomebrewResult<Index>>& results) {
            for (const auto& result : results)
                if (!result)
                    return finishRefresh(result.error(), done);
            const QList<HomebrewEndpoint> keep {
                HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::formula, manifest.formula.path),
                HomebrewEndpoint::catalogSnapshot(HomebrewCatalogKind::cask, manifest.cask.path)};
            const Index formulae = results[0].value();
            const Index casks = results[1].value();
            m_apiClient->cache()
                .run([manifestBytes, keep](HomebrewCacheService& cache) {
                    return cache.storeValidatedManifest(manifestBytes, keep);
                })
                .then(this, [this, formulae, casks, done](const HomebrewStatus& stored) {
                    if (!stored)
                        qCCritical(logApp).noquote() << "Homebrew validated cache write failed:"
                                                     << privateText(stored.error().debugDescription());
                    // The catalog is applied even when the cache could not be updated.
                    applyCatalog(formulae, casks);
                    const QDateTime now = m_clock();
                    m_apiClient->cache()
                        .run([now](HomebrewCacheService& cache) { return cache.recordSuccess(now); })
                        .then(this, [this, done](const HomebrewResult<HomebrewCacheService::RefreshState>& state) {
                            if (state)
                                m_lastSuccessfulRefreshDate = state.value().lastSuccessfulRefreshDate;
                            else
                                qCCritical(logApp).noquote() << "Homebrew refresh state write failed:"
                                                             << privateText(state.error().debugDescription());
                            finishRefresh(std::nullopt, done);
                        });
                });
        });
}

void HomebrewCatalogStore::finishRefresh(std::optional<HomebrewError> error, Done done)
{
    if (error && !error->isCancellation()) {
        m_refreshErrorMessage = refreshFailedMessage;
        qCCritical(logApp).noquote() << "Homebrew refresh failed:" << privateText(error->debugDescription());
    }
    m_isRefreshing = false;
    emit changed();
    done();
}

void HomebrewCatalogStore::applyCatalog(Index formulae, Index casks)
{
    m_formulaIndex = std::move(formulae);
    m_caskIndex = std::move(casks);
    m_sortedFormulae = {};
    m_sortedCasks = {};
    m_sortedCatalogOption.reset();

    QHash<HomebrewPackageRoute, HomebrewPackageSummary> byRoute;
    byRoute.reserve(m_formulaIndex->size() + m_caskIndex->size());
    for (const Index& index : {m_formulaIndex, m_caskIndex}) {
        for (const HomebrewPackageSummary& row : index->rows()) {
            const HomebrewPackageRoute route = row.route();
            // The service guarantees unique identifiers per kind; a repeat means the
            // catalog cannot be keyed at all.
            if (byRoute.contains(route))
                qFatal("Duplicate values for key: '%s'", qUtf8Printable(route.description()));
            byRoute.insert(route, row);
        }
    }
    m_summariesByRoute = std::move(byRoute);
    m_refreshErrorMessage.reset();
    emit changed();
    scheduleFilter(false);
}

} // namespace quillbay
