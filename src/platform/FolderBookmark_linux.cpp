#include <QDataStream>
#include <QIODevice>

#include <sys/stat.h>
#include <unistd.h>

#include "platform/FolderBookmark.h"

namespace quillbay {

namespace {

constexpr quint32 kMagic = 0x51424d31; // "QBM1"

} // namespace

QByteArray FolderBookmark::make(const QString& folderPath, QString* error)
{
    struct stat st
    {
    };
    const QByteArray native = folderPath.toLocal8Bit();
    if (::stat(native.constData(), &st) != 0) {
        if (error)
            *error = QString::fromLocal8Bit(strerror(errno));
        return {};
    }
    QByteArray data;
    QDataStream out(&data, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_0);
    out << kMagic << folderPath << quint64(st.st_dev) << quint64(st.st_ino);
    return data;
}

std::optional<FolderBookmark::Resolved> FolderBookmark::resolve(const QByteArray& bookmark, QString* error)
{
    QDataStream in(bookmark);
    in.setVersion(QDataStream::Qt_6_0);
    quint32 magic = 0;
    QString path;
    quint64 device = 0;
    quint64 inode = 0;
    in >> magic >> path >> device >> inode;
    if (in.status() != QDataStream::Ok || magic != kMagic || path.isEmpty() || !in.atEnd()) {
        if (error)
            *error = QStringLiteral("The bookmark data is not in a readable format.");
        return std::nullopt;
    }
    struct stat st
    {
    };
    if (::stat(path.toLocal8Bit().constData(), &st) != 0) {
        if (error)
            *error = QStringLiteral("The folder “%1” couldn’t be found.").arg(path);
        return std::nullopt;
    }
    return Resolved {path, quint64(st.st_dev) != device || quint64(st.st_ino) != inode};
}

bool FolderBookmark::startAccess(const QString& folderPath)
{
    return ::access(folderPath.toLocal8Bit().constData(), R_OK | X_OK) == 0;
}

void FolderBookmark::stopAccess(const QString& folderPath)
{
    Q_UNUSED(folderPath);
}

bool FolderBookmark::canAccess(const QString& folderPath)
{
    const bool started = startAccess(folderPath);
    const QByteArray native = folderPath.toLocal8Bit();
    const bool ok = ::access(native.constData(), R_OK | X_OK) == 0 && ::access(native.constData(), W_OK) == 0;
    if (started)
        stopAccess(folderPath);
    return ok;
}

} // namespace quillbay
