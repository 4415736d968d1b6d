#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheFolderWalk.h"

namespace quillbay {

// One listing of a cache folder with the status (lstat) and, for links, the text of every
// item, as the scan saw them. The cache's own folders hold thousands of items, so names
// stay bytes in one block and become text only where an entry needs them; items are
// examined relative to the folder's descriptor, by whichever thread takes them.
class HomebrewCacheFolderSnapshot
{
public:
    struct Item
    {
        quint32 nameOffset = 0; // into the name block, terminated
        quint32 nameSize = 0;
        bool isAscii = true; // then the name is its own text, byte for byte
        bool hasStatus = false;
        HomebrewCacheFileSystem::ItemStatus status;
        // Links only: the link's text as read; empty when it couldn't be read.
        std::string linkText;
        // Folders only, when walked ahead of measuring.
        std::unique_ptr<const HomebrewCacheFolderWalk> walk;
    };

    HomebrewCacheFolderSnapshot(const HomebrewCacheFolderSnapshot&) = delete;
    HomebrewCacheFolderSnapshot& operator=(const HomebrewCacheFolderSnapshot&) = delete;
    HomebrewCacheFolderSnapshot(HomebrewCacheFolderSnapshot&& other) noexcept;
    HomebrewCacheFolderSnapshot& operator=(HomebrewCacheFolderSnapshot&& other) noexcept;
    ~HomebrewCacheFolderSnapshot();

    // The names of a folder, hidden ones included, in the system's order. Absent when the
    // folder can't be opened or read; errorText then has the system's reason.
    static std::optional<HomebrewCacheFolderSnapshot> list(const QString& folder, QString* errorText = nullptr);

    // Fills in the status and link text of one item. Items may be examined on different
    // threads at once, each by one thread, while others read only names.
    void examine(size_t index);
    // Walks a folder item's subtree now, on the calling thread, so that measuring it
    // later asks the disk nothing. Same threading as examine, after it.
    void walkAhead(size_t index);

    const QString& folder() const { return m_folder; }
    const std::vector<Item>& items() const { return m_items; }
    std::string_view nameBytes(const Item& item) const
    {
        return std::string_view(m_names.data() + item.nameOffset, item.nameSize);
    }
    QString name(const Item& item) const;
    QString path(const Item& item) const; // folder + "/" + name
    // Links only, by the rules of HomebrewCacheFileSystem::symbolicLinkDestination.
    std::optional<QString> linkDestination(const Item& item) const;

    // The item with this clean path, or null; of two names that decode to the same text,
    // the later. The index behind it is built on first use, so one thread at a time.
    const Item* find(const QString& path) const;
    // Makes findAscii usable; safe to call on the thread that listed the folder while
    // others examine items.
    void indexAsciiNames();
    // The index of the item with this ASCII name, or -1.
    qsizetype findAscii(std::string_view name) const;

    // Measures an item of this snapshot from its recorded status (and walk).
    HomebrewCacheFileSystem::Measurement measure(const Item& item, HomebrewCacheFileSystem::VisitedSet& visited) const;

private:
    HomebrewCacheFolderSnapshot() = default;

    QString m_folder;
    QString m_prefix; // folder with a trailing "/"
    int m_descriptor = -1;
    std::string m_names;
    std::vector<Item> m_items;
    std::vector<quint32> m_asciiIndex; // open addressing, item index + 1, 0 for empty
    mutable std::optional<QHash<QString, qsizetype>> m_indexByPath;
};

} // namespace quillbay
