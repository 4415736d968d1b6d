#pragma once

#include <QDateTime>
#include <QFuture>
#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

#include "homebrew_catalog/HomebrewAPIClient.h"
#include "homebrew_catalog/HomebrewCatalogColumn.h"
#include "homebrew_catalog/HomebrewCatalogIndex.h"
#include "homebrew_catalog/HomebrewCatalogManifest.h"
#include "homebrew_catalog/HomebrewCatalogProcessor.h"
#include "homebrew_catalog/HomebrewPackageDetail.h"
#include "homebrew_catalog/HomebrewPackageSummary.h"
#include "homebrew_catalog/HomebrewSortOption.h"

namespace quillbay {

class Defaults;

// The model of the catalog tool, on the UI thread. It brings the catalog up from the
// response cache (verifying it against the accepted manifest at every start), refreshes
// it at most once a day as one all-or-nothing exchange, keeps the sorted and searched
// lists the screens show, holds per-package details, and persists the sort, the columns
// and the search history. Network, file and catalog work run elsewhere; every field
// here is read and written on the UI thread only.
class HomebrewCatalogStore : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    static const QString sortOptionKey;
    static const QString searchHistoryKey;
    static QString columnKey(HomebrewCatalogColumn column);

    static constexpr int maximumSearchHistory = 20;
    static constexpr int searchDebounceMs = 150;
    static constexpr double refreshInterval = 86400;

    HomebrewCatalogStore(std::unique_ptr<HomebrewAPIClient> apiClient,
                         HomebrewCatalogProcessor processor,
                         Defaults& defaults,
                         Clock clock = {},
                         QObject* parent = nullptr);
    ~HomebrewCatalogStore() override;

    HomebrewAPIClient& apiClient() { return *m_apiClient; }

    // Operations the screens call.
    void loadIfNeeded();
    // Resolves when the refresh (and, before the first load, the cache read) is over.
    QFuture<void> forceRefresh();
    QList<HomebrewCatalogColumn> visibleColumns() const;
    bool hasSearchQuery() const;
    bool catalogHasPackages(HomebrewCatalogKind kind) const;
    std::optional<HomebrewPackageSummary> summary(const HomebrewPackageRoute& route) const;
    std::optional<HomebrewPackageDetail> detail(const HomebrewPackageRoute& route) const;
    void recordSearch();
    void clearSearchHistory();
    // Resolves when the detail load is over (or at once when one is already running).
    QFuture<void> loadDetail(HomebrewCatalogKind kind, const QString& identifier);

    // Observable state.
    const QList<HomebrewPackageSummary>& allFormulae() const;
    const QList<HomebrewPackageSummary>& allCasks() const;
    const QList<HomebrewPackageSummary>& sortedFormulae() const { return m_sortedFormulae; }
    const QList<HomebrewPackageSummary>& sortedCasks() const { return m_sortedCasks; }
    std::optional<HomebrewSortOption> sortedCatalogOption() const { return m_sortedCatalogOption; }
    const QHash<HomebrewPackageRoute, HomebrewPackageSummary>& summariesByRoute() const { return m_summariesByRoute; }
    HomebrewCatalogKind selectedKind() const { return m_selectedKind; }
    const QString& searchText() const { return m_searchText; }
    HomebrewSortOption sortOption() const { return m_sortOption; }
    bool descriptionColumnIsVisible() const { return columnIsVisible(HomebrewCatalogColumn::description); }
    bool currentVersionColumnIsVisible() const { return columnIsVisible(HomebrewCatalogColumn::currentVersion); }
    bool thirtyDaysColumnIsVisible() const { return columnIsVisible(HomebrewCatalogColumn::thirtyDays); }
    bool ninetyDaysColumnIsVisible() const { return columnIsVisible(HomebrewCatalogColumn::ninetyDays); }
    bool threeHundredSixtyFiveDaysColumnIsVisible() const
    {
        return columnIsVisible(HomebrewCatalogColumn::threeHundredSixtyFiveDays);
    }
    bool columnIsVisible(HomebrewCatalogColumn column) const { return m_columns[static_cast<size_t>(column)]; }
    const QStringList& searchHistory() const { return m_searchHistory; }
    const QList<HomebrewPackageSummary>& formulae() const { return m_formulae; }
    const QList<HomebrewPackageSummary>& casks() const { return m_casks; }
    const QList<HomebrewPackageSummary>& formulaSearchResults() const { return m_formulaSearchResults; }
    const QList<HomebrewPackageSummary>& caskSearchResults() const { return m_caskSearchResults; }
    bool isFiltering() const { return m_isFiltering; }
    qint64 catalogGeneration() const { return m_catalogGeneration; }
    qint64 searchResultGeneration() const { return m_searchResultGeneration; }
    const QHash<HomebrewPackageRoute, HomebrewPackageDetail>& details() const { return m_details; }
    const QSet<HomebrewPackageRoute>& detailLoadingRoutes() const { return m_detailLoadingRoutes; }
    const QHash<HomebrewPackageRoute, QString>& detailErrors() const { return m_detailErrors; }
    bool isLoading() const { return m_isLoading; }
    bool isRefreshing() const { return m_isRefreshing; }
    bool hasLoaded() const { return m_hasLoaded; }
    const std::optional<QString>& refreshErrorMessage() const { return m_refreshErrorMessage; }
    const std::optional<QDateTime>& lastCheckDate() const { return m_lastCheckDate; }
    const std::optional<QDateTime>& lastSuccessfulRefreshDate() const { return m_lastSuccessfulRefreshDate; }
    // True while a load or background refresh started by loadIfNeeded runs.
    bool hasLoadTask() const { return m_hasLoadTask; }

