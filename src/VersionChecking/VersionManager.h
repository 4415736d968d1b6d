#pragma once

#include <QObject>
#include <QUrl>
#include <functional>
#include <optional>
#include <stop_token>

#include "VersionChecking/AppVersionInfo.h"
#include "VersionChecking/VersionCheckClient.h"
#include "VersionChecking/VersionCheckError.h"

namespace quillbay {

// What the program knows about updates: the last good answer and the last failure.
// UI thread only. At most one check runs; a new one cancels the old, and a cancelled
// check changes nothing and logs nothing.
class VersionManager : public QObject
{
    Q_OBJECT

public:
    using UpdateURLOpener = std::function<void(const QUrl&)>;

    // bundleVersion is the running program's short version; empty reads as "1.0.0".
    // Without an opener, update pages go through a PlatformUpdateURLOpener without
    // platform operations (the default handler).
    VersionManager(VersionCheckClient client,
                   QString bundleVersion,
                   UpdateURLOpener updateURLOpener = {},
                   QObject* parent = nullptr);
    ~VersionManager() override;

    const std::optional<AppVersionInfo>& updateInfo() const { return m_updateInfo; }
    const std::optional<VersionCheckFailure>& lastError() const { return m_lastError; }
    const VersionCheckClient& client() const { return m_client; }
    bool isChecking() const { return m_isChecking; }

    QString currentVersion() const;

    // A required update is known: the application must end behind its alert.
    bool isForceUpdateRequired() const { return m_updateInfo && m_updateInfo->forceUpdate; }
    // An optional update is known (a forced one is shown by the alert instead).
    bool isUpdateAvailable() const
    {
        return m_updateInfo && m_updateInfo->updateAvailable && !m_updateInfo->forceUpdate;
    }

    void startCheck();
    void openUpdateURL();

signals:
    void updateInfoChanged();
    void lastErrorChanged();
    // A check ended with an answer or a failure (not a cancellation).
    void checkFinished();

private:
    void finish(VersionCheckClient::Result result);

    VersionCheckClient m_client;
    QString m_bundleVersion;
    UpdateURLOpener m_updateURLOpener;
    std::optional<AppVersionInfo> m_updateInfo;
    std::optional<VersionCheckFailure> m_lastError;
    std::stop_source m_checkTask;
    bool m_isChecking = false;
};

} // namespace quillbay
