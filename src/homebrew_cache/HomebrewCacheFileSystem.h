#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace quillbay {

// The file-system operations of the cache tool, without instances. Nothing here follows a
// symbolic link unless its description says so, and everything below a listed folder is
// reached relative to that folder's descriptor, so a walk cannot be led out of the tree by
// a link that appears while it runs.
class HomebrewCacheFileSystem
{
public:
    struct FileIdentity
    {
        quint64 device = 0;
        quint64 inode = 0;
        friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    };
    // Everything measured so far in one run: a file reached twice (hard links, repeated
    // paths, a folder inside another measured folder) counts once, for the first reach.
    // Open addressing over one array: a scan inserts every item it measures, and a node
    // allocation per item cost more than the rest of measuring.
    class VisitedSet
    {
    public:
        // True when the identity was not in the set before.
        bool insert(const FileIdentity& identity);
        // Room for this many identities without growing.
        void reserve(size_t count);

    private:
        void grow();
        // {0, 0} marks an empty slot; that identity itself, which no real file has, is
        // kept aside.
        std::vector<FileIdentity> m_slots;
        size_t m_count = 0;
        bool m_hasZero = false;
    };

    // The parts of an item's lstat that measuring needs.
    struct ItemStatus
    {
        mode_t mode = 0;
        quint64 device = 0;
        quint64 inode = 0;
        qint64 blocks = 0;
        qint64 size = 0; // the length of a link's text, for reading it
        static ItemStatus of(const struct stat& st)
        {
            return {st.st_mode, quint64(st.st_dev), quint64(st.st_ino), qint64(st.st_blocks), qint64(st.st_size)};
        }
    };

    struct Measurement
    {
        qint64 allocatedSize = 0;
        bool isIncomplete = false;
        bool hasIssue = false;
    };

    // The path with "." and ".." and repeated or trailing slashes removed, lexically.
    // Paths the cache hands out are clean already; they come back without a copy.
    static QString cleanPath(const QString& path);

    // lstat: a link is reported as itself.
    static std::optional<struct stat> fileStatus(const QString& path);
    static bool isDirectory(const QString& path);
    static bool isSymbolicLink(const QString& path);
    // A folder by lstat, so never a link to one.
    static bool isRealDirectory(const QString& path);
    // stat: follows links, so a dangling link does not exist.
    static bool fileExists(const QString& path);

    // Equal to the root, or below it by a whole component ("downloads-old" is not inside
    // "downloads"). Both sides are standardized; with resolvingSymlinks, links are
    // resolved in both first.
    static bool isInside(const QString& candidate, const QString& root, bool resolvingSymlinks);

    // The link's destination as a path: absolute destinations as they stand, relative
    // ones against the link's folder, standardized. Absent for no link or a failed read.
    static std::optional<QString> symbolicLinkDestination(const QString& path);

    // The names in a folder, hidden ones included, in the order the system gives them.
    // Absent when the folder cannot be listed; errorText then says why.
    static std::optional<QStringList> contentsOfDirectory(const QString& path, QString* errorText = nullptr);

    // What the item occupies on disk (allocated blocks, not logical length), with its
    // whole subtree when it is a folder. Absent when the item itself cannot be examined.
    static std::optional<Measurement> measure(const QString& path, VisitedSet& visited);
    // The same, relative to an open folder.
    static std::optional<Measurement> measureAt(int folderDescriptor, const QByteArray& name, VisitedSet& visited);
    // The same, for an item of an open folder whose status is already known.
    // `name` is terminated.
    static Measurement
    measureWithStatus(const ItemStatus& status, int folderDescriptor, const char* name, VisitedSet& visited);
    // Several items in order; one that cannot be examined adds nothing and sets hasIssue.
    static Measurement measure(const QStringList& paths, VisitedSet& visited);

    static bool hasIncompleteSuffix(std::string_view name);
};

} // namespace quillbay
