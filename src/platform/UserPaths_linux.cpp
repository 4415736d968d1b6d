#include <QDir>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

#include "platform/UserPaths.h"

namespace quillbay {

UserPaths UserPaths::system()
{
    UserPaths paths;
    const passwd* entry = getpwuid(getuid());
    paths.m_home = entry && entry->pw_dir ? QString::fromLocal8Bit(entry->pw_dir) : QDir::homePath();
    const QString xdg = qEnvironmentVariable("XDG_CACHE_HOME");
    paths.m_xdgCache = xdg.isEmpty() ? paths.m_home + QStringLiteral("/.cache") : xdg;
    paths.m_programCache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    paths.m_programData = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return paths;
}

UserPaths UserPaths::forHome(const QString& home)
{
    UserPaths paths;
    paths.m_home = QDir::cleanPath(home);
    paths.m_xdgCache = paths.m_home + QStringLiteral("/.cache");
    paths.m_programCache = paths.m_home + QStringLiteral("/.cache/Quillbay");
    paths.m_programData = paths.m_home + QStringLiteral("/.local/share/Quillbay");
    return paths;
}

QString UserPaths::developerFolder() const
{
    return m_home + QStringLiteral("/Library/Developer");
}

QString UserPaths::homebrewCacheFolder() const
{
    return m_xdgCache + QStringLiteral("/Homebrew");
}

QString UserPaths::homebrewCacheDisplayPath() const
{
    return QStringLiteral("~/.cache/Homebrew");
}

QStringList UserPaths::homebrewRootCandidates() const
{
    return {QStringLiteral("/home/linuxbrew/.linuxbrew"), m_home + QStringLiteral("/.linuxbrew"),
            QStringLiteral("/opt/homebrew"), QStringLiteral("/usr/local")};
}

} // namespace quillbay
