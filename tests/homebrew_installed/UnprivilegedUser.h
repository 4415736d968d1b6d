#pragma once

#include <QString>

namespace quillbay::test {

// File permissions mean nothing to root, and the tests run as root. While one of these is
// alive, the whole process (all threads) checks permissions as the unprivileged user
// "nobody"; the saved user id stays root, so the destructor switches back. Not root to
// begin with: nothing changes, permissions apply anyway.
//
// Everything the process touches meanwhile must be reachable by "nobody": make the
// temporary tree world-readable first (see makeReachable).
class UnprivilegedUser
{
public:
    UnprivilegedUser();
    ~UnprivilegedUser();
    UnprivilegedUser(const UnprivilegedUser&) = delete;
    UnprivilegedUser& operator=(const UnprivilegedUser&) = delete;

    // False when the switch was needed and refused (no CAP_SETUID in this container).
    bool permissionsApply() const { return m_permissionsApply; }
    QString failure() const { return m_failure; }

    // Opens a root-owned folder (as QTemporaryDir makes them, 0700) to everybody.
    static void makeReachable(const QString& folder);

private:
    bool m_switched = false;
    bool m_permissionsApply = false;
    QString m_failure;
};

} // namespace quillbay::test
