#include "TreeState.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

TreeState captureTree(const QString& folder, const QStringList& excluded)
{
    TreeState state;
    // Without FollowSymlinks the iterator never descends through a link.
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (std::any_of(excluded.begin(), excluded.end(), [&](const QString& e) { return isAtOrBelow(path, e); }))
            continue;
        const QByteArray native = QFile::encodeName(path);
        struct stat st
        {
        };
        if (::lstat(native.constData(), &st) != 0)
            continue;
        ItemState item {'o', quint64(st.st_dev), quint64(st.st_ino), st.st_size, qint64(st.st_blocks) * 512, {}};
        if (S_ISREG(st.st_mode)) {
            item.kind = 'f';
            QFile file(path);
            QCryptographicHash hash(QCryptographicHash::Sha1);
            item.content = file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : "unreadable";
        } else if (S_ISDIR(st.st_mode)) {
            item.kind = 'd';
        } else if (S_ISLNK(st.st_mode)) {
            item.kind = 'l';
            char target[4096];
            const ssize_t length = ::readlink(native.constData(), target, sizeof target);
            item.content = QByteArray(target, length > 0 ? qsizetype(length) : 0);
        }
        state.insert(path.mid(folder.size() + 1), item);
    }
    return state;
}

bool pathExists(const QString& path)
{
    struct stat st
    {
    };
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0;
}

} // namespace quillbay::test
