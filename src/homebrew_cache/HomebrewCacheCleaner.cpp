#include "homebrew_cache/HomebrewCacheCleaner.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "foundation/PathContainment.h"
#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

namespace {

using FS = HomebrewCacheFileSystem;

constexpr int kOpenFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

class Descriptor
{
public:
    explicit Descriptor(int fd = -1)
        : m_fd(fd)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : m_fd(std::exchange(other.m_fd, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int get() const { return m_fd; }
    bool isValid() const { return m_fd >= 0; }

private:
    int m_fd;
};

QString parentOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString lastComponentOf(const QString& path)
{
    return path.section(QLatin1Char('/'), -1);
}

// Empties an open folder without following any link in it. Returns the first error
// (0 for none); an item that vanished meanwhile is no error.
int removeContents(int folder)
{
    const int listing = ::dup(folder);
    if (listing < 0)
        return errno;
    DIR* stream = ::fdopendir(listing);
    if (!stream) {
        const int error = errno;
        ::close(listing);
        return error;
    }
    // Names first, removal after: a folder is not changed while it is being read.
    std::vector<QByteArray> names;
    for (;;) {
        errno = 0;
        const dirent* child = ::readdir(stream);
        if (!child)
            break;
        const QByteArray name(child->d_name);
        if (name != "." && name != "..")
            names.push_back(name);
    }
    ::closedir(stream);
    int firstError = 0;
    for (const QByteArray& name : names) {
        if (::unlinkat(folder, name.constData(), 0) == 0 || errno == ENOENT)
            continue;
        if (errno != EISDIR && errno != EPERM) {
            firstError = firstError ? firstError : errno;
            continue;
        }
        const Descriptor child(::openat(folder, name.constData(), kOpenFolderFlags));
        if (!child.isValid()) {
            if (errno != ENOENT)
                firstError = firstError ? firstError : errno;
            continue;
        }
        if (const int error = removeContents(child.get()))
            firstError = firstError ? firstError : error;
        if (::unlinkat(folder, name.constData(), AT_REMOVEDIR) != 0 && errno != ENOENT)
            firstError = firstError ? firstError : errno;
    }
    return firstError;
}

// Removes one item of an open folder: a link or file as itself, a folder with everything
// in it. Returns 0 or the first error.
int removeAt(int parent, const QByteArray& name)
{
    struct stat st
    {
    };
    if (::fstatat(parent, name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode))
        return ::unlinkat(parent, name.constData(), 0) == 0 ? 0 : errno;
    const Descriptor folder(::openat(parent, name.constData(), kOpenFolderFlags));
    if (!folder.isValid()) {
        // Replaced by a link or a file since the status: remove that, and only that.
        if (errno == ELOOP || errno == ENOTDIR)
            return ::unlinkat(parent, name.constData(), 0) == 0 ? 0 : errno;
        return errno;
    }
    const int contentsError = removeContents(folder.get());
    if (::unlinkat(parent, name.constData(), AT_REMOVEDIR) != 0)
        return contentsError ? contentsError : errno;
    return 0;
}

enum class Descent { reached, missing, outside, failed };

// Opens the folder holding `relative` (components below the root) by walking down from
// the root without following links. A link met on the way means the item no longer
// lies inside the root by what the disk says now.
Descent openParent(const Descriptor& root, const QStringList& components, Descriptor& parent, int& error)
{
    Descriptor current(::dup(root.get()));
    if (!current.isValid()) {
        error = errno;
        return Descent::failed;
    }
    for (qsizetype i = 0; i + 1 < components.size(); ++i) {
        const QByteArray name = QFile::encodeName(components.at(i));
        Descriptor next(::openat(current.get(), name.constData(), kOpenFolderFlags));
        if (!next.isValid()) {
            error = errno;
            if (error == ENOENT)
                return Descent::missing;
            if (error == ELOOP || error == ENOTDIR) {
                struct stat st
                {
                };
                if (::fstatat(current.get(), name.constData(), &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(st.st_mode))
                    return Descent::outside;
                return Descent::missing; // a file where a folder was: nothing lies below it
            }
            return Descent::failed;
        }
        current = std::move(next);
    }
    parent = std::move(current);
    return Descent::reached;
}

QString removalMessage(const QString& name, int error)
{
    return QCoreApplication::translate("HomebrewCache", "“%1” couldn’t be removed. %2")
        .arg(name, QString::fromLocal8Bit(std::strerror(error)));
}

// An empty "downloads" or "Cask" goes after a full clean; anything in it, hidden files
// included, keeps it. Errors are of no interest here.
qint64 removeEmptyContainer(const QString& root, const QString& name)
{
    const QString path = root + QLatin1Char('/') + name;
    if (!FS::isRealDirectory(path))
        return 0;
    const auto contents = FS::contentsOfDirectory(path);
    if (!contents || !contents->isEmpty())
        return 0;
    FS::VisitedSet visited;
    const auto measured = FS::measure(path, visited);
    const Descriptor rootFolder(::open(QFile::encodeName(root).constData(), kOpenFolderFlags));
    if (!rootFolder.isValid())
        return 0;
    // Removes an empty folder only, so whatever arrived since the listing stays.
    if (::unlinkat(rootFolder.get(), QFile::encodeName(name).constData(), AT_REMOVEDIR) != 0)
        return 0;
    return measured ? measured->allocatedSize : 0;
}

} // namespace

HomebrewCacheCleaner::HomebrewCacheCleaner(QString expectedRootPath, QString displayPath)
    : m_expectedRootPath(std::move(expectedRootPath))
    , m_invalidRootMessage(HomebrewCacheScanner(m_expectedRootPath, std::move(displayPath))
                               .description(HomebrewCacheScannerError::invalidRoot))
{
}

QString HomebrewCacheCleaner::outsideRootMessage()
{
    return QCoreApplication::translate("HomebrewCache",
                                       "The cache item is outside the authorized Homebrew cache folder.");
}

HomebrewCacheCleaner::Result HomebrewCacheCleaner::deleteEntries(const std::vector<HomebrewCacheEntry>& entries,
                                                                 const QString& rootPath,
                                                                 bool removeEmptyContainers)
{
    Result result;
    const QString root = standardizedPath(rootPath);
    if (root != standardizedPath(m_expectedRootPath) || !FS::isRealDirectory(rootPath)) {
        result.failedEntryCount = int(entries.size());
        result.failures.push_back(Failure {lastComponentOf(root), m_invalidRootMessage});
        return result;
    }

    // The plan: every path once, a folder before what lies in it, and whatever lies in a
    // planned folder left to go with it.
    QStringList joined;
    for (const HomebrewCacheEntry& entry : entries) {
        for (const QString& path : entry.paths)
            joined.append(standardizedPath(path));
    }
    std::stable_sort(joined.begin(), joined.end(), [](const QString& a, const QString& b) {
        return a.count(QLatin1Char('/')) < b.count(QLatin1Char('/'));
    });
    QStringList plan;
    QSet<QString> seen;
    QSet<QString> kept;
    const auto isCovered = [&kept](const QString& path) {
        for (qsizetype slash = path.lastIndexOf(QLatin1Char('/')); slash > 0;
             slash = path.lastIndexOf(QLatin1Char('/'), slash - 1)) {
            if (kept.contains(path.left(slash)))
                return true;
        }
        return false;
    };
    for (const QString& path : std::as_const(joined)) {
        if (seen.contains(path))
            continue;
        seen.insert(path);
        if (isCovered(path))
            continue;
        kept.insert(path);
        plan.append(path);
    }

    FS::VisitedSet visited;
    for (const QString& path : std::as_const(plan)) {
        const QString name = lastComponentOf(path);
        // The item itself may be a link leading anywhere (only the link goes), but the
        // folders on the way to it must stay inside the root, and the root never goes.
        const bool inside = isPathInside(path, root) && isPathInside(resolvedPath(parentOf(path)), resolvedPath(root))
            && path != root;
        if (!inside) {
            result.failures.push_back(Failure {name, outsideRootMessage()});
            continue;
        }
        if (m_beforeRemoval)
            m_beforeRemoval(path);

        const Descriptor rootFolder(::open(QFile::encodeName(root).constData(), kOpenFolderFlags));
        if (!rootFolder.isValid()) {
            result.failures.push_back(Failure {name, outsideRootMessage()});
            continue;
        }
        Descriptor parent;
        int error = 0;
        switch (openParent(rootFolder, path.mid(root.size() + 1).split(QLatin1Char('/')), parent, error)) {
        case Descent::reached:
            break;
        case Descent::missing:
            continue; // gone already: no failure, no bytes
        case Descent::outside:
            result.failures.push_back(Failure {name, outsideRootMessage()});
            continue;
        case Descent::failed:
            result.failures.push_back(Failure {name, removalMessage(name, error)});
            continue;
        }
        const QByteArray nativeName = QFile::encodeName(name);
        const auto measured = FS::measureAt(parent.get(), nativeName, visited);
        error = removeAt(parent.get(), nativeName);
        if (error == 0) {
            if (measured
                && __builtin_add_overflow(result.reclaimedSize, measured->allocatedSize, &result.reclaimedSize))
                qFatal("Homebrew cache size overflow");
        } else if (error != ENOENT) {
            result.failures.push_back(Failure {name, removalMessage(name, error)});
        }
    }

    if (removeEmptyContainers) {
        for (const QString& container : {QStringLiteral("downloads"), QStringLiteral("Cask")}) {
            if (__builtin_add_overflow(result.reclaimedSize, removeEmptyContainer(root, container),
                                       &result.reclaimedSize))
                qFatal("Homebrew cache size overflow");
        }
    }

    // An entry counts by what is left on disk: gone when none of its paths is there, even
    // if someone else removed them. A dangling link is still there.
    for (const HomebrewCacheEntry& entry : entries) {
        if (entry.paths.isEmpty())
            continue;
        const bool anyLeft = std::any_of(entry.paths.cbegin(), entry.paths.cend(),
                                         [](const QString& path) { return FS::fileStatus(path).has_value(); });
        if (!anyLeft)
            ++result.deletedEntryCount;
    }
    result.failedEntryCount = int(entries.size()) - result.deletedEntryCount;
    return result;
}

} // namespace quillbay
