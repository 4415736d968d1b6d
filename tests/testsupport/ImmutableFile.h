#pragma once

#include <QFile>
#include <QString>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quillbay::test {

// Marks a file immutable (chattr +i), which even root cannot remove; the flag is taken
// off again when the guard goes, so the temporary tree can be cleaned. `isActive()` is
// false where the file system or the process cannot set the flag.
class ImmutableFile
{
public:
    explicit ImmutableFile(const QString& path)
        : m_path(path)
    {
        m_active = setFlag(true);
    }
    ~ImmutableFile()
    {
        if (m_active)
            setFlag(false);
    }
    ImmutableFile(const ImmutableFile&) = delete;
    ImmutableFile& operator=(const ImmutableFile&) = delete;

    bool isActive() const { return m_active; }

private:
    bool setFlag(bool on)
    {
        const int fd = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0)
            return false;
        int flags = 0;
        bool ok = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        if (ok) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            ok = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        }
        ::close(fd);
        return ok;
    }

    QString m_path;
    bool m_active = false;
};

} // namespace quillbay::test
