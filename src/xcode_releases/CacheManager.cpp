#include "xcode_releases/CacheManager.h"

#include <QDir>

#include "foundation/AtomicFile.h"

namespace quillbay {

CacheManager::CacheManager(std::optional<QString> cacheFile, const UserPaths& paths)
{
    if (cacheFile) {
        m_cacheURL = std::move(cacheFile);
        return;
    }
    // Unlike a sandbox's Caches folder, a per-program cache folder on a desktop need not
    // exist yet; it is made once here so that saves need not create folders.
    const QString folder = paths.programCacheFolder();
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return;
    m_cacheURL = QDir(folder).filePath(QLatin1String(fileName));
}

SerialExecutor<CacheManager>& CacheManager::shared()
{
    // Deliberately never destroyed: its thread must not be joined during static
    // destruction, after the application object is gone.
    static auto* instance = new SerialExecutor<CacheManager>(std::make_unique<CacheManager>());
    return *instance;
}

std::optional<QString> CacheManager::save(const QByteArray& bytes)
{
    if (!m_cacheURL)
        return QStringLiteral("No such file or directory");
    QString error;
    if (!writeFileAtomically(*m_cacheURL, bytes, &error))
        return error;
    return std::nullopt;
}

} // namespace quillbay
