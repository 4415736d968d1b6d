#include <QFile>
#include <QFileInfo>
#include <QThread>

#include "core/AppViewModel.h"
#include "foundation/Log.h"
#include "platform/Workspace.h"
#include "xcode_releases/InstalledXcodeVersion.h"
#include "xcode_releases/XcodeReleaseDecoder.h"
#include "xcode_releases/XcodeReleaseService.h"

namespace quillbay {

namespace {

// The cached feed, when there is a readable file. Runs on the cache's thread; every
// failure here is silent, since the network is asked next in any case.
std::optional<QByteArray> readCachedFeed(const CacheManager& cache)
{
    const std::optional<QString>& path = cache.cacheURL();
    if (!path || !QFileInfo::exists(*path))
        return std::nullopt;
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

} // namespace

void AppViewModel::initReleases()
{
    m_ownedWorkspace = Workspace::createSystem();
    m_workspace = m_ownedWorkspace.get();
    m_xcodeReleaseService = XcodeReleaseService::createDefault();
    // The two start-up tasks run once construction is over, on this thread.
    QMetaObject::invokeMethod(this, &AppViewModel::startReleaseTasks, Qt::QueuedConnection);
}

void AppViewModel::startReleaseTasks()
{
    loadReleases();
    const QString version = Tools::installedXcodeVersion(*m_workspace).value_or(QString());
    if (version != m_xcodeVersion) {
        m_xcodeVersion = version;
        emit xcodeVersionChanged();
    }
}

void AppViewModel::replaceXcodeReleaseService(std::unique_ptr<XcodeReleaseService> service)
{
    Q_ASSERT(service);
    m_xcodeReleaseService = std::move(service);
}

void AppViewModel::replaceWorkspace(std::unique_ptr<Workspace> workspace)
{
    Q_ASSERT(workspace);
    m_ownedWorkspace = std::move(workspace);
    m_workspace = m_ownedWorkspace.get();
}

Column AppViewModel::tableColumn(ReleaseColumn column)
{
    // ReleaseColumn lists the switchable columns in table order, starting after `version`.
    return static_cast<Column>(static_cast<int>(column) + 1);
}

QList<Column> AppViewModel::columns() const
{
    QList<Column> visible;
    for (int i = 0; i < releaseColumnCount; ++i) {
        const auto column = static_cast<ReleaseColumn>(i);
        if (isReleaseColumnVisible(column))
            visible << tableColumn(column);
    }
    return visible;
}

void AppViewModel::loadReleases()
{
    Q_ASSERT(QThread::currentThread() == thread());
    m_xcodeReleaseService->cache()
        .run([](CacheManager& cache) { return readCachedFeed(cache); })
        .then(this, [this](const std::optional<QByteArray>& cached) {
            // A cache that does not decode stays where it is, unreported; the next good
            // answer from the network overwrites it.
            if (cached)
                applyReleaseData(*cached);
            refreshReleases();
        });
}

void AppViewModel::refreshReleases()
{
    Q_ASSERT(QThread::currentThread() == thread());
    setHasError(false);
    m_xcodeReleaseService->fetchReleaseData().then(this, [this](const XcodeReleaseFetchResult& result) {
        if (!result.succeeded()) {
            qCCritical(logApp).noquote() << QStringLiteral("Failed to fetch data: ") + result.failureDescription();
            setHasError(true);
            return;
        }
        if (!applyReleaseData(result.data))
            setHasError(true);
    });
}

bool AppViewModel::applyReleaseData(const QByteArray& bytes)
{
    Q_ASSERT(QThread::currentThread() == thread());
    std::optional<QList<XcodeRelease>> decoded = decodeXcodeReleases(bytes);
    if (!decoded)
        return false;
    m_releases = std::move(*decoded);
    emit releasesChanged();
    return true;
}

void AppViewModel::setHasError(bool hasError)
{
    if (m_hasError == hasError)
        return;
    m_hasError = hasError;
    emit hasErrorChanged(hasError);
}

} // namespace quillbay
