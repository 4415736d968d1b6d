#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>
#include <unordered_set>

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
    struct FileIdentityHash
    {
        size_t operator()(const FileIdentity& identity) const noexcept
        {
            return std::hash<quint64>()(identity.inode * 0x9E3779B97F4A7C15ULL ^ identity.device);
        }
    };
    // Everything measured so far in one run: a file reached twice (hard links, repeated
    // paths, a folder inside another measured folder) counts once, for the first reach.
    using VisitedSet = std::unordered_set<FileIdentity, FileIdentityHash>;

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
    static Measurement
    measureWithStatus(const struct stat& status, int folderDescriptor, const QByteArray& name, VisitedSet& visited);
    // Several items in order; one that cannot be examined adds nothing and sets hasIssue.
    static Measurement measure(const QStringList& paths, VisitedSet& visited);

    static bool hasIncompleteSuffix(const QByteArray& name);
};

} // namespace quillbay
