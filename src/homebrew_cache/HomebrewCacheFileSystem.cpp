#include "homebrew_cache/HomebrewCacheFileSystem.h"

#include <QFile>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "foundation/PathContainment.h"

namespace quillbay {

namespace {

using Measurement = HomebrewCacheFileSystem::Measurement;
using VisitedSet = HomebrewCacheFileSystem::VisitedSet;

constexpr int kOpenFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

void addSize(qint64& total, qint64 size)
{
    // A cache of more than 8 EiB is no state this program can report honestly.
    if (__builtin_add_overflow(total, size, &total))
        qFatal("Homebrew cache size overflow");
}

bool isDotOrDotDot(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

Measurement walkFolder(int folder, VisitedSet& visited, Measurement result)
{
    DIR* stream = ::fdopendir(folder);
    if (!stream) {
        ::close(folder);
        result.hasIssue = true;
        return result;
    }
    const int streamFolder = ::dirfd(stream);
    for (;;) {
        errno = 0;
        const dirent* child = ::readdir(stream);
        if (!child) {
            if (errno != 0)
                result.hasIssue = true;
            break;
        }
        if (isDotOrDotDot(child->d_name))
            continue;
        const auto childResult = HomebrewCacheFileSystem::measureAt(
            streamFolder, QByteArray::fromRawData(child->d_name, qsizetype(std::strlen(child->d_name))), visited);
        if (!childResult) {
            result.hasIssue = true;
            continue;
        }
        addSize(result.allocatedSize, childResult->allocatedSize);
        result.isIncomplete = result.isIncomplete || childResult->isIncomplete;
        result.hasIssue = result.hasIssue || childResult->hasIssue;
    }
    ::closedir(stream);
    return result;
}

// The common part of both measuring forms once the item's own status is known.
// `openFolder` gives a descriptor of the item (a folder), or -1.
template <typename OpenFolder>
Measurement measureStatus(const struct stat& st, const QByteArray& name, VisitedSet& visited, OpenFolder openFolder)
{
    Measurement result;
    result.isIncomplete = HomebrewCacheFileSystem::hasIncompleteSuffix(name);
    const HomebrewCacheFileSystem::FileIdentity identity {quint64(st.st_dev), quint64(st.st_ino)};
    if (!visited.insert(identity).second)
        return result; // counted before; a folder met again is not walked again
    result.allocatedSize = std::max<qint64>(0, qint64(st.st_blocks) * 512);
    if (!S_ISDIR(st.st_mode))
        return result;
    const int folder = openFolder();
    if (folder < 0) {
        result.hasIssue = true;
        return result;
    }
    return walkFolder(folder, visited, result);
}

QByteArray lastComponent(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? path : path.mid(slash + 1);
}

} // namespace

QString HomebrewCacheFileSystem::cleanPath(const QString& path)
{
    // Without "//", "/." or a trailing slash an absolute path has nothing to clean. One
    // pass over the characters: a search for a Latin-1 needle converts it on every call.
    const qsizetype size = path.size();
    if (size < 2 || path.front() != u'/' || path.back() == u'/')
        return standardizedPath(path);
    // One pass; slashes are few, so the inner test is rarely taken.
    const char16_t* text = reinterpret_cast<const char16_t*>(path.constData());
    for (qsizetype i = 0; i + 1 < size; ++i) {
        if (text[i] == u'/') [[unlikely]] {
            if (text[i + 1] == u'/' || text[i + 1] == u'.')
                return standardizedPath(path);
        }
    }
    return path;
}

std::optional<struct stat> HomebrewCacheFileSystem::fileStatus(const QString& path)
{
    struct stat st
    {
    };
    if (::lstat(QFile::encodeName(path).constData(), &st) != 0)
        return std::nullopt;
    return st;
}

bool HomebrewCacheFileSystem::isDirectory(const QString& path)
{
    const auto st = fileStatus(path);
    return st && S_ISDIR(st->st_mode);
}

bool HomebrewCacheFileSystem::isSymbolicLink(const QString& path)
{
    const auto st = fileStatus(path);
    return st && S_ISLNK(st->st_mode);
}

bool HomebrewCacheFileSystem::isRealDirectory(const QString& path)
{
    // lstat never reports a link as a folder, so one question answers both.
    return isDirectory(path);
}

bool HomebrewCacheFileSystem::fileExists(const QString& path)
{
    struct stat st
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &st) == 0;
}

bool HomebrewCacheFileSystem::isInside(const QString& candidate, const QString& root, bool resolvingSymlinks)
{
    if (resolvingSymlinks)
        return isPathInside(resolvedPath(cleanPath(candidate)), resolvedPath(cleanPath(root)));
    return isPathInside(cleanPath(candidate), cleanPath(root));
}

std::optional<QString> HomebrewCacheFileSystem::symbolicLinkDestination(const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat st
    {
    };
    if (::lstat(native.constData(), &st) != 0 || !S_ISLNK(st.st_mode))
        return std::nullopt;
    QByteArray buffer(qsizetype(st.st_size > 0 ? st.st_size + 1 : 4096), Qt::Uninitialized);
    for (;;) {
        const ssize_t length = ::readlink(native.constData(), buffer.data(), size_t(buffer.size()));
        if (length < 0)
            return std::nullopt;
        if (length < buffer.size()) {
            buffer.truncate(length);
            break;
        }
        buffer.resize(buffer.size() * 2); // the link grew since lstat
    }
    if (buffer.isEmpty())
        return std::nullopt;
    const QString destination = QFile::decodeName(buffer);
    if (destination.startsWith(QLatin1Char('/')))
        return destination;
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    const QString folder = slash <= 0 ? QStringLiteral("/") : path.left(slash);
    return standardizedPath(folder + QLatin1Char('/') + destination);
}

std::optional<QStringList> HomebrewCacheFileSystem::contentsOfDirectory(const QString& path, QString* errorText)
{
    DIR* stream = ::opendir(QFile::encodeName(path).constData());
    if (!stream) {
        if (errorText)
            *errorText = QString::fromLocal8Bit(std::strerror(errno));
        return std::nullopt;
    }
    QStringList names;
    for (;;) {
        errno = 0;
        const dirent* child = ::readdir(stream);
        if (!child) {
            if (errno != 0) {
                if (errorText)
                    *errorText = QString::fromLocal8Bit(std::strerror(errno));
                ::closedir(stream);
                return std::nullopt;
            }
            break;
        }
        if (!isDotOrDotDot(child->d_name))
            names.append(QFile::decodeName(child->d_name));
    }
    ::closedir(stream);
    return names;
}

std::optional<Measurement> HomebrewCacheFileSystem::measure(const QString& path, VisitedSet& visited)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat st
    {
    };
    if (::lstat(native.constData(), &st) != 0)
        return std::nullopt;
    return measureStatus(st, lastComponent(native), visited,
                         [&native] { return ::open(native.constData(), kOpenFolderFlags); });
}

