#include <QFile>
#include <cerrno>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

#include "UnprivilegedUser.h"

namespace quillbay::test {

namespace {

constexpr unsigned kNobody = 65534;

} // namespace

UnprivilegedUser::UnprivilegedUser()
{
    if (::geteuid() != 0) {
        m_permissionsApply = true;
        return;
    }
    // Real and effective ids both, since access() checks the real one; the saved ids stay
    // root. The group first, while still allowed to change it.
    if (::setresgid(kNobody, kNobody, 0) != 0 || ::setresuid(kNobody, kNobody, 0) != 0) {
        m_failure = QString::fromLocal8Bit(std::strerror(errno));
        if (::setresgid(0, 0, 0) != 0)
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
    if (::setresuid(0, 0, 0) != 0 || ::setresgid(0, 0, 0) != 0)
        qFatal("cannot return to the root user after an unprivileged section");
}

void UnprivilegedUser::makeReachable(const QString& folder)
{
    ::chmod(QFile::encodeName(folder).constData(), 0755);
}

} // namespace quillbay::test
