#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <functional>
#include <initializer_list>
#include <optional>
#include <vector>

#include <sys/stat.h>

#include "homebrew_cache/HomebrewCacheFileSystem.h"

namespace quillbay {

// One listing of a cache folder with the status (lstat) and, for links, the destination
// of every item, as the scan saw them. The cache's own folders hold thousands of items;
// examining them once, relative to the folder's descriptor and spread over the cores,
// is what keeps a scan cheaper than a plain disk-usage walk of the same tree.
class HomebrewCacheFolderSnapshot
{
public:
    struct Item
    {
        QString name;
        QString path; // folder + "/" + name
        QByteArray nativeName;
        bool hasStatus = false;
        struct stat status
        {
        };
        // Links only, by the rules of HomebrewCacheFileSystem::symbolicLinkDestination.
        std::optional<QString> linkDestination;
    };

    HomebrewCacheFolderSnapshot(const HomebrewCacheFolderSnapshot&) = delete;
    HomebrewCacheFolderSnapshot& operator=(const HomebrewCacheFolderSnapshot&) = delete;
    HomebrewCacheFolderSnapshot(HomebrewCacheFolderSnapshot&& other) noexcept;
    HomebrewCacheFolderSnapshot& operator=(HomebrewCacheFolderSnapshot&& other) noexcept;
    ~HomebrewCacheFolderSnapshot();

    // The names of a folder, hidden ones included, in the system's order. Absent when the
    // folder can't be opened or read; errorText then has the system's reason.
    static std::optional<HomebrewCacheFolderSnapshot> list(const QString& folder, QString* errorText = nullptr);

    // Fills in status and link destinations of all items of the given snapshots, spread
    // over the cores. `alongside` runs on the calling thread meanwhile, which then helps;
    // it may read names and paths of the items but not what is being filled in.
    static void examine(std::initializer_list<HomebrewCacheFolderSnapshot*> snapshots,
                        const std::function<void()>& alongside = {});

    const QString& folder() const { return m_folder; }
    const std::vector<Item>& items() const { return m_items; }
    // The item with this clean path, or null.
    const Item* find(const QString& path) const;

    // Measures an item of this snapshot from its recorded status.
    HomebrewCacheFileSystem::Measurement measure(const Item& item, HomebrewCacheFileSystem::VisitedSet& visited) const;

private:
    HomebrewCacheFolderSnapshot() = default;

    QString m_folder;
    int m_descriptor = -1;
    std::vector<Item> m_items;
    QHash<QString, qsizetype> m_indexByPath;
};

} // namespace quillbay