std::optional<Measurement>
HomebrewCacheFileSystem::measureAt(int folderDescriptor, const QByteArray& name, VisitedSet& visited)
{
    // fromRawData names are not terminated; the system calls need a terminated copy.
    const QByteArray terminated(name.constData(), name.size());
    struct stat st
    {
    };
    if (::fstatat(folderDescriptor, terminated.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    return measureStatus(st, terminated, visited, [folderDescriptor, &terminated] {
        return ::openat(folderDescriptor, terminated.constData(), kOpenFolderFlags);
    });
}

Measurement HomebrewCacheFileSystem::measureWithStatus(const struct stat& status,
                                                       int folderDescriptor,
                                                       const QByteArray& name,
                                                       VisitedSet& visited)
{
    return measureStatus(status, name, visited, [folderDescriptor, &name] {
        return ::openat(folderDescriptor, name.constData(), kOpenFolderFlags);
    });
}

Measurement HomebrewCacheFileSystem::measure(const QStringList& paths, VisitedSet& visited)
{
    Measurement total;
    for (const QString& path : paths) {
        const auto one = measure(path, visited);
        if (!one) {
            total.hasIssue = true;
            continue;
        }
        addSize(total.allocatedSize, one->allocatedSize);
        total.isIncomplete = total.isIncomplete || one->isIncomplete;
        total.hasIssue = total.hasIssue || one->hasIssue;
    }
    return total;
}

bool HomebrewCacheFileSystem::hasIncompleteSuffix(const QByteArray& name)
{
    return name.endsWith(".incomplete");
}

} // namespace quillbay
