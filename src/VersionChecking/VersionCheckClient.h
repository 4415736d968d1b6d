#pragma once

#include <QNetworkRequest>
#include <QObject>
#include <functional>
#include <optional>
#include <stop_token>
#include <variant>

#include "VersionChecking/AppVersionInfo.h"
#include "VersionChecking/VersionCheckConfiguration.h"
#include "VersionChecking/VersionCheckError.h"

class QNetworkAccessManager;

namespace quillbay {

// One signed GET to the update service per check. UI thread: the request runs on the
// network manager's event loop and the answer comes back on the context's thread.
class VersionCheckClient
{
public:
    using Result = std::variant<AppVersionInfo, VersionCheckFailure>;
    using Clock = std::function<qint64()>; // whole seconds since 1970-01-01 UTC

    static constexpr int timeoutMilliseconds = 60'000;

    VersionCheckClient(VersionCheckConfiguration configuration, QNetworkAccessManager& network, Clock clock = {});

    const VersionCheckConfiguration& configuration() const { return m_configuration; }

    // The signed request for this version at this moment, or none when no URL can be built.
    std::optional<QNetworkRequest> makeRequest(const QString& currentVersion, qint64 timestamp) const;

    // Starts a check. done runs once on context's thread, unless context is gone by then.
    // A stop requested on the token aborts the request, and done gets VersionCheckCancelled.
    void
    check(const QString& currentVersion, std::stop_token stopToken, QObject* context, std::function<void(Result)> done);

private:
    VersionCheckConfiguration m_configuration;
    QNetworkAccessManager& m_network;
    Clock m_clock;
};

} // namespace quillbay
