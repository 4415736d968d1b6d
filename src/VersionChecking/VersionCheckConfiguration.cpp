#include "VersionChecking/VersionCheckConfiguration.h"

#include <QStringDecoder>

#include "VersionChecking/VersionCheckingLog.h"

namespace quillbay {

std::optional<VersionCheckConfiguration>
VersionCheckConfiguration::make(const QString& baseURLText, const QByteArray& secretBytes, const QString& appID)
{
    const QUrl url(baseURLText, QUrl::StrictMode);
    if (baseURLText.isEmpty() || !url.isValid() || url.scheme().isEmpty())
        return std::nullopt;
    if (secretBytes.size() != signatureSecretByteCount)
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString secret = decoder.decode(secretBytes);
    if (decoder.hasError())
        return std::nullopt;
    VersionCheckConfiguration configuration;
    configuration.baseURL = url;
    configuration.appID = appID;
    configuration.signatureSecret = secret;
    return configuration;
}

VersionCheckConfiguration VersionCheckConfiguration::disabled()
{
    VersionCheckConfiguration configuration;
    configuration.baseURL = QUrl::fromLocalFile(QStringLiteral("/"));
    configuration.appID = QStringLiteral("disabled");
    configuration.channel = QStringLiteral("disabled");
    return configuration;
}

VersionCheckConfiguration
VersionCheckConfiguration::orDisabled(const std::optional<VersionCheckConfiguration>& configuration)
{
    if (configuration)
        return *configuration;
    qCCritical(versionCheckingLog).noquote() << "Version checking is disabled because its configuration is invalid.";
    return disabled();
}

} // namespace quillbay
