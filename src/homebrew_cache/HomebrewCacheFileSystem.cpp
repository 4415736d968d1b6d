#include "homebrew_cache/HomebrewCacheFileSystem.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <utility>

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

// Inodes of one folder are often consecutive; the multiply spreads them over the table.
size_t identityHash(const HomebrewCacheFileSystem::FileIdentity& identity)
{
    const quint64 mixed = (identity.inode ^ (identity.device << 32 | identity.device >> 32)) * 0x9E3779B97F4A7C15ULL;
    return size_t(mixed ^ (mixed >> 29));
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
Measurement measureStatus(const HomebrewCacheFileSystem::ItemStatus& st,
                          std::string_view name,
                          VisitedSet& visited,
                          OpenFolder openFolder)
{
    Measurement result;
    result.isIncomplete = HomebrewCacheFileSystem::hasIncompleteSuffix(name);
    if (!visited.insert({st.device, st.inode}))
        return result; // counted before; a folder met again is not walked again
    result.allocatedSize = std::max<qint64>(0, st.blocks * 512);
    if (!S_ISDIR(st.mode))
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
    const QByteArray name = lastComponent(native);
    return measureStatus(HomebrewCacheFileSystem::ItemStatus::of(st),
                         std::string_view(name.constData(), size_t(name.size())), visited,
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
    return measureStatus(ItemStatus::of(st), std::string_view(terminated.constData(), size_t(terminated.size())),
                         visited, [folderDescriptor, &terminated] {
                             return ::openat(folderDescriptor, terminated.constData(), kOpenFolderFlags);
                         });
}

Measurement HomebrewCacheFileSystem::measureWithStatus(const ItemStatus& status,
                                                       int folderDescriptor,
                                                       const char* name,
                                                       VisitedSet& visited)
{
    return measureStatus(status, name, visited,
                         [folderDescriptor, name] { return ::openat(folderDescriptor, name, kOpenFolderFlags); });
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

bool HomebrewCacheFileSystem::hasIncompleteSuffix(std::string_view name)
{
    return name.ends_with(".incomplete");
}

bool HomebrewCacheFileSystem::VisitedSet::insert(const FileIdentity& identity)
{
    if (identity == FileIdentity {})
        return !std::exchange(m_hasZero, true);
    if ((m_count + 1) * 2 > m_slots.size())
        grow();
    const size_t mask = m_slots.size() - 1;
    for (size_t at = identityHash(identity) & mask;; at = (at + 1) & mask) {
        FileIdentity& slot = m_slots[at];
        if (slot == FileIdentity {}) {
            slot = identity;
            ++m_count;
            return true;
        }
        if (slot == identity)
            return false;
    }
}

void HomebrewCacheFileSystem::VisitedSet::reserve(size_t count)
{
    while (m_slots.size() < count * 2)
        grow();
}

void HomebrewCacheFileSystem::VisitedSet::grow()
{
    std::vector<FileIdentity> old
        = std::exchange(m_slots, std::vector<FileIdentity>(std::max<size_t>(1024, m_slots.size() * 2)));
    m_count = 0;
    for (const FileIdentity& identity : old) {
        if (identity != FileIdentity {})
            insert(identity);
    }
}

} // namespace quillbay
