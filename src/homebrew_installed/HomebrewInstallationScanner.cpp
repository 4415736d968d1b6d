#include "homebrew_installed/HomebrewInstallationScanner.h"

#include <QFile>
#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/PathContainment.h"

using namespace Qt::StringLiterals;

namespace quillbay {

namespace {

// stat follows links: a Cellar that is a link to a folder counts as a folder here, and its
// target is then held to the containment test.
bool isFolder(const QString& path)
{
    struct stat st
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool exists(const QString& path)
{
    struct stat st
    {
    };
    return ::stat(QFile::encodeName(path).constData(), &st) == 0;
}

// Readable by the effective user, which is who will list it.
bool isReadable(const QString& path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), R_OK, AT_EACCESS) == 0;
}

QString child(const QString& folder, const QString& name)
{
    return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QString resolvedStandardPath(const QString& path)
{
    return resolvedPath(standardizedPath(path));
}

class DirectoryHandle
{
public:
    explicit DirectoryHandle(const QString& path)
        : m_dir(::opendir(QFile::encodeName(path).constData()))
    {
    }
    ~DirectoryHandle()
    {
        if (m_dir)
            ::closedir(m_dir);
    }
    DirectoryHandle(const DirectoryHandle&) = delete;
    DirectoryHandle& operator=(const DirectoryHandle&) = delete;

    DIR* get() const { return m_dir; }

private:
    DIR* m_dir;
};

} // namespace

std::optional<HomebrewInstallationScannerError> HomebrewInstallationScanner::validateRoot(const QString& rootURL) const
{
    const QString root = standardizedPath(rootURL);
    if (root.isEmpty() || !isFolder(root) || !isReadable(root))
        return HomebrewInstallationScannerError::rootIsNotReadable;
    // Whatever bin/brew is (script, binary, link to one) it marks a Homebrew prefix; a
    // link that leads nowhere does not.
    if (!exists(child(root, u"bin/brew"_s)))
        return HomebrewInstallationScannerError::invalidRoot;
    return std::nullopt;
}

HomebrewInstallationScanner::ScanOutcome HomebrewInstallationScanner::scan(const QString& rootURL) const
{
    if (const auto error = validateRoot(rootURL))
        return *error;
    const QString root = standardizedPath(rootURL);
    HomebrewInstallationScanResult result;
    for (const HomebrewCatalogKind kind : {HomebrewCatalogKind::cask, HomebrewCatalogKind::formula}) {
        if (auto packages = listPackages(kind, root))
            result.packages.append(std::move(*packages));
        else
            result.unreadableKinds.insert(kind);
    }
    return result;
}

bool HomebrewInstallationScanner::isInsideRoot(const QString& url, const QString& rootURL)
{
    return isPathInside(resolvedStandardPath(url), resolvedStandardPath(rootURL));
}

std::optional<QStringList> HomebrewInstallationScanner::subfolders(const QString& folder)
{
    const DirectoryHandle directory(folder);
    if (!directory.get())
        return std::nullopt;
    const int directoryFd = ::dirfd(directory.get());
    QStringList names;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(directory.get());
        if (!entry) {
            if (errno != 0)
                return std::nullopt;
            break;
        }
        // Hidden entries (and "." and "..") are never packages or versions.
        if (entry->d_name[0] == '.')
            continue;
        struct stat st
        {
        };
        // An entry that vanished or cannot be examined is left out, not an error.
        if (::fstatat(directoryFd, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (!S_ISDIR(st.st_mode))
            continue;
        names.append(QFile::decodeName(entry->d_name));
    }
    return names;
}

std::optional<QList<HomebrewInstalledPackage>> HomebrewInstallationScanner::listPackages(HomebrewCatalogKind kind,
                                                                                         const QString& rootURL)
{
    const QString folder = child(rootURL, kind == HomebrewCatalogKind::formula ? u"Cellar"_s : u"Caskroom"_s);
    const QString resolvedRoot = resolvedStandardPath(rootURL);
    const auto inside
        = [&resolvedRoot](const QString& path) { return isPathInside(resolvedStandardPath(path), resolvedRoot); };

    // No folder is no error: an installation without casks has no Caskroom.
    if (!isFolder(folder) || !inside(folder))
        return QList<HomebrewInstalledPackage> {};

    const auto packageNames = subfolders(folder);
    if (!packageNames)
        return std::nullopt;

    QList<HomebrewInstalledPackage> packages;
    for (const QString& identifier : *packageNames) {
        const QString packageFolder = child(folder, identifier);
        if (!inside(packageFolder))
            continue;
        const auto versionNames = subfolders(packageFolder);
        if (!versionNames)
            return std::nullopt;
        for (const QString& version : *versionNames) {
            const QString versionFolder = child(packageFolder, version);
            if (!inside(versionFolder))
                continue;
            packages.append(HomebrewInstalledPackage {kind, identifier, version, versionFolder, std::nullopt});
        }
    }
    return packages;
}

} // namespace quillbay
