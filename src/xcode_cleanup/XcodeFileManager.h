#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

#include "xcode_cleanup/Location.h"
#include "xcode_cleanup/XcodeDeletion.h"
#include "xcode_cleanup/XcodeFileProperties.h"

namespace quillbay {

// Turns the user's Library/Developer folder, plus custom archive and derived data
// folders, into the cleanup tree, one location at a time. A service: its calls run one at
// a time on its SerialExecutor, and it hands back copies of its trees, never references.
// Folder access opened at construction stays open for the object's life.
class XcodeFileManager
{
public:
    // Fails when the Developer folder or its "Xcode" sub-folder is missing, not a folder,
    // or not readable and writable; every access opened so far is closed again.
    static std::unique_ptr<XcodeFileManager> create(const QString& developerFolder,
                                                    const QStringList& customArchivesFolders = {},
                                                    const QStringList& customDerivedDataFolders = {});
    ~XcodeFileManager();

    XcodeFileManager(const XcodeFileManager&) = delete;
    XcodeFileManager& operator=(const XcodeFileManager&) = delete;

    QString developerFolder() const { return m_developerFolder; }
    QString xcodeFolder() const { return m_developerFolder + QStringLiteral("/Xcode"); }
    QStringList customArchivesFolders() const { return m_customArchivesFolders; }
    QStringList customDerivedDataFolders() const { return m_customDerivedDataFolders; }

    void updateCustomArchivesFolders(const QStringList& folders);
    void updateCustomDerivedDataFolders(const QStringList& folders);

    // Replaces the trees with the six empty location rows and returns them in order.
    std::vector<XcodeFileProperties> prepareLocations();
    // Fills and measures the row of `location`; returns a copy of it, or nothing when the
    // row was not prepared or the scan was stopped (a stopped row is left as it was).
    std::optional<XcodeFileProperties> scan(Location location, std::stop_token stop = {});
    // prepareLocations() and then every location in order, reporting each finished row.
    using LocationScanned = std::function<void(Location, const XcodeFileProperties&)>;
    std::vector<XcodeFileProperties> scanAll(std::stop_token stop = {}, const LocationScanned& scanned = {});

    // The latest tree of each location, in location order, leaving out absent ones.
    std::vector<XcodeFileProperties> locationFiles() const;
    std::optional<XcodeFileProperties> locationFile(Location location) const;
    // Sum of the location sizes, unknown counting 0.
    qint64 totalSize() const;

    // The children each walk produces; exposed for the store's tests and benchmarks.
    std::vector<XcodeFileProperties> deviceSupportRows(std::stop_token stop = {}) const;
    std::vector<XcodeFileProperties> archiveGroups(std::stop_token stop = {}) const;
    std::vector<XcodeFileProperties> derivedDataFiles(std::stop_token stop = {}) const;
    std::vector<XcodeFileProperties> documentationCacheFiles() const;
    std::vector<XcodeFileProperties> logsFiles() const;

    // --- Guarded deletion (XcodeFileManagerDeletion.cpp) ---
    const QList<XcodeDeletionRoot>& builtInDeletionRoots() const { return m_builtInDeletionRoots; }
    const QList<XcodeDeletionRoot>& authorizedDeletionRoots() const { return m_authorizedDeletionRoots; }
    // Deletes what the selection of `items` (the store's rows) stands for, inside the
    // authorized roots only. Never fails as a whole: per-item trouble is in the result.
    XcodeDeletionResult deleteItems(const std::vector<XcodeFileProperties>& items) const;
    // Tests only: runs between the two checks of every target.
    void setDeletionBetweenChecksHook(std::function<void(const XcodeDeletionTarget&)> hook)
    {
        m_deletionBetweenChecks = std::move(hook);
    }

private:
    XcodeFileManager() = default;
    void computeDeletionRoots();
    void computeAuthorizedDeletionRoots();
    void closeAccesses(QStringList& accessed);
    static QStringList withoutDuplicates(const QStringList& folders);
    static QStringList openAccesses(const QStringList& folders);

    QString m_developerFolder;
    QStringList m_customArchivesFolders;
    QStringList m_customDerivedDataFolders;
    bool m_isAccessingDeveloperFolder = false;
    QStringList m_accessedCustomArchivesFolders;
    QStringList m_accessedCustomDerivedDataFolders;
    std::map<Location, XcodeFileProperties> m_locationFiles;
    QList<XcodeDeletionRoot> m_builtInDeletionRoots;
    QList<XcodeDeletionRoot> m_authorizedDeletionRoots;
    std::function<void(const XcodeDeletionTarget&)> m_deletionBetweenChecks;
};

} // namespace quillbay
