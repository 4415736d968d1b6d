#include "xcode_cleanup/DirectoryListing.h"

#include <QFile>
#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace quillbay {

std::optional<QStringList> listVisibleEntries(const QString& folder)
{
    DIR* dir = opendir(QFile::encodeName(folder).constData());
    if (!dir)
        return std::nullopt;
    std::vector<QByteArray> names;
    bool failed = false;
    while (true) {
        errno = 0;
        const dirent* entry = readdir(dir);
        if (!entry) {
            failed = errno != 0;
            break;
        }
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    }
    closedir(dir);
    if (failed)
        return std::nullopt;
    std::sort(names.begin(), names.end());
    const QString prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    QStringList paths;
    paths.reserve(static_cast<qsizetype>(names.size()));
    for (const QByteArray& name : names)
        paths.append(prefix + QFile::decodeName(name));
    return paths;
}

QDateTime distantPast()
{
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC);
}

QDateTime creationDate(const QString& path)
{
    struct statx st;
    if (statx(AT_FDCWD, QFile::encodeName(path).constData(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &st) != 0)
        return distantPast();
    const statx_timestamp& stamp = (st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime;
    return QDateTime::fromMSecsSinceEpoch(stamp.tv_sec * 1000 + stamp.tv_nsec / 1000000);
}

QStringList splitPieces(const QString& text, QChar separator, int maxSplits)
{
    // Only pieces that are kept count towards the limit, so runs of separators before the
    // limit do not use it up.
    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != separator)
            continue;
        if (i > start) {
            pieces.append(text.mid(start, i - start));
            if (pieces.size() == maxSplits) {
                start = i + 1;
                if (start < text.size())
                    pieces.append(text.mid(start));
                return pieces;
            }
        }
        start = i + 1;
    }
    if (start < text.size())
        pieces.append(text.mid(start));
    return pieces;
}

} // namespace quillbay
