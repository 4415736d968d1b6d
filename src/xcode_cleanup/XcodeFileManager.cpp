#include "xcode_cleanup/XcodeFileManager.h"

#include <QDebug>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/PathContainment.h"
#include "platform/FolderBookmark.h"
#include "xcode_cleanup/DirectoryListing.h"
#include "xcode_cleanup/FileMeasure.h"

namespace quillbay {

namespace {

bool isUsableFolder(const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat st;
    return stat(native.constData(), &st) == 0 && S_ISDIR(st.st_mode) && access(native.constData(), R_OK | W_OK) == 0;
}

} // namespace

std::unique_ptr<XcodeFileManager> XcodeFileManager::create(const QString& developerFolder,
                                                           const QStringList& customArchivesFolders,
                                                           const QStringList& customDerivedDataFolders)
{
    std::unique_ptr<XcodeFileManager> manager(new XcodeFileManager);
    manager->m_developerFolder = developerFolder;
    manager->m_customArchivesFolders = withoutDuplicates(customArchivesFolders);
    manager->m_customDerivedDataFolders = withoutDuplicates(customDerivedDataFolders);
    manager->m_isAccessingDeveloperFolder = FolderBookmark::startAccess(developerFolder);
    manager->m_accessedCustomArchivesFolders = openAccesses(manager->m_customArchivesFolders);
    manager->m_accessedCustomDerivedDataFolders = openAccesses(manager->m_customDerivedDataFolders);
    if (!isUsableFolder(developerFolder) || !isUsableFolder(manager->xcodeFolder()))
        return nullptr; // the destructor closes what was opened
    manager->computeDeletionRoots();
    return manager;
}

XcodeFileManager::~XcodeFileManager()
{
    if (m_isAccessingDeveloperFolder)
        FolderBookmark::stopAccess(m_developerFolder);
    closeAccesses(m_accessedCustomArchivesFolders);
    closeAccesses(m_accessedCustomDerivedDataFolders);
}

QStringList XcodeFileManager::withoutDuplicates(const QStringList& folders)
{
    QStringList kept;
    QStringList seen;
    for (const QString& folder : folders) {
        const QString key = standardizedPath(folder);
        if (seen.contains(key))
            continue;
        seen.append(key);
        kept.append(folder);
    }
    return kept;
}

QStringList XcodeFileManager::openAccesses(const QStringList& folders)
{
    QStringList opened;
    for (const QString& folder : folders) {
        if (FolderBookmark::startAccess(folder))
            opened.append(folder);
    }
    return opened;
}

void XcodeFileManager::closeAccesses(QStringList& accessed)
{
    for (const QString& folder : std::as_const(accessed))
        FolderBookmark::stopAccess(folder);
    accessed.clear();
}

void XcodeFileManager::updateCustomArchivesFolders(const QStringList& folders)
{
    closeAccesses(m_accessedCustomArchivesFolders);
    m_customArchivesFolders = withoutDuplicates(folders);
    m_accessedCustomArchivesFolders = openAccesses(m_customArchivesFolders);
    computeAuthorizedDeletionRoots();
}

void XcodeFileManager::updateCustomDerivedDataFolders(const QStringList& folders)
{
    closeAccesses(m_accessedCustomDerivedDataFolders);
    m_customDerivedDataFolders = withoutDuplicates(folders);
    m_accessedCustomDerivedDataFolders = openAccesses(m_customDerivedDataFolders);
    computeAuthorizedDeletionRoots();
}

std::vector<XcodeFileProperties> XcodeFileManager::prepareLocations()
{
    m_locationFiles.clear();
    std::vector<XcodeFileProperties> rows;
    for (const Location location : allLocations) {
        XcodeFileProperties row;
        row.label = locationLabel(location);
        row.tooltip = locationTooltip(location);
        if (location == Location::userDataPreview) {
            row.record = UserDataPreviewFile {};
            row.paths
                = listVisibleEntries(xcodeFolder() + QStringLiteral("/UserData/Previews")).value_or(QStringList());
        }
        m_locationFiles.emplace(location, row);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::optional<XcodeFileProperties> XcodeFileManager::scan(Location location, std::stop_token stop)
{
    const auto found = m_locationFiles.find(location);
    if (found == m_locationFiles.end())
        return std::nullopt;
    XcodeFileProperties node = found->second;
    switch (location) {
    case Location::deviceSupport:
        node.children = deviceSupportRows(stop);
        break;
    case Location::archives:
        node.children = archiveGroups(stop);
        break;
    case Location::derivedData:
        node.children = derivedDataFiles(stop);
        break;
    case Location::documentationCache:
        node.children = documentationCacheFiles();
        break;
    case Location::logs:
        node.children = logsFiles();
        break;
    case Location::userDataPreview:
        break;
    }
    if (stop.stop_requested())
        return std::nullopt;
    // Sizes the walk already measured (derived data needs them for its order) are kept;
    // everything else is measured once.
    calculateSizes(std::span(&node, 1), stop, true);
    if (stop.stop_requested())
        return std::nullopt;
    m_locationFiles[location] = node;
    return node;
}

std::vector<XcodeFileProperties> XcodeFileManager::scanAll(std::stop_token stop, const LocationScanned& scanned)
{
    prepareLocations();
    for (const Location location : allLocations) {
        if (stop.stop_requested())
            break;
        const std::optional<XcodeFileProperties> node = scan(location, stop);
        if (node && scanned)
            scanned(location, *node);
    }
    return locationFiles();
}

std::vector<XcodeFileProperties> XcodeFileManager::locationFiles() const
{
    std::vector<XcodeFileProperties> rows;
    for (const Location location : allLocations) {
        const auto found = m_locationFiles.find(location);
        if (found != m_locationFiles.end())
            rows.push_back(found->second);
    }
    return rows;
}

std::optional<XcodeFileProperties> XcodeFileManager::locationFile(Location location) const
{
    const auto found = m_locationFiles.find(location);
    if (found == m_locationFiles.end())
        return std::nullopt;
    return found->second;
}

qint64 XcodeFileManager::totalSize() const
{
    qint64 total = 0;
    for (const auto& [location, node] : m_locationFiles)
        total = checkedByteSum(total, node.size.bytesOrZero());
    return total;
}

} // namespace quillbay
