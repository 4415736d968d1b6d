// The walks that turn each location's folders into rows.
#include <QDebug>
#include <QFileInfo>
#include <QMap>
#include <algorithm>

#include "foundation/LocalizedText.h"
#include "foundation/Log.h"
#include "foundation/PathContainment.h"
#include "xcode_cleanup/ArchiveReader.h"
#include "xcode_cleanup/DeviceSupportReader.h"
#include "xcode_cleanup/DirectoryListing.h"
#include "xcode_cleanup/PropertyList.h"
#include "xcode_cleanup/XcodeFileManager.h"

namespace quillbay {

namespace {

struct OSRow
{
    const char* label;
    const char* symbol;
    const char* folder;
};

constexpr OSRow osRows[] = {
    {"iOS", "iphone", "iOS DeviceSupport"},
    {"watchOS", "applewatch", "watchOS DeviceSupport"},
    {"tvOS", "tv", "tvOS DeviceSupport"},
    {"visionOS", "vision.pro", "visionOS DeviceSupport"},
    {"macOS", "desktopcomputer", "macOS DeviceSupport"},
};

// The built-in folder first, then each custom folder not already listed.
QStringList rootsWith(const QString& builtIn, const QStringList& custom)
{
    QStringList roots {builtIn};
    QStringList seen {standardizedPath(builtIn)};
    for (const QString& folder : custom) {
        const QString key = standardizedPath(folder);
        if (!seen.contains(key)) {
            seen.append(key);
            roots.append(folder);
        }
    }
    return roots;
}

std::optional<XcodeFileProperties> readDerivedData(const QString& folder)
{
    const QString name = QFileInfo(folder).fileName();
    QStringList pieces = name.split(QLatin1Char('-'), Qt::SkipEmptyParts);
    if (!pieces.isEmpty())
        pieces.removeLast(); // the hash
    const QString projectName = pieces.join(QLatin1Char('-')).replace(QLatin1Char('_'), QLatin1Char(' '));

    const std::optional<PropertyList> info = PropertyList::readFile(folder + QStringLiteral("/info.plist"));
    if (!info)
        return std::nullopt;
    const auto workspacePath = PropertyList::stringValue(PropertyList::item(info->root(), "WorkspacePath"));
    if (!workspacePath)
        return std::nullopt;

    XcodeFileProperties item;
    item.label = projectName;
    item.info = *workspacePath;
    item.tooltip = (item.label + QLatin1Char(' ') + *workspacePath).trimmed();
    item.icon = Icon::systemNsImage(folderImageName());
    item.paths = {folder};
    item.record = DerivedDataFile {projectName, *workspacePath, folder};
    return item;
}

// Newest first: versions when both have one (then builds, number-aware), otherwise the
// version texts, number-aware.
bool archiveBefore(const XcodeFileProperties& a, const XcodeFileProperties& b)
{
    const ArchiveFile& x = *a.as<ArchiveFile>();
    const ArchiveFile& y = *b.as<ArchiveFile>();
    if (x.version && y.version) {
        if (!(*x.version == *y.version))
            return *x.version > *y.version;
        return localizedStandardCompare(x.build, y.build) > 0;
    }
    return localizedStandardCompare(x.versionString, y.versionString) > 0;
}

} // namespace

std::vector<XcodeFileProperties> XcodeFileManager::deviceSupportRows(std::stop_token stop) const
{
    std::vector<XcodeFileProperties> rows;
    for (const OSRow& os : osRows) {
        XcodeFileProperties row;
        row.label = QString::fromLatin1(os.label);
        row.icon = Icon::system(QString::fromLatin1(os.symbol));
        const QString folder = xcodeFolder() + QLatin1Char('/') + QString::fromLatin1(os.folder);
        const std::optional<QStringList> entries = stop.stop_requested() ? std::nullopt : listVisibleEntries(folder);
        if (!entries) {
            qDebug().noquote() << QStringLiteral("XcodeFileManager: 无法检查 '") + privateText(folder)
                    + QStringLiteral("', 跳过");
        } else {
            std::vector<XcodeFileProperties> files;
            for (const QString& entry : *entries) {
                if (auto file = readDeviceSupport(entry, row.label))
                    files.push_back(std::move(*file));
            }
            row.children = sortedDeviceSupportFiles(std::move(files));
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<XcodeFileProperties> XcodeFileManager::archiveGroups(std::stop_token stop) const
{
    // Keyed by bundle identifier; the map's order is the order of the groups.
    QMap<QString, std::vector<XcodeFileProperties>> byBundle;
    for (const QString& root : rootsWith(xcodeFolder() + QStringLiteral("/Archives"), m_customArchivesFolders)) {
        const std::optional<QStringList> datedFolders = listVisibleEntries(root);
        if (!datedFolders)
            continue;
        for (const QString& dated : *datedFolders) {
            if (stop.stop_requested())
                return {};
            const std::optional<QStringList> items = listVisibleEntries(dated);
            if (!items)
                continue;
            for (const QString& item : *items) {
                if (auto archive = readArchive(item)) {
                    const QString bundle = archive->as<ArchiveFile>()->bundleName;
                    byBundle[bundle].push_back(std::move(*archive));
                }
            }
        }
    }
    std::vector<XcodeFileProperties> groups;
    for (auto it = byBundle.begin(); it != byBundle.end(); ++it) {
        XcodeFileProperties group;
        group.label = it.key();
        group.icon = Icon::fileType(QStringLiteral("xcarchive"));
        std::stable_sort(it->begin(), it->end(), archiveBefore);
        group.children = std::move(it.value());
        groups.push_back(std::move(group));
    }
    return groups;
}

std::vector<XcodeFileProperties> XcodeFileManager::derivedDataFiles(std::stop_token stop) const
{
    std::vector<XcodeFileProperties> files;
    for (const QString& root : rootsWith(xcodeFolder() + QStringLiteral("/DerivedData"), m_customDerivedDataFolders)) {
        const std::optional<QStringList> entries = listVisibleEntries(root);
        if (!entries)
            continue;
        for (const QString& entry : *entries) {
            if (QFileInfo(entry).fileName() == QStringLiteral("ModuleCache"))
                continue;
            if (auto file = readDerivedData(entry))
                files.push_back(std::move(*file));
        }
    }
    // The order is by size, so every size is needed before the rows can be shown.
    calculateSizes(files, stop);
    if (stop.stop_requested())
        return {};
    std::stable_sort(files.begin(), files.end(),
                     [](const XcodeFileProperties& a, const XcodeFileProperties& b) { return a.size > b.size; });
    return files;
}

std::vector<XcodeFileProperties> XcodeFileManager::documentationCacheFiles() const
{
    std::vector<XcodeFileProperties> files;
    const std::optional<QStringList> formats
        = listVisibleEntries(xcodeFolder() + QStringLiteral("/DocumentationCache"));
    if (!formats)
        return files;
    for (const QString& format : *formats) {
        const std::optional<QStringList> items = listVisibleEntries(format);
        if (!items)
            continue;
        for (const QString& item : *items) {
            const QString name = QFileInfo(item).fileName();
            const std::optional<Version> version = Version::parse(name);
            if (!version) {
                qCCritical(logApp).noquote()
                    << QStringLiteral("XcodeFileManager: 搜索文档缓存时 Xcode 版本无效: %1").arg(privateText(name));
                continue;
            }
            const auto existing = std::find_if(files.begin(), files.end(), [&](const XcodeFileProperties& f) {
                return f.as<DocumentationCacheFile>()->version == *version;
            });
            if (existing != files.end()) {
                existing->paths.append(item);
                continue;
            }
            XcodeFileProperties file;
            file.label = QStringLiteral("Cache from Xcode ") + version->description();
            file.tooltip = QStringLiteral("Documentation cache files from Xcode ") + version->description();
            file.icon = Icon::systemNsImage(multipleDocumentsImageName());
            file.paths = {item};
            file.record = DocumentationCacheFile {*version};
            files.push_back(std::move(file));
        }
    }
    std::stable_sort(files.begin(), files.end(), [](const XcodeFileProperties& a, const XcodeFileProperties& b) {
        return a.as<DocumentationCacheFile>()->version > b.as<DocumentationCacheFile>()->version;
    });
    return files;
}

std::vector<XcodeFileProperties> XcodeFileManager::logsFiles() const
{
    struct LogEntry
    {
        QString path;
        Version version;
    };
    std::vector<XcodeFileProperties> files;
    const std::optional<QStringList> entries = listVisibleEntries(xcodeFolder() + QStringLiteral("/iOS Device Logs"));
    if (!entries)
        return files;
    std::vector<LogEntry> logEntries;
    for (const QString& entry : *entries) {
        const QFileInfo info(entry);
        const QStringList pieces = info.completeBaseName().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        std::optional<Version> version;
        for (const QString& piece : pieces) {
            if ((version = Version::parse(piece)))
                break;
        }
        if (!version) {
            qDebug().noquote() << QStringLiteral("XcodeFileManager: 日志条目错误？未找到版本（路径: ")
                    + privateText(info.fileName());
            continue;
        }
        logEntries.push_back({entry, *version});
    }
    std::stable_sort(logEntries.begin(), logEntries.end(),
                     [](const LogEntry& a, const LogEntry& b) { return a.version > b.version; });
    for (std::size_t i = 0; i < logEntries.size(); ++i) {
        const LogEntry& entry = logEntries[i];
        if (i > 0 && entry.version == logEntries[i - 1].version) {
            files.back().paths.append(entry.path);
            continue;
        }
        XcodeFileProperties file;
        file.label = QStringLiteral("Logs from Xcode ") + entry.version.description();
        file.tooltip = QStringLiteral("Old logs from Xcode ") + entry.version.description();
        file.icon = Icon::systemNsImage(multipleDocumentsImageName());
        file.paths = {entry.path};
        file.record = LogsFile {entry.version};
        files.push_back(std::move(file));
    }
    return files;
}

} // namespace quillbay
