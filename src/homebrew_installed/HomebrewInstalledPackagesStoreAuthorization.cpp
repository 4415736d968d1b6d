// The root folder's life cycle: restoring, choosing, scanning, forgetting and revealing.
#include <QFile>
#include <QPointer>

#include <sys/stat.h>

#include "foundation/Defaults.h"
#include "foundation/Log.h"
#include "homebrew_installed/HomebrewInstalledPackagesStore.h"
#include "platform/FolderBookmark.h"
#include "platform/Pickers.h"
#include "platform/Workspace.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

void logError(const QString& context, const QString& description)
{
    qCCritical(logApp).noquote() << context + privateText(description);
}

bool hasBrew(const QString& root)
{
    struct stat st
    {
    };
    return ::stat(QFile::encodeName(root + u"/bin/brew"_s).constData(), &st) == 0;
}

} // namespace

void HomebrewInstalledPackagesStore::start(const HomebrewPackageSummaries& catalogSummaries)
{
    updateCatalogSummaries(catalogSummaries);
    loadAuthorization([this] {
        if (m_rootURL && !m_hasScannedThisLaunch)
            scan(*m_rootURL);
    });
}

void HomebrewInstalledPackagesStore::loadAuthorization()
{
    loadAuthorization({});
}

void HomebrewInstalledPackagesStore::loadAuthorization(std::function<void()> done)
{
    if (m_hasLoadedAuthorization) {
        if (done)
            done();
        return;
    }
    // Another call is at work: resume together with it.
    if (m_isLoadingAuthorization) {
        if (done)
            m_authorizationWaiters.push_back(std::move(done));
        return;
    }
    m_isLoadingAuthorization = true;
    emit stateChanged();
    if (done)
        m_authorizationWaiters.push_back(std::move(done));

    // Only the bookmark is restored: no access is opened and the folder is not validated
    // until the scan, which reports its own problems.
    const quint64 epoch = m_authorizationEpoch;
    std::optional<QByteArray> stored;
    if (m_defaults.contains(m_bookmarkKey))
        stored = m_defaults.dataValue(m_bookmarkKey);
    m_bookmarkService
        .run([stored](const HomebrewInstallationBookmarkService& service) { return service.restoreRootURL(stored); })
        .then(this, [this, epoch](HomebrewInstallationBookmarkService::RestoreOutcome outcome) {
            if (epoch != m_authorizationEpoch) {
                // The user chose or removed a root meanwhile; that decision stands, and the
                // key now belongs to it.
            } else if (const auto* error = std::get_if<HomebrewInstallationBookmarkError>(&outcome)) {
                m_rootURL.reset();
                m_errorMessage = errorDescription(*error);
                // A dead bookmark would fail at every launch; anything else may recover.
                if (*error == HomebrewInstallationBookmarkError::couldNotResolveBookmark)
                    clearRootURL();
                logError(u"Homebrew installation bookmark restore failed: "_s, errorDescription(*error));
            } else {
                auto restored = std::get<HomebrewInstallationBookmarkService::Restored>(std::move(outcome));
                if (restored.renewedBookmark)
                    m_defaults.setValue(m_bookmarkKey, *restored.renewedBookmark);
                m_rootURL = std::move(restored.path);
            }
            m_isLoadingAuthorization = false;
            m_hasLoadedAuthorization = true;
            emit stateChanged();
            for (const auto& waiter : std::exchange(m_authorizationWaiters, {}))
                waiter();
        });
}

void HomebrewInstalledPackagesStore::scan(const QString& rootURL)
{
    if (m_isScanning)
        return;
    m_isScanning = true;
    m_errorMessage.reset();
    m_operationErrorMessage.reset();
    // The lists stay in place and visible while the new scan runs.
    if (!FolderBookmark::startAccess(rootURL)) {
        m_errorMessage = errorDescription(HomebrewInstallationBookmarkError::accessDenied);
        m_isScanning = false;
        emit stateChanged();
        return;
    }
    emit stateChanged();

    const quint64 epoch = m_authorizationEpoch;
    m_scanner.run([rootURL](const HomebrewInstallationScanner& scanner) { return scanner.scan(rootURL); })
        .then(this, [this, rootURL, epoch](HomebrewInstallationScanner::ScanOutcome outcome) {
            if (epoch == m_authorizationEpoch) {
                if (const auto* error = std::get_if<HomebrewInstallationScannerError>(&outcome)) {
                    // Lists and hasScannedThisLaunch stay as they were.
                    m_errorMessage = errorDescription(*error);
                    logError(u"Homebrew installation scan failed: "_s, errorDescription(*error));
                } else {
                    applyScanResult(std::get<HomebrewInstallationScanResult>(outcome));
                }
            }
            FolderBookmark::stopAccess(rootURL);
            m_isScanning = false;
            emit stateChanged();
        });
}

void HomebrewInstalledPackagesStore::rescan()
{
    if (m_rootURL && !m_isScanning)
        scan(*m_rootURL);
}

QString HomebrewInstalledPackagesStore::suggestedRootDirectory() const
{
    const QStringList candidates = m_userPaths.homebrewRootCandidates();
    for (const QString& candidate : candidates) {
        if (hasBrew(candidate))
            return candidate;
    }
    return candidates.isEmpty() ? m_userPaths.home() : candidates.first();
}

