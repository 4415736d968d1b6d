#pragma once

#include <QByteArray>
#include <QString>
#include <variant>

#include "VersionChecking/AppVersionInfo.h"

namespace quillbay {

// The failures the version check itself defines, each with its fixed text.
class VersionCheckError
{
public:
    enum class Kind { httpStatus, invalidURL, invalidResponse };

    static VersionCheckError httpStatus(int status, QByteArray body);
    static VersionCheckError invalidURL() { return VersionCheckError(Kind::invalidURL); }
    static VersionCheckError invalidResponse() { return VersionCheckError(Kind::invalidResponse); }

    Kind kind() const { return m_kind; }
    int status() const { return m_status; }
    const QByteArray& body() const { return m_body; }
    QString description() const;

    friend bool operator==(const VersionCheckError&, const VersionCheckError&) = default;

private:
    explicit VersionCheckError(Kind kind)
        : m_kind(kind)
    {
    }

    Kind m_kind;
    int m_status = 0;
    QByteArray m_body;
};

// A failure of the transport (no answer, refused, timed out), passed on as it came.
struct VersionCheckTransportError
{
    int code = 0; // QNetworkReply::NetworkError
    QString description;
};

// The request was cancelled by a newer check; never reported.
struct VersionCheckCancelled
{
};

using VersionCheckFailure
    = std::variant<VersionCheckError, VersionCheckTransportError, AppVersionDecodingError, VersionCheckCancelled>;

QString failureDescription(const VersionCheckFailure& failure);
inline bool isCancellation(const VersionCheckFailure& failure)
{
    return std::holds_alternative<VersionCheckCancelled>(failure);
}

} // namespace quillbay
