#include "homebrew_installed/HomebrewInstalledPackagesStore.h"

#include <algorithm>
#include <utility>

namespace quillbay {

HomebrewInstalledPackagesStore::HomebrewInstalledPackagesStore(
    Defaults& defaults,
    QString bookmarkKey,
    std::unique_ptr<HomebrewInstallationBookmarkService> bookmarkService,
    std::unique_ptr<HomebrewInstallationScanner> scanner,
    std::unique_ptr<HomebrewInstalledPackageProcessor> processor,
    Pickers& pickers,
    Workspace& workspace,
    UserPaths userPaths,
    QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_bookmarkKey(std::move(bookmarkKey))
    , m_bookmarkService(std::move(bookmarkService))
    , m_scanner(std::move(scanner))
    , m_processor(std::move(processor))
    , m_pickers(pickers)
    , m_workspace(workspace)
    , m_userPaths(std::move(userPaths))
{
    m_debounceTimer.setSingleShot(true);
    m_debounceTimer.setInterval(searchDebounceMilliseconds);
    connect(&m_debounceTimer, &QTimer::timeout, this,
            [this] { runProcessing(std::exchange(m_debouncedSnapshot, {}), m_processingStop.get_token()); });
}

HomebrewInstalledPackagesStore::~HomebrewInstalledPackagesStore()
{
    // A continuation's context must be alive when its call finishes; drain while it is.
    cancelProcessing();
    m_processor.drain();
    m_scanner.drain();
    m_bookmarkService.drain();
}

const QList<HomebrewInstalledPackage>& HomebrewInstalledPackagesStore::currentPackages() const
{
    return m_selectedKind == HomebrewCatalogKind::cask ? m_casks : m_formulae;
}

bool HomebrewInstalledPackagesStore::hasPackages(HomebrewCatalogKind kind) const
{
    return std::any_of(m_rawPackages.cbegin(), m_rawPackages.cend(),
                       [kind](const HomebrewInstalledPackage& package) { return package.kind == kind; });
}

void HomebrewInstalledPackagesStore::setSelectedKind(HomebrewCatalogKind kind)
{
    if (m_selectedKind == kind)
        return;
    m_selectedKind = kind;
    emit selectedKindChanged();
}

void HomebrewInstalledPackagesStore::setSearchText(const QString& text)
{
    if (m_searchText == text)
        return;
    m_searchText = text;
    emit searchTextChanged();
    scheduleProcessing(true);
}

void HomebrewInstalledPackagesStore::updateCatalogSummaries(const HomebrewPackageSummaries& summaries)
{
    if (summaries == m_catalogSummaries)
        return;
    m_catalogSummaries = summaries;
    scheduleProcessing(false);
}

void HomebrewInstalledPackagesStore::scheduleProcessing(bool debounced)
{
    cancelProcessing();
    m_processingStop = std::stop_source {};

    // The task works on this copy, never on the fields, which may change while it runs.
    ProcessingSnapshot snapshot {m_rawPackages, m_catalogSummaries, m_searchText.trimmed()};
    const bool filtering = !snapshot.query.isEmpty();
    if (m_isFiltering != filtering) {
        m_isFiltering = filtering;
        emit stateChanged();
    }
    // Typing costs one pass per pause; an emptied field and new data act at once.
    if (debounced && filtering) {
        m_debouncedSnapshot = std::move(snapshot);
        m_debounceTimer.start();
        return;
    }
    runProcessing(std::move(snapshot), m_processingStop.get_token());
}

void HomebrewInstalledPackagesStore::runProcessing(ProcessingSnapshot snapshot, std::stop_token stopToken)
{
    if (stopToken.stop_requested())
        return;
    m_processor
        .run([snapshot = std::move(snapshot), stopToken](const HomebrewInstalledPackageProcessor& processor) {
            return processor.process(snapshot.rawPackages, snapshot.catalogSummaries, snapshot.query, stopToken);
        })
        .then(this, [this, stopToken](HomebrewInstalledPackageLists lists) {
            // A newer task superseded this one: its result is stale and never shown. It
            // leaves isFiltering for the newer task to settle.
            if (stopToken.stop_requested())
                return;
            m_formulae = std::move(lists.formulae);
            m_casks = std::move(lists.casks);
            m_isFiltering = false;
            emit packagesChanged();
            emit stateChanged();
        });
}

void HomebrewInstalledPackagesStore::cancelProcessing()
{
    m_processingStop.request_stop();
    m_debounceTimer.stop();
    m_debouncedSnapshot = {};
}

void HomebrewInstalledPackagesStore::applyScanResult(const HomebrewInstallationScanResult& result)
{
    m_rawPackages = result.packages;
    m_hasScannedThisLaunch = true;
    if (!result.unreadableKinds.empty())
        m_errorMessage = QStringLiteral("Some installed Homebrew packages could not be read.");
    else
        m_errorMessage.reset();
    emit packagesChanged();
    emit stateChanged();
    scheduleProcessing(false);
}

void HomebrewInstalledPackagesStore::clearOperationError()
{
    if (!m_operationErrorMessage)
        return;
    m_operationErrorMessage.reset();
    emit stateChanged();
}

} // namespace quillbay
