#include "homebrew_catalog/HomebrewCatalogStore.h"

#include <QCoreApplication>
#include <QPromise>
#include <QThreadPool>

#include <QtConcurrent/QtConcurrentRun>

#include "foundation/Defaults.h"
#include "foundation/Log.h"

namespace quillbay {

const QString HomebrewCatalogStore::sortOptionKey = QStringLiteral("homebrewCatalog.sortOption");
const QString HomebrewCatalogStore::searchHistoryKey = QStringLiteral("homebrewCatalog.searchHistory");

QString HomebrewCatalogStore::columnKey(HomebrewCatalogColumn column)
{
    switch (column) {
    case HomebrewCatalogColumn::description:
        return QStringLiteral("homebrewCatalog.columns.description.isVisible");
    case HomebrewCatalogColumn::currentVersion:
        return QStringLiteral("homebrewCatalog.columns.currentVersion.isVisible");
    case HomebrewCatalogColumn::thirtyDays:
        return QStringLiteral("homebrewCatalog.columns.thirtyDays.isVisible");
    case HomebrewCatalogColumn::ninetyDays:
        return QStringLiteral("homebrewCatalog.columns.ninetyDays.isVisible");
    case HomebrewCatalogColumn::threeHundredSixtyFiveDays:
        return QStringLiteral("homebrewCatalog.columns.threeHundredSixtyFiveDays.isVisible");
    }
    return {};
}

HomebrewCatalogStore::HomebrewCatalogStore(std::unique_ptr<HomebrewAPIClient> apiClient,
                                           HomebrewCatalogProcessor processor,
                                           Defaults& defaults,
                                           Clock clock,
                                           QObject* parent)
    : QObject(parent)
    , m_apiClient(std::move(apiClient))
    , m_processor(processor)
    , m_defaults(defaults)
    , m_clock(clock ? std::move(clock) : Clock([] { return QDateTime::currentDateTimeUtc(); }))
{
    m_sortOption = sortOptionFromRawValue(m_defaults.value(sortOptionKey).toString())
                       .value_or(HomebrewSortOption::installs30Days);
    for (const HomebrewCatalogColumn column : allCatalogColumns) {
        bool& flag = m_columns[static_cast<size_t>(column)];
        flag = m_defaults.boolValue(columnKey(column), flag);
    }
    const QVariant history = m_defaults.value(searchHistoryKey);
    // An INI file gives a one-entry list back as plain text.
    if (history.typeId() == QMetaType::QStringList)
        m_searchHistory = history.toStringList();
    else if (history.typeId() == QMetaType::QString)
        m_searchHistory = QStringList {history.toString()};

    m_debounceTimer.setSingleShot(true);
    m_debounceTimer.setInterval(searchDebounceMs);
    connect(&m_debounceTimer, &QTimer::timeout, this, [this] {
        if (auto pending = std::exchange(m_debouncedFilter, {}))
            pending();
    });
}

HomebrewCatalogStore::~HomebrewCatalogStore()
{
    m_lifetime.request_stop();
    m_filterStop.request_stop();
    // Work under way ends, cancelled, while this store is still whole: its continuations
    // run now rather than later against a store that is gone. Each round may start a
    // little more work (a cancelled refresh still records its state), so repeat until
    // nothing is left.
    for (int round = 0; round < 100; ++round) {
        m_apiClient->settle();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents(this);
        if (!m_apiClient->hasRequestsInFlight() && m_apiClient->cache().isIdle()
            && QThreadPool::globalInstance()->activeThreadCount() == 0)
            break;
    }
}

// MARK: - Plain queries

const QList<HomebrewPackageSummary>& HomebrewCatalogStore::allFormulae() const
{
    static const QList<HomebrewPackageSummary> none;
    return m_formulaIndex ? m_formulaIndex->rows() : none;
}

const QList<HomebrewPackageSummary>& HomebrewCatalogStore::allCasks() const
{
    static const QList<HomebrewPackageSummary> none;
    return m_caskIndex ? m_caskIndex->rows() : none;
}

QList<HomebrewCatalogColumn> HomebrewCatalogStore::visibleColumns() const
{
    QList<HomebrewCatalogColumn> columns;
    for (const HomebrewCatalogColumn column : allCatalogColumns)
        if (columnIsVisible(column))
            columns.append(column);
    return columns;
}

bool HomebrewCatalogStore::hasSearchQuery() const
{
    return !m_searchText.trimmed().isEmpty();
}

bool HomebrewCatalogStore::catalogHasPackages(HomebrewCatalogKind kind) const
{
    return kind == HomebrewCatalogKind::formula ? !allFormulae().isEmpty() : !allCasks().isEmpty();
}

std::optional<HomebrewPackageSummary> HomebrewCatalogStore::summary(const HomebrewPackageRoute& route) const
{
    const auto it = m_summariesByRoute.constFind(route);
    if (it == m_summariesByRoute.constEnd())
        return std::nullopt;
    return *it;
}

std::optional<HomebrewPackageDetail> HomebrewCatalogStore::detail(const HomebrewPackageRoute& route) const
{
    const auto it = m_details.constFind(route);
    if (it == m_details.constEnd())
        return std::nullopt;
    return *it;
}

// MARK: - Writable state

void HomebrewCatalogStore::setSelectedKind(HomebrewCatalogKind kind)
{
    if (m_selectedKind == kind)
        return;
    m_selectedKind = kind;
    emit changed();
}

void HomebrewCatalogStore::setSearchText(const QString& text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    emit changed();
    scheduleFilter(true);
}

void HomebrewCatalogStore::setSortOption(HomebrewSortOption option)
{
    if (m_sortOption == option)
        return;
    m_sortOption = option;
    m_defaults.setValue(sortOptionKey, rawValue(option));
    emit changed();
    scheduleFilter(false);
}

void HomebrewCatalogStore::setColumnIsVisible(HomebrewCatalogColumn column, bool visible)
{
    bool& flag = m_columns[static_cast<size_t>(column)];
    if (flag == visible)
        return;
    flag = visible;
    m_defaults.setValue(columnKey(column), visible);
    emit changed();
}

void HomebrewCatalogStore::recordSearch()
{
    const QString query = m_searchText.trimmed();
    if (query.isEmpty())
        return;
    m_searchHistory.removeIf([&](const QString& entry) { return entry.compare(query, Qt::CaseInsensitive) == 0; });
    m_searchHistory.prepend(query);
    if (m_searchHistory.size() > maximumSearchHistory)
        m_searchHistory.resize(maximumSearchHistory);
    m_defaults.setValue(searchHistoryKey, m_searchHistory);
    emit changed();
}

void HomebrewCatalogStore::clearSearchHistory()
{
    m_searchHistory.clear();
    m_defaults.remove(searchHistoryKey);
    emit changed();
}

} // namespace quillbay
