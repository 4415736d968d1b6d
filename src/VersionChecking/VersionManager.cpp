#include "VersionChecking/VersionManager.h"

#include "VersionChecking/PlatformUpdateURLOpener.h"
#include "VersionChecking/VersionCheckingLog.h"

namespace quillbay {

VersionManager::VersionManager(VersionCheckClient client,
                               QString bundleVersion,
                               UpdateURLOpener updateURLOpener,
                               QObject* parent)
    : QObject(parent)
    , m_client(std::move(client))
    , m_bundleVersion(std::move(bundleVersion))
    , m_updateURLOpener(std::move(updateURLOpener))
{
    if (!m_updateURLOpener)
        m_updateURLOpener = [opener = PlatformUpdateURLOpener()](const QUrl& url) { opener.open(url); };
}

VersionManager::~VersionManager()
{
    m_checkTask.request_stop();
}

QString VersionManager::currentVersion() const
{
    return m_bundleVersion.isEmpty() ? QStringLiteral("1.0.0") : m_bundleVersion;
}

void VersionManager::startCheck()
{
    m_checkTask.request_stop();
    m_checkTask = std::stop_source();
    m_isChecking = true;
    const std::stop_token token = m_checkTask.get_token();
    m_client.check(currentVersion(), token, this, [this, token](VersionCheckClient::Result result) {
        if (token.stop_requested())
            return;
        finish(std::move(result));
    });
}

void VersionManager::finish(VersionCheckClient::Result result)
{
    m_isChecking = false;
    if (auto* info = std::get_if<AppVersionInfo>(&result)) {
        const bool changed = m_updateInfo != *info;
        m_updateInfo = std::move(*info);
        const bool hadError = m_lastError.has_value();
        m_lastError.reset();
        if (changed)
            emit updateInfoChanged();
        if (hadError)
            emit lastErrorChanged();
        emit checkFinished();
        return;
    }
    auto& failure = std::get<VersionCheckFailure>(result);
    if (isCancellation(failure))
        return;
    qCCritical(versionCheckingLog).noquote()
        << QStringLiteral("Version check failed: %1").arg(failureDescription(failure));
    m_lastError = std::move(failure);
    emit lastErrorChanged();
    emit checkFinished();
}

void VersionManager::openUpdateURL()
{
    if (!m_updateInfo)
        return;
    const QUrl url(m_updateInfo->updateURL, QUrl::StrictMode);
    if (m_updateInfo->updateURL.isEmpty() || !url.isValid())
        return;
    m_updateURLOpener(url);
}

} // namespace quillbay
