#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>
#include <optional>

namespace quillbay {

// Where and as whom the program asks for updates. The secret, the application id and the
// address are agreed with the update service.
struct VersionCheckConfiguration
{
    static constexpr auto defaultPath = "/api/app-version/check";
    // The service signs with a key of exactly this many bytes; any other length cannot
    // agree with it, so such a build has no configuration rather than one that always fails.
    static constexpr qsizetype signatureSecretByteCount = 64;

    QUrl baseURL;
    QString path = QLatin1String(defaultPath);
    QString appID;
    QString platform = QStringLiteral("macos");
    QString channel = QStringLiteral("prod");
    QString signatureSecret;

    // A configuration when the address parses as a URL and the secret is 64 bytes of
    // UTF-8 text; otherwise none.
    static std::optional<VersionCheckConfiguration>
    make(const QString& baseURLText, const QByteArray& secretBytes, const QString& appID);

    // What the manager is given when there is no usable configuration; it never checks.
    static VersionCheckConfiguration disabled();

    // The configuration, or the disabled one with one error line in the log.
    static VersionCheckConfiguration orDisabled(const std::optional<VersionCheckConfiguration>& configuration);

    friend bool operator==(const VersionCheckConfiguration&, const VersionCheckConfiguration&) = default;
};

} // namespace quillbay
