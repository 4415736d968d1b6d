#include "TreeState.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

namespace {

QByteArray hashOfFile(const QByteArray& native)
{
    const int fd = ::open(native.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return QByteArrayLiteral("unreadable");
    QCryptographicHash hash(QCryptographicHash::Sha1);
    char buffer[16384];
    while (true) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0)
            break;
        hash.addData(QByteArrayView(buffer, got));
    }
    ::close(fd);
    return hash.result();
}

void walk(const QString& folder, const QString& relative, const QStringList& excluded, TreeState& state)
{
    const QString absolute = relative.isEmpty() ? folder : folder + QLatin1Char('/') + relative;
    DIR* dir = ::opendir(QFile::encodeName(absolute).constData());
    if (!dir)
        return;
    QStringList names;
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names.append(QFile::decodeName(name));
    }
    ::closedir(dir);
    for (const QString& name : std::as_const(names)) {
        const QString childRelative = relative.isEmpty() ? name : relative + QLatin1Char('/') + name;
        const QString childAbsolute = folder + QLatin1Char('/') + childRelative;
        if (std::any_of(excluded.begin(), excluded.end(),
                        [&](const QString& e) { return isAtOrBelow(childAbsolute, e); }))
            continue;
        const QByteArray native = QFile::encodeName(childAbsolute);
        struct stat st
        {
        };
        if (::lstat(native.constData(), &st) != 0)
            continue;
        ItemState item;
        item.device = st.st_dev;
        item.inode = st.st_ino;
        item.size = st.st_size;
        item.allocated = static_cast<qint64>(st.st_blocks) * 512;
        if (S_ISREG(st.st_mode)) {
            item.kind = 'f';
            item.contentHash = hashOfFile(native);
        } else if (S_ISDIR(st.st_mode)) {
            item.kind = 'd';
        } else if (S_ISLNK(st.st_mode)) {
            item.kind = 'l';
            char target[4096];
            const ssize_t length = ::readlink(native.constData(), target, sizeof target);
            item.linkTarget = QByteArray(target, length > 0 ? static_cast<qsizetype>(length) : 0);
        } else {
            item.kind = 'o';
        }
        state.insert(childRelative, item);
        if (item.kind == 'd')
            walk(folder, childRelative, excluded, state);
    }
}

QString describe(const ItemState& item)
{
    return QStringLiteral("%1 inode %2 size %3 %4")
        .arg(QLatin1Char(item.kind))
        .arg(item.inode)
        .arg(item.size)
        .arg(QString::fromLatin1(item.kind == 'l' ? item.linkTarget : item.contentHash.toHex().left(12)));
}

} // namespace

bool ItemState::sameAs(const ItemState& other) const
{
    return kind == other.kind && device == other.device && inode == other.inode && (kind == 'd' || size == other.size)
        && contentHash == other.contentHash && linkTarget == other.linkTarget;
}

TreeState captureTree(const QString& folder, const QStringList& excluded)
{
    TreeState state;
    walk(folder, QString(), excluded, state);
    return state;
}

QStringList describeDifferences(const TreeState& before, const TreeState& after, int limit)
{
    QStringList lines;
    for (auto it = before.cbegin(); it != before.cend() && lines.size() < limit; ++it) {
        const auto now = after.constFind(it.key());
        if (now == after.cend())
            lines << QStringLiteral("gone: %1 (%2)").arg(it.key(), describe(it.value()));
        else if (!now->sameAs(it.value()))
            lines << QStringLiteral("changed: %1 (%2 -> %3)").arg(it.key(), describe(it.value()), describe(*now));
    }
    for (auto it = after.cbegin(); it != after.cend() && lines.size() < limit; ++it) {
        if (!before.contains(it.key()))
            lines << QStringLiteral("new: %1 (%2)").arg(it.key(), describe(it.value()));
    }
    return lines;
}

bool pathExists(const QString& path)
{
    struct stat st
    {
    };
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0;
}

QString lexicallyClean(const QString& path)
{
    return QDir::cleanPath(path);
}

bool isAtOrBelow(const QString& path, const QString& folder)
{
    return path == folder || (path.startsWith(folder) && path.size() > folder.size() && path.at(folder.size()) == u'/');
}

} // namespace quillbay::test
