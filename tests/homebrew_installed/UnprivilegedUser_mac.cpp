#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include "UnprivilegedUser.h"

namespace quillbay::test {

// Without setresuid there is no way back from a dropped real user id, so as root the
// permission tests skip here; as a normal user permissions apply anyway.
UnprivilegedUser::UnprivilegedUser()
    : m_permissionsApply(::geteuid() != 0)
{
    if (!m_permissionsApply)
        m_failure = QStringLiteral("running as root, and this system cannot switch the real user id back");
}

UnprivilegedUser::~UnprivilegedUser() = default;

void UnprivilegedUser::makeReachable(const QString& folder)
{
    ::chmod(QFile::encodeName(folder).constData(), 0755);
}

} // namespace quillbay::test
