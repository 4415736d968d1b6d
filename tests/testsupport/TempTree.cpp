#include "testsupport/TempTree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

TempTree::TempTree()
{
    if (!m_dir.isValid())
        qFatal("cannot create a temporary folder");
}

TempTree::~TempTree()
{
    // A folder without permissions would stop the recursive removal.
    for (const QString& path : m_chmodded)
        ::chmod(QFile::encodeName(path).constData(), 0755);
}

QString TempTree::path(const QString& relative) const
{
    return relative.isEmpty() ? root() : root() + QLatin1Char('/') + relative;
}

QString TempTree::mkdir(const QString& relative)
{
    const QString full = path(relative);
    QDir().mkpath(full);
    return full;
}

QString TempTree::writeFile(const QString& relative, const QByteArray& bytes)
{
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(full));
    return full;
}

QString TempTree::writeSizedFile(const QString& relative, qint64 bytes)
{
    QByteArray chunk(64 * 1024, 'q');
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    QFile file(full);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(full));
    qint64 left = bytes;
    while (left > 0) {
        const qint64 n = std::min<qint64>(left, chunk.size());
        file.write(chunk.constData(), n);
        left -= n;
    }
    return full;
}

QString TempTree::symlink(const QString& relative, const QString& target)
{
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(full).constData()) != 0)
        qFatal("cannot link %s", qPrintable(full));
    return full;
}

QString TempTree::hardlink(const QString& relative, const QString& existingRelative)
{
    const QString full = path(relative);
    QDir().mkpath(QFileInfo(full).absolutePath());
    if (::link(QFile::encodeName(path(existingRelative)).constData(), QFile::encodeName(full).constData()) != 0)
        qFatal("cannot hard-link %s", qPrintable(full));
    return full;
}

void TempTree::chmod(const QString& relative, int mode)
{
    const QString full = path(relative);
    ::chmod(QFile::encodeName(full).constData(), static_cast<mode_t>(mode));
    m_chmodded.prepend(full);
}

bool TempTree::exists(const QString& relative) const
{
    struct stat st
    {
    };
    return ::lstat(QFile::encodeName(path(relative)).constData(), &st) == 0;
}

qint64 TempTree::allocatedBytes(const QString& absolutePath)
{
    struct stat st
    {
    };
    if (::lstat(QFile::encodeName(absolutePath).constData(), &st) != 0)
        return -1;
    return static_cast<qint64>(st.st_blocks) * 512;
}

} // namespace quillbay::test
