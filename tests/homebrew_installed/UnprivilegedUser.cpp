#include "UnprivilegedUser.h"

#include <QFile>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

namespace quillbay::test {

namespace {

constexpr uid_t kNobody = 65534;

} // namespace

UnprivilegedUser::UnprivilegedUser()
{
    if (::geteuid() != 0) {
        m_permissionsApply = true;
        return;
    }
    // The group first, while still allowed to change it.
    if (::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0) {
        m_failure = QString::fromLocal8Bit(std::strerror(errno));
        if (::setegid(0) != 0)
            qFatal("cannot return to the root group");
        return;
    }
    m_switched = true;
    m_permissionsApply = true;
}

UnprivilegedUser::~UnprivilegedUser()
{
    if (!m_switched)
        return;
    if (::seteuid(0) != 0 || ::setegid(0) != 0)
        qFatal("cannot return to the root user after an unprivileged section");
}

void UnprivilegedUser::makeReachable(const QString& folder)
{
    ::chmod(QFile::encodeName(folder).constData(), 0755);
}

} // namespace quillbay::test
