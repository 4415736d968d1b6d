// The sort and search half of HomebrewCatalogStore: debounced, cancellable filter tasks
// whose results only the newest task may publish.
#include <QtConcurrent/QtConcurrentRun>

#include "homebrew_catalog/HomebrewCatalogStore.h"

namespace quillbay {

struct HomebrewCatalogStore::FilterRequest
{
    Index formulae;
    Index casks;
    HomebrewSortOption option;
    QString query;
    bool needsSort = false;
    std::stop_token stop;
};

void HomebrewCatalogStore::scheduleFilter(bool debounce)
{
    m_filterStop.request_stop();
    m_debounceTimer.stop();
    m_debouncedFilter = {};

    auto request = std::make_shared<FilterRequest>();
    request->formulae = m_formulaIndex;
    request->casks = m_caskIndex;
    request->option = m_sortOption;
    request->query = m_searchText.trimmed();
    request->needsSort = !m_sortedCatalogOption || *m_sortedCatalogOption != m_sortOption;

    if (request->query.isEmpty()) {
        m_formulaSearchResults.clear();
        m_caskSearchResults.clear();
        m_isFiltering = false;
        emit changed();
        if (!request->needsSort)
            return;
    } else {
        m_isFiltering = true;
        emit changed();
    }

    m_filterStop = std::stop_source();
    request->stop = m_filterStop.get_token();
    if (debounce && !request->query.isEmpty()) {
        m_debouncedFilter = [this, request] { runFilter(request); };
        m_debounceTimer.start();
        return;
    }
    runFilter(request);
}

void HomebrewCatalogStore::runFilter(const std::shared_ptr<FilterRequest>& request)
{
    if (request->stop.stop_requested())
        return;
    if (!request->needsSort)
        return publishSearch(request);

    const auto sortOne = [processor = m_processor, option = request->option, stop = request->stop](const Index& index) {
        if (!index)
            return QList<HomebrewPackageSummary>();
        return processor.filtered(*index, QString(), option, stop);
    };
    QList<QFuture<QList<HomebrewPackageSummary>>> futures {QtConcurrent::run(sortOne, request->formulae),
                                                           QtConcurrent::run(sortOne, request->casks)};
    QtFuture::whenAll(futures.begin(), futures.end())
        .then(this, [this, request](const QList<QFuture<QList<HomebrewPackageSummary>>>& sorted) {
            if (request->stop.stop_requested())
                return;
            m_sortedFormulae = sorted[0].result();
            m_sortedCasks = sorted[1].result();
            m_sortedCatalogOption = request->option;
            m_formulae = m_sortedFormulae;
            m_casks = m_sortedCasks;
            ++m_catalogGeneration;
            emit catalogGenerationChanged(m_catalogGeneration);
            emit changed();
            if (!request->query.isEmpty())
                publishSearch(request);
        });
}

void HomebrewCatalogStore::publishSearch(const std::shared_ptr<FilterRequest>& request)
{
    const auto work = [processor = m_processor, request](const Index& index) {
        if (!index)
            return QList<HomebrewPackageSummary>();
        return processor.filtered(*index, request->query, request->option, request->stop);
    };
    QList<QFuture<QList<HomebrewPackageSummary>>> futures {QtConcurrent::run(work, request->formulae),
                                                           QtConcurrent::run(work, request->casks)};
    QtFuture::whenAll(futures.begin(), futures.end())
        .then(this, [this, request](const QList<QFuture<QList<HomebrewPackageSummary>>>& found) {
            // A newer task has taken over; it settles isFiltering.
            if (request->stop.stop_requested())
                return;
            m_formulaSearchResults = found[0].result();
            m_caskSearchResults = found[1].result();
            ++m_searchResultGeneration;
            m_isFiltering = false;
            emit searchResultGenerationChanged(m_searchResultGeneration);
            emit changed();
        });
}

} // namespace quillbay
