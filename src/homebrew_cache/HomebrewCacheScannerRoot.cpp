#include <QCoreApplication>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include "homebrew_cache/HomebrewCacheFileSystem.h"
#include "homebrew_cache/HomebrewCacheScanner.h"

namespace quillbay {

using FS = HomebrewCacheFileSystem;

HomebrewCacheScanner::HomebrewCacheScanner(QString expectedRootPath, QString displayPath)
    : m_expectedRootPath(std::move(expectedRootPath))
    , m_displayPath(std::move(displayPath))
{
}

QString HomebrewCacheScanner::description(HomebrewCacheScannerError error) const
{
    switch (error) {
    case HomebrewCacheScannerError::invalidRoot:
        return QCoreApplication::translate("HomebrewCache", "Choose the default Homebrew cache folder at %1.")
            .arg(m_displayPath);
    case HomebrewCacheScannerError::rootIsNotAccessible:
        break;
    }
    return QCoreApplication::translate("HomebrewCache",
                                       "The selected Homebrew cache folder must be readable and writable.");
}

std::optional<HomebrewCacheScanFailure> HomebrewCacheScanner::validateRoot(const QString& rootPath) const
{
    const auto fail = [this](HomebrewCacheScannerError error) {
        return std::optional {HomebrewCacheScanFailure {error, description(error)}};
    };
    // Exactly the expected folder: not a parent, not a child, not a look-alike elsewhere.
    if (FS::cleanPath(rootPath) != FS::cleanPath(m_expectedRootPath))
        return fail(HomebrewCacheScannerError::invalidRoot);
    const QByteArray native = QFile::encodeName(rootPath);
    struct stat followed
    {
    };
    if (::stat(native.constData(), &followed) != 0 || !S_ISDIR(followed.st_mode))
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    // A cache folder that is a link could lead anywhere.
    if (FS::isSymbolicLink(rootPath))
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    if (::access(native.constData(), R_OK) != 0 || ::access(native.constData(), W_OK) != 0)
        return fail(HomebrewCacheScannerError::rootIsNotAccessible);
    return std::nullopt;
}

} // namespace quillbay