void HomebrewInstalledPackagesStore::chooseRoot()
{
    if (m_isChoosingRoot || m_isScanning)
        return;
    m_isChoosingRoot = true;
    emit stateChanged();

    Pickers::FolderRequest request;
    request.directory = m_rootURL.value_or(suggestedRootDirectory());
    request.message = u"Choose the Homebrew root folder that contains bin/brew."_s;
    request.prompt = u"Choose"_s;
    m_pickers.chooseFolder(request, [store = QPointer(this)](std::optional<QString> url) {
        if (!store)
            return;
        const auto finish = [store] {
            if (!store)
                return;
            store->m_isChoosingRoot = false;
            emit store->stateChanged();
        };
        if (url)
            store->authorize(*url, finish);
        else
            finish();
    });
}

void HomebrewInstalledPackagesStore::authorize(const QString& url)
{
    authorize(url, {});
}

void HomebrewInstalledPackagesStore::authorize(const QString& url, std::function<void()> done)
{
    if (m_isScanning) {
        if (done)
            done();
        return;
    }
    m_isScanning = true;
    ++m_authorizationEpoch;
    m_errorMessage.reset();
    m_operationErrorMessage.reset();
    if (!FolderBookmark::startAccess(url)) {
        m_errorMessage = errorDescription(HomebrewInstallationBookmarkError::accessDenied);
        m_isScanning = false;
        emit stateChanged();
        if (done)
            done();
        return;
    }
    emit stateChanged();

    const auto fail = [this, url, done](const QString& description) {
        // The former root and its lists stay as they were.
        m_errorMessage = description;
        logError(u"Homebrew root authorization failed: "_s, description);
        finishAuthorization(url, done);
    };

    m_scanner
        .run([url](const HomebrewInstallationScanner& scanner) -> HomebrewInstallationScanner::ScanOutcome {
            if (const auto error = scanner.validateRoot(url))
                return *error;
            return scanner.scan(url);
        })
        .then(this, [this, url, done, fail](HomebrewInstallationScanner::ScanOutcome outcome) {
            if (const auto* error = std::get_if<HomebrewInstallationScannerError>(&outcome)) {
                fail(errorDescription(*error));
                return;
            }
            // The folder is remembered before it is shown, so what is shown survives a restart.
            m_bookmarkService
                .run(
                    [url](const HomebrewInstallationBookmarkService& service) { return service.makeRootBookmark(url); })
                .then(this,
                      [this, url, done, fail, result = std::get<HomebrewInstallationScanResult>(std::move(outcome))](
                          HomebrewInstallationBookmarkService::BookmarkOutcome bookmark) {
                          if (const auto* error = std::get_if<HomebrewInstallationBookmarkError>(&bookmark)) {
                              fail(errorDescription(*error));
                              return;
                          }
                          m_defaults.setValue(m_bookmarkKey, std::get<QByteArray>(bookmark));
                          m_rootURL = url;
                          m_hasLoadedAuthorization = true;
                          applyScanResult(result);
                          finishAuthorization(url, done);
                      });
        });
}

void HomebrewInstalledPackagesStore::finishAuthorization(const QString& url, std::function<void()> done)
{
    FolderBookmark::stopAccess(url);
    m_isScanning = false;
    emit stateChanged();
    if (done)
        done();
}

void HomebrewInstalledPackagesStore::removeAuthorization()
{
    cancelProcessing();
    ++m_authorizationEpoch;
    clearRootURL();
    m_rootURL.reset();
    m_hasLoadedAuthorization = true;
    m_hasScannedThisLaunch = false;
    m_rawPackages.clear();
    m_formulae.clear();
    m_casks.clear();
    emit packagesChanged();
    setSearchText(QString());
    m_isFiltering = false;
    m_errorMessage.reset();
    m_operationErrorMessage.reset();
    emit stateChanged();
}

void HomebrewInstalledPackagesStore::clearRootURL()
{
    m_defaults.remove(m_bookmarkKey);
}

void HomebrewInstalledPackagesStore::revealInstallation(const HomebrewInstalledPackage& package)
{
    m_operationErrorMessage.reset();
    if (!m_rootURL) {
        m_operationErrorMessage = u"Authorize the Homebrew root folder again."_s;
        emit stateChanged();
        return;
    }
    const QString root = *m_rootURL;
    if (!FolderBookmark::startAccess(root)) {
        m_operationErrorMessage = errorDescription(HomebrewInstallationBookmarkError::accessDenied);
        emit stateChanged();
        return;
    }
    emit stateChanged();

    const QString installation = package.installationURL;
    m_scanner
        .run([installation, root](const HomebrewInstallationScanner&) {
            return HomebrewInstallationScanner::isInsideRoot(installation, root);
        })
        .then(this, [this, installation, root](bool inside) {
            // Only folders inside the authorized root are ever shown, whatever a row claims.
            if (!inside) {
                m_operationErrorMessage = u"The installation folder is outside the authorized Homebrew root."_s;
                emit stateChanged();
            } else {
                m_workspace.revealFiles({installation});
            }
            FolderBookmark::stopAccess(root);
        });
}

} // namespace quillbay