    // Writable state; each acts only on a real change.
    void setSelectedKind(HomebrewCatalogKind kind);
    void setSearchText(const QString& text);
    void setSortOption(HomebrewSortOption option);
    void setColumnIsVisible(HomebrewCatalogColumn column, bool visible);

signals:
    // Any observable field changed.
    void changed();
    void catalogGenerationChanged(qint64 generation);
    void searchResultGenerationChanged(qint64 generation);
    void detailChanged(const HomebrewPackageRoute& route);

private:
    using Index = std::shared_ptr<const HomebrewCatalogIndex>;
    using Done = std::function<void()>;
    struct FilterRequest;

    bool shouldRefresh() const;
    void load();
    void loadCached(Done done);
    void loadRefreshState(Done done);
    void refresh(Done done);
    void fetchSnapshots(const HomebrewCatalogManifest& manifest, const QByteArray& manifestBytes, Done done);
    void acceptCatalog(const HomebrewCatalogManifest& manifest,
                       const QByteArray& manifestBytes,
                       const QByteArray& formulaBytes,
                       const QByteArray& caskBytes,
                       Done done);
    void finishRefresh(std::optional<HomebrewError> error, Done done);
    void applyCatalog(Index formulae, Index casks);
    void scheduleFilter(bool debounce);
    void runFilter(const std::shared_ptr<FilterRequest>& request);
    void publishSearch(const std::shared_ptr<FilterRequest>& request);
    // Both snapshots turned into indexed rows side by side, the formula result first.
    QFuture<QList<HomebrewResult<Index>>> indexedSummaries(const HomebrewCatalogManifest& manifest,
                                                           const QByteArray& formulaBytes,
                                                           const QByteArray& caskBytes);
    void setDetailError(const HomebrewPackageRoute& route, const HomebrewError& error);
    void finishDetail(const HomebrewPackageRoute& route, const std::shared_ptr<QPromise<void>>& promise);

    std::unique_ptr<HomebrewAPIClient> m_apiClient;
    HomebrewCatalogProcessor m_processor;
    Defaults& m_defaults;
    Clock m_clock;
    std::stop_source m_lifetime;

    Index m_formulaIndex;
    Index m_caskIndex;
    QList<HomebrewPackageSummary> m_sortedFormulae;
    QList<HomebrewPackageSummary> m_sortedCasks;
    std::optional<HomebrewSortOption> m_sortedCatalogOption;
    QHash<HomebrewPackageRoute, HomebrewPackageSummary> m_summariesByRoute;
    std::stop_source m_filterStop;
    QTimer m_debounceTimer;
    std::function<void()> m_debouncedFilter;
    bool m_hasLoadTask = false;
    HomebrewCatalogKind m_selectedKind = HomebrewCatalogKind::cask;
    QString m_searchText;
    HomebrewSortOption m_sortOption = HomebrewSortOption::installs30Days;
    std::array<bool, 5> m_columns {true, true, true, false, false};
    QStringList m_searchHistory;
    QList<HomebrewPackageSummary> m_formulae;
    QList<HomebrewPackageSummary> m_casks;
    QList<HomebrewPackageSummary> m_formulaSearchResults;
    QList<HomebrewPackageSummary> m_caskSearchResults;
    bool m_isFiltering = false;
    qint64 m_catalogGeneration = 0;
    qint64 m_searchResultGeneration = 0;
    QHash<HomebrewPackageRoute, HomebrewPackageDetail> m_details;
    QSet<HomebrewPackageRoute> m_detailLoadingRoutes;
    QHash<HomebrewPackageRoute, QString> m_detailErrors;
    bool m_isLoading = false;
    bool m_isRefreshing = false;
    bool m_hasLoaded = false;
    std::optional<QString> m_refreshErrorMessage;
    std::optional<QDateTime> m_lastCheckDate;
    std::optional<QDateTime> m_lastSuccessfulRefreshDate;
};

} // namespace quillbay
