// Folder authorization of the Xcode cleanup: the Developer folder's bookmark, the file
// manager built on it, and the custom archive and derived data folders.

#include <QPointer>

#include "core/AppViewModel.h"
#include "core/state/FolderAuthorization.h"
#include "core/state/URLBookmarkManager.h"
#include "foundation/Defaults.h"
#include "foundation/Log.h"
#include "foundation/SerialExecutor.h"
#include "platform/FolderBookmark.h"
#include "platform/Pickers.h"
#include "xcode_cleanup/XcodeFileManager.h"

namespace quillbay {

namespace {

URLBookmarkManager::File fileOf(AppViewModel::CustomFolderKind kind)
{
    return kind == AppViewModel::CustomFolderKind::archives ? URLBookmarkManager::File::customArchives
                                                            : URLBookmarkManager::File::customDerivedData;
}

QStringList presentUrls(const QList<URLBookmark>& list)
{
    QStringList urls;
    for (const URLBookmark& entry : list) {
        if (entry.url)
            urls.append(*entry.url);
    }
    return urls;
}

} // namespace

void AppViewModel::setCleanupPlatform(const UserPaths& userPaths, Workspace* workspace)
{
    m_userPaths = userPaths;
    if (workspace)
        m_workspace = workspace;
    const URLBookmarkManager bookmarks(m_userPaths.programDataFolder());
    m_customArchivesFolders = bookmarks.load(URLBookmarkManager::File::customArchives);
    m_customDerivedDataFolders = bookmarks.load(URLBookmarkManager::File::customDerivedData);
    emit customFoldersChanged();
}

void AppViewModel::setCleanupPanels(Pickers* pickers, Alerts* alerts)
{
    if (!m_folderAuthorization)
        m_folderAuthorization = new FolderAuthorization(m_defaults, this);
    m_folderAuthorization->setPanels(pickers, alerts);
}

void AppViewModel::dismissSettingViewAlert()
{
    if (!m_settingViewAlert)
        return;
    m_settingViewAlert = false;
    emit settingViewAlertChanged();
}

void AppViewModel::showSettingViewAlert(const QString& title, const QString& message)
{
    m_settingViewAlertTitle = title;
    m_settingViewAlertMessage = message;
    m_settingViewAlert = true;
    emit settingViewAlertChanged();
}

void AppViewModel::setDeveloperFolderAuthorized(bool value)
{
    if (m_isDeveloperFolderAuthorized == value)
        return;
    m_isDeveloperFolderAuthorized = value;
    emit developerFolderAuthorizationChanged();
}

void AppViewModel::requestDeveloperFolderAuthorization(bool interactive)
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_fileManager || m_isRequestingDeveloperFolderAuthorization)
        return;
    if (!m_folderAuthorization)
        setCleanupPanels(nullptr, nullptr);
    m_isRequestingDeveloperFolderAuthorization = true;
    emit developerFolderAuthorizationChanged();
    const QString key = QLatin1String(developerFolderBookmarkKey);
    QPointer<AppViewModel> self(this);
    m_folderAuthorization->authorizedFolder(
        m_userPaths.developerFolder(), m_defaults.dataValue(key), FolderAuthorization::developerFolderMessage(), key,
        interactive, [self, key](std::optional<QString> folder) {
            if (!self)
                return;
            if (folder)
                self->configureFileManager(*folder);
            else
                self->setDeveloperFolderAuthorized(!self->m_defaults.dataValue(key).isEmpty());
            self->m_isRequestingDeveloperFolderAuthorization = false;
            emit self->developerFolderAuthorizationChanged();
        });
}

void AppViewModel::configureFileManager(const QString& url)
{
    std::unique_ptr<XcodeFileManager> manager
        = XcodeFileManager::create(url, presentUrls(m_customArchivesFolders), presentUrls(m_customDerivedDataFolders));
    if (!manager) {
        setDeveloperFolderAuthorized(false);
        qCCritical(logApp) << "Xcode cleanup authorization could not initialize its file manager.";
        return;
    }
    m_fileManager = std::make_shared<FileManagerExecutor>(std::move(manager));
    m_developerFolderPath = url;
    setDeveloperFolderAuthorized(true);
    emit developerFolderAuthorizationChanged();
    startInitialScan();
}

