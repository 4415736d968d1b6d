#include "xcode_cleanup/FileSystemRemoval.h"

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbay {

namespace {

struct Walk
{
    int firstError = 0;
    QString firstFailedName;

    void fail(int error, const char* name)
    {
        if (firstError == 0) {
            firstError = error;
            firstFailedName = QFile::decodeName(name);
        }
    }
};

// Empties the folder open as `dirFd` (which this function closes). Entries are removed
// relative to the folder's descriptor; sub-folders are opened with O_NOFOLLOW, so a link
// put in a sub-folder's place is never entered.
void emptyFolder(int dirFd, Walk& walk)
{
    DIR* dir = ::fdopendir(dirFd);
    if (!dir) {
        walk.fail(errno, ".");
        ::close(dirFd);
        return;
    }
    while (true) {
        errno = 0;
        const dirent* entry = ::readdir(dir);
        if (!entry) {
            if (errno != 0)
                walk.fail(errno, ".");
            break;
        }
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        if (::unlinkat(dirFd, name, 0) == 0 || errno == ENOENT)
            continue;
        if (errno != EISDIR && errno != EPERM) {
            walk.fail(errno, name);
            continue;
        }
        // A folder (unlink of a folder fails with EISDIR on Linux and EPERM elsewhere).
        const int childFd = ::openat(dirFd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (childFd < 0) {
            walk.fail(errno == ENOTDIR || errno == ELOOP ? EPERM : errno, name);
            continue;
        }
        emptyFolder(childFd, walk);
        if (::unlinkat(dirFd, name, AT_REMOVEDIR) != 0 && errno != ENOENT)
            walk.fail(errno, name);
    }
    ::closedir(dir);
}

QString describe(int error, const QString& name)
{
    return QStringLiteral("“%1” couldn’t be removed: %2").arg(name, QString::fromLocal8Bit(std::strerror(error)));
}

} // namespace

FileSystemRemoval::Result FileSystemRemoval::removeItem(const QString& path)
{
    const QByteArray native = QFile::encodeName(path);
    struct stat st
    {
    };
    if (::lstat(native.constData(), &st) != 0) {
        if (errno == ENOENT)
            return {Outcome::absent, {}};
        return {Outcome::failed, describe(errno, QFileInfo(path).fileName())};
    }
    if (!S_ISDIR(st.st_mode)) {
        if (::unlink(native.constData()) == 0)
            return {Outcome::removed, {}};
        if (errno == ENOENT)
            return {Outcome::absent, {}};
        return {Outcome::failed, describe(errno, QFileInfo(path).fileName())};
    }
    const int fd = ::open(native.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            return {Outcome::absent, {}};
        return {Outcome::failed, describe(errno, QFileInfo(path).fileName())};
    }
    Walk walk;
    emptyFolder(fd, walk);
    if (walk.firstError != 0)
        return {Outcome::failed, describe(walk.firstError, walk.firstFailedName)};
    if (::rmdir(native.constData()) != 0) {
        if (errno == ENOENT)
            return {Outcome::absent, {}};
        return {Outcome::failed, describe(errno, QFileInfo(path).fileName())};
    }
    return {Outcome::removed, {}};
}

} // namespace quillbay