void AppViewModel::chooseDeveloperFolder()
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning || m_isRequestingDeveloperFolderAuthorization)
        return;
    if (!m_folderAuthorization)
        setCleanupPanels(nullptr, nullptr);
    const QString key = QLatin1String(developerFolderBookmarkKey);
    const QByteArray remembered = m_defaults.dataValue(key);
    const bool wasAuthorized = m_isDeveloperFolderAuthorized;
    std::shared_ptr<FileManagerExecutor> previous = std::move(m_fileManager);
    const QString previousPath = std::exchange(m_developerFolderPath, QString());
    m_isRequestingDeveloperFolderAuthorization = true;
    m_defaults.remove(key);
    setDeveloperFolderAuthorized(false);
    emit developerFolderAuthorizationChanged();
    QPointer<AppViewModel> self(this);
    m_folderAuthorization->authorizedFolder(
        m_userPaths.developerFolder(), {}, FolderAuthorization::developerFolderMessage(), key, true,
        [self, key, remembered, wasAuthorized, previous, previousPath](std::optional<QString> folder) {
            if (!self)
                return;
            if (folder) {
                self->configureFileManager(*folder);
            } else {
                // Nothing was chosen: everything is as it was before the panel.
                if (!remembered.isEmpty())
                    self->m_defaults.setValue(key, remembered);
                self->m_fileManager = previous;
                self->m_developerFolderPath = previousPath;
                self->setDeveloperFolderAuthorized(wasAuthorized);
            }
            self->m_isRequestingDeveloperFolderAuthorization = false;
            emit self->developerFolderAuthorizationChanged();
        });
}

void AppViewModel::removeDeveloperFolderAuthorization()
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning)
        return;
    m_fileManager.reset();
    m_developerFolderPath.clear();
    m_defaults.remove(QLatin1String(developerFolderBookmarkKey));
    setDeveloperFolderAuthorized(false);
    emit developerFolderAuthorizationChanged();
    setLocalFiles({});
    m_totalSize = 0;
    m_selectedSize = 0;
    m_disableClean = true;
    emit cleanupStateChanged();
}

QList<URLBookmark>& AppViewModel::customFolders(CustomFolderKind kind)
{
    return kind == CustomFolderKind::archives ? m_customArchivesFolders : m_customDerivedDataFolders;
}

void AppViewModel::addCustomFolder(CustomFolderKind kind)
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning)
        return;
    Pickers* pickers = m_folderAuthorization ? m_folderAuthorization->pickers() : nullptr;
    if (!pickers)
        return;
    QPointer<AppViewModel> self(this);
    const Pickers::FolderRequest request {m_userPaths.home(), QStringLiteral("Choose a new location"),
                                          QStringLiteral("Choose")};
    pickers->chooseFolder(request, [self, kind](std::optional<QString> folder) {
        if (!self || !folder)
            return;
        if (!FolderBookmark::canAccess(*folder)) {
            self->showSettingViewAlert(QStringLiteral("Can't choose this folder"),
                                       QStringLiteral("Access to this folder is denied."));
            return;
        }
        const QByteArray bookmark = FolderBookmark::make(*folder);
        if (bookmark.isEmpty()) {
            self->showSettingViewAlert(QStringLiteral("Can't choose this folder"),
                                       QStringLiteral("Some problem with security."));
            return;
        }
        URLBookmark entry;
        entry.urlString = *folder;
        entry.bookmarkData = bookmark;
        entry.url = *folder;
        self->customFolders(kind).append(std::move(entry));
        self->saveAndRescanCustomFolders(kind);
    });
}

void AppViewModel::removeCustomFolders(CustomFolderKind kind, const QSet<QUuid>& ids)
{
    Q_ASSERT(thread() == QThread::currentThread());
    if (m_scanning || m_cleaning)
        return;
    customFolders(kind).removeIf([&ids](const URLBookmark& entry) { return ids.contains(entry.id); });
    saveAndRescanCustomFolders(kind);
}

void AppViewModel::saveAndRescanCustomFolders(CustomFolderKind kind)
{
    emit customFoldersChanged();
    QString error;
    if (!URLBookmarkManager(m_userPaths.programDataFolder()).save(customFolders(kind), fileOf(kind), &error))
        showSettingViewAlert(QString(), error);
    if (!m_fileManager)
        return;
    // Queued behind whatever the manager is doing, so a running scan finishes on the old
    // list and every later call sees the new one.
    const QStringList urls = presentUrls(customFolders(kind));
    m_fileManager->run([kind, urls](XcodeFileManager& manager) {
        if (kind == CustomFolderKind::archives)
            manager.updateCustomArchivesFolders(urls);
        else
            manager.updateCustomDerivedDataFolders(urls);
    });
    // The panel was open for a while: a scan or clean may have started meanwhile.
    if (m_scanning || m_cleaning)
        return;
    setScanning(true);
    performScan(m_fileManager);
}

} // namespace quillbay
